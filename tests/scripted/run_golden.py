#!/usr/bin/env python3
"""Plays golden runs: folders that hold a script and the record that it must give.

    run_golden.py --program HEXLANE_SCRIPT [--bless] FOLDER...

What a folder may hold:

    script              the first script; script.2, script.3 and so on run behind it on the same home
    expected            the records of all of them, in order
    exit                the exit codes of the scripts, with blanks between them; without the file all must be 0
    env, env.N          NAME=VALUE lines for all scripts, and for the N-th (from 1) alone; $WORK, $HOME_DIR and
                        $EXAMPLES stand for the folders of the run
    anything else       input: copied into the folder where the scripts run ($WORK)

Home and work folder are fresh for each golden run and have no dot in their paths. A folder without `expected`
fails. --bless writes `expected`, for a person to look at; a wrong exit code fails all the same.
"""

import argparse
import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TIMEOUT_S = 110
OWN_FILES = re.compile(r'(script|env)(\.\d+)?|expected|exit')
TOP = pathlib.Path(__file__).resolve().parents[2]


def scripts_of(folder):
    """`script`, `script.2`, ... up to the first number that is missing; a gap is a mistake."""
    names = ['script'] + [f'script.{n}' for n in range(2, 100)]
    found = [folder / name for name in names if (folder / name).is_file()]
    if [path.name for path in found] != names[:len(found)] or not found:
        raise ValueError('the scripts are not script, script.2, script.3 and so on')
    return found


def expand(text, places):
    for name, path in places.items():
        text = text.replace(name, str(path))
    return text


def read_environment(path, places):
    if not path.is_file():
        return {}
    lines = [line for line in path.read_text().splitlines() if line.strip() and not line.startswith('#')]
    return dict(expand(line, places).split('=', 1) for line in lines)


def base_environment(places):
    """The caller's, without what would change a run."""
    kept = {name: value for name, value in os.environ.items() if name != 'TMP' and not name.startswith('HEXLANE_')}
    return kept | {'HEXLANE_EXAMPLES': str(places['$EXAMPLES'])}


def copy_inputs(folder, work):
    for path in folder.iterdir():
        if OWN_FILES.fullmatch(path.name):
            continue
        if path.is_dir() and not path.is_symlink():
            shutil.copytree(path, work / path.name, symlinks=True)
        else:
            shutil.copy2(path, work / path.name, follow_symlinks=False)


def play(program, folder, scratch):
    """Runs the folder's scripts. Gives (record, [exit code], text of standard error)."""
    places = {'$HOME_DIR': scratch / 'home', '$WORK': scratch / 'work', '$EXAMPLES': TOP / 'examples'}
    (places['$HOME_DIR'] / 'ZOLT').mkdir(parents=True)
    places['$WORK'].mkdir()
    copy_inputs(folder, places['$WORK'])
    record, codes, errors = b'', [], ''
    for number, script in enumerate(scripts_of(folder), 1):
        environment = base_environment(places) | read_environment(folder / 'env', places)
        environment |= read_environment(folder / f'env.{number}', places)
        done = subprocess.run([program, '--home', places['$HOME_DIR'], script], cwd=places['$WORK'],
                              env=environment, capture_output=True, timeout=TIMEOUT_S, check=False)
        if number > 1:
            record += f'==== {script.name}\n'.encode()
        record += done.stdout
        codes.append(done.returncode)
        errors += done.stderr.decode(errors='backslashreplace')
    return record, codes, errors


def wanted_codes(folder, count):
    path = folder / 'exit'
    codes = [int(word) for word in path.read_text().split()] if path.is_file() else []
    return codes + [0] * (count - len(codes))


def print_difference(folder, wanted, got):
    lines = [text.decode(errors='backslashreplace').splitlines() for text in (wanted, got)]
    for line in difflib.unified_diff(*lines, str(folder / 'expected'), 'this run', lineterm=''):
        print(line)


def run_folder(program, folder, bless):
    """True when the folder's run is as expected."""
    scratch = pathlib.Path(tempfile.mkdtemp(prefix='hexlane-golden-', dir='/tmp'))
    try:
        record, codes, errors = play(program, folder, scratch)
    except (ValueError, OSError, subprocess.TimeoutExpired) as fault:
        print(f'{folder}: {fault}')
        return False
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
    expected = folder / 'expected'
    right = True
    if codes != wanted_codes(folder, len(codes)):
        print(f'{folder}: exit codes {codes}, wanted {wanted_codes(folder, len(codes))}\n{errors}', end='')
        right = False
    elif bless:
        expected.write_bytes(record)
    if not expected.is_file():
        print(f'{folder}: there is no file `expected`')
        return False
    if expected.read_bytes() != record:
        print_difference(folder, expected.read_bytes(), record)
        right = False
    return right


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--program', required=True, type=pathlib.Path)
    parser.add_argument('--bless', action='store_true')
    parser.add_argument('folders', nargs='+', type=pathlib.Path, metavar='FOLDER')
    options = parser.parse_args()
    program = options.program.resolve()
    failed = [folder for folder in options.folders if not run_folder(program, folder.resolve(), options.bless)]
    print(f'{len(options.folders)} golden runs, {len(failed)} failed')
    return 1 if failed else 0


if __name__ == '__main__':
    sys.exit(main())
