#!/usr/bin/env python3
"""Opens every dialog of the real program by its menu letters, keeps its picture for the manual, and closes it with Esc.

    pictures.py --program hexlane --examples DIR --out DIR [--folder DIR]

Some pictures show where the programs lie: --folder gives that place a name, so that the next run makes the same
pictures. Fails when a dialog does not come up, does not have the keyboard, or does not go away. Small files: few colors are kept.
"""

import os
import pty
import shutil
import subprocess
import sys
import threading
import tty

from display import run, wait_for
from editor import TITLE, Editor

COLORS_KEPT = 96
WINDOW_SIZE = (600, 430)  # pixels of the editor's window
PAGE_WIDTH = 680  # pixels of a page of the manual; what is wider is made smaller
MATCH_HEIGHT = 290  # pixels of the window that show the first match

XOFF = b"\x13"
HELD_AT = 2150  # bytes: the picture of the send shows the same per cent each time

ACTIVITY = "Communications Activity Screen"
PARAMETERS = ("Communications Parameter Settings", ["alt+d", "p"])
ADVANCED = ("Advanced Settings", ["alt+d"])

# Name of the picture, the windows on the way to it as title and keys, what is typed there, keys behind it.
DIALOGS = [
    ("find", [("Find", ["alt+v", "f"])], "G43", []),
    ("replace", [("FIND AND REPLACE", ["alt+e", "f"])], "M8\tM08", []),
    ("move-to-row", [("MOVE TO ROW", ["alt+v", "r"])], "120", []),
    ("move-to-line-number", [("MOVE TO LINE NUMBER", ["alt+v", "l"])], "190", []),
    ("set-colors", [("Choose Variable Color", ["alt+v", "s"])], "g", []),
    ("renumber", [("RENUMBER", ["alt+n", "r"])], "10\t10", []),
    ("shift", [("SHIFT DIMENSIONS", ["alt+n", "s"])], "-2.5\t3", ["alt+z"]),
    ("scale", [("SCALE DIMENSIONS", ["alt+n", "c"])], "25.4\t4", ["alt+x", "alt+y", "alt+z"]),
    ("absolute-to-incremental", [("ABSOLUTE TO INCREMENTAL", ["alt+n", "a"])], "3", ["alt+x", "alt+y"]),
    ("incremental-to-absolute", [("INCREMENTAL TO ABSOLUTE", ["alt+n", "i"])], "3", ["alt+x", "alt+y"]),
    ("record-macro", [("Record Macro", ["alt+m", "r"])], "skip rows", []),
    ("play-macro", [("Play Macro", ["F8"])], "", []),
    ("parameters", [PARAMETERS], "", []),
    ("advanced", [PARAMETERS, ADVANCED], "", []),
    ("ascii-chart", [PARAMETERS, ADVANCED, ("ASCII Chart", ["alt+a"])], "", []),
    ("print", [("Print", ["alt+f", "p"])], "", []),
    ("about", [("About", ["alt+h", "a"])], "", []),
]


class Pictures(Editor):
    """The editor, and the folder that its pictures go to."""

    def __init__(self, display, arguments):
        super().__init__(display, arguments.program, arguments.examples)
        self.out = arguments.out
        display.hand("windowsize", "--sync", self.window, *WINDOW_SIZE)
        self.measure()

    def keep(self, name, source, *crop):
        """A window, or a part of the screen, with a thin edge and few colors."""
        self.display.wait_still(f"the picture '{name}'")
        path = os.path.join(self.out, name + ".png")
        whole = path + ".whole.png"
        subprocess.run(["import", "-window", source, *crop, whole], env=self.display.environment, check=True)
        subprocess.run(["convert", whole, "-strip", "-bordercolor", "gray60", "-border", "1", "+dither",
                        "-resize", f"{PAGE_WIDTH}x>", "-colors", str(COLORS_KEPT), "png8:" + path], check=True)
        os.remove(whole)
        print(f"{path}: {os.path.getsize(path)} bytes", flush=True)

    def keep_with_dialog(self, name):
        """The upper part of the window on the screen, and as much beside it as a page holds."""
        self.display.hand("mousemove", "--window", self.window, 0, 0)
        place = dict(line.split("=") for line in self.display.output("xdotool", "getmouselocation", "--shell").split())
        self.keep(name, "root", "-crop", "{}x{}+{}+{}".format(PAGE_WIDTH - 2, MATCH_HEIGHT, place["X"], place["Y"]), "+repage")

    def keep_active(self, name):
        self.keep(name, self.display.output("xdotool", "getactivewindow").strip())

    def keep_dialog(self, name, way, text, keys):
        for title, way_keys in way:
            self.open(title, *way_keys)
        if text:
            self.display.type(text)
        if keys:
            self.display.key(*keys)
        self.keep_active(name)
        for title in [title for title, _ in way[-2::-1]] + [TITLE]:
            self.open(title, "Escape")


def keep_window(pictures):
    pictures.keep("window", pictures.window)
    pictures.drag((2, 5), (9, 8))
    pictures.wait_marked_rows(5, 3)
    pictures.keep("block", pictures.window)
    pictures.close_block()
    pictures.display.key("F7")
    pictures.keep("nc-mode", pictures.window)
    pictures.display.key("F7", "ctrl+Home")


