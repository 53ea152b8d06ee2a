#!/usr/bin/env python3
"""The simulator sees what is wrong on the line, and says no to what it cannot do. Streams are written by hand."""

import fcntl
import os
import select
import subprocess
import termios

import station
from station import TIMEOUT_S, Case, Simulator, programs, wait_for

HEIDENHAIN = bytes.fromhex('06 02 4E 31 0D 0A 17 6D 02 0C 03')
BRIDGEPORT = b'1' * 251 + b'\x17'

# What is wrong: options, stream, what the report must say. Each is a good stream with one fault in it.
FAULTS = (
    ('check of a HEIDENHAIN block', '--protocol heidenhain', HEIDENHAIN.replace(b'm', b'n'), 'check of block 1'),
    ('character changed on the way', '--protocol heidenhain', HEIDENHAIN.replace(b'1', b'2'), 'check of block 1'),
    ('no STX in front', '--protocol heidenhain', HEIDENHAIN[:1] + HEIDENHAIN[2:], 'STX is missing'),
    ('no STX behind a block', '--protocol heidenhain', HEIDENHAIN[:8] + HEIDENHAIN[9:], 'STX is missing'),
    ('space that is not needed', '--protocol heidenhain', bytes.fromhex('06 02 4E 31 0D 0A 20 17 4D 02 0C 03'),
     'a space too many'),
    ('space that is missing', '--protocol heidenhain', bytes.fromhex('06 02 31 31 0D 0A 17 12 02 0C 03'),
     'a space too many or too few'),
    ('block without a check', '--protocol heidenhain', b'\x06\x02N1\r\n\x0c\x03', 'no check'),
    ('end missing', '--protocol heidenhain', HEIDENHAIN[:9], "ahead of the program's end"),
    ('bytes behind the end', '--protocol heidenhain', HEIDENHAIN + b'x', '1 bytes behind the end'),
    ('next block ahead of the answer', '--protocol heidenhain --ack-delay 50',
     HEIDENHAIN[:9] + bytes.fromhex('4E 32 0D 0A 17 6E 02 0C 03'), 'ahead of the answer'),
    ('next BRIDGEPORT block ahead of the answer', '--protocol bridgeport --ack-delay 50',
     BRIDGEPORT + b'M30\x17\x4e\x04', 'ahead of the answer'),
    ('check of the last block', '--protocol bridgeport', b'M30\x17\x4f\x04', 'check of the last block'),
    ('block too long', '--protocol bridgeport', b'1' * 252 + b'\x17\x00\x04', 'longer than 251'),
    ('last block too long', '--protocol bridgeport --end-string 37', b'1' * 251 + b'%\x17\x31\x04',
     'the last block is too long'),
    ('no EOT', '--protocol bridgeport', b'M30\x17\x4eX', 'EOT is missing'),
    ('end missing in BRIDGEPORT', '--protocol bridgeport', BRIDGEPORT, "ahead of the program's end"),
    ('PHILLIPS without EOT', '--protocol phillips', b'M30\r\n', "ahead of the program's end"),
    ('end string missing', '--end-string 37', b'M30\r\n', 'end string is missing'),
    ('start string wrong', '--start-string 37,13', b'%\nM30', 'CR is missing, LF has come'),
    ('line end cut through', '--eob lfcr', b'G0\n\rM30\n', 'line end is not whole'),
    ('line end of another kind', '--eob lf', b'G0\r\n', 'line end is not whole'),
    ('byte that ISO does not have', '--code iso', b'G\xb0\r\n', 'B0 is not in the code'),
    ('byte that EIA does not have', '--code eia', b'\x45\x03\x80', '03 is not in the code'),
    ('EIA check of a block', '--code eia --protocol heidenhain', bytes.fromhex('54 13 80 62'), 'check of block 1'),
)


