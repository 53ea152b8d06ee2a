#!/usr/bin/env python3
"""Measures the editor beside the tools that a user would reach for, and prints a table of ratios.

    bench/peers/peers.py [--quick] [--program build/release/bin/hexlane-script]

Makes its inputs (always the same bytes) in build/bench-data: 4,000,000 rows of about 40 bytes, 100 MB and 1 MB;
--quick takes a twentieth of the two large ones. The editor is driven by scripts and measured by the milliseconds
that hexlane-script --time tells for each line, so that the start of its process is left out; what it takes to start
a peer is measured with --version and taken off. All files are warm. Peers run with LC_ALL=C.
"""

import argparse
import ctypes
import os
import pathlib
import random
import re
import statistics
import subprocess
import sys
import time

TOP = pathlib.Path(__file__).resolve().parents[2]
DATA = TOP / 'build' / 'bench-data'
SCREEN_ROWS = 26  # rows of text that the default window of 80 by 28 cells shows
REPEATS = 7
C_LOCALE = {**os.environ, 'LC_ALL': 'C'}


# ---- Inputs ------------------------------------------------------------------------------------------


def make_program(path, size=None, rows=None):
    """Writes an NC program of `rows` rows, or of at least `size` bytes. An existing file is taken as it is."""
    if path.exists():
        return path
    source = random.Random(1)
    ends = [f'G1 X{source.uniform(-400, 400):.3f} Y{source.uniform(-400, 400):.3f} Z{source.uniform(-90, 5):.3f}\r\n'
            for _ in range(9973)]
    unfinished = path.with_suffix('.part')
    written = row = 0
    with open(unfinished, 'w', encoding='ascii', newline='') as out:
        while (row < rows) if rows else (written < size):
            written += out.write(''.join(f'N{row + i} {ends[(row + i) % len(ends)]}' for i in range(1000)))
            row += 1000
    unfinished.rename(path)
    return path


def warm(path):
    with open(path, 'rb') as file:
        while file.read(1 << 22):
            pass


# ---- Measuring the editor ----------------------------------------------------------------------------


def run_measured(command, record, errors):
    """Runs a command and gives (exit code, most memory used in kB).

    What the system tells of a process begins with what its parent used before it became that program. So a
    small shell starts it and ends at once, and the orphan comes to us.
    """
    PR_SET_CHILD_SUBREAPER = 36
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    number = DATA / 'pid'
    subprocess.run(['/bin/sh', '-c', '"$@" & echo $! >"$0"', str(number), *command], check=True, stdout=record,
                   stderr=errors)
    _, status, usage = os.wait4(int(number.read_text()), 0)
    return os.waitstatus_to_exitcode(status), usage.ru_maxrss


class Run:
    """One scripted run: the milliseconds of each line that was marked, and the most memory used, in MB."""

    def __init__(self, program, lines):
        """`lines` are script lines, or pairs of a mark and a script line."""
        marked = [line if isinstance(line, tuple) else (None, line) for line in lines]
        script, errors = DATA / 'script', DATA / 'times'
        script.write_text(''.join(line + '\n' for _, line in marked))
        with open(DATA / 'record', 'wb') as record, open(errors, 'wb') as error_file:
            code, memory = run_measured([program, '--time', str(script)], record, error_file)
        text = errors.read_text()
        if code != 0:
            sys.exit(f'{program} ended with {code}:\n{text[-2000:]}')
        times = [float(match) for match in re.findall(r'^ *([\d.]+) ms  line ', text, re.M)]
        if len(times) != len(marked):
            sys.exit(f'{len(times)} times for {len(marked)} lines of the script')
        self.memory = memory / 1024
        self.times = {}
        for (mark, _), milliseconds in zip(marked, times):
            self.times.setdefault(mark, []).append(milliseconds)


def quoted(path):
    return '"' + str(path).replace('\\', '\\\\').replace('"', '\\"') + '"'


def start(path):
    return f'start {quoted(path)}'


# ---- Measuring a peer --------------------------------------------------------------------------------


def elapsed(*commands):
    """Milliseconds that the commands take, one behind the other."""
    begin = time.perf_counter()
    for command in commands:
        subprocess.run(command, check=True, env=C_LOCALE, stdout=subprocess.DEVNULL)
    return 1000 * (time.perf_counter() - begin)


def peer_times(commands):
    """Milliseconds of the commands, several times over, less what it takes to start their programs."""
    starts = [[command[0], '--version'] for command in commands]
    elapsed(*starts, *commands)  # so that the programs themselves are warm
    pairs = [(elapsed(*commands), elapsed(*starts)) for _ in range(REPEATS)]
    least = min(start for _, start in pairs)
    return [max(whole - least, 0.001) for whole, _ in pairs]


# ---- The table ---------------------------------------------------------------------------------------


