#!/usr/bin/env python3
"""Checks that a static library calls nothing but what a list allows.

    check_symbols.py NM LIBRARY ALLOWED

Prints each other symbol that the library needs, with the object file that needs it, and exits with 1.
"""

import pathlib
import re
import subprocess
import sys


def read_patterns(path):
    lines = (line.split('#')[0].strip() for line in path.read_text().splitlines())
    return re.compile('|'.join(f'(?:{line})' for line in lines if line))


def symbols_of(nm, library):
    """(object file, type letter, demangled name) of every symbol."""
    out = subprocess.run([nm, '-C', library], check=True, capture_output=True, text=True).stdout
    member = ''
    for line in out.splitlines():
        if line.endswith('.o:'):
            member = line[:-1]
        match = re.match(r'[0-9a-f ]{16} (\w) (.+)', line)
        if match:
            yield member, match.group(1), match.group(2)


def main():
    nm, library, allowed_path = sys.argv[1:4]
    allowed = read_patterns(pathlib.Path(allowed_path))
    symbols = list(symbols_of(nm, library))
    defined = {name for _, kind, name in symbols if kind not in 'Uw'}
    faults = 0
    for member, kind, name in symbols:
        if kind in 'Uw' and name not in defined and not allowed.fullmatch(name):
            print(f'{member} needs {name}')
            faults += 1
    print(f'{len(defined)} symbols defined, {faults} faults')
    return 1 if faults or not defined else 0


if __name__ == '__main__':
    sys.exit(main())
