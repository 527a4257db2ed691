#!/bin/bash
# Installs what is missing of the named sections of packages.txt, saying so: Tools/bootstrap.sh shell tests
# Asks dpkg once, and does nothing when all is there. Installing needs root, or sudo. Where there is no dpkg the build
# goes on without this check: CMake names what it does not find. With --list it only prints the sections' packages.
set -eu

# Prints the packages of the named sections.
packagesOf() {
    awk -v wanted=" $* " '
        { sub(/[ \t]*#.*/, "") }
        /^\[/ { within = index(wanted, " " substr($0, 2, length($0) - 2) " "); next }
        within && NF' "${BASH_SOURCE[0]%/*}/packages.txt"
}

# Prints those of the given packages that are not installed.
missingOf() {
    dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
        awk -v asked="$*" '
            $1 == "installed" { installed[$2] }
            END { count = split(asked, names, " "); for (i = 1; i <= count; i++) if (!(names[i] in installed)) print names[i] }'
}

fail() {
    printf '%s\n' "$1" "Install these packages, then try again: ${missing[*]}" >&2
    exit 1
}

if [[ ${1-} == --list ]]; then
    packagesOf "${@:2}"
    exit
fi
command -v dpkg-query >/dev/null || exit 0
mapfile -t packages < <(packagesOf "$@")
mapfile -t missing < <(missingOf "${packages[@]}")
((${#missing[@]})) || exit 0

command -v apt-get >/dev/null || fail "There is no apt-get to install missing packages with."
asRoot=()
if ((EUID != 0)); then
    command -v sudo >/dev/null || fail "Missing packages can only be installed by root, and there is no sudo."
    asRoot=(sudo)
fi

echo "Installing${asRoot[*]:+ (with ${asRoot[*]})}: ${missing[*]}" >&2
aptGet() {
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q "$@" </dev/null 2>&1
}
if ! output=$(aptGet update && aptGet install -y --no-install-recommends "${missing[@]}"); then
    tail -n 20 <<<"$output" >&2
    fail "apt-get could not install them."
fi
