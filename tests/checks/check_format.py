#!/usr/bin/env python3
"""Checks that all C++ is laid out as .clang-format says.

    check_format.py CLANG_FORMAT TOP

`clang-format -i FILE` puts a file right. Another version of clang-format than 14 may disagree with this one.
"""

import pathlib
import subprocess
import sys


def main():
    clang_format, top = sys.argv[1], pathlib.Path(sys.argv[2])
    files = sorted(str(path) for folder in ('src', 'tests', 'bench', 'tools')
                   for path in (top / folder).rglob('*') if path.suffix in ('.h', '.cpp'))
    done = subprocess.run([clang_format, '--dry-run', '--Werror', *files], check=False)
    print(f'{len(files)} files')
    return done.returncode if files else 1


if __name__ == '__main__':
    sys.exit(main())
