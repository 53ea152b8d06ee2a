#!/usr/bin/env python3
"""Checks every dump of docs/wire-forms.md: hexlane-cli must send exactly these bytes, and store what is told of
received ones; control-simulator must take the dump without a fault, answer where the dump answers, and punch the same.
"""

import ast
import os
import re
import select
import time

import station
from station import TIMEOUT_S, TOP, Case, Cli, Simulator


def repeated(text, one):
    """Joins the values of the pieces of `text`: what `one` reads, or (...)*N of it."""
    value = b''
    for group, count, single in re.findall(r'\(([^)]*)\)\*(\d+)|([^()\s]+)', text):
        value += one(group) * int(count) if group else one(single)
    return value


def texts(text):
    """Bytes of C strings, "..." or ("...")*N."""
    value = b''
    for group, count, single in re.findall(r'\(("[^"]*")\)\*(\d+)|("[^"]*")', text):
        value += ast.literal_eval('b' + group) * int(count) if group else ast.literal_eval('b' + single)
    return value


class Dump:
    def __init__(self, text):
        self.fields = dict(re.findall(r'^(simulator|file|becomes) *(.*)$', text, re.M))
        self.queue = re.search(r'^queue$', text, re.M) is not None
        self.receive = re.search(r'^receive$', text, re.M) is not None
        self.settings = dict(re.findall(r'(\w+)=(\S+)', ' '.join(re.findall(r'^set (.*)$', text, re.M))))
        self.simulator = self.fields['simulator'].split()
        self.file = texts(self.fields['file'])
        self.stored = texts(self.fields.get('becomes', self.fields['file']))
        self.turns = []  # (direction, bytes), neighbours of one direction joined
        for direction, piece in re.findall(r'^([<>]) ([^|\n]*)', text, re.M):
            data = repeated(piece, bytes.fromhex)
            if self.turns and self.turns[-1][0] == direction:
                data = self.turns.pop()[1] + data
            self.turns.append((direction, data))


def read_dumps():
    text = (TOP / 'docs' / 'wire-forms.md').read_text()
    return [Dump(block) for block in re.findall(r'^```wire\n(.*?)^```$', text, re.M | re.S)]


def read_line(line, count):
    """Reads `count` bytes, or what comes until nothing more can."""
    data = b''
    deadline = time.monotonic() + TIMEOUT_S
    while len(data) < count and time.monotonic() < deadline:
        if select.select([line], [], [], 0.1)[0]:
            data += os.read(line, count - len(data))
    return data


class WireFormsTest(Case):
    def play(self, line, turns, ours):
        """Plays the side `ours` of the dump on a line, and compares the other side's bytes with it."""
        for direction, data in turns:
            if direction == ours:
                os.write(line, data)
            else:
                self.assertEqual(read_line(line, len(data)).hex(' '), data.hex(' '))

    def station_sends(self, dump):
        machine, other_side = os.openpty()
        try:
            source = self.home.write('part.nc', dump.file)
            with Cli(self.home, 'send', '--port', os.ttyname(other_side), *(['--queue'] if dump.queue else []),
                     source) as cli:
                self.play(machine, dump.turns, '<')
                self.assertEqual(cli.finish(), 0, cli.error_text())
            self.assertEqual(select.select([machine], [], [], 0)[0], [], 'more bytes than the dump shows')
        finally:
            os.close(machine)
            os.close(other_side)

    def simulator_takes(self, dump):
        with Simulator(self.home, '--receive', 'machine.nc', *dump.simulator) as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            self.play(line, dump.turns, '>')
            os.close(line)
            self.assertEqual(machine.finish(), 0, machine.report['text'])
        self.assertEqual(self.home.path('machine.nc').read_bytes(), dump.stored)

    def station_stores(self, dump):
        machine, other_side = os.openpty()
        try:
            with Cli(self.home, 'receive', '--port', os.ttyname(other_side), '--timeout', 1, '--replace',
                     'got.nc') as cli:
                self.play(machine, dump.turns, '<')
                self.assertEqual(cli.finish(), 0, cli.error_text())
        finally:
            os.close(machine)
            os.close(other_side)
        self.assertEqual(self.home.path('got.nc').read_bytes(), dump.stored)

    def simulator_punches(self, dump):
        self.home.write('part.nc', dump.file)
        with Simulator(self.home, '--send', 'part.nc', '--start-key', *dump.simulator) as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            machine.press_start()
            self.play(line, dump.turns, '>')
            os.close(line)
            self.assertEqual(machine.finish(), 0, machine.report['text'])

    def test_every_dump(self):
        dumps = read_dumps()
        self.assertGreater(len(dumps), 15)
        for dump in dumps:
            with self.subTest(file=dump.fields['file'], settings=dump.settings):
                self.home.set_machine(1, {'preset': 'general', 'data_type': 'ascii', 'eob': 'crlf',
                                          'compress_spaces': 0, 'compress_comments': 0, 'compress_line_numbers': 0}
                                      | dump.settings)
                for check in ((self.station_stores, self.simulator_punches) if dump.receive else
                              (self.station_sends, self.simulator_takes)):
                    check(dump)


if __name__ == '__main__':
    station.main()
