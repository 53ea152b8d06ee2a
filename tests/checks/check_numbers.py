#!/usr/bin/env python3
"""Checks numbers that the manual tells against the constants of the code.

    check_numbers.py SRC MANUAL

Each row: an expression of constants, and phrases of the manual with # in the number's place. Every place of a phrase must
give the number, and each phrase must have a place: a sentence that is written anew is noticed too.
"""

import pathlib
import re
import sys

NUMBERS = [
    ('MAX_ROWS', ['Rows of a program \\| #,']),
    ('MAX_FILE_SIZE', ['Size of a file \\| # bytes']),
    ('ROW_FETCH_MAX', ['shows its first # characters', 'Characters of a row that are shown \\| #']),
    ('ROW_EDIT_MAX', ['can grow to # characters', 'has at most # characters', 'join can make \\| #,']),
    ('ROW_EDIT_MAX + 1', ['\\(# by overwriting\\)', 'by overwriting # \\|']),
    ('ROW_PASTE_MAX', ['a row longer than # characters is not pasted', 'A row can hold # characters',
                       'become longer than # characters']),
    ('SEARCH_TEXT_SIZE - 1', ['Text to find or to put in its place \\| # characters']),
    ('PATH_SIZE - 1', ['Length of a path \\| # bytes']),
    ('MAX_MACROS', ['There is room for # macros', 'There are #\\. Delete one', 'characters of a name \\| #,']),
    ('MACRO_RING_SIZE - 1', ['A macro holds # steps', 'characters of a name \\| 50, #,']),
    ('MACRO_NAME_SIZE - 1', ['characters of a name \\| 50, 999, # \\|']),
    ('MACHINE_COUNT', ['Machines, ports \\| #,', 'keeps # machines']),
    ('PORT_COUNT', ['Machines, ports \\| 16, #;']),
    ('MACHINE_NAME_SIZE - 1', ['of up to # characters\\. \\*\\*Save']),
    ('LOG_LIMIT // 1024', ['has grown to # KB']),
]
WORDS = {'sixteen': '16'}
CONSTANT = re.compile(r"^ *constexpr [\w:]+ (\w+) = ([\w' *<+-]+);", re.M)


def constants_of(source):
    """Every constant with a plain value; of two definitions (tiny limits stand first) the last."""
    found = {}
    for path in sorted(source.rglob('*.h')):
        for name, value in CONSTANT.findall(path.read_text()):
            try:
                found[name] = eval(value.replace("'", ''), {}, found)  # the project's own headers
            except (NameError, SyntaxError):
                pass
    return found


def main():
    constants = constants_of(pathlib.Path(sys.argv[1]))
    manual = ' '.join(pathlib.Path(sys.argv[2]).read_text().split())
    places, faults = 0, []
    for expression, phrases in NUMBERS:
        wanted = eval(expression, {}, constants)
        for phrase in phrases:
            told = re.findall(phrase.replace('#', r'([\d,]*\d|sixteen)'), manual)
            places += len(told)
            faults += [f'"{phrase}": the manual says {number}, {expression} is {wanted}' for number in told
                       if WORDS.get(number, number).replace(',', '') != str(wanted)]
            faults += [] if told else [f'"{phrase}" ({expression}) is not in the manual']
    print(*faults, sep='\n')
    print(f'{places} numbers, {len(faults)} faults')
    return 1 if faults else 0


if __name__ == '__main__':
    sys.exit(main())
