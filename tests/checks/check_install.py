#!/usr/bin/env python3
"""Installs the build into a scratch place and tries it there.

    check_install.py CMAKE BUILD SCRATCH

Each program must run from its place and have a man page; each desktop entry must name a program and an icon that are
there; the MIME type must be the one that the entry takes.
"""

import configparser
import pathlib
import shutil
import subprocess
import sys
import xml.etree.ElementTree as xml


def main():
    cmake, build, scratch = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    shutil.rmtree(scratch, ignore_errors=True)
    subprocess.run([cmake, '--install', build, '--prefix', scratch], check=True, stdout=subprocess.DEVNULL)
    share = scratch / 'share'
    faults = []

    programs = {path.name for path in (scratch / 'bin').iterdir()}
    for program in sorted(programs):
        done = subprocess.run([scratch / 'bin' / program, '--help'], capture_output=True, text=True, check=False)
        if done.returncode != 0 or program not in done.stdout:
            faults.append(f'{program} --help: code {done.returncode}, {done.stdout!r} {done.stderr!r}')
        page = share / 'man/man1' / f'{program}.1'
        if not page.exists() or not page.read_text().startswith('.TH ' + program.upper().replace('-', r'\-') + ' '):
            faults.append(f'{page} is no man page of {program}')

    types = {element.get('type') for path in (share / 'mime/packages').iterdir()
             for element in xml.parse(path).iter() if element.tag.endswith('mime-type')}
    about = xml.parse(share / 'metainfo/hexlane.metainfo.xml')
    if {element.text for element in about.iter('binary')} != programs:
        faults.append('the AppStream file does not provide the programs that are installed')
    entries = list((share / 'applications').iterdir())
    for path in entries:
        entry = configparser.ConfigParser(interpolation=None)
        entry.read(path)
        keys = entry['Desktop Entry']
        icons = [*share.glob(f'icons/hicolor/*/apps/{keys["Icon"]}.*')]
        if keys['Exec'].split()[0] not in programs or not icons:
            faults.append(f'{path.name}: no such program or icon')
        if not set(keys.get('MimeType', '').strip(';').split(';')) - {''} <= types:
            faults.append(f'{path.name}: takes a MIME type that is not installed')
    if not entries or not types or 'hexlane' not in programs:
        faults.append('a part of the installation is not there at all')

    print('\n'.join(faults))
    return 1 if faults else 0


if __name__ == '__main__':
    sys.exit(main())
