#!/usr/bin/env python3
"""Checks the letters of the views: each field and button has one, and no view has a letter twice.

    check_letters.py FOLDER

FOLDER holds the golden runs. A view is looked at where a run prints it whole (`view`), and each view that comes up in
a run must be printed in one. A control without a text of its own has the letter of the text in front of it; of fields
side by side the first is enough, since Tab goes on from there. What has no letter on purpose stands in WITHOUT.
"""

import pathlib
import re
import sys

UNLABELLED = ('field', 'list', 'choice')
LABELLED = ('button', 'check', 'radio')
BY_KEY = ('OK', 'Cancel')  # Enter and Esc press them

# View: ids of its controls that have no letter; Tab and the arrow keys reach them.
WITHOUT = {
    'COMMDLG': ['201'],  # the lower list has no text of its own
    'COMMSETTINGS': ['121', '122', '123', '124', '125', '126'],  # digits that stop bits and ports share
    'IDD_COLORS': [str(button) for button in range(201, 217)],  # sixteen colors
    'IDD_PLAY_MACRO': ['110'],  # the list that the view begins in
    'IDD_RECORD_MACRO': ['110'],  # the list behind the name
    'SearchDlg': ['104'],  # the radio button in front leads there by Tab
}


def views_of(lines):
    """Yields name and controls (id, kind, label) of each view that a record prints whole."""
    for at, line in enumerate(lines):
        if line != '> view' or at + 1 == len(lines):
            continue
        controls = []
        for row in lines[at + 2:]:
            if row.startswith(' '):  # of a list
                continue
            match = re.match(r'@(\d+) (\S+) "((?:[^"\\]|\\.)*)"', row)
            if not match:
                break
            controls.append(match.groups())
        yield lines[at + 1].split(' ')[0], controls


def letter_of(label):
    match = re.search(r'&([^&])', label.replace('&&', ''))
    return match.group(1).upper() if match else ''


def faults_of(name, controls):
    faults, used, without = [], {}, []
    for at, (control, kind, label) in enumerate(controls):
        before = controls[at - 1] if at > 0 else ('', '', '')
        letter = letter_of(label)
        if letter and letter in used:
            faults.append(f'{name} @{control} "{label}": @{used[letter]} has its letter too')
        if letter:
            used.setdefault(letter, control)
        if letter and kind == 'text' and (at + 1 == len(controls) or controls[at + 1][1] not in UNLABELLED):
            faults.append(f'{name} @{control} "{label}": its letter leads nowhere')
        led_to = before[1] == 'text' and letter_of(before[2]) or before[1] == kind == 'field'
        if kind in LABELLED and not letter and label not in BY_KEY or kind in UNLABELLED and not led_to:
            without.append(control)
    wanted = WITHOUT.get(name, [])
    faults += [f'{name} @{control}: it has no letter' for control in without if control not in wanted]
    return faults + [f'{name} @{control}: it has a letter, and WITHOUT says no' for control in wanted if control not in without]


def main():
    faults, shown, printed = set(), set(), set()
    for transcript in pathlib.Path(sys.argv[1]).glob('*/*.run'):
        lines = transcript.read_text().splitlines()
        shown.update(match.group(1) for line in lines if (match := re.match(r'view (\w+) "', line)))
        for name, controls in views_of(lines):
            printed.add(name)
            faults.update(faults_of(name, controls))
    faults.update(f'{name}: no golden run prints it whole' for name in shown - printed)
    print('\n'.join(sorted(faults)))
    return 1 if faults or not printed else 0


if __name__ == '__main__':
    sys.exit(main())
