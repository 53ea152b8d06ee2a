#!/usr/bin/env python3
"""Random programs, options, protocols, codes and troubles: what a simulated machine decodes is the file after the
machine set's own rules. The seeds are fixed; HEXLANE_TEST_FULL=1 runs twenty times as many.
"""

import concurrent.futures
import os
import random

import station
from model import EIA_CHARACTERS, EOB_BYTES, Options, on_machine
from station import Cli, Home, Simulator

RUNS = 1200 if os.environ.get('HEXLANE_TEST_FULL') else 60
AT_ONCE = 4  # each of them mostly waits
PROTOCOLS = ('general', 'bridgeport', 'heidenhain', 'phillips')
SIZES = (1, 249, 250, 251, 252, 502, 1706, 5120, 10239, 10240, 10241, 20480)
WORDS = ('G0', 'G1 ', 'X12.5', 'Y-3.', 'Z0\t', 'M30', 'N10 ', 'N7', '(FEED)', '(', ')', ' (A)(B)', '%', ' ', 'F250',
         'O1', '+', '/', ',', 'T1&')


def random_row(rng):
    return ''.join(rng.choice(WORDS) for _ in range(rng.randrange(9))).encode()


def random_text(rng, size):
    ends = [b'\r\n'] if rng.random() < 0.8 else [b'\r\n', b'\n', b'\r']
    text = b''
    while len(text) < size:
        text += random_row(rng) + rng.choice(ends)
    return text[:size]


def random_bytes(rng, size, protocol):
    """Any bytes but those that the protocol frames with."""
    forbidden = {'phillips': b'\x04', 'heidenhain': b'\x0c', 'bridgeport': b'\x17'}.get(protocol, b'')
    return bytes(c for c in rng.randbytes(size + 40) if c not in forbidden)[:size]


def random_sequence(rng, code, protocol, behind):
    """Characters around a program, as (machine settings, what the simulator is told)."""
    choice = [37, 13, 0, 18] if code == 'eia' and protocol == 'heidenhain' else [37, 13, 10, 0, 18]
    single = [rng.choice(choice + [None]) for _ in range(rng.randrange(9))]
    unmarked = behind and code == 'eia' and protocol in ('bridgeport', 'heidenhain')
    repeated, count = rng.choice(choice), rng.choice((0, 1, 7, 70) if unmarked else (0, 1, 7, 300, 1000))
    name = 'end' if behind else 'start'
    settings = {f'{name}_string': ','.join('-' if c is None else str(c) for c in single) or '-',
                f'{name}_char': repeated, f'{name}_char_count': count}
    parts = [str(c) for c in single if c is not None]
    many = [f'{repeated}*{count}'] if count else []
    return settings, ','.join(parts + many if behind else many + parts)


class Scene:
    """One random send."""

    def __init__(self, seed):
        rng = random.Random(seed)
        self.protocol = rng.choice(PROTOCOLS)
        self.options = Options(data_type=rng.choice(('iso', 'eia', 'ascii', 'binary')))
        self.options.eob = {'eia': 'lf', 'binary': 'none'}.get(self.options.data_type) or rng.choice(list(EOB_BYTES))
        if rng.random() < 0.6:
            for name in ('comments', 'numbers', 'tabs', 'spaces'):
                setattr(self.options, name, rng.random() < 0.5)
            self.options.character = rng.choice((-1, ord('%'), ord('X'), 10))
        self.options.line_mode = self.options.eob != 'none' and rng.random() < 0.3
        self.program = self.random_program(rng)
        if not on_machine(self.program, self.options):
            self.program += b'\r\n1\r\n'  # a machine that gets nothing waits for ever
        self.row = rng.choice((1, 1, 2, 5)) if self.program.count(b'\n') > 10 else 1
        self.settings = {'protocol': self.protocol} | self.options.settings()
        self.simulator = ['--protocol', self.protocol, '--code', self.options.data_type, '--eob', self.options.eob]
        for behind in (False, True):
            if rng.random() < 0.4:
                settings, told = random_sequence(rng, self.options.data_type, self.protocol, behind)
                self.settings |= settings
                self.simulator += [f'--{"end" if behind else "start"}-string', told] if told else []
        if rng.random() < 0.5:
            self.simulator += ['--xoff-every', str(rng.randrange(50, 2000)), '--xoff-for', str(rng.randrange(1, 6))]
        if rng.random() < 0.5:
            self.simulator += ['--ack-delay', str(rng.randrange(3))]
        self.queue = rng.random() < 0.3
        if self.queue:
            self.simulator += ['--dc1-after', '0', '--start-key']

    def random_program(self, rng):
        size = rng.choice(SIZES) if rng.random() < 0.5 else rng.randrange(1, 6000)
        if self.options.data_type == 'binary':
            return random_bytes(rng, size, self.protocol)
        text = random_text(rng, size)
        if self.options.data_type == 'eia' and self.protocol in ('bridgeport', 'heidenhain'):
            return bytes(c for c in text if c in EIA_CHARACTERS + b'\r')
        return text

    def expected(self):
        rows = self.program.split(b'\n')
        return on_machine(b'\n'.join(rows[self.row - 1:]), self.options)


def fault_of(seed):
    """Plays one scene. Gives what is wrong, or None."""
    scene = Scene(seed)
    home = Home()
    try:
        home.set_machine(1, scene.settings)
        source = home.write('part.nc', scene.program)
        with Simulator(home, '--receive', 'machine.nc', *scene.simulator) as machine, \
                Cli(home, 'send', '--machine', 1, '--port', machine.line, '--from-row', scene.row,
                    *(['--queue'] if scene.queue else []), source) as cli:
            if scene.queue:
                machine.press_start()
            codes = cli.finish(), machine.finish()
            told = f'{scene.settings} {scene.simulator} row {scene.row} {len(scene.program)} bytes\n' \
                   f'{cli.error_text()}{cli.receipt}\n{machine.report["text"]}'
        if codes != (0, 0):
            return f'seed {seed}: exit codes {codes}: {told}'
        got = home.path('machine.nc').read_bytes()
        if got != scene.expected():
            same = os.path.commonprefix([got, scene.expected()])
            return f'seed {seed}: {len(got)} bytes for {len(scene.expected())}, alike up to {len(same)}: ' \
                   f'{got[len(same) - 20:][:60]} for {scene.expected()[len(same) - 20:][:60]}: {told}'
        return None
    except Exception as fault:  # pylint: disable=broad-except
        return f'seed {seed}: {fault!r} {scene.settings} {scene.simulator}'
    finally:
        home.close()


class RandomTest(station.unittest.TestCase):
    def test_machine_holds_what_the_rules_say(self):
        with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
            faults = [fault for fault in pool.map(fault_of, range(RUNS)) if fault]
        self.assertEqual(faults, [], '\n\n'.join(faults[:5]))


if __name__ == '__main__':
    station.main()
