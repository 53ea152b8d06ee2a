#!/usr/bin/env python3
"""Two ports at work in the real program while editing goes on, with a picture of every screen of the communications.

Two controls are played by control-simulator on two ptys: one loads a program that is sent, one punches a program that
is received. A third file is edited and saved meanwhile. At the end the files are compared byte for byte.
"""

import argparse
import os
import shutil
import subprocess
import sys

from display import Display, Failure, check, wait_for

TITLE = "Hexlane NC Editor and DNC Communications"
ACTIVITY = "Communications Activity Screen"
PARAMETERS = "Communications Parameter Settings"
COMPLETE = "Communications"  # title of the box at a transfer's end, and of the view Terminate


def read(path):
    if not os.path.exists(path):
        return b""
    with open(path, "rb") as file:
        return file.read()


class Shop:
    """The program with two simulated controls at COM1 and COM2, and the hands of its operator."""

    def __init__(self, display, options):
        self.display = display
        self.options = options
        self.home = os.path.join(display.scratch, "home")
        os.makedirs(os.path.join(self.home, "ZOLT"))
        shutil.copy(os.path.join(options.examples, "ZOLT.INI"), os.path.join(self.home, "ZOLT"))
        self.sent_file = self.example("bowl-finish.nc")
        self.edited_file = self.example("pocket-plate.nc")
        self.ports = [os.path.join(display.scratch, name) for name in ("mill", "lathe")]
        self.environment = {"HEXLANE_HOME": self.home, "HEXLANE_COM1": self.ports[0], "HEXLANE_COM2": self.ports[1]}
        self.set_machine(1, "name=MILL", "protocol=heidenhain", "baud=19200", "data_bits=8")
        self.set_machine(2, "name=LATHE", "baud=9600", "data_bits=8", "port=COM2")
        self.program = display.start([options.program, self.edited_file], env=self.environment)
        display.wait_active(TITLE)

    def example(self, name):
        return shutil.copy(os.path.join(self.options.examples, name), self.display.scratch)

    def scratch(self, name):
        return os.path.join(self.display.scratch, name)

    def set_machine(self, number, *settings):
        subprocess.run([self.options.cli, "machines", "set", str(number), *settings], check=True,
                       env=dict(os.environ, **self.environment), stdout=subprocess.DEVNULL)

    def control(self, slot, *options):
        """A control on the pty of that slot. Its options as control-simulator takes them."""
        control = self.display.start([self.options.simulator, "--link", self.ports[slot], *options],
                                     stdout=subprocess.DEVNULL)
        wait_for("the pty of the control", lambda: os.path.exists(self.ports[slot]))
        return control

    # ---- Screens ---------------------------------------------------------------------------------------

    def picture(self, name):
        self.display.wait_still(f"the screen of '{name}'", still=2)
        self.display.picture(os.path.join(self.options.pictures, f"dnc-{name}.png"))

    def open(self, title, *keys):
        self.display.key(*keys)
        self.display.wait_active(title)

    def press(self, *keys):
        """Keys for the window on top, one after the other with a look in between."""
        for key in keys:
            self.display.key(key)
            self.display.wait_still(f"the screen behind '{key}'", still=1)

    def answer_file_dialog(self, title, path):
        self.display.wait_active(title)
        self.display.type(path)
        self.display.key("Return")

    def click(self, across, down, button=1):
        """The mouse on the active window, at shares of its width and height."""
        window = self.display.output("xdotool", "getactivewindow").strip()
        sizes = dict(line.split("=") for line in
                     self.display.output("xdotool", "getwindowgeometry", "--shell", window).split())
        self.display.hand("mousemove", "--window", window, int(int(sizes["WIDTH"]) * across),
                          int(int(sizes["HEIGHT"]) * down))
        if button:
            self.display.hand("click", button)


# ---- The run -------------------------------------------------------------------------------------------

def look_at_parameters(shop):
    """Every dialog of the machine sets; Cancel drops what was tried."""
    shop.open(PARAMETERS, "alt+d", "p")
    shop.picture("parameters")
    shop.press("alt+a")                       # EIA: parity, bits and conversion are not free any more
    shop.picture("parameters-eia")
    shop.open("Advanced Settings", "alt+d")
    shop.picture("advanced")
    shop.open("ASCII Chart", "alt+a")
    shop.picture("ascii-chart")
    shop.open("Advanced Settings", "alt+e")
    shop.open(PARAMETERS, "Escape")
    shop.open(TITLE, "Escape")


def choose_a_block(shop):
    """The start point screen, by keyboard and mouse; the send then begins behind the marked rows."""
    display = shop.display
    shop.open("Select Send Start Point", "alt+s")
    shop.press("Down", "Down", "Next")
    shop.open("Search For", "alt+s")
    shop.press("alt+r")
    shop.picture("search-for")
    display.type("40")
    shop.open("Select Send Start Point", "Return")
    shop.click(0.3, 0.35)
    shop.click(0.3, 0.40, button=3)
    shop.click(0.3, 0.55, button=3)
    shop.picture("start-point")
    shop.open("Send Properties", "Return")


def start_both(shop):
    display = shop.display
    shop.open(ACTIVITY, "alt+d", "a")
    shop.picture("activity")
    display.key("alt+s")
    shop.answer_file_dialog("Open File to Send/Receive", shop.sent_file)
    display.wait_active("Send Properties")
    shop.picture("send-properties")
    choose_a_block(shop)
    shop.press("alt+n")
    shop.open(ACTIVITY, "Return")
    shop.press("Tab", "Tab", "Tab")           # from the upper row's Send to the machine of the lower row
    shop.picture("focus")


def main():
    parser = argparse.ArgumentParser()
    for name in ("program", "cli", "simulator", "terminal", "examples", "pictures"):
        parser.add_argument("--" + name, required=True)
    options = parser.parse_args()
    os.makedirs(options.pictures, exist_ok=True)
    with Display() as display:
        try:
            shop = Shop(display, options)
            shop.control(0, "--receive", shop.scratch("loaded.nc"), "--protocol", "heidenhain", "--rate", "19200")
            shop.control(1, "--send", shop.scratch("pocket-plate.nc"), "--rate", "9600")
            for step in (look_at_parameters, start_both):
                step(shop)
                print(f"{step.__name__}: good", flush=True)
        except Failure as failure:
            display.picture(os.path.join(options.pictures, "dnc-failed.png"))
            print(f"desktop_transfers: {failure}", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
