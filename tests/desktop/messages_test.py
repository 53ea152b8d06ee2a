#!/usr/bin/env python3
"""Plays a person on the message probe: what reaches a window procedure from real keys, mouse, menus and boxes."""

import os
import sys

from display import Failure, check, run, wait_for

SB_LINEUP, SB_LINEDOWN, SB_PAGEUP, SB_PAGEDOWN, SB_THUMBPOSITION = range(5)
FIRST_COLS = 100  # cells across in a new window

# Keys of a US keyboard: what is pressed, and the lines that come of it.
US_KEYS = [
    ("a", ["down 65", "char 97", "up 65"]),
    ("7", ["down 55", "char 55", "up 55"]),
    ("Return", ["down 13", "char 13", "up 13"]),
    ("KP_Enter", ["down 13", "char 13", "up 13"]),
    ("Tab", ["down 9", "char 9", "up 9"]),
    ("Escape", ["down 27", "char 27", "up 27"]),
    ("Left", ["down 37", "up 37"]),
    ("KP_Home", ["down 36", "up 36"]),
    ("KP_Add", ["down 107", "char 43", "up 107"]),
    ("F9", ["down 120", "up 120"]),
    ("BackSpace", ["down 8", "char 8", "up 8"]),
    ("Delete", ["command 202", "up 46"]),  # an accelerator takes the key; letting go is told
]

# With modifiers the order in which they are let go is the hand's; only what is pressed is compared.
US_CHORDS = [
    ("shift+a", ["down 16 shift", "down 65 shift", "char 65"]),
    ("shift+9", ["down 16 shift", "down 57 shift", "char 40"]),
    ("shift+Left", ["down 16 shift", "down 37 shift"]),
    ("shift+Delete", ["down 16 shift", "down 46 shift"]),  # accelerators match modifiers exactly
    ("shift+Tab", ["down 16 shift", "down 9 shift", "char 9"]),
    ("ctrl+b", ["down 17 ctrl", "down 66 ctrl", "char 2"]),
    ("ctrl+Return", ["down 17 ctrl", "down 13 ctrl", "char 10"]),
    ("ctrl+BackSpace", ["down 17 ctrl", "down 8 ctrl", "char 127"]),
    ("ctrl+Tab", ["down 17 ctrl", "down 9 ctrl"]),
    ("ctrl+o", ["down 17 ctrl", "command 201"]),
    ("ctrl+g", ["down 17 ctrl"]),  # a grayed entry takes its key
    ("alt+q", []),
]

# Other keyboards: what they type counts, not where; text that the table has not arrives bare. A key that the
# keyboard lacks would be lent to it for a moment, and be gone when a slow program looks it up.
OTHER_KEYS = [
    ("de", ["key", "y"], ["down 89", "char 121"]),
    ("de", ["key", "shift+7"], ["down 16 shift", "down 191 shift", "char 47"]),
    ("de", ["keydown", "ISO_Level3_Shift", "key", "q", "keyup", "ISO_Level3_Shift"], ["down 50", "char 64"]),
    ("de", ["key", "odiaeresis"], ["char 246"]),
    ("de", ["key", "dead_circumflex", "key", "e"], ["char 234"]),
    ("ru", ["key", "Cyrillic_ya"], ["char 129"]),  # not in the table: a code that is refused
]

# What a menu brings besides its command: hints; and where the computer is slow, a keyboard that goes for a moment
# when the menu does.
OF_MENUS = ["select", "focus"]


