#!/usr/bin/env python3
"""Compare and Print in the real window, by keyboard and mouse, down to the text of the PDF files."""

import os
import shutil
import subprocess
import sys

from display import check, run, wait_for
from editor import TITLE, Editor, read

RESULTS = "Compare Results"
YELLOW_ON_RED = b"\xff\x00\x00"  # the paper of the mark in a detail pane
PAGE_ROWS = 49  # rows of the document on the first page


def text_of(pdf):
    return subprocess.run(["pdftotext", "-layout", "-enc", "UTF-8", pdf, "-"], stdout=subprocess.PIPE, check=True).stdout.decode()


def answer_pdf_dialog(editor, name):
    """The file dialog that comes up where there is no printer."""
    editor.display.wait_active("Print to PDF File")
    editor.display.type(os.path.join(editor.display.scratch, name))
    editor.display.key("Return")
    editor.display.wait_active(TITLE)
    pdf = os.path.join(editor.display.scratch, name + ".pdf")
    wait_for("the PDF file", lambda: os.path.exists(pdf))
    return pdf


def shows_mark(editor):
    window = editor.display.window_of(RESULTS)
    return any(YELLOW_ON_RED * 3 in row for row in editor.display.window_pixels(window))


def check_compare(editor, keep_picture):
    """A row changed in its third word, one put in, and one taken out. Gives the other file."""
    rows = editor.original.splitlines(keepends=True)
    rows[13] = rows[13].replace(b"F", b"F9", 1)
    rows.insert(30, b"M0 (PUT IN)\r\n")
    del rows[61]
    changed = editor.open_comparison(rows)
    keep_picture("compare-files")
    editor.open(RESULTS, "Return")
    check("an equal first row has no mark", not shows_mark(editor))
    editor.display.key("Return")  # SEARCH FWD
    wait_for("the mark of a changed row", lambda: shows_mark(editor))
    keep_picture("compare-results")
    editor.display.key("End", "Prior", "Home", "Down")
    wait_for("an equal row", lambda: not shows_mark(editor))
    return changed


def check_identical(editor):
    editor.open_comparison([editor.original])
    editor.open("Compare", "Return")
    editor.close("Return")


def check_report(editor, changed):
    """Differences alone, by Tab and Space."""
    editor.display.key("Tab", "Tab", "Tab")
    editor.open("Print Compare Results", "space")
    editor.display.key("Down", "Return")
    pdf = answer_pdf_dialog(editor, "report")
    text = text_of(pdf)
    for wanted in ("<MOD>", "DEL-> M0 (PUT IN)", "<-INS", editor.file[:43], changed[:30]):
        check(f"the report has {wanted!r}:\n{text}", wanted in text)
    check("the report has differences alone", "<===>" not in text)


def check_print(editor):
    editor.display.key("ctrl+Home")
    editor.open("Print", "alt+f", "p")
    editor.display.key("Return")
    pages = text_of(answer_pdf_dialog(editor, "document")).split("\f")
    rows = editor.original.decode().split("\r\n")
    printed = [" ".join(line.split()) for line in pages[0].splitlines() if line.strip()]
    wanted = [" ".join(row.split()) for row in rows[:PAGE_ROWS] if row.strip()]
    check(f"the first page: {printed}", printed == [editor.file] + wanted)
    check("the last page ends with the last row", pages[-2].strip().endswith(rows[-2].strip()))


def check_cancel(editor):
    editor.open("Print", "alt+f", "p")
    editor.open("Print to PDF File", "Return")
    editor.close("Escape")
    check("nothing was written", not any(name.endswith(".pdf") and name not in ("report.pdf", "document.pdf")
                                         for name in os.listdir(editor.display.scratch)))


def play(display, arguments):
    if shutil.which("pdftotext") is None:
        print("compare_test: pdftotext is not installed; skipped")
        return 77
    # No print service: the system's own would answer with whatever printers there are.
    display.environment["CUPS_SERVER"] = os.path.join(display.scratch, "no-cups")

    def keep_picture(name):
        display.picture(os.path.join(arguments.pictures, name + ".png"))
    editor = Editor(display, arguments.program, arguments.examples)
    check_identical(editor)
    check_report(editor, check_compare(editor, keep_picture))
    check_print(editor)
    check_cancel(editor)
    return 0


if __name__ == "__main__":
    sys.exit(run("program examples pictures", play))
