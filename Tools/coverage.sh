#!/bin/bash
# Which lines the tests reach: runs them on the build of the preset coverage, prints the share of each room, and writes
# every line with its count to build/coverage/report/index.html. Of processes that are killed nothing is counted.
# Arguments go to ctest: Tools/coverage.sh -R Token
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
folder=build/coverage
Tools/build.sh coverage all shell tests coverage
lcov --quiet --zerocounters --directory "$folder"
# A shell that starts in want of memory falls over what counts.
ctest --preset coverage --parallel "$(nproc)" --exclude-regex '^ShortageOfTheShell' "$@" ||
    echo "Some tests failed; what they reached counts all the same." >&2

lcov --quiet --capture --directory "$folder" --base-directory "$PWD" --no-external --output-file "$folder/all.info"
lcov --quiet --extract "$folder/all.info" "$PWD/Common/*" "$PWD/Shell/*" --output-file "$folder/reached.info"
genhtml --quiet --prefix "$PWD" --output-directory "$folder/report" "$folder/reached.info"
awk -v root="$PWD/" '
    /^SF:/ { room = substr($0, 4 + length(root)); sub(/\/[^\/]*$/, "", room) }
    /^LH:/ { reached[room] += substr($0, 4); all += substr($0, 4) }
    /^LF:/ { lines[room] += substr($0, 4); total += substr($0, 4) }
    END {
        for (room in lines)
            printf "%5.1f %%  %5d  %s\n", 100 * reached[room] / lines[room], lines[room], room | "sort -k4"
        close("sort -k4")
        printf "%5.1f %%  %5d  of all lines\n", 100 * all / total, total
    }' "$folder/reached.info"
