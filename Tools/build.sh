#!/bin/bash
# Builds a target with a preset, after installing what is missing of the named sections of packages.txt:
# Tools/build.sh release labsh shell. Writes to standard error alone: ninja's progress on a terminal, else one line, and
# the end of the log when something fails. Leaves a stamp with the time at which the build began, so that whoever sees
# nothing newer than the stamp need not build. One build at a time: a second one waits for the first.
set -eu
preset=$1 target=$2
shift 2

cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
root=$PWD
folder=build/$preset
log=$folder/build.log
exec </dev/null >&2

echo "Building $target ..."
Tools/bootstrap.sh "$@"
mkdir -p "$folder"
exec 9>"$folder/build.lock"
flock 9

# Runs a command with its output in the log, which is shown when it fails.
logged() {
    "$@" >>"$log" 2>&1 9>&- || {
        local status=$?
        tail -n 40 "$log"
        echo "Building $target failed: see $root/$log"
        exit $status
    }
}

# A build folder that came here with a moved or copied tree still points to the old place.
cache=$folder/CMakeCache.txt
fresh=()
if [[ -e $cache ]] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$cache"; then
    fresh=(--fresh)
fi

: >"$log"
touch "$folder/stamp.new"
logged cmake --preset "$preset" "${fresh[@]}"
if [[ -t 1 ]]; then
    cmake --build "$folder" --target "$target" 9>&-
else
    logged cmake --build "$folder" --target "$target"
fi
mv "$folder/stamp.new" "$folder/stamp"
