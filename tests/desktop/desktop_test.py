#!/usr/bin/env python3
"""The real program on a virtual display: open, type, save, lose the focus, be called again, save as, leave."""

import argparse
import os
import shutil
import subprocess
import sys

from display import Display, Failure, check, wait_for

TITLE = "Hexlane NC Editor and DNC Communications"
COLORS_LEAST = 50  # different colours on a screen that shows coloured text


class Editor:
    """The program with a home of its own, and the file that it works on."""

    def __init__(self, display, program, examples, pictures):
        self.display = display
        self.program = program
        self.pictures = pictures
        self.home = os.path.join(display.scratch, "home")
        os.makedirs(os.path.join(self.home, "ZOLT"))
        shutil.copy(os.path.join(examples, "ZOLT.INI"), os.path.join(self.home, "ZOLT"))
        self.file = os.path.join(display.scratch, "part.nc")
        shutil.copy(os.path.join(examples, "pocket-plate.nc"), self.file)
        self.original = read(self.file)
        self.process = self.start(self.file)
        display.wait_active(TITLE)

    def start(self, *arguments):
        return self.display.start([self.program, *arguments], env={"HEXLANE_HOME": self.home})

    def start_again(self, *arguments):
        """A second start, which hands over to the first and ends."""
        code = self.start(*arguments).wait(60)
        check(f"the second start ended with {code}", code == 0)

    def save_and_expect(self, what, path, wanted):
        self.display.key("ctrl+s")
        try:
            wait_for(what, lambda: read(path) == wanted)
        except Failure as failure:
            raise Failure(f"{failure}\n  wanted {wanted[:80]}...{wanted[-80:]}\n  got    {read(path)[:80]}...{read(path)[-80:]}") from None

    def keep_picture(self, name):
        self.display.picture(os.path.join(self.pictures, name + ".png"))


def read(path):
    if not os.path.exists(path):
        return None
    with open(path, "rb") as file:
        return file.read()


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


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--examples", required=True)
    parser.add_argument("--pictures", required=True)
    arguments = parser.parse_args()
    os.makedirs(arguments.pictures, exist_ok=True)
    with Display() as display:
        try:
            editor = Editor(display, arguments.program, arguments.examples, arguments.pictures)
            for step in (check_typing, check_focus, check_second_start, check_save_as, check_open_dialog,
                         check_end, check_command_line):
                step(editor)
                print(f"{step.__name__}: good")
        except Failure as failure:
            display.picture(os.path.join(arguments.pictures, "program-failed.png"))
            print(f"desktop_test: {failure}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
