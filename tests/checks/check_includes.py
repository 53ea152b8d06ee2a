#!/usr/bin/env python3
"""Checks the #include lines of src against the rules in includes.txt.

    check_includes.py RULES SRC

Prints each line that breaks a rule and exits with 1 if there is one. Only files in folders count: the
programs' own main files, directly in SRC, put the layers together and may include anything.
"""

import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
CONDITION = re.compile(r'^\s*#\s*(if|ifdef|ifndef|elif|else)\b')


class Rules:
    def __init__(self, path):
        self.lists = {}    # 'plain', 'conditions': the names in them
        self.allowed = {}  # folder, or folder/file: what it may include
        for line in path.read_text().splitlines():
            line = line.split('#')[0].strip()
            if ' = ' in line:
                name, words = line.split(' = ')
                self.lists[name] = set(words.split())
            elif line:
                place, words = line.split(':')
                self.allowed[place] = set(words.split())


def is_standard(name):
    return re.fullmatch(r'[a-z_0-9]+', name) is not None


def is_qt(name):
    return re.fullmatch(r'(Qt\w*/)?Q\w+', name) is not None


def angle_allowed(name, allowed, plain):
    if is_qt(name):
        return '<qt>' in allowed
    if is_standard(name):
        return '<standard>' in allowed or ('<plain>' in allowed and name in plain)
    return '<system>' in allowed


def quote_allowed(name, folder, allowed):
    target = name.rpartition('/')[0]
    if target == folder or name in allowed:
        return True
    return target in allowed and not name.endswith('_internal.h')


def faults_of(path, source, rules):
    """Yields (line number, what is wrong) for one file."""
    name = path.relative_to(source).as_posix()
    folder = name.rpartition('/')[0]
    if folder not in rules.allowed:
        yield 1, f'the folder {folder} has no rule'
        return
    allowed = rules.allowed[folder] | rules.allowed.get(name, set())
    conditions_allowed = folder.startswith('platform/') or name in rules.lists['conditions']
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if CONDITION.match(line) and not conditions_allowed:
            yield number, 'a preprocessor condition: back ends are chosen by what a program links'
        match = INCLUDE.match(line)
        if not match:
            continue
        angle, included = match.group(1) == '<', match.group(2)
        if angle and not angle_allowed(included, allowed, rules.lists['plain']):
            yield number, f'{folder} may not include <{included}>'
        if not angle and not (source / included).is_file():
            yield number, f'"{included}" is not named from src'
        elif not angle and not quote_allowed(included, folder, allowed):
            yield number, f'{folder} may not include "{included}"'


def main():
    source = pathlib.Path(sys.argv[2])
    rules = Rules(pathlib.Path(sys.argv[1]))
    files = sorted(path for path in source.rglob('*') if path.suffix in ('.h', '.cpp') and path.parent != source)
    faults = 0
    for path in files:
        for number, what in faults_of(path, source, rules):
            print(f'{path}:{number}: {what}')
            faults += 1
    print(f'{len(files)} files, {faults} faults')
    return 1 if faults or not files else 0


if __name__ == '__main__':
    sys.exit(main())
