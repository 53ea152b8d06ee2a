#!/usr/bin/env python3
"""Two ports at work in the real program while editing goes on, with pictures of the screens.

Two controls are played by control-simulator on two ptys: one loads a program that is sent, one punches a program that
is received. A third file is edited and saved meanwhile. At the end the files are compared byte for byte.
"""

import os
import shutil
import signal
import subprocess
import sys

from display import check, run, wait_for
from editor import TITLE, read

ACTIVITY = "Communications Activity Screen"
PUNCHED_SIZE = 20000  # bytes: at 9600 bits a second 20 seconds, and 15 of silence end the receive
PARAMETERS = "Communications Parameter Settings"
COMMUNICATIONS = "Communications"  # the box at a transfer's end, and the view Terminate


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


class Shop:
    """The program with two simulated controls at COM1 and COM2, and the hands of its operator."""

    def __init__(self, display, options):
        self.display = display
        self.options = options
        self.home = os.path.join(display.scratch, "home")
        os.makedirs(os.path.join(self.home, "ZOLT"))
        shutil.copy(os.path.join(options.examples, "ZOLT.INI"), os.path.join(self.home, "ZOLT"))
        self.sent_file = self.example("bowl-finish.nc")
        self.edited_file = self.example("pocket-plate.nc")
        self.ports = [os.path.join(display.scratch, name) for name in ("mill", "lathe")]
        self.environment = {"HEXLANE_HOME": self.home, "HEXLANE_COM1": self.ports[0], "HEXLANE_COM2": self.ports[1]}
        self.set_machine(1, "name=MILL", "protocol=heidenhain", "baud=9600", "data_bits=8")
        self.set_machine(2, "name=LATHE", "baud=9600", "data_bits=8", "port=COM2", "receive_timeout_s=15")
        self.loaded_file = self.scratch("loaded.nc")
        self.received_file = self.scratch("received.nc")
        self.punched_file = self.scratch("punched.nc")
        write(self.punched_file, read(os.path.join(options.examples, "bowl-finish.nc"))[:PUNCHED_SIZE])
        self.mill = self.control(0, "--receive", self.loaded_file, "--protocol", "heidenhain", "--rate", "9600")
        self.lathe = self.control(1, "--send", self.punched_file, "--rate", "9600", "--start-key", "--idle", "60000",
                                  stdin=subprocess.PIPE)
        self.program = display.start([options.program, self.edited_file], env=self.environment)
        display.wait_active(TITLE)

    def example(self, name):
        return shutil.copy(os.path.join(self.options.examples, name), self.display.scratch)

    def scratch(self, name):
        return os.path.join(self.display.scratch, name)

    def set_machine(self, number, *settings):
        subprocess.run([self.options.cli, "machines", "set", str(number), *settings], check=True,
                       env=dict(os.environ, **self.environment), stdout=subprocess.DEVNULL)

    def control(self, slot, *options, **streams):
        """A control on the pty of that slot. Its options as control-simulator takes them."""
        control = self.display.start([self.options.simulator, "--link", self.ports[slot], *options],
                                     stdout=subprocess.DEVNULL, **streams)
        wait_for("the pty of the control", lambda: os.path.exists(self.ports[slot]))
        return control

    def hold_mill(self, held):
        """Stops the mill's process, so that it answers no block: a send lasts as long as this run needs it."""
        self.mill.send_signal(signal.SIGSTOP if held else signal.SIGCONT)

    # ---- Screens ---------------------------------------------------------------------------------------

    def picture(self, name):
        self.display.wait_still(f"the screen of '{name}'", still=2)
        self.display.picture(os.path.join(self.options.pictures, f"dnc-{name}.png"))

    def open(self, title, *keys):
        self.display.key(*keys)
        self.display.wait_active(title)

    def press(self, *keys):
        """Keys for the window on top, one after the other with a look in between."""
        for key in keys:
            self.display.key(key)
            self.display.wait_still(f"the screen behind '{key}'", still=1)

    def answer_file_dialog(self, title, path):
        self.display.wait_active(title)
        self.display.type(path)
        self.display.key("Return")

    def click(self, across, down, button=1):
        """The mouse on the active window, at shares of its width and height."""
        window = self.display.output("xdotool", "getactivewindow").strip()
        sizes = dict(line.split("=") for line in
                     self.display.output("xdotool", "getwindowgeometry", "--shell", window).split())
        self.display.hand("mousemove", "--window", window, int(int(sizes["WIDTH"]) * across),
                          int(int(sizes["HEIGHT"]) * down))
        if button:
            self.display.hand("click", button)


# ---- The run -------------------------------------------------------------------------------------------

def machine_names(shop):
    """The names of the first two machines, and which machine is the current one, as the file has them."""
    data = read(os.path.join(shop.home, "ZOLT", "INIT", "COMMPARM.INI"))
    names = [data[start:start + 36].split(b"\0")[0].decode() for start in (0, 1108)]
    return names, data[102]


def rename_to_a_name_that_is_taken(shop):
    """A typed name names the machine on show, and picks no other one that is called so."""
    display = shop.display
    for name, *leave in (("LATHE", "Return"), ("LATHE", "Tab", "alt+s")):
        shop.open(PARAMETERS, "alt+d", "p")
        shop.press("alt+m", "ctrl+a")
        display.type(name)
        shop.press(*leave)
        display.wait_active(TITLE)
        check("the name went to the machine on show", machine_names(shop) == (["LATHE", "LATHE"], 0))
    shop.open(PARAMETERS, "alt+d", "p")
    shop.press("alt+m", "ctrl+a")
    display.type("LATHE")
    shop.press("Tab", "alt+m", "ctrl+a")
    display.type("MILL")
    shop.open(TITLE, "alt+s")
    check("so did the one behind it", machine_names(shop) == (["MILL", "LATHE"], 0))


