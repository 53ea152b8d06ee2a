#!/usr/bin/env python3
"""Sends to and receives from the usual tools, and compares with cmp: cat on a pty, and socat between two ptys."""

import os
import shutil
import subprocess

import station
from station import TOP, Case, Cli, wait_for

PROGRAM = TOP / 'examples' / 'stepped-shaft.nc'


class ToolsTest(Case):
    def assert_same(self, left, right):
        done = subprocess.run(['cmp', left, right], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def open_pty(self):
        """The machine's side of a pty, and the name of ours. The latter stays open, so that nothing hangs up."""
        machine, ours = os.openpty()
        self.addCleanup(os.close, machine)
        self.addCleanup(os.close, ours)
        return machine, os.ttyname(ours)

    def test_a_send_read_by_cat(self):
        machine, name = self.open_pty()
        got = self.home.path('got.nc')
        with open(got, 'wb') as file, subprocess.Popen(['cat'], stdin=machine, stdout=file) as cat:
            done = self.home.run('send', '--port', name, PROGRAM)
            self.assertEqual(done.returncode, 0, done.stderr)
            wait_for(lambda: got.stat().st_size >= PROGRAM.stat().st_size)
            cat.kill()
        self.assert_same(got, PROGRAM)

    def test_a_receive_fed_by_cat(self):
        machine, name = self.open_pty()
        with Cli(self.home, 'receive', '--port', name, '--timeout', 1, 'got.nc') as cli:
            subprocess.run(['cat', PROGRAM], stdout=machine, check=True)
            self.assertEqual(cli.finish(), 0, cli.error_text())
        self.assert_same(self.home.path('got.nc'), PROGRAM)

    def test_both_ways_through_socat(self):
        if shutil.which('socat') is None:
            self.skipTest('socat is not installed (tools/setup.sh test)')
        ours, machine = self.home.path('ours'), self.home.path('machine')
        with subprocess.Popen(['socat', f'PTY,link={ours},raw,echo=0', f'PTY,link={machine},raw,echo=0']) as socat:
            wait_for(lambda: ours.exists() and machine.exists())
            with Cli(self.home, 'receive', '--port', ours, '--timeout', 1, 'got.nc') as cli, \
                    open(machine, 'wb') as line:
                subprocess.run(['cat', PROGRAM], stdout=line, check=True)
                self.assertEqual(cli.finish(), 0, cli.error_text())
            self.assert_same(self.home.path('got.nc'), PROGRAM)
            back = self.home.path('back.nc')
            with open(back, 'wb') as file, subprocess.Popen(['cat', machine], stdout=file) as cat:
                done = self.home.run('send', '--port', ours, PROGRAM)
                self.assertEqual(done.returncode, 0, done.stderr)
                wait_for(lambda: back.stat().st_size >= PROGRAM.stat().st_size)
                cat.kill()
            socat.kill()
        self.assert_same(back, PROGRAM)


if __name__ == '__main__':
    station.main()
