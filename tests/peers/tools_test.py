#!/usr/bin/env python3
"""Sends to and receives from cat, with socat between two ptys, and compares with cmp."""

import fcntl
import shutil
import subprocess

import station
from station import TOP, Case, Cli, Simulator, wait_for

PROGRAM = TOP / 'examples' / 'stepped-shaft.nc'
TIOCGEXCL = 0x80045440  # not in termios


class ToolsTest(Case):
    def assert_same(self, left, right):
        done = subprocess.run(['cmp', left, right], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def start(self, *words, **more):
        """Starts a tool that is gone at the end of the test."""
        tool = subprocess.Popen(words, **more)
        self.addCleanup(tool.wait)
        self.addCleanup(tool.kill)
        return tool

    def linked_ptys(self):
        """Two ptys with socat between them."""
        if shutil.which('socat') is None:
            self.skipTest('socat is not installed (tools/setup.sh test)')
        ours, machine = self.home.path('ours'), self.home.path('machine')
        self.start('socat', f'PTY,link={ours},raw,echo=0', f'PTY,link={machine},raw,echo=0')
        wait_for(lambda: ours.exists() and machine.exists())
        return ours, machine

    def test_both_ways_through_socat(self):
        ours, machine = self.linked_ptys()
        with Cli(self.home, 'receive', '--port', ours, '--timeout', 1, 'got.nc') as cli, open(machine, 'wb') as line:
            subprocess.run(['cat', PROGRAM], stdout=line, check=True)
            self.assertEqual(cli.finish(), 0, cli.error_text())
        self.assert_same(self.home.path('got.nc'), PROGRAM)
        back = self.home.path('back.nc')
        with open(back, 'wb') as file:
            self.start('cat', machine, stdout=file)
            done = self.home.run('send', '--port', ours, PROGRAM)
            self.assertEqual(done.returncode, 0, done.stderr)
            wait_for(lambda: back.stat().st_size >= PROGRAM.stat().st_size)
        self.assert_same(back, PROGRAM)

    def test_a_simulator_on_a_device(self):
        ours, machine = self.linked_ptys()
        with Simulator(self.home, '--receive', 'got.nc', '--protocol', 'bridgeport', '--idle', '300',
                       machine) as simulator:
            done = self.home.run('machines', 'set', 1, 'protocol=bridgeport')
            self.assertEqual(done.returncode, 0, done.stderr)
            done = self.home.run('send', '--port', ours, PROGRAM)
            self.assertEqual((done.returncode, simulator.finish()), (0, 0), done.stderr + simulator.report['text'])
        self.assert_same(self.home.path('got.nc'), PROGRAM)
        with open(machine, 'rb', buffering=0) as line:  # root could open it all the same
            alone = fcntl.ioctl(line, TIOCGEXCL, bytes(4))
        self.assertEqual(alone, bytes(4), 'the device is still for one program alone')
        with Cli(self.home, 'receive', '--port', ours, '--timeout', 1, 'back.nc') as cli, \
                Simulator(self.home, '--send', PROGRAM, '--start-after', '0', '--idle', '300', machine) as simulator:
            self.assertEqual((cli.finish(), simulator.finish()), (0, 0), cli.error_text())
        self.assert_same(self.home.path('back.nc'), PROGRAM)


if __name__ == '__main__':
    station.main()
