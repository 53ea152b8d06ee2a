#!/usr/bin/env bash
# tools/fresh_root.sh [--user] COMMAND...: runs a command of the tree as on a new machine.
# Makes a minimal Debian 12 in a folder, from the mirror that this machine's own apt uses, clones HEAD into it and runs
# COMMAND there, in the clone's top folder, as root; with --user as an ordinary user who may use sudo. The clone's path
# has a blank and an umlaut. The folder is taken away whatever happens. Needs root.
# Exit code: the command's own; 125: it did not get so far, or the folder stays, and a message has said why.
# TMPDIR names the place of the folder, /var/tmp without it; ./test needs about 6 GB there.
set -euo pipefail
top=$(CDPATH='' cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
suite=bookworm
clone="/srv/werk ü/hexlane"  # within the root

say() { printf 'fresh_root: %s\n' "$*" >&2; }
give_up() {
    say "$*"
    exit 125
}

arguments=("$@")
user=root
if [ "${1:-}" = --user ]; then
    user=turner
    shift
fi
[ $# -gt 0 ] || give_up "usage: tools/fresh_root.sh [--user] COMMAND..."
[ "$(id -u)" -eq 0 ] || give_up "needs root: it makes a system of its own and changes into it"
for program in debootstrap git unshare apt-get; do
    command -v "$program" >/dev/null || give_up "$program is not installed"
done
# What is mounted from here on is this script's own: the machine does not see it, and it goes with the last process.
if [ -z "${FRESH_ROOT_APART:-}" ]; then
    unshare --mount true 2>/dev/null || give_up "this root may not mount anything (a container?)"
    FRESH_ROOT_APART=yes exec unshare --mount --propagation private -- "${BASH_SOURCE[0]}" "${arguments[@]}"
fi
unset FRESH_ROOT_APART

# Rows "URI suite component" of the machine's sources, in whichever form they are written.
sources() {
    # shellcheck disable=SC2016  # the fields are apt's
    apt-get indextargets --format '$(ORIGIN)|$(CODENAME)|$(REPO_URI)|$(RELEASE)|$(COMPONENT)' 'Created-By: Packages' |
        awk -F'|' -v suite="$suite" '$1 == "Debian" && index($2, suite) == 1 {print $3, $4, $5}' | sort -u
}
rows=$(sources)
if [ -z "$rows" ]; then  # the lists may not be here yet
    apt-get -q update >&2 || true
    rows=$(sources)
fi
mirror=$(awk -v suite="$suite" '$2 == suite && $3 == "main" {print $1; exit}' <<<"$rows")
case $mirror in
    http:* | https:* | file:*) ;;
    '') give_up "the apt sources of this machine name no mirror of Debian 12 ($suite main)" ;;
    *) give_up "debootstrap can't use the mirror of this machine: $mirror" ;;
esac