class SimulatorTest(Case):
    def feed(self, options, stream):
        """Feeds a stream as another program does. Gives the ended simulator."""
        with Simulator(self.home, '--receive', 'machine.nc', *options.split()) as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            os.write(line, stream)
            os.close(line)
            machine.finish()
        return machine

    def read_all(self, line, count):
        """So many bytes of the machine's, or what came before it hung up."""
        got = b''
        while len(got) < count and (piece := os.read(line, 4096)):
            got += piece
        return got

    def test_faults_on_the_line_are_told(self):
        for name, options, stream, told in FAULTS:
            with self.subTest(name):
                machine = self.feed(options, stream)
                self.assertEqual(machine.process.returncode, 1, machine.report['text'])
                self.assertIn(told, machine.report['text'])
                self.assertGreater(machine.report['other faults'] + machine.report.get('check errors', 0), 0)

    def test_programs_that_look_like_a_fault(self):
        for name, options, stream, program in (
            ('a dollar that is no line end', '--eob dollar', b'A$B$\r\n$$\r\n', b'A$B\r\n$\r\n'),
            ('an end string that fills the last block', '--protocol bridgeport --end-string 13,10',
             b'1' * 249 + b'\r\n\x171\x04', b'1' * 249),
        ):
            with self.subTest(name):
                machine = self.feed(options, stream)
                self.assertEqual(machine.process.returncode, 0, machine.report['text'])
                self.assertEqual(self.home.path('machine.nc').read_bytes(), program)

    def test_the_line_is_opened_again_before_anything_comes(self):
        with Simulator(self.home, '--receive', 'machine.nc') as machine:
            os.close(os.open(machine.line, os.O_RDWR | os.O_NOCTTY))
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            os.write(line, b'M30\r\n')
            os.close(line)
            self.assertEqual(machine.finish(), 0, machine.report['text'])
        self.assertEqual(self.home.path('machine.nc').read_bytes(), b'M30\r\n')

    def test_a_machine_with_a_slow_disk_takes_all_that_came_before_the_closing(self):
        program = b'G1 X1\r\n' * 3140  # as much as line, machine and pipe hold together
        os.mkfifo(self.home.path('disk'))
        disk = os.open(self.home.path('disk'), os.O_RDONLY | os.O_NONBLOCK)
        fcntl.fcntl(disk, fcntl.F_SETPIPE_SZ, 4096)
        with Simulator(self.home, '--receive', 'disk', '--protocol', 'phillips') as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            os.write(line, program + b'\x04')
            os.close(line)
            got = b''
            while select.select([disk], [], [], TIMEOUT_S)[0] and (piece := os.read(disk, 4096)):
                got += piece
                select.select([], [], [], 0.15)  # stands still for longer than a closed line is watched
            self.assertEqual(machine.finish(), 0, machine.report['text'])
        os.close(disk)
        self.assertEqual(got, program)

    def test_silence_ends_a_run_whose_line_stays_open(self):
        with Simulator(self.home, '--receive', 'machine.nc', '--idle', '50') as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            os.write(line, b'M30\r\n')
            self.assertEqual(machine.finish(), 0, machine.report['text'])
            os.close(line)

    def test_nothing_comes(self):
        with Simulator(self.home, '--receive', 'machine.nc', '--patience', '50') as machine:
            self.assertEqual(machine.finish(), 1)
        self.assertIn('nothing has come', machine.report['text'])

    def test_stopped_by_a_signal(self):
        with Simulator(self.home, '--receive', 'machine.nc', '--protocol', 'phillips', '--log', 'log') as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            os.write(line, b'M30\r\n')
            wait_for(lambda: 'M30' in self.home.path('log').read_text())
            machine.interrupt()
            self.assertEqual(machine.finish(), 1)
            os.close(line)
        self.assertIn('stopped by a signal', machine.report['text'])
        self.assertEqual(self.home.path('machine.nc').read_bytes(), b'M30\r\n')

    def test_send_obeys_xoff(self):
        program = b'G1 X1\r\n' * 2000
        self.home.write('part.nc', program)
        with Simulator(self.home, '--send', 'part.nc', '--start-key', '--log', 'log') as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            os.write(line, b'\x13')
            wait_for(lambda: '<DC3>' in self.home.path('log').read_text())
            machine.press_start()
            self.assertEqual(select.select([line], [], [], 0.05)[0], [])
            os.write(line, b'\x11')
            got = self.read_all(line, len(program))
            os.close(line)
            self.assertEqual(machine.finish(), 0, machine.report['text'])
        self.assertEqual((got, machine.report['held by XOFF']), (program, 1))

    def test_send_waits_as_long_as_it_takes(self):
        program = b'G1 X1\r\n' * 10000  # more than a pty holds
        self.home.write('part.nc', program)
        for name, options in (('for its time, longer than the silence that ends a run',
                               ('--start-after', '1600', '--idle', '1500')),
                              ('for room on the line', ('--idle', '1200')),
                              ('for its other side, with the key pressed ahead', ('--start-key',))):
            with self.subTest(name), Simulator(self.home, '--send', 'part.nc', '--log', 'log', *options) as machine:
                if '--start-key' in options:
                    machine.press_start()
                    wait_for(lambda: 'start key' in self.home.path('log').read_text())
                line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
                termios.tcflush(line, termios.TCIFLUSH)  # as the station does
                if 'for room' in name:
                    with self.assertRaises(subprocess.TimeoutExpired):
                        machine.process.wait(3.5)  # more than two silences: a full pty takes once more
                got = self.read_all(line, len(program))
                os.close(line)
                self.assertEqual(machine.finish(), 0, machine.report['text'])
                self.assertEqual(got, program)

    def test_bytes_behind_xoff_are_counted(self):
        for more, code in ((5, 0), (6, 1)):
            with Simulator(self.home, '--receive', 'machine.nc', '--xoff-every', '10', '--xoff-for', '500',
                           '--overrun', '5') as machine:
                line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
                os.write(line, b'0' * 10)
                self.assertEqual(os.read(line, 1), b'\x13')
                os.write(line, b'1' * more)
                self.assertEqual(os.read(line, 1), b'\x11')
                os.close(line)
                self.assertEqual(machine.finish(), code, machine.report['text'])
            self.assertEqual(machine.report['bytes behind XOFF'], more)

    def test_one_byte_ahead_of_the_answer_is_told(self):
        with Simulator(self.home, '--receive', 'machine.nc', '--protocol', 'bridgeport', '--ack-delay', '50') as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            os.write(line, BRIDGEPORT + b'M')
            self.assertEqual(os.read(line, 1), b'\x06')
            os.write(line, b'30\x17\x4e\x04')
            os.close(line)
            self.assertEqual(machine.finish(), 1)
        self.assertIn('ahead of the answer', machine.report['text'])

    def test_a_full_disk(self):
        with Simulator(self.home, '--receive', '/dev/full') as machine:
            line = os.open(machine.line, os.O_RDWR | os.O_NOCTTY)
            os.write(line, b'M30\r\n')
            os.close(line)
            self.assertEqual(machine.finish(), 3)
        self.assertIn('/dev/full', machine.error_text())

    def test_log_names_control_characters(self):
        self.feed('--protocol heidenhain --log log', HEIDENHAIN)
        self.assertRegex(self.home.path('log').read_text(), r'in +<ACK><STX>N1<CR><LF><ETB>m<STX><FF><ETX>\n')

    def test_link(self):
        link = self.home.path('machine')
        with Simulator(self.home, '--receive', 'machine.nc', '--link', 'machine') as machine:
            self.assertEqual(os.readlink(link), machine.line)
            link.write_text('M30\r\n')
            self.assertEqual(machine.finish(), 0, machine.report['text'])
        self.assertFalse(link.is_symlink())
        self.home.write('machine', b'precious')
        self.assertEqual(self.refused('--receive', 'machine.nc', '--link', 'machine'), 3)
        self.assertEqual(link.read_bytes(), b'precious')

    def refused(self, *words):
        done = subprocess.run([programs.simulator, *words], cwd=self.home.folder, capture_output=True, text=True,
                              timeout=TIMEOUT_S, check=False)
        self.assertTrue(done.stderr.startswith('control-simulator: '), done.stderr)
        return done.returncode

    def test_refusals(self):
        self.home.write('part.nc', b'N1 #5=3\r\n')
        for code, words in ((2, ''), (2, '--receive x --send y'), (2, '--receive x --code ebcdic'),
                            (2, '--receive x --rate 10'), (2, '--receive'), (2, '--receive x --start-string 1,,2'),
                            (2, '--receive x --end-string 1*1001'), (2, '--receive x /dev/a /dev/b'),
                            (2, '--receive x --hang-up-after 0 --idle 1'), (2, '--send part.nc --xoff-every 5'), (2, '--receive x --link l /dev/a'),
                            (2, '--receive x --code eia --protocol heidenhain --continuous'),
                            (3, '--send missing.nc'), (3, '--send part.nc --code eia'),
                            (3, '--receive x /dev/not-there'), (3, '--receive x part.nc'),
                            (3, '--receive no/folder --idle 1'), (3, '--receive x --log no/folder')):
            with self.subTest(words=words):
                self.assertEqual(self.refused(*words.split()), code)


if __name__ == '__main__':
    station.main()
