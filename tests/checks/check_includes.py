#!/usr/bin/env python3
"""Checks the #include lines of src against the rules in includes.txt, and prints the rooms with the includes between them.

    check_includes.py RULES SRC

Exits with 1 for an include that its room may not have, for a room that names one below itself, and for a word of a rule
that no include uses. Only files in folders count: the programs' own main files, directly in SRC, put the rooms together
and may include anything.
"""

import collections
import fnmatch
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
CONDITION = re.compile(r'^\s*#\s*(if|ifdef|ifndef|elif|else)\b')


class Rules:
    def __init__(self, path):
        self.lists = {}    # 'plain', 'conditions', 'screens', 'screen files': the words of these lines
        self.allowed = {}  # folder: what it may include, folders in their order
        for line in path.read_text().splitlines():
            line = line.split('#')[0].strip()
            if ' = ' in line:
                name, words = line.split(' = ')
                self.lists[name] = words.split()
            elif line:
                place, words = line.split(':')
                self.allowed[place] = words.split()
        self.used = collections.Counter()  # (folder, word): includes

    def turned_round(self):
        """Rooms of the core that name a room below themselves."""
        above = []
        for place, words in self.allowed.items():
            if '/' not in place:
                yield from ((place, word) for word in words if word[0] != '<' and word not in above)
            above.append(place)

    def of_angle(self, name, allowed):
        """The word that allows <name>, or None."""
        if re.fullmatch(r'(Qt\w*/)?Q\w+', name):
            kinds = ['<qt>']
        elif re.fullmatch(r'[a-z_0-9]+', name):
            kinds = ['<standard>'] + (['<plain>'] if name in self.lists['plain'] else [])
        else:
            kinds = ['<system>']
        return next((kind for kind in kinds if kind in allowed), None)

    def is_screen_only(self, name, path):
        """Whether the header is for screens alone and the file of a rule room is none."""
        if path.split('/')[0] not in self.lists['rule rooms']:
            return False
        screen = any(fnmatch.fnmatch(path, f'*/{pattern}') for pattern in self.lists['screens'])
        return not screen and any(fnmatch.fnmatch(name, pattern) for pattern in self.lists['of screens'])


def faults_of(name, text, rules, source):
    """Yields (line number, what is wrong) for one file."""
    folder = name.rpartition('/')[0]
    if folder not in rules.allowed:
        yield 1, f'the folder {folder} has no rule'
        return
    allowed = rules.allowed[folder]
    conditions_allowed = folder.startswith('platform/') or name in rules.lists['conditions']
    for number, line in enumerate(text.splitlines(), 1):
        if CONDITION.match(line) and not conditions_allowed:
            yield number, 'a preprocessor condition: back ends are chosen by what a program links'
        match = INCLUDE.match(line)
        if not match:
            continue
        included = match.group(2)
        if match.group(1) == '<':
            word = rules.of_angle(included, allowed)
            rules.used[folder, word] += 1
            if word is None:
                yield number, f'{folder} may not include <{included}>'
            continue
        target = included.rpartition('/')[0]
        rules.used[folder, target] += 1
        if not (source / included).is_file():
            yield number, f'"{included}" is not named from src'
        elif target != folder and (target not in allowed or included.endswith('_internal.h')):
            yield number, f'{folder} may not include "{included}"'
        elif rules.is_screen_only(included, name):
            yield number, f'a rule of {folder} includes no "{included}": screens do ({" ".join(rules.lists["screens"])})'


def main():
    source = pathlib.Path(sys.argv[2])
    rules = Rules(pathlib.Path(sys.argv[1]))
    files = sorted(path for path in source.rglob('*') if path.suffix in ('.h', '.cpp') and path.parent != source)
    faults = [f'{path}:{number}: {what}' for path in files
              for number, what in faults_of(path.relative_to(source).as_posix(), path.read_text(), rules, source)]
    for room, word in rules.turned_round():
        faults.append(f'{sys.argv[1]}: {room} names {word}, which does not stand above it')
    for room, words in rules.allowed.items():
        print(f'{room:18}', *(f'{word} {rules.used[room, word]}' for word in words if word[0] != '<'))
        faults += [f'{sys.argv[1]}: {room} does not use {word}' for word in words if not rules.used[room, word]]
    print(*faults, sep='\n')
    print(f'{len(files)} files, {len(faults)} faults')
    return 1 if faults or not files else 0


if __name__ == '__main__':
    sys.exit(main())