folder=  # all that is made lies in it
child=   # what is running now
mounted_below() {  # what is mounted at or below the folder, the last first
    local point
    while read -r _ _ _ _ point _; do
        point=$(printf '%b' "$point")
        case $point in "$folder" | "$folder"/*) printf '%s\n' "$point" ;; esac
    done </proc/self/mountinfo | tac
}
take_away() {
    local status=$?
    trap '' INT TERM HUP
    local first point left
    if [ -n "$child" ]; then
        read -r first _ <"/proc/$child/task/$child/children" || true
        kill -KILL "${first:-$child}" 2>/dev/null || true
        wait "$child" 2>/dev/null || true
    fi
    [ -n "$folder" ] || exit "$status"
    mounted_below | while IFS= read -r point; do umount -- "$point" || true; done
    if ! left=$(mounted_below) || [ -n "$left" ]; then
        say "$folder stays, since something may still be mounted there: $left"
        [ "$status" -ne 0 ] || status=125
    else
        rm -rf --one-file-system -- "$folder" || status=125
    fi
    exit "$status"
}
trap take_away EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# run_apart PROC COMMAND...: with process numbers of its own, shown at PROC: all that the command has started ends with
# its first process. In the background, so that a signal is answered at once.
run_apart() {
    local status=0
    unshare --pid --fork --kill-child --mount-proc="$1" -- "${@:2}" <&0 &
    child=$!
    wait "$child" || status=$?
    child=
    return "$status"
}

place=$(CDPATH='' cd -P -- "${TMPDIR:-/var/tmp}" && pwd) || give_up "there is no folder ${TMPDIR:-/var/tmp}"
folder=$(mktemp -d "$place/hexlane-fresh-XXXXXX") || give_up "no folder can be made in $place"
chmod 755 "$folder"
root=$folder/root

# The way to the mirror that apt uses: proxies, certificates, and what it does not hold against the mirror.
apt_config=$(apt-config dump --format '%F "%v";%n' Acquire |
    grep -E '^Acquire::(https?|Retries|Check-Date|Check-Valid-Until)\b' || true)
for scheme in http https; do
    name=${scheme}_proxy
    eval "$(apt-config shell proxy "Acquire::$scheme::Proxy")"
    if [ -z "${!name:-}" ] && [ -n "${proxy:-}" ] && [ "$proxy" != DIRECT ]; then
        export "$name=$proxy"
    fi
    unset proxy
    [ -z "${!name:-}" ] || apt_config+=$'\n'"Acquire::$scheme::Proxy \"${!name}\";"
done

say "making a minimal $suite in $folder from $mirror"
run_apart /proc debootstrap --variant=minbase --force-check-gpg "$suite" "$root" "$mirror" >"$folder/log" 2>&1 || {
    tail -n 20 "$folder/log" >&2
    give_up "debootstrap could not make the root (see above)"
}
printf '%s\n' "$apt_config" >"$root/etc/apt/apt.conf.d/90machine"
sed 's/^/deb /' <<<"$rows" >"$root/etc/apt/sources.list"
cp -L /etc/resolv.conf /etc/hosts "$root/etc/" 2>/dev/null || true
mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 devpts "$root/dev/pts"
ln -sf pts/ptmx "$root/dev/ptmx"
mkdir -p "$root/dev/shm"
mount -t tmpfs -o nosuid,nodev tmpfs "$root/dev/shm"

[ -z "$(git -c safe.directory='*' -C "$top" status --porcelain)" ] || say "changes that are not committed stay out"
printf '[safe]\n\tdirectory = *\n' >"$folder/gitconfig"  # the tree may be another user's
mkdir -p "$root$clone"
GIT_CONFIG_GLOBAL=$folder/gitconfig git clone --quiet --no-local -- "$top" "$root$clone" ||
    give_up "the clone failed"

if [ "$user" != root ]; then
    run_apart "$root/proc" chroot "$root" sh -ec "apt-get -q update
        apt-get -q -y install --no-install-recommends sudo
        useradd --create-home '$user' && echo '$user ALL=(ALL) NOPASSWD: ALL' >/etc/sudoers.d/fresh
        chown -R '$user' '$(dirname "$clone")'" >"$folder/log" 2>&1 || {
        tail -n 20 "$folder/log" >&2
        give_up "the user could not be made (see above)"
    }
fi

packages() {  # how many, and their megabytes
    chroot "$root" dpkg-query -W -f '${db:Status-Status} ${Installed-Size}\n' |
        awk '$1 == "installed" {n++; kb += $2} END {printf "%d %d\n", n, kb / 1024}'
}
environment=("USER=$user" "LOGNAME=$user" SHELL=/bin/bash "TERM=${TERM:-dumb}")
if [ "$user" = root ]; then
    environment+=(HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin)
else
    environment+=("HOME=/home/$user" PATH=/usr/local/bin:/usr/bin:/bin)
fi
for name in http_proxy https_proxy no_proxy; do
    [ -z "${!name:-}" ] || environment+=("$name=${!name}")
done

read -r packages_before mb_before < <(packages)
begin=$SECONDS
status=0
# shellcheck disable=SC2016
run_apart "$root/proc" chroot "$root" env -i "${environment[@]}" \
    setpriv --reuid "$user" --regid "$user" --init-groups -- sh -c 'cd "$1" && shift && exec "$@"' sh "$clone" "$@" ||
    status=$?
seconds=$((SECONDS - begin))
read -r packages_after mb_after < <(packages)
tree_mb=$(du -smx -- "$root$clone" | cut -f1)
say "$* ended with $status after $seconds s;" \
    "$((packages_after - packages_before)) packages of $((mb_after - mb_before)) MB installed; $tree_mb MB in the tree"
exit "$status"
