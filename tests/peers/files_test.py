#!/usr/bin/env python3
"""The commands of hexlane-cli that work on files: compare beside the tool of that name, and print."""

import random
import resource
import shutil
import signal
import subprocess
import unittest

import station
from station import Case, Running


def numbers(text):
    return {name: int(value) for name, value in (line.split(':') for line in text.splitlines() if ':' in line)}


class CompareTest(Case):
    def compare(self, left, right, *options):
        self.home.write('left.nc', left)
        self.home.write('right.nc', right)
        return self.home.run('compare', *options, 'left.nc', 'right.nc')

    def test_counts_and_exit_codes(self):
        done = self.compare(b'A\r\nB 1\r\nC\r\n', b'A\r\nB1\r\nC\r\n')
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        self.assertTrue(done.stdout.startswith('Files are identical\n'))
        done = self.compare(b'A\r\nB 1\r\nC\r\n', b'A\r\nB1\r\nC\r\n', '--keep-spaces')
        self.assertEqual((done.returncode, numbers(done.stdout)),
                         (1, {'Matches': 3, 'Mods': 1, 'Inserts': 0, 'Deletes': 0}))
        done = self.compare(b'', b'A\r\n')
        self.assertEqual((done.returncode, numbers(done.stdout)['Inserts']), (1, 1))
        self.assertEqual([path.name for path in self.home.path('ZOLT/ZOLTTMP').iterdir()], [])

    def test_the_verdict_is_that_of_diff(self):
        source = random.Random(4)
        for _ in range(60):
            rows = [source.choice([b'A', b'B ', b' B', b'', b'\t']) + b'\r\n' for _ in range(source.randrange(12))]
            other = [row for row in rows if source.random() > 0.05] + [b'C'] * source.randrange(2)
            left, right = b''.join(rows), b''.join(other)
            for option, peer in (('--keep-spaces', []), (None, ['-w'])):
                done = self.compare(left, right, *([option] if option else []))
                diff = subprocess.run(['diff', '-q', *peer, self.home.path('left.nc'), self.home.path('right.nc')],
                                      stdout=subprocess.DEVNULL, check=False)
                self.assertEqual(done.returncode, diff.returncode, (left, right, option))

    def test_report(self):
        self.home.write('report.txt', b'an old one, longer than what replaces it' * 100)
        done = self.compare(b'A\r\nB\r\nC\r\n', b'A\r\nX\r\nC\r\nY\r\n', '--report', 'report.txt', '--look-ahead', 1)
        self.assertEqual(done.returncode, 1, done.stderr)
        head = b'  left.nc'.ljust(45) + b'right.nc\r\n\r\n\r\n'
        rows = [b'A'.ljust(36) + b'<===> ' + b'A'.ljust(36), b'B'.ljust(36) + b'<MOD> ' + b'X'.ljust(36),
                b'C'.ljust(36) + b'<===> ' + b'C'.ljust(36), b' ' * 36 + b'DEL-> ' + b'Y'.ljust(36)]
        self.assertEqual(self.home.path('report.txt').read_bytes(), head + b''.join(row + b'\r\n' for row in rows))
        self.compare(b'A\r\nB\r\nC\r\n', b'A\r\nX\r\nC\r\nY\r\n', '--report', 'report.txt', '--differences-only')
        self.assertEqual(self.home.path('report.txt').read_bytes(), head + b''.join(row + b'\r\n' for row in rows[1::2]))

    def test_trouble_is_2(self):
        self.home.write('left.nc', b'A\r\n')
        for words in (('left.nc',), ('left.nc', 'left.nc', 'left.nc'), ('left.nc', 'missing.nc'), ('left.nc', '.'),
                      ('--look-ahead', 0, 'left.nc', 'left.nc'), ('--look-ahead', 100, 'left.nc', 'left.nc'),
                      ('--differences-only', 'left.nc', 'left.nc'), ('--what', 'left.nc', 'left.nc'),
                      ('left.nc', 'left.nc', '--report'), ('left.nc', 'left.nc', '--report', 'missing/report'),
                      ('left.nc', 'left.nc', '--report', './left.nc')):
            with self.subTest(words=words):
                done = self.home.run('compare', *words)
                self.assertEqual((done.returncode, done.stdout), (2, ''))
                self.assertTrue(done.stderr)
        self.assertEqual(self.home.path('left.nc').read_bytes(), b'A\r\n')
        with open('/dev/full', 'wb') as full:
            done = subprocess.run([station.programs.cli, 'compare', 'left.nc', 'left.nc'], stdout=full,
                                  stderr=subprocess.PIPE, cwd=self.home.folder, env=self.home.environment(), check=False)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b'standard output', done.stderr)

    def test_an_interrupt_ends_it_and_leaves_nothing(self):
        self.home.write('rows.nc', b'\n' * 40000000)
        self.home.write('same.nc', b'\n' * 40000000)
        with Running([station.programs.cli, 'compare', 'rows.nc', 'same.nc'], self.home) as running:
            wanted = self.home.path('ZOLT/ZOLTTMP')
            while running.process.poll() is None and not (wanted.is_dir() and any(wanted.iterdir())):
                pass
            running.process.send_signal(signal.SIGTERM)
            running.finish()
        self.assertIn(running.process.returncode, (0, 2))  # 0: it was faster
        self.assertEqual(list(wanted.iterdir()), [])


