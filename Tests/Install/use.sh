#!/bin/bash
# Uses what has been installed into a prefix as others do, with nothing of the build at hand: the shell and, unless the
# compiler is left empty, what stands in Examples, and every header; the module of Python where there is one. An emulator
# starts programs for another processor.
#     Tests/Install/use.sh <prefix> <version> <compiler, with what it always wants> [<emulator>...]
set -eu
prefix=$(realpath "$1") version=$2
read -ra compiler <<<"$3"
emulator=("${@:4}")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export LABSH_HOME=$scratch/data LC_ALL=C.UTF-8

fail() {
    echo "use.sh: $*" >&2
    exit 1
}

# Runs a program, whose output must hold a text: expect <text> <program>...
expect() {
    local text=$1 output
    shift
    output=$("${emulator[@]}" "$@" 2>&1) || fail "$* ends with $?: $output"
    [[ $output == *"$text"* ]] || fail "$* lacks \"$text\": $output"
}

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

elsewhere=$(find "$labsh" "$prefix/lib" -type f \( -name labsh -o -name '*.dll' -o -name '*.so*' \) -exec readelf -dW {} + |
    sed -n 's/.*R.*PATH).*\[\(.*\)\]/\1/p' | tr : '\n' | sed '/^\$ORIGIN\b/d')
[[ ! $elsewhere ]] || fail "Libraries are looked for in $elsewhere"

module=$(find "$prefix" -name '_labshell*.so')
[[ ! $module ]] || expect 42 env PYTHONDONTWRITEBYTECODE= PYTHONPATH="${module%/*/*}" \
    /usr/bin/python3 -c 'import labshell; print(labshell.run("Calc 6*7"))'
[[ ${compiler[*]} ]] || exit 0

# The documents that come with it have the examples.
cd "$prefix/share/doc/labsh/Examples"
for example in Embedding Plugin; do
    {
        CXX="${compiler[*]}" cmake -G Ninja -S $example -B "$scratch/$example" \
            -D CMAKE_PREFIX_PATH="$prefix" -D CMAKE_CXX_FLAGS="-Wall -Wextra -Werror" \
            -D CMAKE_CROSSCOMPILING_EMULATOR="$(IFS=\; && echo "${emulator[*]}")" &&
            cmake --build "$scratch/$example"
    } >"$scratch/log" 2>&1 || fail "$example: $(<"$scratch/log")"
done
expect 0.1 "$scratch/Embedding/evaluate" 'Moles(grams, 58.44)'
expect "x is 42" "$scratch/Embedding/run" "$LABSH_HOME" 'Set x=6*7' 'Echo x is %E{x}'
series=$scratch/Plugin/Series.dll
plugin=(--plugin "$series")
"$("${compiler[@]}" -print-prog-name=strip)" "$series"
[[ $(readelf -SW "$series") == *.ov.checksum* ]] || fail "the example has no checksum"
expect 14 "$labsh" "${plugin[@]}" 'Calc Series("i*i", 3)'
expect 1.25992 "$labsh" "${plugin[@]}" 'Table 2 Cbrt(i)'
expect "The cube root of x." "$labsh" "${plugin[@]}" Help Cbrt
code=$((16#$(readelf -SW "$series" | sed -n 's/.* \.text  *PROGBITS  *[0-9a-f]* \([0-9a-f]*\) .*/\1/p')))
byte=$(od -An -tu1 -j $code -N 1 "$series")
printf "\\x$(printf %02x $((byte ^ 1)))" | dd of="$series" bs=1 seek=$code conv=notrunc status=none
damaged=$("${emulator[@]}" "$labsh" "${plugin[@]}" Plugins 2>&1) && fail "a damaged plug-in is loaded"
[[ $damaged == *"code or data do not match the checksum"* ]] || fail "a damaged plug-in: $damaged"

export PKG_CONFIG_PATH=$libraries/../pkgconfig
[[ $(pkg-config --modversion labshell) == "$version" ]] || fail "pkg-config knows another version"
read -ra flags < <(pkg-config --cflags --libs labshell)
"${compiler[@]}" -x c++ Embedding/evaluate.cpp -x none -o "$scratch/evaluate" "${flags[@]}"
expect "Missing parameter" "$scratch/evaluate" 'Moles(1)'

cd "$prefix/include/labsh"
find . -name '*.h' -printf '#include "%P"\n' | sort >"$scratch/headers.cpp"
"${compiler[@]}" -fsyntax-only -Wall -Wextra -Werror -I. "${flags[@]}" "$scratch/headers.cpp"
