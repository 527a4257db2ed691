#!/bin/bash
# Prints the instructions of one evaluation, counted by callgrind: Benchmarks/instructions.sh '1+2*3' "$(seq -s+ 200)"
# The difference of two runs, so that the start and what the first evaluation fills cancel out.
set -eu
program=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../build/release/bin/Benchmarks

count() {
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$@" 2>&1 | awk '/Collected/ { print $NF }'
}

for expression; do
    few=$(count "$expression" 100)
    many=$(count "$expression" 1100)
    echo "$(((many - few) / 1000)) $expression"
done