class PrintTest(Case):
    @unittest.skipIf(shutil.which('pdftotext') is None, 'pdftotext is not installed')
    def test_pages(self):
        rows = [f'N{number} G0 X{number}' for number in range(1, 201)]
        self.home.write('part.nc', '\r\n'.join(rows).encode() + b'\r\n\xc4\x80(\r\n')
        self.assertEqual(self.home.run('print', '--pdf', 'out.pdf', 'part.nc').returncode, 0)
        pages = self.pages('out.pdf')
        self.assertEqual([len(page) for page in pages], [50, 51, 51, 50, 0])  # the end row fills the fourth page
        self.assertEqual(pages[0], [str(self.home.path('part.nc'))] + rows[:49])
        self.assertEqual(pages[3], rows[151:] + ['\u00c4\u20ac('])
        self.assertEqual(self.home.run('print', '--rows', '3-4', '--pdf', 'out.pdf', 'part.nc').returncode, 0)
        self.assertEqual(self.pages('out.pdf'), [[str(self.home.path('part.nc')), rows[2], rows[3]]])

    def pages(self, name):
        text = subprocess.run(['pdftotext', '-layout', '-enc', 'UTF-8', self.home.path(name), '-'], stdout=subprocess.PIPE,
                              check=True).stdout.decode()
        return [[line for line in page.splitlines() if line] for page in text.split('\f')[:-1]]

    def test_trouble(self):
        self.home.write('part.nc', b'M30\r\n')
        for code, words in ((2, ()), (2, ('part.nc',)), (2, ('--pdf', 'out.pdf')), (2, ('--pdf', 'o', 'part.nc', 'part.nc')),
                            (2, ('--rows', '4-3', '--pdf', 'o', 'part.nc')), (2, ('--rows', '0-1', '--pdf', 'o', 'part.nc')),
                            (3, ('--pdf', 'o', 'missing.nc')), (3, ('--pdf', 'missing/o', 'part.nc')),
                            (3, ('--pdf', '.', 'part.nc')), (3, ('--pdf', 'part.nc', 'part.nc'))):
            with self.subTest(words=words):
                done = self.home.run('print', *words)
                self.assertEqual(done.returncode, code, done.stderr)
                self.assertRegex(done.stderr, r'\Ahexlane-cli: (?!Error)\S')
                self.assertFalse(self.home.path('o').exists())
                self.assertEqual(self.home.path('part.nc').read_bytes(), b'M30\r\n')

    def test_a_full_disk_leaves_the_old_pages(self):
        self.home.write('part.nc', b'M30\r\n' * 2000)
        self.home.write('out.pdf', b'%PDF-old')

        def allow_little():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))

        done = self.home.run('print', '--pdf', 'out.pdf', 'part.nc', preexec_fn=allow_little)
        self.assertEqual(done.returncode, 3)
        self.assertTrue(done.stderr)
        self.assertEqual([path.name for path in self.home.folder.glob('out*')], ['out.pdf'])
        self.assertEqual(self.home.path('out.pdf').read_bytes(), b'%PDF-old')


if __name__ == '__main__':
    station.main()
