#!/usr/bin/env python3
"""Configures what ./run builds as on a new machine that has only what ./run installs. Needs no network.

    check_packages.py TOP SCRATCH

A folder of links holds every file of the packages that ./run asks for, of what they depend on, and of the smallest
Debian, and nothing else of this machine. CMake is kept to it for programs, headers, libraries and packages alike, so
that whatever else the configuration asks for is not found, be it installed here or not. What is missing only while
compiling, tools/fresh_root.sh finds.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

NO_DEBIAN = 77  # the test counts as skipped


def lines(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()


def names(relations):
    """"a (>= 1) | b:any, c" as [["a", "b"], ["c"]]."""
    return [[re.split(r'[\s:(]', choice.strip(), maxsplit=1)[0] for choice in one.split('|')]
            for one in relations.split(',') if one.strip()]


class Installed:
    """The packages of this machine: what each depends on, and who provides a name."""

    def __init__(self):
        self.depends, self.providers, self.smallest = {}, {}, []
        fields = ('db:Status-Status', 'Package', 'Essential', 'Priority', 'Pre-Depends', 'Depends', 'Provides')
        for line in lines('dpkg-query', '-W', '-f', '\t'.join(f'${{{field}}}' for field in fields) + '\n'):
            status, package, essential, priority, before, depends, provides = line.split('\t')
            if status != 'installed':
                continue
            self.depends[package] = names(f'{before},{depends}')
            for name in [package, *sum(names(provides), [])]:
                self.providers.setdefault(name, []).append(package)
            if essential == 'yes' or priority == 'required':
                self.smallest.append(package)

    def closure(self, wanted):
        """With all that they need. Of a choice the first that is here counts: the others may not come."""
        found, queue = set(), [*wanted, *self.smallest]
        while queue:
            package = queue.pop()
            if package in found:
                continue
            found.add(package)
            for choices in self.depends[package]:
                name = next((choice for choice in choices if choice in self.providers), None)
                queue += [name] if name in self.depends else self.providers.get(name, [])
        return found


def link_files(packages, root):
    """Links to all files of the packages below `root`, in the places that they have."""
    for folder in ('bin', 'sbin', 'lib', 'lib64'):
        (root / 'usr' / folder).mkdir(parents=True)
        (root / folder).symlink_to(f'usr/{folder}')
    made = set()
    for path in lines('dpkg-query', '-L', *packages):
        if not path.startswith('/') or not os.path.lexists(path) or os.path.isdir(path) or '/share/doc/' in path:
            continue
        folder, name = os.path.split(path)
        if folder not in made:
            os.makedirs(f'{root}{folder}', exist_ok=True)
            made.add(folder)
        if not os.path.lexists(f'{root}{folder}/{name}'):
            os.symlink(path, f'{root}{folder}/{name}')


def configure(top, preset, root, build):
    """Gives CMake's exit code and what it printed."""
    command = ['cmake', '-S', top, '--preset', preset, '-B', build, f'-DCMAKE_FIND_ROOT_PATH={root}']
    command += [f'-DCMAKE_FIND_ROOT_PATH_MODE_{kind}=ONLY' for kind in ('PROGRAM', 'LIBRARY', 'INCLUDE', 'PACKAGE')]
    done = subprocess.run(command, cwd=top, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
                          env={'PATH': f'{root}/usr/bin', 'HOME': str(root), 'LC_ALL': 'C.UTF-8'})
    return done.returncode, done.stdout


def main():
    top, scratch = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2])
    if shutil.which('dpkg-query') is None:
        print('this is no Debian system')
        return NO_DEBIAN
    script = (top / 'run').read_text()
    groups = re.search(r'^groups=\((.*)\)$', script, re.M).group(1).split()
    preset = re.search(r'cmake --preset (\w+)', script).group(1)
    wanted = lines(top / 'tools/setup.sh', '--list', *groups)
    installed = Installed()
    missing = [package for package in wanted if package not in installed.depends]
    if missing:
        print(f'first install {" ".join(missing)}: tools/setup.sh {" ".join(groups)}')
        return 1

    shutil.rmtree(scratch, ignore_errors=True)
    packages = installed.closure(wanted)
    link_files(packages, scratch / 'root')
    code, told = configure(top, preset, scratch / 'root', scratch / 'build')
    print(f'{told}\nThe preset {preset} with {len(packages)} packages, those of ./run and what they need: code {code}')
    return 0 if code == 0 else 1


if __name__ == '__main__':
    sys.exit(main())
