#!/bin/bash
# Installs a build into a prefix, moves that to another place, and uses what is there as others do, with nothing of the
# build at hand: the shell and, unless the compiler is left out, what stands in Examples, and every header.
#     Tests/Install/install.sh <build folder> <version> [<compiler>]
set -eu
build=$1 version=$2 compiler=${3-}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export LABSH_HOME=$scratch/data LC_ALL=C.UTF-8

fail() {
    echo "install.sh: $*" >&2
    exit 1
}

# Runs a command, whose output must hold a text: expect <text> <command>...
expect() {
    local text=$1 output
    shift
    output=$("$@" 2>&1) || fail "$* ends with $?: $output"
    [[ $output == *"$text"* ]] || fail "$* lacks \"$text\": $output"
}

cmake --install "$build" --prefix "$scratch/first" --strip >"$scratch/log" 2>&1 || fail "$(<"$scratch/log")"
prefix=$scratch/moved
mv "$scratch/first" "$prefix"
labsh=$prefix/bin/labsh
libraries=$(dirname "$(find "$prefix" -name libHost.so)")

expect "labsh $version" "$labsh" --version
expect 42 "$labsh" 'Calc 6*7'
expect "Version: 6.0.6.5480" "$labsh" Plugins
# What stands in sections of the files that a strip might take for waste.
expect "Expression syntax" "$labsh" 'Calc -help'
expect "Unknown command" "$labsh" Help S001
expect "Usage: Check" "$labsh" Help Check
sections=$(readelf -SW "$labsh" "$libraries"/*.{dll,so})
[[ $sections == *.ov.FUNCTIONS.TXT*.ov.FINDINGS.TXT* && $sections != *.symtab* ]] || fail "strip did not work: $sections"
[[ $compiler ]] || exit 0

# The documents that come with it have the examples.
cd "$prefix/share/doc/labsh/Examples"
for example in Embedding Plugin; do
    {
        cmake -G Ninja -S $example -B "$scratch/$example" \
            -D CMAKE_PREFIX_PATH="$prefix" -D CMAKE_CXX_COMPILER="$compiler" -D CMAKE_CXX_FLAGS="-Wall -Wextra -Werror" &&
            cmake --build "$scratch/$example"
    } >"$scratch/log" 2>&1 || fail "$example: $(<"$scratch/log")"
done
expect 0.1 "$scratch/Embedding/evaluate" 'Moles(grams, 58.44)'
expect "x is 42" "$scratch/Embedding/run" "$LABSH_HOME" 'Set x=6*7' 'Echo x is %E{x}'
series=$scratch/Plugin/Series.dll
plugin=(--plugin "$series")
"$("$compiler" -print-prog-name=strip)" "$series"
[[ $(readelf -SW "$series") == *.ov.checksum* ]] || fail "the example has no checksum"
expect 14 "$labsh" "${plugin[@]}" 'Calc Series("i*i", 3)'
expect 1.25992 "$labsh" "${plugin[@]}" 'Table 2 Cbrt(i)'
expect "The cube root of x." "$labsh" "${plugin[@]}" Help Cbrt
code=$((16#$(readelf -SW "$series" | sed -n 's/.* \.text  *PROGBITS  *[0-9a-f]* \([0-9a-f]*\) .*/\1/p')))
byte=$(od -An -tu1 -j $code -N 1 "$series")
printf "\\x$(printf %02x $((byte ^ 1)))" | dd of="$series" bs=1 seek=$code conv=notrunc status=none
damaged=$("$labsh" "${plugin[@]}" Plugins 2>&1) && fail "a damaged plug-in is loaded"
[[ $damaged == *"code or data do not match the checksum"* ]] || fail "a damaged plug-in: $damaged"

export PKG_CONFIG_PATH=$libraries/../pkgconfig
[[ $(pkg-config --modversion labshell) == "$version" ]] || fail "pkg-config knows another version"
read -ra flags < <(pkg-config --cflags --libs labshell)
"$compiler" -x c++ Embedding/evaluate.cpp -x none -o "$scratch/evaluate" "${flags[@]}"
expect "Missing parameter" "$scratch/evaluate" 'Moles(1)'

cd "$prefix/include/labsh"
find . -name '*.h' -printf '#include "%P"\n' | sort >"$scratch/headers.cpp"
"$compiler" -fsyntax-only -Wall -Wextra -Werror -I. "${flags[@]}" "$scratch/headers.cpp"