def choose_a_block(shop):
    """The start point screen, by keyboard and mouse; the send then begins behind the marked rows."""
    display = shop.display
    shop.open("Select Send Start Point", "alt+s")
    shop.press("Down", "Down", "Next")
    shop.open("Search For", "alt+s")
    shop.press("alt+r", "Tab")
    display.type("40")
    shop.picture("search-for")
    shop.open("Select Send Start Point", "Return")
    shop.click(0.3, 0.35)
    shop.click(0.3, 0.40, button=3)
    shop.click(0.3, 0.55, button=3)
    shop.picture("start-point")
    shop.open("Send Properties", "Return")


def send_from_the_block(shop):
    display = shop.display
    shop.open(ACTIVITY, "alt+d", "a")
    shop.picture("activity")
    display.key("alt+s")
    shop.answer_file_dialog("Open File to Send/Receive", shop.sent_file)
    display.wait_active("Send Properties")
    shop.picture("send-properties")
    choose_a_block(shop)
    shop.press("alt+n")
    shop.open(ACTIVITY, "Return")
    shop.hold_mill(True)                      # it answers when this run has seen the rest


def receive_on_the_other_port(shop):
    """The lower row gets its machine by mouse, in the list that drops down."""
    display = shop.display
    shop.click(0.07, 0.62)
    display.wait_still("the list of machines", still=2)
    shop.picture("machine-list")
    shop.press("Home", "Down", "Return")
    display.key("alt+c")
    shop.answer_file_dialog("Select File to Receive", shop.received_file)
    display.wait_active(ACTIVITY)
    wait_for("the file of the receive", lambda: os.path.exists(shop.received_file))
    shop.lathe.stdin.write(b"\n")             # the operator of the lathe presses its start key
    shop.lathe.stdin.flush()
    wait_for("bytes from the lathe", lambda: read(shop.received_file))
    shop.click(0.5, 0.35, button=0)           # the pointer rests on the upper row
    display.wait_still("the tip of the upper row", still=8)
    shop.picture("both-rows")


def edit_meanwhile(shop):
    """Return to Editor by mouse, then typing, saving, minimising and coming back, with both ports at work."""
    display = shop.display
    shop.click(0.5, 0.85)
    display.wait_active(TITLE)
    display.type("(EDITED WHILE TWO PORTS ARE AT WORK)")
    display.key("Return", "ctrl+s")
    wait_for("the edited file", lambda: read(shop.edited_file).startswith(b"(EDITED WHILE TWO PORTS ARE AT WORK)\r\n"))
    shop.picture("editing")
    display.hand("search", "--onlyvisible", "--name", f"^{TITLE}$", "windowminimize")
    wait_for("the window to be minimised", lambda: display.count_shown(TITLE) == 0)
    check("a second start ends well", display.start([shop.options.program], env=shop.environment).wait(60) == 0)
    display.wait_active(TITLE)
    check("the send still goes on", shop.mill.poll() is None and not read(shop.loaded_file))


def hold_the_end(shop):
    """The close box while ports are at work: the program stays."""
    display = shop.display
    shop.open(COMMUNICATIONS, "alt+F4")
    shop.picture("terminate")
    shop.open(TITLE, "Escape")


def see_the_ends(shop):
    """The receive ends by silence, the send by the file's end, in an order of their own."""
    display = shop.display
    shop.hold_mill(False)
    for number in (1, 2):
        display.wait_active(COMMUNICATIONS)
        shop.picture(f"complete-{number}")
        display.key("Return")
        wait_for("the box to go", lambda: display.active_title().strip() == TITLE)
    shop.open(ACTIVITY, "alt+d", "a")
    shop.picture("both-done")
    check(f"the mill is content: {shop.mill.wait(60)}", shop.mill.returncode == 0)
    loaded = read(shop.loaded_file)
    whole = read(shop.sent_file)
    check("what the mill has loaded is the end of the program", 0 < len(loaded) < len(whole) and whole.endswith(loaded))
    check("it begins with a row", whole[:-len(loaded)].endswith(b"\r\n"))
    check("what was received is what the lathe has punched", read(shop.received_file) == read(shop.punched_file))
    lines = [line for line in read(os.path.join(shop.home, "transfers.log")).decode().splitlines()
             if not line.startswith("receive begun ")]
    check(f"two receipts: {lines}", len(lines) == 2 and all(line.endswith("result complete") for line in lines))


def end_quietly(shop):
    shop.open(TITLE, "Escape")
    shop.display.key("alt+F4")
    code = shop.program.wait(60)
    check(f"exit code {code}", code == 0)
    check("temporary files are gone", os.listdir(os.path.join(shop.home, "ZOLT", "ZOLTTMP")) == [])


STEPS = (rename_to_a_name_that_is_taken, send_from_the_block, receive_on_the_other_port, edit_meanwhile, hold_the_end,
         see_the_ends, end_quietly)


def play(display, arguments):
    shop = Shop(display, arguments)
    for step in STEPS:
        step(shop)
        print(f"{step.__name__}: good", flush=True)


if __name__ == "__main__":
    sys.exit(run("program cli simulator examples pictures", play))
