#!/usr/bin/env bash
# tools/setup.sh [--list] GROUP...: makes sure that the Debian packages of these groups are installed.
# Installs only what is missing, through sudo when not root. Exit code 0: everything is there; 1: something is
# missing and could not be installed, and a message has said what and why. --list only prints the packages' names.
set -euo pipefail

# The one list of what this project needs beyond a fresh Debian 12: a group, then its packages.
#   build    compile the programs
#   desktop  compile and show the window
#   display  show it where there is no screen: virtual display, small window manager, keys, pictures and PDF pages,
#            and what drives them
#   test     beyond these: compile and run tests and benchmarks, clang for the fuzzers, the formatter, a peer for
#            serial lines, and a memory of what has been compiled
packages() {
    cat <<'LIST'
build    cmake ninja-build g++
desktop  qt6-base-dev fonts-dejavu-core
display  xvfb openbox xdotool x11-utils imagemagick poppler-utils python3
test     libgtest-dev libbenchmark-dev clang libclang-rt-dev clang-format socat ccache
LIST
}

say() { printf 'setup: %s\n' "$*" >&2; }

list=
if [ "${1:-}" = --list ]; then
    list=yes
    shift
fi
if [ $# -eq 0 ]; then
    say "usage: tools/setup.sh [--list] GROUP... (build, desktop, display, test)"
    exit 1
fi

wanted=()
for group in "$@"; do
    line=$(packages | grep "^$group " || true)
    if [ -z "$line" ]; then
        say "there is no group '$group'"
        exit 1
    fi
    read -r -a words <<<"$line"
    wanted+=("${words[@]:1}")
done

if [ -n "$list" ]; then
    printf '%s\n' "${wanted[@]}"
    exit 0
fi

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    say "this is no Debian system; install what these Debian packages hold: ${wanted[*]}"
    exit 1
fi

missing=()
for package in "${wanted[@]}"; do
    state=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
    [ "$state" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

say "missing: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
    [ -t 0 ] || as_root+=(-n)  # nobody is there to type a password
    if ! command -v sudo >/dev/null || ! "${as_root[@]}" true; then
        say "installing them needs root rights, which this account does not have. Ask root to run:"
        say "    apt-get install ${missing[*]}"
        exit 1
    fi
fi

apt() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o Dpkg::Lock::Timeout=300 "$@" >&2
}
install_missing() { apt install --no-install-recommends "${missing[@]}"; }

# Package lists that know all the names may still be too old to fetch from; then they are renewed once.
if apt-cache show --no-all-versions "${missing[@]}" >/dev/null 2>&1 && install_missing; then
    exit 0
fi
if apt update && install_missing; then
    exit 0
fi
say "could not install: ${missing[*]}"
say "the package archive could not be reached or used (see above). Without a network, install these packages"
say "from a local archive or medium, then start again."
exit 1