class Table:
    WIDTHS = (68, 20, 20, 6, 8, 9)

    def __init__(self):
        self.line('what', 'ours: min / median', 'peer: min / median', 'ratio', 'at most', 'memory MB')

    def line(self, *cells):
        print('  '.join(f'{cell:<{width}}' for cell, width in zip(cells, self.WIDTHS)).rstrip(), flush=True)

    @staticmethod
    def shown(times, unit):
        return f'{min(times):.3g} / {statistics.median(times):.3g} {unit}'

    def row(self, what, ours, peers, unit, limit, memory):
        """Two lists of times; the ratio is that of their medians."""
        ratio = statistics.median(ours) / statistics.median(peers)
        self.line(what, self.shown(ours, unit), self.shown(peers, unit), f'{ratio:.2f}', limit, f'{memory:.1f}')

    def value(self, what, times, unit, limit, memory):
        self.line(what, self.shown(times, unit), '', '', limit, f'{memory:.1f}')


# ---- What is measured --------------------------------------------------------------------------------


def size_text(path):
    return f'{path.stat().st_size / 1e6:.0f} MB'


def measure_open(table, program, path):
    """Opened again and again by a running program, as a second start asks for it."""
    warm(path)
    run = Run(program, ['start'] + [('open', f'open-request {quoted(path)}')] * REPEATS)
    table.row(f'open {size_text(path)}, beside wc -l', run.times['open'], peer_times([['wc', '-l', path]]), 'ms',
              '6', run.memory)
    return run.memory


def measure_save(table, program, path):
    """Save is what the user waits for: the new file, flushed, and the load behind it."""
    work, copy = DATA / 'work.nc', DATA / 'copy.nc'
    work.write_bytes(b'')
    subprocess.run(['cp', path, work], check=True)
    warm(work)
    middle = min(path.stat().st_size // 40 // (SCREEN_ROWS - 1), 30000) // 2
    save = [f'scroll thumb {middle}', 'type "X"', ('save', 'key Ctrl+S')]
    run = Run(program, [start(work)] + save * REPEATS)
    peers = peer_times([['cp', path, copy], ['sync', copy]])
    table.row(f'save {size_text(path)}, a row changed, beside cp, sync', run.times['save'], peers, 'ms', '2', run.memory)
    work.unlink()
    copy.unlink()


def measure_paging(table, program, path, pages):
    run = Run(program, [start(path), ('end', 'key Ctrl+End')] + [('page', 'key PageUp')] * pages)
    per_row = [1000 * milliseconds / SCREEN_ROWS for milliseconds in run.times['page']]
    table.value(f'end of {size_text(path)}: jump', run.times['end'], 'ms', '', run.memory)
    table.value(f'end of {size_text(path)}: {pages} pages up, a row shown', per_row, 'us', '20', run.memory)


def measure_typing(table, program, big, small, rows):
    """A character in the last row of the big file beside one in that of the small file."""
    length = 200
    lines = ['key Ctrl+End'] + [('type', f'type "{"X" * length}"'), 'key Enter'] * rows
    runs = [Run(program, [start(path)] + lines) for path in (big, small)]
    ours, peers = ([1000 * milliseconds / length for milliseconds in run.times['type']] for run in runs)
    table.row('a character in the last row, beside 1 MB', ours, peers, 'us', '1.1', runs[0].memory)


EDITS = {
    'a fetch (End)': ['key Home', ('step', 'key End')],
    'a commit (Down from a changed row)': ['type "X"', ('step', 'key Down')],
    'a split (Enter)': ['key Down', 'key Right', 'key Right', ('step', 'key Enter')],
    'a delete (Ctrl+Enter)': ['key Home', ('step', 'key Ctrl+Enter')],
}


def measure_places(table, program, path, count):
    """The same steps about 1,000 rows from the end of the document and from its beginning."""
    pages = 1000 // SCREEN_ROWS
    far = ['key Ctrl+End'] + ['key PageUp'] * pages
    near = ['key Ctrl+Home'] + ['key PageDown'] * pages
    for what, step in EDITS.items():
        runs = [Run(program, [start(path)] + way + step * count) for way in (far, near)]
        ours, peers = ([1000 * milliseconds for milliseconds in run.times['step']] for run in runs)
        table.row(f'{what}: near the end, beside row 1,000', ours, peers, 'us', '2', runs[0].memory)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument('--quick', action='store_true', help='small inputs')
    parser.add_argument('--program', default=str(TOP / 'build' / 'release' / 'bin' / 'hexlane-script'))
    options = parser.parse_args()
    program = options.program
    if not os.access(program, os.X_OK):
        sys.exit(f'{program} is not there: build the preset release first')
    DATA.mkdir(parents=True, exist_ok=True)
    scale, name = (20, 'quick-') if options.quick else (1, '')
    big = make_program(DATA / f'{name}big.nc', rows=4000000 // scale)
    middle = make_program(DATA / f'{name}middle.nc', size=100000000 // scale)
    small = make_program(DATA / 'small.nc', size=1000000)

    table = Table()
    memory = {path: measure_open(table, program, path) for path in (big, middle, small)}
    for path in (big, middle, small):
        measure_save(table, program, path)
    measure_paging(table, program, big, 1000)
    measure_typing(table, program, big, small, 50)
    measure_places(table, program, big, 200)
    print(f'Memory: opening {size_text(big)} takes {memory[big] - memory[small]:.1f} MB more than {size_text(small)} '
          '(at most 4).')


if __name__ == '__main__':
    main()
