"""The editor on a virtual display, shared by the tests and the tour: its home, its text area in cells, its views."""

import os
import shutil

from display import Failure, check, wait_for

TITLE = "Hexlane NC Editor and DNC Communications"
MARKED_CELLS = 10  # columns of a block that is there to be measured
ROW_PIXELS = 300  # that only a block of whole rows has side by side
BLACK = b"\0\0\0"


class Editor:
    """The program on a copy of an example, in a home of its own with the example's colors."""

    def __init__(self, display, program, examples, example="pocket-plate.nc"):
        self.display = display
        self.program = program
        self.home = os.path.join(display.scratch, "home")
        os.makedirs(os.path.join(self.home, "ZOLT"))
        shutil.copy(os.path.join(examples, "ZOLT.INI"), os.path.join(self.home, "ZOLT"))
        self.file = os.path.join(display.scratch, os.path.basename(example))
        shutil.copyfile(os.path.join(examples, example), self.file)
        self.original = read(self.file)
        self.process = self.start(self.file)
        display.wait_active(TITLE)
        self.window = display.window_of(TITLE)

    def start(self, *arguments, **options):
        return self.display.start([self.program, *arguments], env={"HEXLANE_HOME": self.home}, **options)

    def save_and_expect(self, what, path, wanted):
        self.display.key("ctrl+s")
        try:
            wait_for(what, lambda: read(path) == wanted)
        except Failure as failure:
            raise Failure(f"{failure}\n  {first_difference(wanted, read(path))}") from None

    # ---- Views and boxes ---------------------------------------------------------------------------------

    def open(self, title, *keys):
        """Keys that bring up a window of that title, which has the keyboard from here on."""
        self.display.key(*keys)
        self.display.wait_active(title)

    def close(self, *keys):
        """Keys that close the topmost window, up to the editor's own."""
        self.open(TITLE, *keys)

    def open_comparison(self, rows):
        """Compare with a file of these rows, up to its dialog. Gives the file's path."""
        path = os.path.join(self.display.scratch, "changed.nc")
        with open(path, "wb") as file:
            file.write(b"".join(rows))
        self.open("Open file", "F6")
        self.display.type(path)
        self.open("COMPARE FILES", "Return")
        return path

    # ---- The text area, in cells -------------------------------------------------------------------------

    def measure(self):
        """Takes the place and the size of a cell: from a block of the first row, and one of columns in the third."""
        self.display.key("ctrl+Home", "shift+Down")
        self.left, self.top, _, self.cell_height = wait_for("a row to measure", lambda: self.marked(ROW_PIXELS))
        self.close_block()
        self.display.key("ctrl+Home", "Down", "Down", *["shift+Right"] * MARKED_CELLS)
        _, _, width, _ = wait_for("columns to measure", lambda: self.marked(MARKED_CELLS * 5))
        self.cell_width = width // MARKED_CELLS
        self.close_block()

    def close_block(self):
        self.display.key("Escape")
        wait_for("no block", lambda: not self.marked(MARKED_CELLS * 5))

    def marked(self, least):
        """The rectangle of black paper on show, as left, top, width and height in the window; None without one.

        Its first row of pixels has `least` black ones side by side, and more than half are black in each further one.
        """
        rows = self.display.window_pixels(self.window)
        starts = [row.find(BLACK * least) for row in rows]
        top = next((y for y, start in enumerate(starts) if start >= 0), None)
        if top is None:
            return None
        left = (starts[top] + 2) // 3
        right = next((x for x in range(left, len(rows[top]) // 3) if rows[top][3 * x:3 * x + 3] != BLACK),
                     len(rows[top]) // 3)

        def is_black(row):
            return sum(row[3 * x:3 * x + 3] == BLACK for x in range(left, right)) > (right - left) // 2
        bottom = next((y for y in range(top, len(rows)) if not is_black(rows[y])), len(rows))
        return left, top, right - left, bottom - top

    def wait_marked_rows(self, first, count):
        """Waits until whole rows are marked, from the screen row `first` on."""
        wanted = (self.top + first * self.cell_height, count * self.cell_height)
        wait_for(f"{count} rows in a block", lambda: (self.marked(ROW_PIXELS) or (0, 0, 0, 0))[1::2] == wanted)

    def place(self, col, row):
        """The middle of a cell, as the hand of xdotool takes it."""
        return (self.left + col * self.cell_width + self.cell_width // 2,
                self.top + row * self.cell_height + self.cell_height // 2)

    def click(self, col, row):
        self.display.hand("mousemove", "--window", self.window, *self.place(col, row), "click", 1)

    def drag(self, start, end):
        """The left button from one cell to another, over the places between, as a hand does it."""
        (x, y), (to_x, to_y) = self.place(*start), self.place(*end)
        self.display.hand("mousemove", "--window", self.window, x, y, "mousedown", 1)
        for step in range(1, 9):
            self.display.hand("mousemove", "--window", self.window, x + (to_x - x) * step // 8, y + (to_y - y) * step // 8)
        self.display.hand("mouseup", 1)


def read(path):
    """The bytes of a file, None when there is none."""
    if not os.path.exists(path):
        return None
    with open(path, "rb") as file:
        return file.read()


def first_difference(wanted, got):
    if got is None:
        return "there is no such file"
    for number, (want, have) in enumerate(zip(wanted.split(b"\n"), got.split(b"\n")), 1):
        if want != have:
            return f"row {number}: wanted {want!r}, got {have!r}"
    return f"wanted {len(wanted)} bytes, got {len(got)}"
