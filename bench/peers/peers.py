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

import line

TOP = pathlib.Path(__file__).resolve().parents[2]
DATA = TOP / 'build' / 'bench-data'
SCREEN_ROWS = 26  # rows of text that the default window of 80 by 28 cells shows
REPEATS = 7
C_LOCALE = {**os.environ, 'LC_ALL': 'C', 'HEXLANE_HOME': str(DATA / 'home')}
DIFFER = ('grep', 'diff', 'hexlane-cli')  # exit code 1: nothing found, or files that differ


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
        # A line that brings up a dialog takes until that has closed, so it is told behind the lines that answer.
        times = {int(line): float(time) for time, line in re.findall(r'^ *([\d.]+) ms  line (\d+)', text, re.M)}
        if len(times) != len(marked):
            sys.exit(f'{len(times)} times for {len(marked)} lines of the script')
        self.memory = memory / 1024
        self.times = {}
        for number, (mark, _) in enumerate(marked, 1):
            self.times.setdefault(mark, []).append(times[number])


def quoted(path):
    return '"' + str(path).replace('\\', '\\\\').replace('"', '\\"') + '"'


def start(path):
    return f'start {quoted(path)}'


# ---- Measuring a peer --------------------------------------------------------------------------------


def elapsed(*commands):
    """Milliseconds that the commands take, one behind the other."""
    begin = time.perf_counter()
    for command in commands:
        code = subprocess.run(command, check=False, env=C_LOCALE, stdout=subprocess.DEVNULL).returncode
        if code > (pathlib.Path(command[0]).name in DIFFER):
            sys.exit(f'{command} ended with {code}')
    return 1000 * (time.perf_counter() - begin)


def peer_times(commands):
    """Milliseconds of the commands, several times over, less what it takes to start their programs."""
    starts = [[command[0], 'BEGIN { }' if command[0] == 'awk' else '--version'] for command in commands]
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


def measure_search(table, program, path):
    """A command's time is that of its line, the dialog and the box at its end included."""
    size = size_text(path)
    for text in ('G28 Z0', '(TOOL 12)'):  # one of letters that stand in every row, one of others
        find = [('find', 'command 1015'), f'set "Find What:" {quoted(text)}', 'press "Find"', 'press "OK"']
        run = Run(program, [start(path)] + find * REPEATS)
        table.row(f'find absent {text} in {size}, beside grep -i', run.times['find'],
                  peer_times([['grep', '-i', text, path]]), 'ms', '5', run.memory)
    replace = [('replace', 'command 1012'), 'set "Find What:" "G1"', 'set "Replace With:" "G01"', 'press "Replace All"',
               'press "OK"']
    runs = [Run(program, [start(path)] + replace) for _ in range(REPEATS)]
    table.row(f'Replace All in every row of {size}, beside sed s///Ig', [run.times['replace'][0] for run in runs],
              peer_times([['sed', 's/G1/G01/Ig', path]]), 'ms', '1.5', runs[0].memory)
    number = sum(1 for _ in open(path, 'rb')) - 1
    move = [('move', 'command 1014'), f'set "LINE NO:" "{number}"', 'press "OK"']
    run = Run(program, [start(path)] + move * REPEATS)
    table.row(f'move to the last line number of {size}, beside grep -n -m1', run.times['move'],
              peer_times([['grep', '-n', '-m1', f'^[Nn]0*{number}[^0-9]', path]]), 'ms', '', run.memory)


# What the utilities do, as an awk user would write it down: rows that begin with a number get the next one; the numbers
# of X, Y and Z outside of comments are computed anew.
AWK_RENUMBER = r"""
match($0, /^\/?[Nn][0-9]+/) { printf "%sN%04d%s\n", /^\// ? "/" : "", ++n, substr($0, RLENGTH + 1); next }
{ print }"""

AWK_WORDS = r"""
{
    rest = $0; row = ""; comment = 0
    while (match(rest, /[XYZ()][-+.0-9]*/)) {
        letter = substr(rest, RSTART, 1)
        row = row substr(rest, 1, RSTART)
        length_taken = 1
        if (letter == "(") comment = 1
        else if (letter == ")") comment = 0
        else if (!comment) {
            v = substr(rest, RSTART + 1, RLENGTH - 1) + 0
            COMPUTE
            row = row sprintf("%.3f", v)
            length_taken = RLENGTH
        }
        rest = substr(rest, RSTART + length_taken)
    }
    print row rest
}"""

UTILITIES = [
    ('strip', ['command 1021', 'press "Yes"'], ['sed', '-E', r's/^(\/?)[Nn][0-9 \t]*/\1/'], '1.5'),
    ('renumber', ['command 1020', 'press "OK"', 'press "OK"'], ['awk', AWK_RENUMBER], '1.5'),
]
for what, command, operand, compute in (
        ('scale', 1023, ['set "SCALE FACTOR:" "1.5"'], 'v = v * 1.5'),
        ('shift', 1022, ['set "SHIFT FACTOR:" "1.5"'], 'v = v + 1.5'),
        ('abs to incr', 1025, [], 'd = v - p[letter]; p[letter] = v; v = d')):
    dialog = operand + ['set "DECIMAL PRECISION:" "3"', 'check "X"', 'check "Y"', 'check "Z"', 'press "OK"']
    UTILITIES.append((what, [f'command {command}'] + dialog, ['awk', AWK_WORDS.replace('COMPUTE', compute)], '0.5'))


