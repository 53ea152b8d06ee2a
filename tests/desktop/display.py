"""A virtual display with a small window manager, and a person's hands on it: keys, mouse, windows, pictures.

Needs Xvfb, openbox, xdotool, xprop, setxkbmap and ImageMagick's import and convert. Nothing here sleeps for a
fixed time: every wait is for a condition, with a generous limit.
"""

import argparse
import os
import shlex
import shutil
import subprocess
import sys
import tempfile
import time

LIMIT = 60.0  # seconds that a condition may take on a busy machine
STEP = 0.05
CARET_ROWS = 24  # rows of pixels that a caret can change


class Failure(Exception):
    """A condition that did not come true, or a result that is not as told."""


def wait_for(what, condition, limit=LIMIT):
    """Polls until `condition` gives something true and returns that."""
    end = time.monotonic() + limit
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise Failure(f"waited {limit:.0f} s for: {what}")
        time.sleep(STEP)


def check(what, condition):
    if not condition:
        raise Failure(what)


class Display:
    """Xvfb on a free display number and openbox on it; a context manager that ends everything it started."""

    def __init__(self, size="1280x1024", folder=None):
        """`folder` is where the files of this run lie and is gone at its end; it must not exist. Without one, any."""
        self.size = size
        self.folder = folder
        self.processes = []

    def __enter__(self):
        self.scratch = self._make_folder()
        self.environment = dict(os.environ, HOME=self.scratch, XDG_RUNTIME_DIR=self.scratch, LC_ALL="C.UTF-8")
        for name in ("WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_SCALE_FACTOR", "XAUTHORITY"):
            self.environment.pop(name, None)
        try:
            self._start_server()
            self._start_window_manager()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()
                try:
                    process.wait(LIMIT)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()
        shutil.rmtree(self.scratch, ignore_errors=True)

    def _make_folder(self):
        if not self.folder:
            return tempfile.mkdtemp(prefix="hexlane-display-")
        try:
            os.mkdir(self.folder, 0o700)
        except FileExistsError:
            raise Failure(f"{self.folder} exists: another run has it, or has left it behind") from None
        return self.folder

    def _start_server(self):
        reading, writing = os.pipe()
        # Without -noreset the server starts afresh when its only client goes, and refuses one that comes just then.
        self.start(["Xvfb", "-displayfd", str(writing), "-screen", "0", self.size + "x24", "-wr", "-noreset",
                    "-nolisten", "tcp"],
                   pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        check("Xvfb did not start", number)
        self.environment["DISPLAY"] = ":" + number

    def _start_window_manager(self):
        # A window that is shown while openbox still starts never becomes active, and openbox announces itself on the
        # root window before that: only its start-up command comes when it is ready.
        ready = os.path.join(self.scratch, "window-manager-ready")
        self.start(["openbox", "--sm-disable", "--startup", shlex.join(["touch", ready])], stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
        wait_for("the window manager", lambda: os.path.exists(ready))

    def start(self, command, **options):
        """A process on this display that ends with it."""
        process = subprocess.Popen(command, env=dict(self.environment, **options.pop("env", {})), **options)
        self.processes.append(process)
        return process

    def output(self, *command):
        done = subprocess.run(command, env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              check=False)
        return done.stdout.decode(errors="replace")

    # ---- The person --------------------------------------------------------------------------------------

    def hand(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=True)

    def key(self, *names):
        """Keys one after the other, each pressed and let go: "ctrl+s", "Return"."""
        self.hand("key", *names)

    def type(self, text):
        self.hand("type", "--delay", 8, "--", text)

    # ---- Windows -----------------------------------------------------------------------------------------

    def active_title(self):
        return self.output("xdotool", "getactivewindow", "getwindowname").rstrip("\n")

    def wait_active(self, title):
        wait_for(f"the window '{title}' to be active", lambda: self.active_title().strip() == title)

    def count_shown(self, title):
        """Windows of exactly that title on the screen."""
        return len(self.output("xdotool", "search", "--onlyvisible", "--name", f"^{title} *$").split())

    def window_of(self, title):
        """The id of the one window of exactly that title."""
        return wait_for(f"the window '{title}'",
                        lambda: self.output("xdotool", "search", "--onlyvisible", "--name", f"^{title} *$")).split()[0]

    # ---- Pictures ----------------------------------------------------------------------------------------

    def picture(self, path):
        """Keeps the screen as a PNG."""
        subprocess.run(["import", "-window", "root", path], env=self.environment, check=True)

    def pixels(self):
        """The screen as rows of RGB bytes, and its width."""
        data = subprocess.run(["import", "-window", "root", "-depth", "8", "rgb:-"], env=self.environment,
                              stdout=subprocess.PIPE, check=True).stdout
        width = int(self.size.split("x")[0])
        return [data[at:at + 3 * width] for at in range(0, len(data), 3 * width)], width

    def window_pixels(self, window):
        """What a window shows inside its frame, as rows of RGB bytes."""
        data = subprocess.run(["import", "-window", window, "-depth", "8", "ppm:-"], env=self.environment,
                              stdout=subprocess.PIPE, check=True).stdout
        size = data.split(b"\n", 2)[1].split()
        pixels = data[-3 * int(size[0]) * int(size[1]):]
        return [pixels[at:at + 3 * int(size[0])] for at in range(0, len(pixels), 3 * int(size[0]))]

    def count_colors(self):
        rows, _ = self.pixels()
        colors = set()
        for row in rows:
            colors.update(row[at:at + 3] for at in range(0, len(row), 3))
        return len(colors)

    def wait_still(self, what, still=6):
        """Waits until nothing but a blinking caret has changed for so many looks."""
        last = self.pixels()[0]
        count = 0

        def is_still():
            nonlocal last, count
            rows = self.pixels()[0]
            changed = sum(old != new for old, new in zip(last, rows))
            last = rows
            count = count + 1 if changed <= CARET_ROWS else 0
            return count >= still
        wait_for(what, is_still)


def run(names, play, size="1280x1024"):
    """The main function of a program that plays a person: `play` gets a display and the arguments --NAME.

    Gives its exit code; a failure leaves a picture of the screen in the last of the arguments, a folder.
    """
    parser = argparse.ArgumentParser()
    for name in names.split():
        parser.add_argument("--" + name, required=True)
    parser.add_argument("--folder")
    arguments = parser.parse_args()
    pictures = getattr(arguments, names.split()[-1])
    os.makedirs(pictures, exist_ok=True)
    program = os.path.splitext(os.path.basename(sys.argv[0]))[0]
    with Display(size, arguments.folder) as display:
        try:
            return play(display, arguments) or 0
        except Failure as failure:
            display.picture(os.path.join(pictures, program + "-failed.png"))
            print(f"{program}: {failure}", file=sys.stderr)
            return 1
