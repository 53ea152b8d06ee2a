#!/usr/bin/env python3
"""Receives programs that a simulated machine punches, and meets machines and disks that fail meanwhile."""

import contextlib
import os
import resource
import subprocess
import zlib

import station
from station import TIMEOUT_S, TOP, Case, Cli, Simulator, programs, wait_for

PROGRAM = (TOP / 'examples' / 'bowl-finish.nc').read_bytes()


def small_files():
    """In the child: no file may grow beyond 8,192 bytes."""
    resource.setrlimit(resource.RLIMIT_FSIZE, (8192, 8192))


class ReceiveTest(Case):
    def receive(self, settings, simulator_options=(), cli_options=(), **more):
        """Starts both sides and presses the machine's start key. Gives them, both ended."""
        self.home.set_machine(2, settings or {'protocol': 'general'})
        with Simulator(self.home, '--send', 'part.nc', '--start-key', *simulator_options) as machine, \
                Cli(self.home, 'receive', '--machine', 2, '--port', machine.line, '--timeout', 1, *cli_options,
                    'got.nc', **more) as cli:
            machine.press_start()
            cli.finish()
            machine.finish()
            self.errors = cli.error_text()
        return machine, cli

    def what_is_left(self, cli):
        """Of a receive that did not end well: beside the name, and the receipt says so."""
        part = self.home.path('got.nc.part')
        self.assertEqual(cli.receipt['received'], str(part))
        self.assertFalse(self.home.path('got.nc').exists())
        return part.read_bytes()

    def test_codes_and_line_ends(self):
        # In EIA '3' is DC3, so XOFF has to be another; a binary stream leaves no character free for it at all.
        for protocol, code, eob in (('general', 'ascii', 'crlf'), ('bridgeport', 'iso', 'lf'),
                                    ('heidenhain', 'eia', 'lf'), ('phillips', 'binary', 'none'),
                                    ('general', 'ascii', 'cr'), ('general', 'iso', 'lfcr'),
                                    ('general', 'ascii', 'lfcrcr'), ('general', 'ascii', 'dollar')):
            with self.subTest(protocol=protocol, code=code, eob=eob):
                program = PROGRAM
                if code == 'binary':
                    program = bytes(range(256)) * 100
                if code == 'eia':
                    program = PROGRAM.upper().replace(b'=', b'')
                self.home.write('part.nc', program)
                machine, cli = self.receive({'protocol': protocol, 'data_type': code, 'eob': eob,
                                             'xoff_char': 147 if code == 'eia' else 19,
                                             'handshake': 'hardware' if code == 'binary' else 'software'},
                                            ('--protocol', protocol, '--code', code, '--eob', eob),
                                            ('--replace',))
                self.assertEqual((cli.process.returncode, machine.process.returncode), (0, 0),
                                 self.errors + machine.report['text'])
                self.assertEqual(self.home.path('got.nc').read_bytes(), program)

    def test_receipt(self):
        self.home.write('part.nc', PROGRAM)
        machine, cli = self.receive({'eob': 'lf'}, ('--eob', 'lf'))
        on_line = PROGRAM.replace(b'\r\n', b'\n')
        self.assertEqual(cli.receipt['file'], f'{len(PROGRAM)} bytes, CRC-32 {zlib.crc32(PROGRAM):08x}')
        self.assertEqual(cli.receipt['line'], f'{len(on_line)} bytes, CRC-32 {zlib.crc32(on_line):08x}')
        self.assertEqual(machine.report['bytes on the line'], len(on_line))
        self.assertEqual(cli.receipt['result'], 'complete')

    def test_a_fault_ends_the_receive_and_keeps_what_came(self):
        self.home.write('part.nc', PROGRAM)
        for name, options, more, told in (
            ('the machine hangs up', ('--hang-up-after', 3000, '--rate', 9600), {}, '({line}) has gone'),
            ('the disk is full', (), {'preexec_fn': small_files, 'restore_signals': False}, 'could not be written to'),
        ):
            with self.subTest(name):
                machine, cli = self.receive({}, options, **more)
                self.assertEqual((cli.process.returncode, cli.receipt['result']), (1, 'not complete'))
                self.assertIn(told.format(line=machine.line), self.errors)
                got = self.what_is_left(cli)
                self.assertEqual(got, PROGRAM[:len(got)])
                self.home.path('got.nc.part').unlink()

    @contextlib.contextmanager
    def half_received(self, *options, environment=None):
        """A slow machine and a receive that has a part of its program. Both have ended behind it."""
        self.home.write('part.nc', PROGRAM)
        with Simulator(self.home, '--send', 'part.nc', '--rate', 9600, '--start-key') as machine, \
                Cli(self.home, 'receive', '--port', machine.line, *options, 'got.nc', environment=environment) as cli:
            machine.press_start()
            wait_for(lambda: self.home.path('got.nc.part').stat().st_size > 0)
            yield machine, cli

    def test_ctrl_c_keeps_what_came(self):
        with self.half_received() as (machine, cli):
            cli.interrupt()
            self.assertEqual(cli.finish(), 4)
            self.assertEqual(machine.finish(), 1)
        got = self.what_is_left(cli)
        self.assertEqual(got, PROGRAM[:len(got)])
        self.assertIn('bytes still to send', machine.report['text'])

    def test_ctrl_c_tells_a_file_that_the_disk_did_not_take(self):
        failing = self.home.preloaded(programs.flush_fails)
        with self.half_received(environment=failing) as (_, cli):
            cli.interrupt()
            self.assertEqual(cli.finish(), 4)
            self.assertIn('could not be written to', cli.error_text())
            self.assertEqual(cli.receipt['result'], 'stopped')

    def test_a_killed_receive_leaves_no_file_that_looks_whole(self):
        self.home.write('got.nc', b'old')
        with self.half_received('--replace') as (_, cli):
            cli.process.kill()
        self.assertEqual(self.home.path('got.nc').read_bytes(), b'old')
        with Simulator(self.home, '--send', 'part.nc', '--start-key') as machine:
            self.home.path('got.nc').unlink()
            done = self.home.run('receive', '--port', machine.line, 'got.nc')
            self.assertEqual(done.returncode, 3)
            self.assertIn('got.nc.part is there already', done.stderr)

    def test_nothing_comes(self):
        self.home.write('part.nc', PROGRAM)
        with Simulator(self.home, '--send', 'part.nc', '--start-key') as machine:
            done = self.home.run('receive', '--port', machine.line, '--wait', 1, 'got.nc')
            self.assertEqual(done.returncode, 5, done.stderr)
        self.assertEqual(list(self.home.folder.glob('got.nc*')), [])

    def test_links_and_modes_are_kept(self):
        self.home.write('part.nc', PROGRAM[:3000])
        self.home.path('store').mkdir()
        self.home.write('store/real.nc', b'old').chmod(0o640)
        self.home.path('got.nc').symlink_to('store/real.nc')
        _, cli = self.receive({}, cli_options=('--replace',))
        self.assertEqual((cli.process.returncode, cli.receipt['received']), (0, str(self.home.path('got.nc'))))
        self.assertTrue(self.home.path('got.nc').is_symlink())
        real = self.home.path('store/real.nc')
        self.assertEqual((real.read_bytes(), real.stat().st_mode & 0o777), (PROGRAM[:3000], 0o640))
        self.assertEqual([path.name for path in self.home.path('store').iterdir()], ['real.nc'])

    def test_pipes_and_devices_are_written_directly(self):
        self.home.write('part.nc', PROGRAM)
        os.mkfifo(self.home.path('got.nc'))
        with open(self.home.path('out.nc'), 'wb') as out, \
                subprocess.Popen(['cat', self.home.path('got.nc')], stdout=out) as reader:
            _, cli = self.receive({})
            reader.wait(TIMEOUT_S)
        self.assertEqual((cli.process.returncode, self.home.path('out.nc').read_bytes()), (0, PROGRAM), self.errors)
        self.home.path('got.nc').unlink()
        self.home.path('got.nc').symlink_to('/dev/full')
        _, cli = self.receive({})
        self.assertEqual(cli.process.returncode, 1)
        self.assertIn('no space is left', self.errors)
        self.assertEqual(list(self.home.folder.glob('*.part')), [])

    def test_one_name_has_one_receiver(self):
        self.home.write('part.nc', PROGRAM)
        with Simulator(self.home, '--send', 'part.nc', '--start-key') as first, \
                Simulator(self.home, '--send', 'part.nc', '--start-key') as second, \
                Cli(self.home, 'receive', '--port', first.line, '--timeout', 1, 'got.nc') as cli:
            os.symlink('got.nc', self.home.path('link.nc'))
            for name in ('got.nc', 'link.nc'):
                done = self.home.run('receive', '--port', second.line, '--replace', name)
                self.assertEqual(done.returncode, 3)
                self.assertIn('is being received by another program', done.stderr)
            first.press_start()
            self.assertEqual(cli.finish(), 0, cli.error_text())
        self.assertEqual(self.home.path('got.nc').read_bytes(), PROGRAM)

    def test_a_name_that_is_taken_meanwhile_is_left_alone(self):
        self.home.write('part.nc', PROGRAM)
        with Simulator(self.home, '--send', 'part.nc', '--start-key') as machine, \
                Cli(self.home, 'receive', '--port', machine.line, '--timeout', 1, 'got.nc') as cli:
            self.home.write('got.nc', b'of somebody else')
            machine.press_start()
            self.assertEqual(cli.finish(), 1)
            self.assertIn('exists already', cli.error_text())
        self.assertEqual(self.home.path('got.nc').read_bytes(), b'of somebody else')
        self.assertEqual(self.home.path('got.nc.part').read_bytes(), PROGRAM)

    def test_an_older_file_stays_when_the_port_cannot_be_opened(self):
        self.home.write('got.nc', b'old')
        done = self.home.run('receive', '--port', '/dev/not-there', '--replace', 'got.nc')
        self.assertEqual(done.returncode, 3)
        self.assertEqual(self.home.path('got.nc').read_bytes(), b'old')

    def test_a_lost_byte_is_told_whatever_ends_the_receive(self):
        self.home.write('part.nc', PROGRAM[:3000])
        losing = self.home.preloaded(programs.bytes_lost)
        _, cli = self.receive({}, environment=losing)
        self.assertEqual((cli.process.returncode, cli.receipt['result']), (1, 'not complete'), self.errors)
        self.assertIn('Bytes were lost', self.errors)
        self.assertEqual(self.what_is_left(cli), PROGRAM[:3000])
        with Simulator(self.home, '--send', 'part.nc', '--rate', 9600, '--start-key') as machine, \
                Cli(self.home, 'receive', '--port', machine.line, '--replace', 'got.nc', environment=losing) as cli:
            machine.press_start()
            wait_for(lambda: self.home.path('got.nc.part').stat().st_size > 0)
            cli.interrupt()
            self.assertEqual(cli.finish(), 4)
            self.assertIn('Bytes were lost', cli.error_text())


if __name__ == '__main__':
    station.main()
