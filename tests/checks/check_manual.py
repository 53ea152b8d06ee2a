#!/usr/bin/env python3
"""Checks the manual's table of commands against the menu of the program itself, and that its pictures and links exist.

    check_manual.py HEXLANE_SCRIPT MANUAL

Menu, entry and key of each row must be what the program has, in the program's order; what an entry does is written
by hand. The table is the one that begins with HEAD. The pictures are those of the folder beside it, no more and no
less, and a link within the manual leads to a heading.
"""

import difflib
import pathlib
import re
import subprocess
import sys

HEAD = '| Menu | Entry | Key | What it does |'


def unescape(text):
    return text.replace('\\x09', '\t').replace('\\"', '"').replace('\\\\', '\\').replace('&', '')


def menu_rows(program):
    """'menu | entry | key' in menu order, from the line `menu` of a scripted run."""
    record = subprocess.run([program], input='menu\n', check=True, capture_output=True, text=True).stdout
    popup, rows = '', []
    for line in record.splitlines():
        match = re.match(r'\s*(popup )?\d+ "(.*)"', line)
        if match and match.group(1):
            popup = unescape(match.group(2))
        elif match:
            name, _, key = unescape(match.group(2)).partition('\t')
            rows.append(f'{popup} | {name.strip()} | {key}')
    return rows


def manual_rows(manual):
    table = manual.read_text().partition(HEAD)[2].partition('\n\n')[0]
    cells = [[cell.strip() for cell in line.strip('|').split('|')] for line in table.splitlines()[2:]]
    return [' | '.join(row[:3]) for row in cells], [row[1] for row in cells if not row[3]]


def picture_faults(manual):
    shown = set(re.findall(r'!\[[^\]]+\]\(pictures/([^)]+)\)', manual.read_text()))
    there = {file.name for file in (manual.parent / 'pictures').iterdir()}
    return ([f'pictures/{name}: the manual shows it, but it is not there' for name in sorted(shown - there)] +
            [f'pictures/{name}: the manual does not show it' for name in sorted(there - shown)])


def link_faults(manual):
    """Links as the help window resolves them: small letters, blanks as hyphens, no punctuation."""
    text = manual.read_text()
    headings = {re.sub(r'[^\w-]', '', heading.lower().replace(' ', '-')) for heading in re.findall(r'^#+ (.*)$', text, re.M)}
    return [f'#{link}: no such heading' for link in re.findall(r'\]\(#([^)]+)\)', text) if link not in headings]


def main():
    program, manual = sys.argv[1], pathlib.Path(sys.argv[2])
    rows, untold = manual_rows(manual)
    difference = list(difflib.unified_diff(rows, menu_rows(program), str(manual), 'the program', lineterm='', n=0))
    faults = difference + [f'{entry}: the manual does not say what it does' for entry in untold]
    faults += picture_faults(manual) + link_faults(manual)
    print('\n'.join(faults))
    return 1 if faults or not rows else 0


if __name__ == '__main__':
    sys.exit(main())
