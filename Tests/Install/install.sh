#!/bin/bash
# Installs a build into a prefix, moves that to another place, and uses what is there:
#     Tests/Install/install.sh <build folder> <version> [<compiler>]
set -eu
here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$1" --prefix "$scratch/first" --strip >"$scratch/log" 2>&1 || {
    cat "$scratch/log" >&2
    exit 1
}
mv "$scratch/first" "$scratch/moved"
"$here/use.sh" "$scratch/moved" "$2" "${3-}"
