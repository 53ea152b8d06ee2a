#!/usr/bin/env python3
"""A short tour of the real program on a virtual display, kept as pictures: for a look where there is no screen.

Works on a copy of the example, in a home of its own; nothing is left behind but the pictures.
"""

import argparse
import os
import shutil
import sys

from display import Display, Failure, wait_for

TITLE = "Hexlane NC Editor and DNC Communications"
COLOR_FILE = os.path.join(os.path.dirname(__file__), "..", "..", "examples", "ZOLT.INI")

# What the person does, and what the picture behind it shows. The last step of all, saving, is seen on disk.
STOPS = [
    ("opened", "the program as it was opened, its letters in colours", []),
    ("edited", "a comment and a block typed in front of the fourth row",
     [("key", "Down", "Down", "Down"), ("type", "(CHECKED BEFORE THE FIRST PART)"), ("key", "Return"),
      ("type", "G0 Z100. M9"), ("key", "Return")]),
    ("changes", "Color Edit Changes: only what was edited stands out", [("key", "F4")]),
    ("nc-mode", "NC Mode: each word in a column of its own", [("key", "F3", "F7")]),
    ("menu", "the Edit menu, and the hint of an entry in the status line", [("key", "alt+e", "Down")]),
    ("about", "the About box", [("key", "Escape", "Escape", "alt+h", "a")]),
    ("file-dialog", "the file dialog of Save As", [("key", "Return", "alt+f", "a")]),
    ("help", "the manual", [("key", "Escape", "alt+h", "c")]),
    ("saved", "the program saved", [("key", "Escape", "ctrl+s")]),
]


def take_tour(display, program, example, out):
    home = os.path.join(display.scratch, "home")
    os.makedirs(os.path.join(home, "ZOLT"))
    shutil.copy(COLOR_FILE, os.path.join(home, "ZOLT"))
    file = os.path.join(display.scratch, os.path.basename(example))
    shutil.copyfile(example, file)
    editor = display.start([program, file], env={"HEXLANE_HOME": home})
    display.wait_active(TITLE)
    with open(file, "rb") as opened:
        before = opened.read()

    def is_saved():
        with open(file, "rb") as now:
            return now.read() != before
    for number, (name, what, acts) in enumerate(STOPS, 1):
        for act, *words in acts:
            for word in words:
                (display.key if act == "key" else display.type)(word)
                if "alt" in word or word in ("Escape", "a", "c", "Return"):
                    display.wait_still(f"the screen behind '{word}'", still=2)
        if name == "saved":
            wait_for("the saved file", is_saved)
        display.wait_still(f"the screen of '{name}'")
        picture = os.path.join(out, f"{number}-{name}.png")
        display.picture(picture)
        print(f"{picture}: {what}", flush=True)
    display.key("alt+F4")
    editor.wait(60)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--example", required=True)
    parser.add_argument("--out", required=True)
    arguments = parser.parse_args()
    os.makedirs(arguments.out, exist_ok=True)
    with Display("1024x768") as display:
        try:
            take_tour(display, arguments.program, arguments.example, arguments.out)
        except Failure as failure:
            display.picture(os.path.join(arguments.out, "tour-failed.png"))
            print(f"tour: {failure}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