def keep_match(pictures):
    pictures.open("Find", "alt+v", "f")
    pictures.display.type("G43")
    pictures.display.key("Return")
    pictures.keep_with_dialog("match")
    pictures.close("Escape")
    pictures.display.key("ctrl+Home")


def keep_replace_step(pictures):
    pictures.open("FIND AND REPLACE", "alt+e", "f")
    pictures.display.type("M8\tM08")
    pictures.open("Replace", "Return")
    pictures.keep_active("replace-step")
    pictures.close("Escape")
    pictures.display.key("ctrl+Home")


def keep_macro_runs(pictures):
    for name, title, key in [("run-macro", "Macro Run", "alt+c"), ("step-macro", "Run Macro", "alt+s")]:
        pictures.open("Play Macro", "F8")
        pictures.open(title, key)
        pictures.keep_active(name)
        pictures.close("Escape")


def keep_compare(pictures):
    """The editor's program beside a copy with a row changed and a row put in."""
    rows = pictures.original.splitlines(keepends=True)
    rows[9] = rows[9].replace(b"3200", b"2800")
    rows.insert(17, b"M1 (CHECK THE FACE)\r\n")
    pictures.open_comparison(rows)
    pictures.keep_active("compare-files")
    pictures.open("Compare Results", "Return")
    pictures.display.key("Return")
    pictures.keep_active("compare-results")
    pictures.open("Print Compare Results", "alt+p")
    pictures.keep_active("print-results")
    pictures.open("Compare Results", "Escape")
    pictures.close("Escape")


class Control:
    """The machine on COM1: a pty whose other end takes what comes, at the speed of the line, and holds it at HELD_AT."""

    def __init__(self, display):
        self.master, self.line = pty.openpty()
        tty.setraw(self.line)
        self.taken = 0
        port = os.path.join(display.scratch, "ttyUSB0")  # the terminal shows it: not a number that changes
        os.symlink(os.ttyname(self.line), port)
        display.environment["HEXLANE_COM1"] = port
        threading.Thread(target=self.take, daemon=True).start()

    def take(self):
        while True:
            before = self.taken
            self.taken += len(os.read(self.master, 4096))
            if before < HELD_AT <= self.taken:
                self.say(XOFF)

    def say(self, data):
        os.write(self.master, data)


def keep_terminal(pictures, control):
    pictures.open("Hexlane Terminal - Machine 1", "alt+m")
    control.say(b"\x02READY\r\nN10 G0 X1.\r\n\x17\x06")
    pictures.display.type("M0")
    pictures.display.key("Return")
    wait_for("the typed text at the machine", lambda: control.taken == len(b"M0\r\n"))
    pictures.keep_active("terminal")
    pictures.open(ACTIVITY, "alt+F4")


def keep_transfer(pictures, control, example):
    """The terminal, and a send on the upper row."""
    file = shutil.copy(example, pictures.display.scratch)
    pictures.open(ACTIVITY, "alt+d", "a")
    keep_terminal(pictures, control)
    pictures.open("Open File to Send/Receive", "alt+s")
    pictures.display.type(file)
    pictures.open("Send Properties", "Return")
    pictures.keep_active("send-properties")
    pictures.open("Select Send Start Point", "alt+s")
    pictures.keep_active("start-point")
    pictures.open("Search For", "alt+s")
    pictures.keep_active("search-for")
    pictures.open("Select Send Start Point", "Escape")
    pictures.open("Send Properties", "Escape")
    pictures.display.key("alt+n")
    pictures.open(ACTIVITY, "Return")
    wait_for("a part of the program at the machine", lambda: control.taken >= HELD_AT)
    pictures.keep_active("activity")
    pictures.close("Escape")
    pictures.open("Communications", "alt+F4")
    pictures.keep_active("minimize")
    pictures.close("Escape")
    pictures.open(ACTIVITY, "alt+d", "a")
    pictures.open("File Conflict", "alt+t")
    pictures.open("Communications", "y")
    pictures.open(ACTIVITY, "Return")
    pictures.close("Escape")


def record_macro(pictures):
    """One that does nothing, for the list of the dialogs."""
    pictures.open("Record Macro", "alt+m", "r")
    pictures.display.type("coolant off")
    pictures.close("Return")
    pictures.display.key("alt+m", "e")


def play(display, arguments):
    control = Control(display)
    display.environment["CUPS_SERVER"] = os.path.join(display.scratch, "no-cups")  # whatever printers there are
    pictures = Pictures(display, arguments)
    keep_window(pictures)
    keep_match(pictures)
    record_macro(pictures)
    for dialog in DIALOGS:
        pictures.keep_dialog(*dialog)
    keep_replace_step(pictures)
    keep_macro_runs(pictures)
    keep_compare(pictures)
    keep_transfer(pictures, control, os.path.join(arguments.examples, "bowl-finish.nc"))


if __name__ == "__main__":
    sys.exit(run("program examples out", play))
