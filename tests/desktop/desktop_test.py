#!/usr/bin/env python3
"""The real program on a virtual display, with keyboard and mouse, its files compared byte by byte.

Typing and saving, a loss of focus, blocks, macros, colors, a second start, file dialogs, leaving.
"""

import os
import signal
import subprocess
import sys

from display import check, run, wait_for
from editor import TITLE, Editor, read

COLORS_LEAST = 50  # different colours on a screen that shows coloured text
MACRO_SIZE = 12036  # bytes of a macro file
RED = b"\xff\x00\x00\x00"  # as the colour file stores it


class Test(Editor):
    """The editor, and where the pictures of the test are kept."""

    def __init__(self, display, arguments):
        super().__init__(display, arguments.program, arguments.examples)
        self.pictures = arguments.pictures

    def start_again(self, *arguments):
        """A second start, which hands over to the first and ends."""
        code = self.start(*arguments).wait(60)
        check(f"the second start ended with {code}", code == 0)

    def keep_picture(self, name):
        self.display.picture(os.path.join(self.pictures, name + ".png"))

    def change(self, what, rows):
        """Saves and expects these rows; they are what the next step begins with."""
        self.rows = rows
        self.save_and_expect(what, self.file, b"".join(rows))


def check_typing(editor):
    wait_for("a coloured program", lambda: editor.display.count_colors() >= COLORS_LEAST)
    editor.keep_picture("opened")
    editor.display.type("(typed)")
    editor.display.key("Return")
    editor.save_and_expect("a typed row", editor.file, b"(typed)\r\n" + editor.original)


def check_focus(editor):
    """Text typed before another window took the focus, and behind it, is one row; a blank end row follows it."""
    editor.display.key("ctrl+End")
    editor.display.type("(before")
    editor.display.key("alt+h", "c")
    editor.display.wait_active("Hexlane help")
    editor.keep_picture("help")
    editor.display.key("Escape")
    editor.display.wait_active(TITLE)
    editor.display.type(" and behind)")
    editor.save_and_expect("a row from both sides of a loss of focus", editor.file,
                           b"(typed)\r\n" + editor.original + b"(before and behind)\r\n\r\n")


def check_block(editor):
    """Rows drawn with the mouse are cut and pasted in front of another row; a part of a row is copied."""
    editor.measure()
    rows = read(editor.file).splitlines(keepends=True)
    editor.drag((2, 5), (9, 8))
    editor.wait_marked_rows(5, 3)  # without the row under the pointer
    editor.keep_picture("block")
    editor.display.key("ctrl+x")
    editor.click(0, 2)
    editor.display.key("ctrl+v")
    editor.change("three rows in another place", rows[:2] + rows[5:8] + rows[2:5] + rows[8:])
    editor.drag((0, 9), (3, 9))
    wait_for("a part of a row in a block", lambda: editor.marked(3 * editor.cell_width))
    editor.display.key("ctrl+c", "Escape", "End", "ctrl+v")
    copied = editor.rows[9]
    editor.change("a part of a row behind it",
                  editor.rows[:9] + [copied[:-2] + copied[:3] + copied[-2:]] + editor.rows[10:])


def check_macro(editor):
    """A pass while it is recorded, and two when it is played."""
    editor.display.key("ctrl+Home")
    editor.open("Record Macro", "alt+m", "r")
    editor.display.type("slashes")
    editor.close("Return")
    editor.display.type("/")
    editor.display.key("Down", "Home")
    editor.display.key("alt+m", "e")
    stored = os.path.join(editor.home, "ZOLT", "MACROS", "MACRO.001")
    wait_for("the macro's file", lambda: len(read(stored) or b"") == MACRO_SIZE)
    check("the macro's name stands in its file", read(stored).startswith(b"SLASHES\0"))
    editor.open("Play Macro", "F8")
    editor.keep_picture("play-macro")
    editor.open("Run Macro", "alt+s")
    editor.display.key("Return", "Return")
    editor.close("Escape")
    editor.change("three rows with a slash", [b"/" + row for row in editor.rows[:3]] + editor.rows[3:])