class Probe:
    def __init__(self, display, program, scale="1", **environment):
        self.display = display
        self.log = os.path.join(display.scratch, f"log-{scale}")
        self.flag = os.path.join(display.scratch, "end-of-long-run")
        with open(self.log, "wb") as log:
            self.process = display.start([program, self.flag], stdout=log,
                                         env={"QT_SCALE_FACTOR": scale, **environment})
        self.seen = 0
        display.wait_active("Message probe")

    def lines(self):
        with open(self.log, encoding="utf-8") as log:
            return log.read().splitlines()

    def expect(self, what, wanted, leave_out=()):
        """Waits for exactly these lines since the last call; lines that begin with one of `leave_out` don't count.

        Gives all lines, those too.
        """
        self.wait_for_lines(what, wanted, leave_out)
        self.display.key("F12")  # when this key has come, everything before it has
        wait_for("the key behind them", lambda: self.lines()[self.seen:][-2:] == ["down 123", "up 123"])
        lines = self.lines()[self.seen:-2]
        self.wait_for_lines(what, wanted, leave_out, behind=2)
        self.seen += len(lines) + 2
        return lines

    def wait_for_lines(self, what, wanted, leave_out, behind=0):
        def new_lines():
            lines = self.lines()[self.seen:]
            return [line for line in lines[:len(lines) - behind] if not line.startswith(tuple(leave_out))]
        try:
            wait_for("these lines", lambda: new_lines() == wanted)
        except Failure as failure:
            raise Failure(f"{what}: {failure}\n  wanted {wanted}\n  got    {self.lines()[self.seen:]}") from None

    def expect_modal(self, what, wanted):
        """The same of a command that shows something modal: the program has no keyboard while that is up.

        It has it back in front of the last line.
        """
        lines = self.expect(what, wanted, OF_MENUS)
        check(f"{what}: the keyboard's way in {lines}", "focus lost" in lines[:-2] and lines[-2] == "focus gained")

    def expect_under_box(self, what, wanted, leave_out=("focus",)):
        """The same where no key can be pressed behind it."""
        self.wait_for_lines(what, wanted, leave_out)
        self.seen = len(self.lines())


def check_start(probe):
    wanted = ["create", "size", "paint", "focus gained"]
    wait_for("the messages of the start", lambda: probe.lines()[:4] == wanted)
    probe.seen = 4


def check_keys(probe, display):
    for key, wanted in US_KEYS:
        display.key(key)
        probe.expect(f"key {key}", wanted)
    for chord, wanted in US_CHORDS:
        display.key(chord)
        probe.expect(f"key {chord}", wanted, leave_out=["up "])


def check_other_keyboards(probe, display):
    for layout, words, wanted in OTHER_KEYS:
        display.output("setxkbmap", layout)
        display.hand(*words)
        probe.expect(" ".join(words), wanted, leave_out=["up "])
    display.output("setxkbmap", "us")


def find_mark(display, color=b"\xff\x00\x00"):
    """The cell of that colour: left, top, width and height in pixels."""
    def search():
        rows, width = display.pixels()
        for y, row in enumerate(rows):
            left = next((x for x in range(width) if row[3 * x:3 * x + 3] == color), None) if color in row else None
            if left is not None:
                right = next(x for x in range(left, width) if row[3 * x:3 * x + 3] != color)
                bottom = next(i for i in range(y, len(rows)) if rows[i][3 * left:3 * left + 3] != color)
                return left, y, right - left, bottom - y
        return None
    return wait_for("the coloured cell", search)


