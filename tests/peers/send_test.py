#!/usr/bin/env python3
"""Sends programs to a simulated machine, under each protocol and with the troubles that machines make."""

import os
import select
import termios
import tty
import zlib

import station
from station import TOP, Case, Cli, Running, Simulator, programs, wait_for

PROTOCOLS = ('general', 'bridgeport', 'heidenhain', 'phillips')
PROGRAM = (TOP / 'examples' / 'bowl-finish.nc').read_bytes()


class SendTest(Case):
    def send(self, protocol, program, simulator_options=(), cli_options=(), settings=None, file=None):
        """One send from beginning to end. Gives the program that the machine holds, simulator and command."""
        self.home.set_machine(2, {'protocol': protocol} | (settings or {}))
        source = file or self.home.write('part.nc', program)
        with Simulator(self.home, '--protocol', protocol, '--receive', 'machine.nc', *simulator_options) as machine, \
                Cli(self.home, 'send', '--machine', 2, '--port', machine.line, *cli_options, source) as cli:
            if '--start-key' in simulator_options:
                machine.press_start()
            self.all_well(machine, cli)
        return self.home.path('machine.nc').read_bytes(), machine, cli

    def test_a_paced_line_stops_soon_after_xoff(self):
        self.home.set_machine(2, {'protocol': 'general', 'baud': 9600})
        source = self.home.write('part.nc', PROGRAM[:1000])
        with Simulator(self.home, '--receive', 'machine.nc', '--xoff-every', 150, '--xoff-for', 60, '--overrun',
                       64) as machine, \
                Cli(self.home, 'send', '--machine', 2, '--port', machine.line, source,
                    environment=self.home.environment(HEXLANE_LINE_PACING='on')) as cli:
            self.all_well(machine, cli)
        self.assertGreater(machine.report['XOFFs'], 2)
        self.assertGreater(float(cli.receipt['held'].split()[0]), 0.05)

    def test_start_point_behind_the_last_line_end_sends_only_the_sequences(self):
        settings = {'start_string': '37,13,10', 'end_string': '37'}
        got, machine, _ = self.send('phillips', b'G0\r\nM30\r\n',
                                    ('--start-string', '37,13,10', '--end-string', '37'),
                                    ('--from-row', 3), settings)
        self.assertEqual((got, machine.report['bytes on the line']), (b'', 5))

    def test_long_sequences_are_carried_to_further_writes(self):
        settings = {'start_char': 0, 'start_char_count': 1000, 'start_string': '37,-,13,10', 'end_string': '13,10,37',
                    'end_char': 18, 'end_char_count': 1000, 'eob': 'lfcrcr'}
        program = b'\r\n' * 3000
        for protocol in PROTOCOLS:
            with self.subTest(protocol=protocol):
                got, _, _ = self.send(protocol, program,
                                      ('--eob', 'lfcrcr', '--start-string', '0*1000,37,13,10', '--end-string',
                                       '13,10,37,18*1000'), settings=settings)
                self.assertEqual(got, program)

    def test_a_request_right_behind_the_opening_is_heard(self):
        self.home.set_machine(2, {'baud': 19200})
        source = self.home.write('part.nc', PROGRAM)
        for _ in range(10):
            machine, line = os.openpty()
            try:
                tty.setraw(line)
                words = [programs.cli, 'send', '--queue', '--machine', '2', '--port', os.ttyname(line), source]
                with Running(words, self.home) as cli:
                    # The settings that it makes show that it has opened the port.
                    wait_for(lambda: termios.tcgetattr(machine)[5] != termios.B38400, pause=0)
                    os.write(machine, b'\x11')
                    self.assertTrue(select.select([machine], [], [], 10)[0], 'the send has not begun')
            finally:
                os.close(machine)
                os.close(line)

    def test_receipt(self):
        _, machine, cli = self.send('heidenhain', PROGRAM, settings={'name': 'Lathe'})
        blocks = machine.report['blocks']
        self.assertEqual(cli.receipt['file'], f'{len(PROGRAM)} bytes, CRC-32 {zlib.crc32(PROGRAM):08x}')
        self.assertEqual(cli.receipt['line'].split()[0], str(machine.report['bytes on the line']))
        self.assertEqual(cli.receipt['blocks'], f'{blocks}, {machine.report["answers"]} answered')
        self.assertEqual(cli.receipt['machine'], '2, Lathe, heidenhain, ascii')
        self.assertEqual(cli.receipt['result'], 'complete')
        got, _, cli = self.send('general', PROGRAM, settings={'start_string': '37'},
                                simulator_options=('--start-string', '37'))
        self.assertEqual(cli.receipt['line'], f'{len(got) + 1} bytes, CRC-32 {zlib.crc32(b"%" + got):08x}')

    # ---- Ends that are not good ----------------------------------------------------------------------

    def broken_send(self, protocol, simulator_options, cli_options=(), meanwhile=lambda machine, cli: None):
        """A send that comes to no good end. Gives simulator and command, both ended."""
        self.home.set_machine(2, {'protocol': protocol})
        source = self.home.write('part.nc', PROGRAM * 4)
        with Simulator(self.home, '--protocol', protocol, '--receive', 'machine.nc', *simulator_options) as machine, \
                Cli(self.home, 'send', '--machine', 2, '--port', machine.line, *cli_options, source) as cli:
            meanwhile(machine, cli)
            cli.finish()
            machine.finish()
            self.errors = cli.error_text()
        return machine, cli

    def test_ctrl_c_stops_a_send_whose_answer_never_comes(self):
        def stop_in_the_wait(_, cli):
            wait_for(lambda: 'left out' in self.home.path('log').read_text())
            cli.interrupt()

        machine, cli = self.broken_send('bridgeport', ('--drop-ack', 3, '--log', 'log'), meanwhile=stop_in_the_wait)
        self.assertEqual(cli.process.returncode, 4)
        self.assertEqual(cli.receipt['result'], 'stopped')
        self.assertEqual(machine.report['bytes of program'], 3 * 251)
        self.assertIn("ahead of the program's end", machine.report['text'])

    def test_ctrl_c_while_standing_by(self):
        machine, cli = self.broken_send('general', ('--patience', 300), ('--queue',), lambda _, cli: cli.interrupt())
        self.assertEqual((cli.process.returncode, cli.receipt['line']), (4, '0 bytes'))
        self.assertEqual(machine.report['bytes on the line'], 0)

    def test_a_machine_that_hangs_up(self):
        for protocol in PROTOCOLS:
            with self.subTest(protocol=protocol):
                machine, cli = self.broken_send(protocol, ('--hang-up-after', 1000))
                self.assertEqual((machine.process.returncode, cli.process.returncode), (0, 1))
                self.assertIn(f'({machine.line}) has gone', self.errors)
                self.assertEqual(cli.receipt['result'], 'not complete')

    def test_continuous_goes_on_until_it_is_stopped(self):
        for protocol in PROTOCOLS:
            with self.subTest(protocol=protocol):
                passes = len(PROGRAM) * 4 * 3 + 100
                machine, cli = self.broken_send(protocol, ('--continuous', '--hang-up-after', passes),
                                                ('--continuous',))
                self.assertEqual((machine.process.returncode, cli.process.returncode), (0, 1),
                                 machine.report['text'])
                got = self.home.path('machine.nc').read_bytes()
                self.assertGreater(len(got), len(PROGRAM) * 8)
                self.assertEqual(got, (PROGRAM * 16)[:len(got)])

    def test_a_file_that_vanishes_is_told(self):
        def remove_then_ask(machine, _):
            self.home.path('part.nc').unlink()
            machine.press_start()

        machine, cli = self.broken_send('phillips', ('--dc1-after', 0, '--start-key'), ('--queue',), remove_then_ask)
        self.assertEqual(cli.process.returncode, 1)
        self.assertIn('was changed or removed by another program', self.errors)
        got = self.home.path('machine.nc').read_bytes()
        self.assertEqual(got, (PROGRAM * 4)[:len(got)])
        self.assertEqual(machine.process.returncode, 0, machine.report['text'])

    def test_ports_and_files_that_cannot_be_opened(self):
        source = self.home.write('part.nc', PROGRAM)
        with Simulator(self.home, '--receive', 'machine.nc') as machine:
            line = machine.line
            for words, told in (
                (('send', '--port', '/dev/not-there', source), 'COM1 (/dev/not-there)'),
                (('send', '--port', source, source), f'COM1 ({source})'),
                (('send', '--port', line, 'missing.nc'), 'missing.nc'),
                (('send', '--port', line, '--from-row', 1000000, source), 'no row 1000000'),
                (('receive', '--port', line, source), 'is there already'),
                (('receive', '--port', line, 'no/folder.nc'), 'no/folder.nc'),
            ):
                with self.subTest(words=words):
                    done = self.home.run(*words)
                    self.assertIn(done.returncode, (2, 3))
                    self.assertIn(told, done.stderr)
            self.assertEqual(source.read_bytes(), PROGRAM)

    def test_a_port_that_is_in_use(self):
        source = self.home.write('part.nc', PROGRAM)
        with Simulator(self.home, '--receive', 'machine.nc') as machine, \
                Cli(self.home, 'send', '--port', machine.line, '--queue', source) as first:
            done = self.home.run('send', '--port', machine.line, source)
            self.assertEqual(done.returncode, 3)
            self.assertIn(f'in use by process {first.process.pid}', done.stderr)
            self.assertIn(f'in use by process {first.process.pid}', self.home.path('transfers.log').read_text())
            first.interrupt()
            self.assertEqual(first.finish(), 4)


if __name__ == '__main__':
    station.main()
