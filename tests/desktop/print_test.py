#!/usr/bin/env python3
"""Print in the real window through a print service: what arrives there, by its text and pages."""

import os
import shutil
import subprocess
import sys

from display import check, run, wait_for
from editor import TITLE, Editor
from print_service import QUEUE, PrintService

SKIPPED = 77


def skip(reason):
    print(f"print_test: skipped, {reason}")
    return SKIPPED


def words_of(text):
    return " ".join(text.split())


def check_job(editor, service):
    editor.open("Print", "alt+f", "p")
    editor.close("Return")

    def job_text():
        if not os.path.exists(service.job):
            return ""
        return subprocess.run(["pdftotext", "-layout", service.job, "-"], stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, check=False).stdout.decode()
    text = wait_for(f"a job on the queue {QUEUE}", job_text)
    pages = text.split("\f")[:-1]
    rows = editor.original.decode().split("\r\n")
    check(f"{len(pages)} pages", len(pages) == 1 + (len(rows) - 49) // 51 + ((len(rows) - 49) % 51 > 0))
    check("the head and the rows of the first page", words_of(pages[0]) == words_of(editor.file + " " + " ".join(rows[:49])))
    check("the rows of the second page", words_of(pages[1]) == words_of(" ".join(rows[49:100])))


def play(display, arguments):
    if shutil.which("pdftotext") is None:
        return skip("pdftotext is not installed")
    try:
        service = PrintService(display)
    except RuntimeError as reason:
        return skip(str(reason))
    display.environment["CUPS_SERVER"] = service.socket
    check_job(Editor(display, arguments.program, arguments.examples), service)
    return 0


if __name__ == "__main__":
    sys.exit(run("program examples pictures", play))
