#!/usr/bin/env python3
"""A tour of the real program on a virtual display, kept as pictures: for a look where there is no screen.

Works on a copy of the example, in a home of its own; nothing is left behind but the pictures.
"""

import argparse
import os
import re
import sys

from display import Display, Failure, wait_for
from editor import Editor, read

EXAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "examples")


# ---- What the person does at a stop -----------------------------------------------------------------------

def look(_):
    pass


def edit(editor):
    editor.display.key("Down", "Down", "Down")
    editor.display.type("(CHECKED BEFORE THE FIRST PART)")
    editor.display.key("Return")
    editor.display.type("G0 Z100. M9")
    editor.display.key("Return")


def show_changes(editor):
    editor.display.key("F4")


def mark_block(editor):
    editor.measure()
    editor.drag((2, 9), (14, 14))
    editor.wait_marked_rows(9, 5)


def find(editor):
    editor.display.key("ctrl+Home")
    editor.open("Find", "alt+v", "f")
    editor.display.type(WORD.search(editor.original).group().decode())
    editor.display.key("Return")
    wait_for("a match on show", lambda: editor.marked(2 * editor.cell_width))


def ask_to_renumber(editor):
    editor.open("RENUMBER", "alt+n", "r")
    editor.display.type("100\t5")
    editor.display.key("alt+n")


def renumber(editor):
    editor.open("NC Utility", "Return")


def choose_colors(editor):
    editor.open("Choose Variable Color", "alt+v", "s")
    editor.display.type("g")


def show_nc_mode(editor):
    editor.display.key("F7")


def open_menu(editor):
    editor.display.key("alt+e", "Down", "Down")


def choose_macro(editor):
    """Records a slash in front of a row, and stands before playing it."""
    editor.display.key("ctrl+Home")
    editor.open("Record Macro", "alt+m", "r")
    editor.display.type("skip rows")
    editor.close("Return")
    editor.display.type("/")
    editor.display.key("Down", "Home", "alt+m", "e")
    editor.open("Play Macro", "F8")


def show_file_dialog(editor):
    editor.open("Save As", "alt+f", "a")


def show_manual(editor):
    editor.open("Hexlane help", "alt+h", "c")


def save(editor):
    editor.display.key("ctrl+s")
    wait_for("the saved file", lambda: read(editor.file) != editor.original)


# Name, what the picture shows, what is done before it, and the keys that lead back to the text behind it.
STOPS = [
    ("opened", "the program as it was opened, its letters in colours", look, []),
    ("edited", "a comment and a block typed in front of the fourth row", edit, []),
    ("changes", "Color Edit Changes: only what was edited stands out", show_changes, ["F3"]),
    ("block", "rows marked with the mouse", mark_block, ["Escape"]),
    ("match", "Find at a match, its dialog beside the text", find, ["Escape"]),
    ("renumber", "the Renumber dialog", ask_to_renumber, []),
    ("renumbered", "what Renumber has made of the program", renumber, ["Return"]),
    ("colors", "the dialog that sets the colours", choose_colors, ["Escape"]),
    ("nc-mode", "NC Mode: each word in a column of its own", show_nc_mode, ["F7"]),
    ("menu", "the Edit menu, and the hint of an entry in the status line", open_menu, ["Escape", "Escape"]),
    ("macro", "a macro that was just recorded, ready to be played", choose_macro, ["Escape"]),
    ("file-dialog", "the file dialog of Save As", show_file_dialog, ["Escape"]),
    ("help", "the manual", show_manual, ["Escape"]),
    ("saved", "the program saved", save, []),
]
WORD = re.compile(rb"G\d+")  # what the tour looks for
LEAST_ROWS = 16  # of a program that a block can be marked in


def stops_for(program):
    """All stops, but those for which a program of the person's own has too little in it."""
    left_out = set()
    if program.count(b"\n") < LEAST_ROWS:
        left_out |= {"block", "match"}
    if not WORD.search(program):
        left_out.add("match")
    return [stop for stop in STOPS if stop[0] not in left_out]


def take_tour(editor, out):
    for number, (name, what, act, back) in enumerate(stops_for(editor.original), 1):
        act(editor)
        editor.display.wait_still(f"the screen of '{name}'")
        picture = os.path.join(out, f"{number:02}-{name}.png")
        editor.display.picture(picture)
        print(f"{picture}: {what}", flush=True)
        if back:
            editor.close(*back)
    editor.display.key("alt+F4")
    editor.process.wait(60)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--example", required=True)
    parser.add_argument("--out", required=True)
    arguments = parser.parse_args()
    os.makedirs(arguments.out, exist_ok=True)
    with Display("1024x768") as display:
        try:
            take_tour(Editor(display, arguments.program, EXAMPLES, os.path.abspath(arguments.example)),
                      arguments.out)
        except Failure as failure:
            display.picture(os.path.join(arguments.out, "tour-failed.png"))
            print(f"tour: {failure}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