def measure_utilities(table, program, path):
    """Each over the whole document as it was opened. A command's time is that of its line, dialog and boxes included."""
    for what, (command, *answers), peer, limit in UTILITIES:
        runs = [Run(program, [start(path), ('run', command)] + answers) for _ in range(REPEATS)]
        table.row(f'{what}, {size_text(path)}, beside {peer[0]}', [run.times['run'][0] for run in runs],
                  peer_times([peer + [str(path)]]), 'ms', limit, runs[0].memory)


def measure_blocks(table, program, path, rows):
    """The last quarter of the rows is cut and pasted in front of the first."""
    count = rows // 4
    quarter = [f'scroll thumb {3 * min(rows // (SCREEN_ROWS - 1), 30000) // 4}', 'key Ctrl+Shift+End']
    cut_and_paste = quarter + [('cut', 'key Ctrl+X'), 'key Ctrl+Home', ('paste', 'key Ctrl+V')]
    runs = [Run(program, [start(path)] + cut_and_paste) for _ in range(REPEATS)]
    cuts, pastes = ([run.times[what][0] for run in runs] for what in ('cut', 'paste'))
    peers = peer_times([['sed', '-n', f'{rows - count + 1},{rows}p', path]])
    table.value(f'cut {count} rows', cuts, 'ms', '', runs[0].memory)
    table.row(f'cut and paste {count} rows, beside sed -n a,bp', [cut + paste for cut, paste in zip(cuts, pastes)],
              peers, 'ms', '', runs[0].memory)


def make_changed_copy(path, name, alter):
    """A copy in which `alter` gives what stands in the place of each row. An existing one is taken as it is."""
    copy = path.with_name(f'{path.stem}-{name}.nc')
    if not copy.exists():
        source = random.Random(2)
        unfinished = copy.with_suffix('.part')
        with open(path, 'rb') as rows, open(unfinished, 'wb') as out:
            out.writelines(alter(source.random(), row) for row in rows)
        unfinished.rename(copy)
    return copy


def measure_compare(table, program, cli, path):
    """Against other files: an equal one, one per cent of the rows changed, and one in a thousand put in or taken out."""
    copies = {
        'an equal file': make_changed_copy(path, 'equal', lambda chance, row: row),
        '1 % of rows changed': make_changed_copy(path, 'changed', lambda chance, row: b'(' + row if chance < 0.01 else row),
        '0.1 % put in and out': make_changed_copy(path, 'moved', lambda chance, row: b'' if chance < 0.0005 else
                                                  row + b'M8 (PUT IN)\r\n' if chance > 0.9995 else row),
    }
    for what, copy in copies.items():
        warm(path)
        warm(copy)
        for spaces, options in (('--keep-spaces', []), (None, ['-w'])):
            compare = [str(cli), 'compare', *([spaces] if spaces else []), str(path), str(copy)]
            with open(os.devnull, 'wb') as nowhere:
                _, memory = run_measured(compare, nowhere, nowhere)
            peer = ['diff', *options, str(path), str(copy)]
            table.row(f'compare {size_text(path)}, {what}, beside {" ".join(peer[:-2])}', peer_times([compare]),
                      peer_times([peer]), 'ms', '1', memory / 1024)
    page_up = [('page', 'key PageUp')] * 200
    run = Run(program, [start(path), 'command 1006', f'choose {quoted(copies["1 % of rows changed"])}', 'press "Compare"',
                        ('end', 'key End')] + page_up + [('search', 'press "SEARCH REV"'), 'key Home', 'press "EXIT"'])
    table.value('a page of its results, near the end', run.times['end'] + run.times['page'], 'ms', '20', run.memory)


def measure_print(table, cli, path, rows):
    """Into a PDF file, on pages of 51 lines."""
    pdf = DATA / 'print.pdf'
    command = [str(cli), 'print', '--rows', f'1-{rows}', '--pdf', str(pdf), str(path)]
    with open(os.devnull, 'wb') as nowhere:
        _, memory = run_measured(command, nowhere, nowhere)
    table.value(f'print {rows} rows into a PDF of {size_text(pdf)}', peer_times([command]), 'ms', '', memory / 1024)
    pdf.unlink()


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
    measure_utilities(table, program, big)
    measure_search(table, program, big)
    measure_blocks(table, program, big, 4000000 // scale)
    cli = pathlib.Path(program).parent / 'hexlane-cli'
    (DATA / 'home').mkdir(exist_ok=True)
    measure_compare(table, program, cli, big)
    measure_print(table, cli, big, 100000 // scale)
    programs = pathlib.Path(program).parent
    line_file = make_program(DATA / f'{name}line.nc', size=20000000 // scale)
    line.measure_line(table, programs / 'hexlane-cli', programs / 'hexlane-bench', line_file,
                      2000 // scale)
    print(f'Memory: opening {size_text(big)} takes {memory[big] - memory[small]:.1f} MB more than {size_text(small)} '
          '(at most 4).')


if __name__ == '__main__':
    main()
