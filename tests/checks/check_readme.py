#!/usr/bin/env python3
"""Runs the README's example of a scripted run and compares what it prints with what the README shows.

    check_readme.py HEXLANE_SCRIPT TOP

The README holds the script in its first block marked ```script and the record of the run in the block marked
```record behind it.
"""

import difflib
import pathlib
import re
import subprocess
import sys


def main():
    program, top = sys.argv[1], pathlib.Path(sys.argv[2])
    readme = (top / 'README.md').read_text()
    script, record = (re.search(rf'^```{kind}\n(.*?)^```$', readme, re.M | re.S).group(1)
                      for kind in ('script', 'record'))
    done = subprocess.run([program], input=script, capture_output=True, text=True, cwd=top, check=False)
    print(done.stderr, end='')
    difference = list(difflib.unified_diff(record.splitlines(), done.stdout.splitlines(), 'README.md', 'the run',
                                           lineterm=''))
    print('\n'.join(difference))
    return 1 if difference or done.returncode != 0 else 0


if __name__ == '__main__':
    sys.exit(main())
