#!/bin/bash
# Gives the targets of Fuzz, or those that are named, their seeds and all that was found worth keeping, then whatever
# the fuzzer thinks of for the rest of some seconds each, 0 for none: Tools/fuzz.sh <seconds> [<target>...]
# With SEED set to a number it thinks of the same inputs each time.
# Fails when an input ends a program, and keeps it. With --coverage in place of the seconds it shows how many lines of
# its sources a target reaches with what is kept.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
seconds=$1
shift
targets=("$@")
if [[ ! ${1-} ]]; then
    readarray -t targets < <(sed -n 's/^add_fuzzer(\([A-Za-z]*\).*/\1/p' Fuzz/CMakeLists.txt)
fi
preset=asan
if [[ $seconds == --coverage ]]; then
    preset=fuzzcoverage
fi
Tools/build.sh $preset Fuzzers shell checks
work=build/asan/fuzz # the corpora grow there
programs=build/$preset/bin

# What the programs leave behind; in memory, for they write and flush files all the time.
TMPDIR=$(mktemp -d -p "$([[ -w /dev/shm ]] && echo /dev/shm || echo /tmp)" labsh-fuzz-XXXXXX)
export TMPDIR LC_ALL=C.UTF-8 LLVM_PROFILE_FILE=$TMPDIR/other.raw
trap 'rm -rf "$TMPDIR"' EXIT
rm -rf "$work/seeds"
mkdir -p "$work/seeds"
Fuzz/seeds.sh "$work/seeds" "$programs"

# Runs the program of a target on its corpora: fuzz <target> <option>...
fuzz() {
    local target=$1 corpora=("$work/$1") dictionary=$work/seeds/$1.dict options=()
    shift
    mkdir -p "${corpora[0]}"
    for folder in "$work/seeds/$target" "Fuzz/Corpus/$target"; do
        [[ -d $folder ]] && corpora+=("$folder")
    done
    [[ -e $dictionary ]] && options=(-dict="$dictionary")
    "$programs/${target}Fuzzer" "$@" "${options[@]}" -seed="${SEED:-0}" -timeout=20 -print_final_stats=1 \
        -artifact_prefix="$work/$target-" "${corpora[@]}" >"$work/$target.log" 2>&1 </dev/null
}

# Fuzzes a target, which begins with a replay of all its inputs, and says how that has ended.
check() {
    local limit=-max_total_time=$seconds
    if ((seconds == 0)); then
        limit=-runs=0
    fi
    if fuzz "$1" "$limit"; then
        echo "$1: $(sed -n 's/^stat::number_of_executed_units: *//p' "$work/$1.log") inputs"
    else
        tail -n 40 "$work/$1.log"
        echo "$1: a fault, see $PWD/$work/$1.log"
        return 1
    fi
}

# Where the code is that a target is for, as a regular expression.
sources() {
    local evaluator=Common/ExpressionEvaluator host=Common/Host tools=Common/ScriptTools
    case $1 in
        Check) echo "$tools/(Abs|Command(Check|Text)|Ex|Fou|Hex|Kno|ListC|Ope|Ref|Script|Val)" ;;
        CommandLine) echo "$evaluator/Commands/|Shell/BuiltIns/|$host/Commands/(Command|Options|Reference|RecordedC)" ;;
        ElfSections) echo "$host/Commands/(EmbeddedResource|Plugin(File|Segments))" ;;
        Evaluator) echo "$evaluator/(Engine|Values|Functions)/" ;;
        IniFile) echo "$host/Instrument/IniFile" ;;
        LanguageServer) echo "Shell/LanguageServer/[^R]|$tools/(Can|Fun|Line)" ;; # Run.cpp waits for streams
        ScriptReader) echo "$host/Commands/Script(Reader|Text)|$host/Text/Utf16|Shell/FileLines" ;;
    esac
}

# Shows for each source of a target the share of its lines that the corpora reach.
cover() {
    local profile=$TMPDIR/$1.profile objects=("$programs/$1Fuzzer") file
    for file in "$programs"/*.{so,dll}; do
        objects+=(-object "$file")
    done
    # A file for each library.
    LLVM_PROFILE_FILE=$profile-%m.raw fuzz "$1" -runs=0 || tail -n 40 "$work/$1.log"
    llvm-profdata-14 merge -o "$profile" "$profile"-*.raw
    llvm-cov-14 report "${objects[@]}" -instr-profile="$profile" -ignore-filename-regex=SelfTest \
        -show-region-summary=false -show-branch-summary=false 2>/dev/null |
        awk -v pattern="(^|/)($(sources "$1"))[^ ]*[.]cpp$" -v target="$1" '
            function show(name, lines, missed) { printf "%5d lines %5.1f %%  %s\n", lines, 100 - 100 * missed / lines, name }
            $1 ~ pattern { lines += $5; missed += $6; sub(".*[.][.]/", "", $1); show($1, $5, $6) }
            END { show(target, lines, missed) }'
}

action=check
if [[ $preset == fuzzcoverage ]]; then
    action=cover
fi
running=0 status=0
for target in "${targets[@]}"; do
    if ((running == $(nproc))); then
        wait -n || status=1
        ((running--))
    fi
    $action "$target" &
    ((++running))
done
for (( ; running > 0; running--)); do
    wait -n || status=1
done
exit $status
