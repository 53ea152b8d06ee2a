#!/usr/bin/env python3
"""What ports cost the real window: processor time, and how soon a key is on the screen, on a virtual display.

    bench/window.py [--programs build/release/bin] [--seconds 30] [--keys 200]

Three states: no port open; both ports open and nothing on the lines; one port sending and one receiving at 19200 baud.
The editor is on show in each. Processor time is that of the program's process, of one core. A key's time runs from the
event to the change of the status line's pixels, with what the display server and the looking take; keys come at
moments of chance, so that the activity screen's timer and the transfers' steps fall on some of them.
"""

import argparse
import ctypes
import os
import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import threading
import time
import tty

TOP = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TOP / 'tests' / 'desktop'))
from display import Display, Failure, wait_for  # noqa: E402
from editor import TITLE, read  # noqa: E402

ACTIVITY = 'Communications Activity Screen'
BAUD = 19200
BYTES_A_SECOND = BAUD / 11  # 8 data bits, 2 stop bits, as the machines below have them
PROGRAM_SIZE = 600000  # bytes: five minutes and more
STRIP = (260, 26)  # pixels of the lower right corner, where row and column stand and no caret blinks
KEY_LIMIT = 5.0  # seconds
LETTER, BACKSPACE = 0x78, 0xFF08  # keysyms: typed and taken back in turn


class Pixels:
    """A part of the screen, and keys, through the X libraries: fast enough to time a key."""

    class Image(ctypes.Structure):
        _fields_ = [(name, ctypes.c_int) for name in ('width', 'height', 'xoffset', 'format')]
        _fields_ += [('data', ctypes.c_void_p)]
        _fields_ += [(name, ctypes.c_int) for name in ('byte_order', 'unit', 'bit_order', 'pad', 'depth', 'row_size')]

    ZPIXMAP = 2
    ALL_PLANES = ctypes.c_ulong(-1)

    def __init__(self, name, left, top, width, height):
        self.x11, self.xtest = ctypes.CDLL('libX11.so.6'), ctypes.CDLL('libXtst.so.6')
        for function, result in ((self.x11.XOpenDisplay, ctypes.c_void_p), (self.x11.XDefaultRootWindow, ctypes.c_ulong),
                                 (self.x11.XGetImage, ctypes.POINTER(self.Image)),
                                 (self.x11.XGetSubImage, ctypes.c_void_p)):
            function.restype = result
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(name.encode()))
        if not self.display:
            raise Failure(f'no display {name}')
        self.root = ctypes.c_ulong(self.x11.XDefaultRootWindow(self.display))
        self.place = (left, top, width, height)
        self.image = self.x11.XGetImage(self.display, self.root, *self.place, self.ALL_PLANES, self.ZPIXMAP)
        if not self.image:
            raise Failure(f'no pixels at {self.place}')

    def look(self):
        self.x11.XGetSubImage(self.display, self.root, *self.place, self.ALL_PLANES, self.ZPIXMAP, self.image, 0, 0)
        image = self.image.contents
        return ctypes.string_at(image.data, image.row_size * image.height)

    def press(self, keysym):
        code = self.x11.XKeysymToKeycode(self.display, ctypes.c_ulong(keysym))
        for down in (1, 0):
            self.xtest.XTestFakeKeyEvent(self.display, code, down, ctypes.c_ulong(0))
        self.x11.XFlush(self.display)

    def close(self):
        self.x11.XCloseDisplay(self.display)


class Machine:
    """The far end of a line: takes what comes, and sends at the line's speed once told to."""

    def __init__(self, link):
        self.master, line = os.openpty()
        tty.setraw(line)
        self.line = line  # stays open, so that the pty outlives the program's closing
        os.symlink(os.ttyname(line), link)
        self.taken = 0
        self.ended = threading.Event()
        threading.Thread(target=self.take, daemon=True).start()

    def take(self):
        while True:
            self.taken += len(os.read(self.master, 4096))

    def send(self, data):
        threading.Thread(target=self.send_slowly, args=(data,), daemon=True).start()

    def send_slowly(self, data):
        begin, sent = time.monotonic(), 0
        while sent < len(data) and not self.ended.wait(0.005):
            due = min(int((time.monotonic() - begin) * BYTES_A_SECOND), len(data))
            sent += os.write(self.master, data[sent:due]) if due > sent else 0


