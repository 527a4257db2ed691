#!/bin/bash
# Prints the processor time of the bench shell, in ms: the median of some runs, which take turns.
set -euo pipefail
export LC_ALL=C.UTF-8 TIMEFORMAT='%U %S'
labsh=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../build/release/bin/labsh
work=$(mktemp -d)
export LABSH_HOME=$work/data LABSH_EVENTS=labsh-benchmark-$$
trap 'rm -rf "$work" "/dev/shm/$LABSH_EVENTS"' EXIT

script() { "$labsh" -f "$work/script"; }
loop() { "$labsh" 'While -c1000000 true Do Set x=i*2'; }
start() { for _ in {1..100}; do "$labsh" 'Calc 1'; done; }
nothing() { for _ in {1..100}; do /bin/true; done; }

# measure ITEM RUNS: adds a line "ITEM time", in ms a run, where one call makes so many runs.
measure() {
    { time "$1" >/dev/null; } 2>"$work/time" || { cat "$work/time" && exit 1; }
    awk -v item="$1" -v runs="$2" '{ print item, ($1 + $2) * 1000 / runs }' "$work/time" >>"$work/times"
}

# median ITEM TITLE: prints a row, whose title is Markdown.
median() {
    awk -v item="$1" '$1 == item { print $2 }' "$work/times" | sort -n |
        awk -v title="$2" '{ times[NR] = $1 } END { printf "| %s | %.2f |\n", title, times[int((NR + 1) / 2)] }'
}

printf 'Calc 1+2*3\n%.0s' {1..100000} >"$work/script"
"$labsh" 'Calc 1' >/dev/null # makes the data folder
for _ in {1..5}; do
    measure script 1
    measure loop 1
    measure start 100
    measure nothing 100
done
echo '| shell | ms |'
echo '|---|--:|'
median script '`labsh -f` with 100,000 lines `Calc 1+2*3`'
median loop '`labsh '"'While -c1000000 true Do Set x=i*2'"'`'
median start '`labsh '"'Calc 1'"'`'
median nothing '`true`'
