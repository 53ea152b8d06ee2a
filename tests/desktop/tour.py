#!/usr/bin/env python3
"""A tour of the real program on a virtual display, kept as pictures: for a look where there is no screen.

Works on a copy of the example, in a home of its own; nothing is left behind but the pictures.
"""

import os
import re
import shutil
import subprocess
import sys

from display import run, wait_for
from editor import Editor, read

ACTIVITY = "Communications Activity Screen"
LEAST_LOG = 20000  # bytes of the log of the control: some seconds of a send
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


def send(editor):
    """A longer program to a simulated control on COM1, up to where a part of it has arrived."""
    log = os.path.join(editor.display.scratch, "line.log")
    port = editor.display.environment["HEXLANE_COM1"]
    editor.display.start([editor.simulator, "--receive", os.path.join(editor.display.scratch, "loaded.nc"),
                          "--link", port, "--log", log], stdout=subprocess.DEVNULL)
    wait_for("the port of the control", lambda: os.path.exists(port))
    editor.open(ACTIVITY, "alt+d", "a")
    editor.open("Open File to Send/Receive", "alt+s")
    editor.display.type(shutil.copy(os.path.join(EXAMPLES, "bowl-finish.nc"), editor.display.scratch))
    editor.open("Send Properties", "Return")
    editor.display.key("alt+n")
    editor.open(ACTIVITY, "Return")
    wait_for("bytes at the control", lambda: len(read(log) or b"") > LEAST_LOG)


def stop_sending(editor):
    editor.open("File Conflict", "alt+t")
    editor.open("Communications", "y")
    editor.open(ACTIVITY, "Return")
    editor.close("Escape")


def show_manual(editor):
    editor.open("Hexlane help", "alt+h", "c")


def save(editor):
    editor.display.key("ctrl+s")
    wait_for("the saved file", lambda: read(editor.file) != editor.original)
    editor.saved = read(editor.file)


def compare(editor):
    """With a copy that has a row changed, one put in and one taken out, up to the changed one."""
    rows = editor.saved.splitlines(keepends=True)
    rows[2] = rows[2].rstrip() + b" (OLD)\r\n"
    rows.insert(5, b"M0\r\n")
    del rows[9]
    editor.open_comparison(rows)
    editor.open("Compare Results", "Return")
    editor.display.key("Return")


def print_page(editor):
    """Into a PDF file, since the tour takes no printer. Gives the picture of its first page."""
    pdf = os.path.join(editor.display.scratch, "printed.pdf")
    editor.open("Print", "alt+f", "p")
    editor.open("Print to PDF File", "Return")
    editor.display.type(pdf)
    editor.close("Return")
    wait_for("the PDF file", lambda: os.path.exists(pdf))
    subprocess.run(["pdftoppm", "-png", "-r", "80", "-singlefile", pdf, pdf], check=True)
    return pdf + ".png"


# Name, what the picture shows, what is done before it, and the keys or steps that lead back to the text behind it.
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
    ("sending", "a program on its way to a simulated control", send, stop_sending),
    ("help", "the manual", show_manual, ["Escape"]),
    ("saved", "the program saved", save, []),
    ("compare", "the program beside another one", compare, ["Escape"]),
    ("printed", "the first page of the program in print", print_page, []),
]
WORD = re.compile(rb"G\d+")  # what the tour looks for
LEAST_ROWS = 16  # of a program that a block can be marked in


def stops_for(program):
    """All stops, but those for which a program of the person's own has too little in it."""
    left_out = set()
    if program.count(b"\n") < LEAST_ROWS:
        left_out |= {"block", "match", "compare"}
    if not WORD.search(program):
        left_out.add("match")
    return [stop for stop in STOPS if stop[0] not in left_out]


def take_tour(editor, out):
    for number, (name, what, act, back) in enumerate(stops_for(editor.original), 1):
        made = act(editor)
        picture = os.path.join(out, f"{number:02}-{name}.png")
        if made:
            shutil.move(made, picture)
        else:
            editor.display.wait_still(f"the screen of '{name}'")
            editor.display.picture(picture)
        print(f"{picture}: {what}", flush=True)
        if callable(back):
            back(editor)
        elif back:
            editor.close(*back)
    editor.display.key("alt+F4")
    editor.process.wait(60)


def play(display, arguments):
    display.environment["CUPS_SERVER"] = os.path.join(display.scratch, "no-print-service")
    display.environment["HEXLANE_COM1"] = os.path.join(display.scratch, "mill")
    editor = Editor(display, arguments.program, EXAMPLES, os.path.abspath(arguments.example))
    editor.simulator = arguments.simulator
    take_tour(editor, arguments.out)


if __name__ == "__main__":
    sys.exit(run("program simulator example out", play, size="1024x768"))