class Window:
    """The editor with two machines on its ports."""

    def __init__(self, display, programs, number):
        self.display = display
        self.folder = os.path.join(display.scratch, f'run{number}')
        os.makedirs(os.path.join(self.folder, 'home', 'ZOLT'))
        ports = [os.path.join(self.folder, f'port{slot}') for slot in (1, 2)]
        self.environment = {'HEXLANE_HOME': os.path.join(self.folder, 'home'), 'HEXLANE_COM1': ports[0],
                            'HEXLANE_COM2': ports[1]}
        self.machines = [Machine(port) for port in ports]
        for machine, port in ((1, 'COM1'), (2, 'COM2')):
            subprocess.run([str(programs / 'hexlane-cli'), 'machines', 'set', str(machine), f'port={port}',
                            f'baud={BAUD}', 'data_bits=8', 'stop_bits=2'], check=True,
                           env=dict(os.environ, **self.environment), stdout=subprocess.DEVNULL)
        file = shutil.copy(TOP / 'examples' / 'pocket-plate.nc', self.folder)
        self.process = display.start([str(programs / 'hexlane'), file], env=self.environment)
        display.wait_active(TITLE)
        self.window = display.window_of(TITLE)

    def open(self, title, *keys):
        self.display.key(*keys)
        self.display.wait_active(title)

    def name_file(self, title, path, next_title):
        self.display.wait_active(title)
        self.display.type(path)
        self.open(next_title, 'Return')

    def choose_second_machine(self):
        """For the lower row, in its list."""
        window = self.display.output('xdotool', 'getactivewindow').strip()
        size = self.numbers('getwindowgeometry', '--shell', window)
        self.display.hand('mousemove', '--window', window, int(size['WIDTH'] * 0.07), int(size['HEIGHT'] * 0.62),
                          'click', 1)
        self.display.wait_still('the list of machines', still=2)
        self.display.key('Home', 'Down', 'Return')
        self.display.wait_still('the machine of the lower row', still=2)

    def receive(self, key, name):
        path = os.path.join(self.folder, name)
        self.display.key(key)
        self.name_file('Select File to Receive', path, ACTIVITY)
        wait_for('the file of the receive', lambda: os.path.exists(path))
        return path

    def send(self, path):
        self.display.key('alt+s')
        self.name_file('Open File to Send/Receive', path, 'Send Properties')
        self.display.key('alt+n')
        self.open(ACTIVITY, 'Return')
        wait_for('bytes at the machine', lambda: self.machines[0].taken > 0)

    def numbers(self, *command):
        words = self.display.output('xdotool', *command).split()
        return {name: int(value) for name, value in (word.split('=') for word in words)}

    def corner(self):
        """The strip's place on the screen: from where the pointer is when it stands in the window's first pixel."""
        size = self.numbers('getwindowgeometry', '--shell', self.window)
        self.display.hand('mousemove', '--window', self.window, 0, 0)
        first = self.numbers('getmouselocation', '--shell')
        return first['X'] + size['WIDTH'] - STRIP[0], first['Y'] + size['HEIGHT'] - STRIP[1]

    # ---- Measuring -------------------------------------------------------------------------------------

    def processor_seconds(self):
        fields = pathlib.Path(f'/proc/{self.process.pid}/stat').read_text().rpartition(')')[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf('SC_CLK_TCK')

    def measure_processor(self, seconds):
        """Per cent of one core over so many seconds in which nobody touches the window."""
        before, begin = self.processor_seconds(), time.monotonic()
        time.sleep(seconds)  # the thing that is measured
        return 100 * (self.processor_seconds() - before) / (time.monotonic() - begin)

    def measure_keys(self, count):
        """Milliseconds of each key."""
        pixels = Pixels(self.display.environment['DISPLAY'], *self.corner(), *STRIP)
        chance, times = random.Random(1), []
        for number in range(count):
            time.sleep(chance.uniform(0.02, 0.12))  # the moment of chance
            before = pixels.look()
            begin = time.perf_counter()
            pixels.press(BACKSPACE if number % 2 else LETTER)
            while pixels.look() == before:
                if time.perf_counter() - begin > KEY_LIMIT:
                    raise Failure(f'key {number + 1} did not change the status line')
            times.append(1000 * (time.perf_counter() - begin))
        pixels.close()
        return times

    def end(self):
        for machine in self.machines:
            machine.ended.set()
        self.process.kill()
        self.process.wait()


# ---- The states ----------------------------------------------------------------------------------------

def no_port(_):
    pass


def two_idle_ports(window):
    window.open(ACTIVITY, 'alt+d', 'a')
    window.receive('alt+r', 'upper.nc')
    window.choose_second_machine()
    window.receive('alt+c', 'lower.nc')
    window.open(TITLE, 'Escape')


def two_transfers(window):
    program = b''.join(b'N%d G1 X%d.5 Y%d.25\r\n' % (row, row % 500, row % 300) for row in range(PROGRAM_SIZE // 20))
    path = os.path.join(window.folder, 'sent.nc')
    with open(path, 'wb') as file:
        file.write(program)
    window.open(ACTIVITY, 'alt+d', 'a')
    window.choose_second_machine()
    received = window.receive('alt+c', 'received.nc')
    window.send(path)
    window.machines[1].send(program)
    wait_for('received bytes', lambda: read(received))
    window.open(TITLE, 'Escape')


STATES = (('no port open', no_port), ('two idle open ports', two_idle_ports),
          (f'two transfers at {BAUD}', two_transfers))


def measure(display, options, number, what, bring_about):
    window = Window(display, options.programs, number)
    try:
        bring_about(window)
        share = window.measure_processor(options.seconds)
        taken = [machine.taken for machine in window.machines]
        times = sorted(window.measure_keys(options.keys))
        moved = window.machines[0].taken - taken[0]
        if (bring_about is two_transfers) != (moved > 0):
            raise Failure(f'{what}: {moved} bytes went out while keys were timed')
    finally:
        window.end()
    print(f'{what:<28} {share:>6.2f} %   {statistics.median(times):>6.2f} / {times[int(len(times) * 0.95)]:>6.2f} / '
          f'{times[-1]:>6.2f} ms', flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('--programs', type=pathlib.Path, default=TOP / 'build' / 'release' / 'bin')
    parser.add_argument('--seconds', type=float, default=30, help='for the processor time of each state')
    parser.add_argument('--keys', type=int, default=200, help='in each state')
    options = parser.parse_args()
    for program in ('hexlane', 'hexlane-cli'):
        if not os.access(options.programs / program, os.X_OK):
            sys.exit(f'{options.programs / program} is not there: build the preset release first')
    print(f'{"state":<28} processor   key to screen: median / 95 % / worst of {options.keys}')
    try:
        with Display() as display:
            for number, (what, bring_about) in enumerate(STATES):
                measure(display, options, number, what, bring_about)
    except Failure as failure:
        sys.exit(f'window.py: {failure}')


if __name__ == '__main__':
    main()
