#!/usr/bin/env python3
"""Plays golden runs: transcripts of what a person does and what the program answers.

    run_golden.py --program HEXLANE_SCRIPT [--bless] FILE.run...

A transcript is read from top to bottom:

    > LINE              a line of the script
    >> LINE             one that `later` had laid ready, when it acts: an answer
    # TEXT, blank       a comment, for the `> ` line below it
    ==== run            the lines below are a script of their own, played behind the others on the same home
    ==== env NAME=VALUE for this script alone; $WORK, $HOME_DIR and $EXAMPLES stand for the folders of the run
    ==== exit N         the exit code of this script, when it is not 0
    ==== data FOLDER    what lies in data/FOLDER is copied into the folder where the scripts run ($WORK)
    anything else       what the program answered

Home and work folder are fresh for each transcript and have no dot in their paths. A transcript without answers
fails. --bless rewrites the answers in place, for a person to look at, and ends with a list of what has changed; a
wrong exit code fails all the same.
"""

import argparse
import collections
import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TIMEOUT_S = 110
HERE = pathlib.Path(__file__).resolve().parent
EXAMPLES = HERE.parents[1] / 'examples'
DIRECTIVE = re.compile(r'==== (run|env (\w+)=(.*)|exit (\d+)|data (\S+))')
COMMENT = re.compile(r"""((?:"(?:[^"\\]|\\.)*"|[^"#])*)#""")  # a '#' outside of quotes, and what stands before it


class Script:
    """One script of a transcript: what is not an answer, in order."""

    def __init__(self):
        self.head = []         # its `==== ` lines, and comments above them
        self.lines = []        # comments, and script lines as they stand behind '> '
        self.environment = {}
        self.exit_code = 0
        self.data = []
        self.answers = 0

    def text(self):
        return ''.join(line + '\n' for line in self.lines)


def read_transcript(text):
    """The scripts of a transcript. ValueError for a line that makes no sense."""
    scripts = [Script()]
    for number, line in enumerate(text.splitlines(), 1):
        script = scripts[-1]
        if line.startswith('==== '):
            match = DIRECTIVE.fullmatch(line)
            if not match:
                raise ValueError(f'line {number}: there is no `{line}`')
            if match.group(1) == 'run':
                scripts.append(Script())
                continue
            script.head += script.lines + [line]
            script.lines = []
            if script.answers:
                raise ValueError(f'line {number}: `{line}` has to stand in front of its script')
            if match.group(2):
                script.environment[match.group(2)] = match.group(3)
            script.exit_code = int(match.group(4) or script.exit_code)
            script.data += [match.group(5)] if match.group(5) else []
        elif line.startswith('> '):
            script.lines.append(line[2:])
        elif line.startswith('#') or not line:
            script.lines.append(line)
        else:
            script.answers += 1
    return scripts


def is_comment(line):
    return not line.strip() or line.lstrip().startswith('#')


def echo_of(line):
    """How the program's record shows a script line."""
    match = COMMENT.match(line)
    shown = (match.group(1) if match else line).strip(' \t\r')
    return '> ' + ''.join(c if ' ' <= c <= '~' else ''.join(f'\\x{b:02X}' for b in c.encode()) for c in shown)


def transcript_of(script, record):
    """The script's lines with the record's answers below them."""
    lines = list(script.head)
    waiting = collections.deque(script.lines)

    def take_line():
        while waiting and is_comment(waiting[0]):
            lines.append(waiting.popleft())
        lines.append('> ' + waiting.popleft())

    def next_echo():
        return next((echo_of(line) for line in waiting if not is_comment(line)), None)

    for answer in record:
        if answer == next_echo():
            take_line()
        else:
            lines.append('>' + answer if answer.startswith('> ') else answer)
    while any(not is_comment(line) for line in waiting):  # behind a stop
        take_line()
    return lines + list(waiting)


def expand(text, places):
    for name, path in places.items():
        text = text.replace(name, str(path))
    return text


def environment_of(script, places):
    """The caller's, without what would change a run, and the script's own."""
    kept = {name: value for name, value in os.environ.items() if name != 'TMP' and not name.startswith('HEXLANE_')}
    own = {name: expand(value, places) for name, value in script.environment.items()}
    return kept | {'HEXLANE_EXAMPLES': str(EXAMPLES)} | own


def play(program, scripts, scratch):
    """Runs the scripts. Gives (transcript, [what went wrong])."""
    places = {'$HOME_DIR': scratch / 'home', '$WORK': scratch / 'work', '$EXAMPLES': EXAMPLES}
    (places['$HOME_DIR'] / 'ZOLT').mkdir(parents=True)
    places['$WORK'].mkdir()
    transcript, faults = [], []
    for number, script in enumerate(scripts, 1):
        for folder in script.data:
            shutil.copytree(HERE / 'data' / folder, places['$WORK'], symlinks=True, dirs_exist_ok=True)
        (scratch / 'script').write_text(script.text())
        done = subprocess.run([program, '--home', places['$HOME_DIR'], scratch / 'script'], cwd=places['$WORK'],
                              env=environment_of(script, places), capture_output=True, timeout=TIMEOUT_S, check=False)
        transcript += ['==== run'] if number > 1 else []
        transcript += transcript_of(script, done.stdout.decode().splitlines())
        if done.returncode != script.exit_code:
            errors = done.stderr.decode(errors='backslashreplace')
            faults.append(f'script {number}: exit code {done.returncode}, wanted {script.exit_code}\n{errors}')
    return transcript, faults


def run_file(program, path, bless):
    """Plays a transcript. Gives (True when it is as expected, number of lines that --bless has changed)."""
    text = path.read_text()
    scratch = pathlib.Path(tempfile.mkdtemp(prefix='hexlane-golden-', dir='/tmp'))
    try:
        scripts = read_transcript(text)
        if not bless and not any(script.answers for script in scripts):
            raise ValueError('there are no answers: nothing would be checked')
        lines, faults = play(program, scripts, scratch)
    except (ValueError, OSError, subprocess.TimeoutExpired) as fault:
        print(f'{path}: {fault}')
        return False, 0
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
    for fault in faults:
        print(f'{path}: {fault}', end='')
    played = ''.join(line + '\n' for line in lines)
    if played == text or faults:
        return not faults, 0
    difference = list(difflib.unified_diff(text.splitlines(), lines, str(path), 'this run', lineterm=''))
    if not bless:
        print('\n'.join(difference))
        return False, 0
    path.write_text(played)
    return True, sum(line[0] in '+-' for line in difference[2:])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--program', required=True, type=pathlib.Path)
    parser.add_argument('--bless', action='store_true')
    parser.add_argument('files', nargs='+', type=pathlib.Path, metavar='FILE.run')
    options = parser.parse_args()
    program = options.program.resolve()
    results = {path: run_file(program, path, options.bless) for path in options.files}
    for path, (_, changed) in results.items():
        if changed:
            print(f'{path}: {changed} lines changed')
    failed = sum(not right for right, _ in results.values())
    print(f'{len(results)} golden runs, {failed} failed')
    return 1 if failed else 0


if __name__ == '__main__':
    sys.exit(main())
