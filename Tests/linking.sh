#!/bin/bash
# Checks how a program or library is linked: every name that it leaves open is one that the libraries it asks for export,
# and what is hard to exploit was not given away: all bound at the start and read-only from then on, no stack or segment
# that is both written and run, loaded anywhere. Tests/linking.sh COMPILER SYSROOT NM READELF FILE [NAME...]
# looks for libraries beside the file and where the compiler does, whose sysroot may be empty; the names are ones that the
# file must use.
set -euo pipefail
export LC_ALL=C
compiler=$1 sysroot=$2 nm=$3 readelf=$4 file=$5
shift 5
faults=0

fault() {
    echo "$file: $1"
    faults=1
}

# The files of the libraries that a file asks for, and of those that they ask for, one a line.
declare -A found
libraries() {
    local name path
    for name in $("$readelf" -dW "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
        [[ -z ${found[$name]:-} ]] || continue
        path=${file%/*}/$name
        [[ -e $path ]] || path=$("$compiler" ${sysroot:+--sysroot="$sysroot"} -print-file-name="$name")
        [[ -e $path ]] || { echo "$file: no library $name" >&2 && exit 1; }
        found[$name]=$path
        libraries "$path"
    done
}

libraries "$file"
exported=$("$nm" -D --defined-only --without-symbol-versions "${found[@]}" | awk 'NF == 3 { print $3 }' | sort -u)
open=$("$nm" -D --undefined-only --without-symbol-versions "$file" | awk '$1 == "U" { print $2 }' | sort -u)
for name in $(comm -13 <(echo "$exported") <(echo "$open")); do
    fault "no library exports $name"
done
for name; do
    grep -qE "^$name$" <<<"$open" || fault "uses no $name"
done

dynamic=$("$readelf" -dW "$file")
segments=$("$readelf" -lW "$file")
grep -qE '\((FLAGS|FLAGS_1)\).*\<NOW\>|BIND_NOW' <<<"$dynamic" || fault "binds names late"
! grep -q TEXTREL <<<"$dynamic" || fault "relocates code"
grep -q '^Elf file type is DYN' <<<"$segments" || fault "is loaded at a place of its own"
grep -q '^ *GNU_RELRO' <<<"$segments" || fault "has no part that becomes read-only"
grep -q '^ *GNU_STACK' <<<"$segments" || fault "says nothing of its stack"
! grep -E '^ *(LOAD|GNU_STACK) .* RWE ' <<<"$segments" || fault "runs what it writes"
exit $faults
