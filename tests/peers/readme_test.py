#!/usr/bin/env python3
"""Follows the README's example in two terminals: what stands in its blocks ```terminal-1 and ```terminal-2."""

import re
import shutil
import subprocess

import station
from station import TIMEOUT_S, TOP, Case, Running, programs, wait_for


class ReadmeTest(Case):
    def test_two_terminals(self):
        blocks = re.findall(r'^```(terminal-[12])\n(.*?)^```$', (TOP / 'README.md').read_text(), re.M | re.S)
        self.assertEqual([name for name, _ in blocks], ['terminal-1', 'terminal-2'] * 2)
        tools = self.home.path('build/release/bin')
        tools.mkdir(parents=True)
        for program in (programs.cli, programs.simulator):
            (tools / program.name).symlink_to(program)
        shutil.copytree(TOP / 'examples', self.home.path('examples'))
        for (_, machine), (_, ours) in zip(blocks[::2], blocks[1::2]):
            with Running(['sh', '-ec', machine], self.home) as first:
                wait_for(lambda: self.home.path('machine').is_symlink() or first.process.poll() is not None)
                done = subprocess.run(['sh', '-exc', ours], cwd=self.home.folder, env=self.home.environment(),
                                      capture_output=True, text=True, timeout=TIMEOUT_S, check=False)
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertIn('all was well', first.finish())
                self.assertEqual(first.process.returncode, 0, first.error_text())


if __name__ == '__main__':
    station.main()