def check_colors(editor):
    """A color picked for the letter A is in the file, and the file's other bytes are as they were."""
    file = os.path.join(editor.home, "ZOLT", "ZOLT.INI")
    before = read(file)
    editor.open("Choose Variable Color", "alt+v", "s")
    editor.display.key(*["Tab"] * 5, "space")  # behind the list the colors, the fifth of them red
    editor.keep_picture("set-colors")
    editor.display.key(*["Tab"] * 13)  # eleven colors, the box, OK
    editor.close("Return")
    wait_for("the color in its file", lambda: read(file) == RED + before[4:])


def check_second_start(editor):
    display = editor.display
    display.hand("search", "--onlyvisible", "--name", f"^{TITLE}$", "windowminimize")
    wait_for("the window to be minimised", lambda: display.count_shown(TITLE) == 0)
    editor.start_again()
    display.wait_active(TITLE)
    other = os.path.join(display.scratch, "other.nc")
    with open(other, "wb") as file:
        file.write(b"G0 X1\r\nM30\r\n")
    editor.start_again(other)
    display.wait_active(TITLE)
    display.key("Delete")
    editor.save_and_expect("a change in the file handed over", other, b"0 X1\r\nM30\r\n")
    editor.start_again(editor.file)
    display.wait_active(TITLE)
    # A program that serves nobody for a while opens the file when it can.
    editor.process.send_signal(signal.SIGSTOP)
    patient = editor.start(other, stderr=subprocess.PIPE)
    check("the second start says that it waits", b"is busy" in patient.stderr.readline())
    editor.process.send_signal(signal.SIGCONT)
    check("the second start ended well", patient.wait(60) == 0)
    display.wait_active(TITLE)
    display.key("Delete")
    editor.save_and_expect("a change in the file of the patient start", other, b" X1\r\nM30\r\n")
    editor.start_again(editor.file)
    display.wait_active(TITLE)


def check_save_as(editor):
    copy = os.path.join(editor.display.scratch, "copy.nc")
    editor.display.key("alt+f", "a")
    editor.display.wait_active("Save As")
    editor.display.type(copy)
    editor.keep_picture("save-as")
    editor.display.key("Return")
    editor.display.wait_active(TITLE)
    wait_for("the copy", lambda: read(copy) == read(editor.file))
    before = read(copy)
    editor.display.key("ctrl+Home")
    editor.display.type("Z")
    editor.save_and_expect("a change in the copy", copy, b"Z" + before)
    check("the first file has not changed", read(editor.file) == before)
    editor.file = copy


def check_open_dialog(editor):
    """A name that does not exist is asked about, and No leaves the dialog up."""
    editor.display.key("ctrl+o")
    editor.display.wait_active("Open file")
    editor.display.type("nothing-there.nc")
    editor.display.key("Return")
    wait_for("the question", lambda: editor.display.count_shown("Open file") == 2)
    editor.keep_picture("create-question")
    editor.display.key("n")
    wait_for("the dialog alone", lambda: editor.display.count_shown("Open file") == 1)
    editor.display.wait_active("Open file")
    editor.display.key("Escape")
    editor.display.wait_active(TITLE)


def check_end(editor):
    before = read(editor.file)
    editor.display.type("unsaved")
    editor.display.key("alt+F4")
    editor.display.wait_active("EditFile")
    editor.keep_picture("question")
    editor.display.key("n")
    code = editor.process.wait(60)
    check(f"exit code {code}", code == 0)
    check("the answer No left the file alone", read(editor.file) == before)
    check("temporary files are gone", os.listdir(os.path.join(editor.home, "ZOLT", "ZOLTTMP")) == [])
    left = [name for name in os.listdir(editor.display.scratch) if name.startswith(".config")]
    check("the toolkit keeps no settings", not left)


def check_command_line(editor):
    def run(*arguments, **environment):
        return subprocess.run([editor.program, *arguments], env=dict(editor.display.environment, **environment),
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    no_display = run(DISPLAY=":9999")
    check("without a display it says so and ends with 1",
          no_display.returncode == 1 and b"no display" in no_display.stderr)
    check("two files are one too many", run("a", "b").returncode == 2)
    check("--version tells a version", run("--version").stdout.startswith(b"hexlane "))
    check("--help tells the usage", b"[FILE]" in run("--help").stdout)


def play(display, arguments):
    editor = Test(display, arguments)
    for step in (check_typing, check_focus, check_block, check_macro, check_colors, check_second_start, check_save_as,
                 check_open_dialog, check_end, check_command_line):
        step(editor)
        print(f"{step.__name__}: good")


if __name__ == "__main__":
    sys.exit(run("program examples pictures", play))
