"""The programs of the serial station for tests: a home with machine sets, hexlane-cli, and the control simulator.

Each test program takes the programs and what is preloaded into them (see main). Nothing here waits for a fixed time: a
simulated machine begins when its start key is pressed, and that happens when the other side has said that it is ready.
"""

import argparse
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TIMEOUT_S = 60  # of any single step; a step that works takes a fraction of a second
TOP = pathlib.Path(__file__).resolve().parents[2]

programs = argparse.Namespace(cli=None, simulator=None, flush_fails=None, bytes_lost=None)


class Home:
    """A folder of the program's own with machine sets; gone at the end."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix='hexlane-peers-', dir='/tmp'))
        (self.folder / 'ZOLT').mkdir()

    def path(self, name):
        return self.folder / name

    def write(self, name, data):
        self.path(name).write_bytes(data)
        return self.path(name)

    def preloaded(self, library):
        """An environment in which the programs load a library of tests first."""
        link = self.path(library.name)  # a path without blanks, which would end it
        link.symlink_to(library)
        return self.environment(LD_PRELOAD=str(link), ASAN_OPTIONS='verify_asan_link_order=0')

    def environment(self, **more):
        kept = {name: value for name, value in os.environ.items() if not name.startswith('HEXLANE_')}
        return kept | {'HEXLANE_HOME': str(self.folder), 'HEXLANE_LINE_PACING': 'off'} | more

    def run(self, *words, **more):
        """Runs hexlane-cli to its end."""
        return subprocess.run([programs.cli, *map(str, words)], env=self.environment(), cwd=self.folder,
                              capture_output=True, text=True, timeout=TIMEOUT_S, check=False, **more)

    def set_machine(self, number, settings):
        done = self.run('machines', 'set', number, *(f'{name}={value}' for name, value in settings.items()))
        assert done.returncode == 0, done.stderr

    def close(self):
        shutil.rmtree(self.folder, ignore_errors=True)


class Running:
    """A program under way. Standard error is a file, so that it never stands still for a full pipe."""

    def __init__(self, words, home, environment=None, **more):
        self.errors = tempfile.TemporaryFile()
        self.last_errors = ''
        self.process = subprocess.Popen([str(word) for word in words], cwd=home.folder, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=self.errors, text=True,
                                        env=environment or home.environment(), **more)

    def error_text(self):
        if not self.errors.closed:
            self.errors.seek(0)
            self.last_errors = self.errors.read().decode(errors='backslashreplace')
        return self.last_errors

    def finish(self):
        """Waits for its end. Gives what it still had to print."""
        text, _ = self.process.communicate(timeout=TIMEOUT_S)
        return text

    def interrupt(self):
        self.process.send_signal(signal.SIGINT)

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        if self.process.poll() is None:
            self.process.kill()
        self.process.communicate()
        self.error_text()
        self.errors.close()


class Simulator(Running):
    """A machine. `line` is the pty that hexlane-cli opens; `report` holds the numbers of its end."""

    def __init__(self, home, *options):
        super().__init__([programs.simulator, *options], home)
        first = self.process.stdout.readline()
        if not first.startswith('line: '):
            raise AssertionError(f'the simulator did not start: {first}{self.error_text()}')
        self.line = first[len('line: '):].strip()
        self.report = {}

    def press_start(self):
        self.process.stdin.write('\n')
        self.process.stdin.flush()

    def finish(self):
        text = super().finish()
        self.report = {name: int(value) for name, value in re.findall(r'^(.*): +(\d+)$', text, re.M)}
        self.report['text'] = text
        return self.process.returncode


class Cli(Running):
    """hexlane-cli with a transfer that is ready: its port is open and its file prepared."""

    def __init__(self, home, *words, **more):
        super().__init__([programs.cli, *words], home, **more)
        self.receipt = {}
        self.wait_until_ready()

    def wait_until_ready(self):
        wait_for(lambda: self.process.poll() is not None or
                 re.search(r'^(sending|receiving) ', self.error_text(), re.M))

    def finish(self):
        text = super().finish()
        self.receipt = dict(re.findall(r'^(\w+) +(.*)$', text, re.M))
        return self.process.returncode


def wait_for(condition, pause=0.005):
    """Looks again and again until the condition holds."""
    deadline = time.monotonic() + TIMEOUT_S
    while not condition():
        if time.monotonic() > deadline:
            raise AssertionError('what the test waits for has not come')
        time.sleep(pause)


class Case(unittest.TestCase):
    """A test with a home of its own."""

    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.close)

    def all_well(self, simulator, cli):
        """Both sides end, and neither has anything to complain about."""
        cli_code = cli.finish()
        simulator_code = simulator.finish()
        told = f'{cli.error_text()}{cli.receipt}\n{simulator.report["text"]}{simulator.error_text()}'
        self.assertEqual((cli_code, simulator_code), (0, 0), told)


def main():
    parser = argparse.ArgumentParser()
    for name in vars(programs):
        parser.add_argument('--' + name.replace('_', '-'), required=True, type=lambda path: pathlib.Path(path).resolve())
    _, rest = parser.parse_known_args(namespace=programs)
    unittest.main(module='__main__', argv=[sys.argv[0], *rest], verbosity=2)