def check_mouse(probe, display):
    left, top, width, height = find_mark(display)
    middle = (left + 5 * width + width // 2, top + 3 * height + height // 2)
    display.hand("mousemove", *middle, "click", 1, "click", 1)
    probe.expect("two clicks", ["press 5,3 flags 1", "release"] * 2)
    display.hand("mousemove", *middle, "mousedown", 1, "mousemove", 5, 5, "mouseup", 1)
    probe.expect("a drag to the outside", ["press 5,3 flags 1", "drag", "release outside"])
    display.hand("mousemove", *middle, "click", 5)
    probe.expect("the wheel down", [f"scroll {SB_LINEDOWN} 0"] * 3)
    display.hand("click", 4)
    probe.expect("the wheel up", [f"scroll {SB_LINEUP} 0"] * 3)


def check_scroll_bar(probe, display):
    left, top, width, _ = find_mark(display)
    bar = left + FIRST_COLS * width + 6
    display.hand("mousemove", bar, top + 300, "click", 1)
    probe.expect("a click below the thumb", [f"scroll {SB_PAGEDOWN} 0"])
    display.hand("mousemove", bar, top + 24, "mousedown", 1, "mousemove", bar, top + 200)
    probe.expect("the thumb on its way", [])
    display.hand("mousemove", bar, top + 300, "mouseup", 1)
    thumb = wait_for("the thumb let go", lambda: probe.lines()[probe.seen:])
    check(f"the thumb's place in {thumb}", thumb[0].split()[:2] == ["scroll", str(SB_THUMBPOSITION)] and
          30 < int(thumb[0].split()[2]) < 70)
    probe.expect("the thumb", thumb)


def check_menu(probe, display):
    display.key("alt+a")
    probe.expect_under_box("the menu", ["select 1", f"select {101}"])
    display.key("Down", "Down", "Down", "Down")
    probe.expect_under_box("down the menu", ["select 102", "select 103", "select 104", "select 105"])
    display.key("Escape")
    probe.expect_under_box("the closed menu", ["select 0"])
    display.key("Escape")
    probe.expect("nothing more", [], ["focus"])
    display.key("F10")
    probe.expect_under_box("F10", ["select 1"])
    display.key("Escape", "Escape")
    probe.expect("out of the menu", ["select 0"], ["focus"])


def check_held(probe, display):
    """What takes the keyboard takes the releases too: they are told before."""
    left, top, width, height = find_mark(display)
    display.hand("mousemove", left + width // 2, top + height // 2, "mousedown", 1)
    probe.expect_under_box("the button held", ["press 0,0 flags 1"])
    display.key("F10")
    probe.expect_under_box("a menu over it", ["select 1", "release outside"])
    display.hand("mouseup", 1, "key", "Escape", "key", "Escape")
    probe.expect("the menu gone", ["select 0"], ["focus"])
    display.hand("keydown", "shift")
    probe.expect_under_box("Shift held", ["down 16 shift"])
    display.hand("search", "--onlyvisible", "--name", "^Message probe$", "windowminimize", "keyup", "shift")
    probe.expect_under_box("the minimised window", ["up 16", "focus lost"], leave_out=())
    display.hand("search", "--name", "^Message probe$", "windowactivate")
    probe.expect("the window back", ["focus gained"])


def check_box(probe, display):
    for key, number in (("Return", 0), ("n", 1), ("Escape", 2)):
        display.key("alt+a", "b")
        display.wait_active("Question")
        display.key(key)
        display.wait_active("Message probe")
        probe.expect_modal(f"the box and {key}", ["command 101", f"pressed {number}"])


def check_view(probe, display):
    display.key("alt+a", "v")
    display.wait_active("Probe view")
    display.hand("type", "x9999")
    probe.expect_under_box("typing in a field", ["select 1", "select 101", "select 107", "select 0", "command 107",
                                                 "view begins"] + ["view command 12"] * 3)
    display.key("Tab")
    display.wait_active("Bad number")
    display.key("Return")
    display.wait_active("Probe view")
    display.type("42")
    display.key("alt+m")
    probe.expect_under_box("a good number", ["view command 12"] * 2 + ["view command 13"])
    left, top, width, height = find_mark(display, b"\x00\x00\xff")
    display.hand("mousemove", left + 3 * width + 2, top + 2 * height + 2, "click", 1, "click", 5)
    display.key("Down")
    probe.expect_under_box("the pane", ["pane 14 press 3,2"] + [f"pane 14 scroll {SB_LINEDOWN}"] * 3 + ["pane 14 down 40"])
    display.key("Return")
    display.wait_active("Message probe")
    probe.expect("the view", ["view command 15", "number 42", "focus gained", "view gave 5"])
    display.key("alt+a", "v")
    display.wait_active("Probe view")
    display.key("Escape")
    display.wait_active("Message probe")
    probe.expect_modal("the cancelled view", ["command 107", "view begins", "view command 16", "view gave 0"])


def check_timer_and_worker(probe, display):
    display.key("alt+a", "t")
    display.wait_active("Tick")
    wait_for("ticks under the box", lambda: probe.lines()[-1] == "tick 5")
    display.key("Escape")
    probe.expect_modal("the timer", ["command 102", "tick 1", "tick 2", "tick 3", "tick 4", "tick 5",
                                     "box of the timer closed"])
    display.key("alt+a", "w")
    probe.expect("the worker", ["command 103", "worker sent 7", "worker posted 10", "worker posted 11",
                                "worker posted 12"], OF_MENUS)


def check_long_run(probe, display, pictures):
    left, top, _, _ = find_mark(display)
    before, _ = display.pixels()
    display.key("alt+a", "l")
    wait_for("the long run", lambda: probe.lines()[-1] == "long run begins")
    strip = slice(3 * left, 3 * (left + 300))

    def drawn():
        rows, _ = display.pixels()
        return any(old[strip] != new[strip] for old, new in zip(before[top + 500:], rows[top + 500:]))
    wait_for("the status line during the long run", drawn)
    display.picture(os.path.join(pictures, "long-run.png"))
    open(probe.flag, "wb").close()
    probe.expect("the long run", ["command 104", "long run begins", "long run ends"], OF_MENUS)


def check_end(probe, display):
    display.key("alt+h", "l")
    code = probe.process.wait(60)
    check(f"exit code {code}", code == 3)
    check("the window was asked to close", "close" in probe.lines()[probe.seen:])


def check_sharpness(display, program, scale, pictures):
    """Every cell has the same whole number of pixels, and the same letter looks the same in each of them."""
    probe = Probe(display, program, scale)
    left, top, width, height = find_mark(display)

    def cells():
        rows, _ = display.pixels()
        return {b"".join(rows[y][3 * (left + n * width):3 * (left + (n + 1) * width)]
                         for y in range(top + height, top + 2 * height)) for n in range(20)}
    wait_for(f"letters that look the same at scale {scale}", lambda: len(cells()) == 1)
    rows, _ = display.pixels()
    check(f"the red cell has a smeared edge at scale {scale}",
          rows[top][3 * (left + width):3 * (left + width + 1)] == b"\xff\xff\xff")
    display.picture(os.path.join(pictures, f"scale-{scale}.png"))
    display.key("alt+h", "l")
    probe.process.wait(60)
    return width, height


# A desktop whose fixed font is none, with another one installed that is, and with none.
PROPORTIONAL = """<fontconfig><include>/etc/fonts/fonts.conf</include><match target="pattern">
<test name="family"><string>monospace</string></test>
<edit name="family" mode="assign" binding="strong"><string>DejaVu Sans</string></edit></match>
<selectfont><rejectfont><pattern><patelt name="spacing"><int>{rejected}</int></patelt></pattern></rejectfont></selectfont>
</fontconfig>"""
SPACINGS = {"a fixed font": 1, "no fixed font": 100}  # what is rejected: a spacing that no font has, or the fixed one


def check_proportional_font(display, program, what, rejected, pictures):
    """Each letter stays in its cell: what stands beside it hides nothing of it."""
    fonts = os.path.join(display.scratch, "fonts.conf")
    with open(fonts, "w", encoding="utf-8") as file:
        file.write(PROPORTIONAL.format(rejected=rejected))
    probe = Probe(display, program, FONTCONFIG_FILE=fonts)
    left, top, width, height = find_mark(display)

    def is_blank(col):
        rows, _ = display.pixels()
        cell = [row[3 * (left + col * width):3 * (left + (col + 1) * width)] for row in rows[top + height:top + 2 * height]]
        return all(row == b"\xff" * len(row) for row in cell)
    wait_for("the letters", lambda: not is_blank(19))
    display.picture(os.path.join(pictures, f"proportional-{rejected}.png"))
    check(f"with {what} the last letter reaches into the next cell", is_blank(20))
    display.key("alt+h", "l")
    probe.process.wait(60)


def play(display, arguments):
    probe = Probe(display, arguments.probe)
    check_start(probe)
    for check_one in (check_keys, check_other_keyboards, check_mouse, check_scroll_bar, check_menu, check_held, check_box,
                      check_view, check_timer_and_worker):
        check_one(probe, display)
    check_long_run(probe, display, arguments.pictures)
    check_end(probe, display)
    for scale in ("1", "1.25", "2"):
        width, height = check_sharpness(display, arguments.probe, scale, arguments.pictures)
        print(f"scale {scale}: a cell is {width} by {height} pixels")
    for what, rejected in SPACINGS.items():
        check_proportional_font(display, arguments.probe, what, rejected, arguments.pictures)


if __name__ == "__main__":
    sys.exit(run("probe pictures", play))
