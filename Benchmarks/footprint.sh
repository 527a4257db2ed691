#!/bin/bash
# Prints what the build of a preset takes of a small computer: Benchmarks/footprint.sh arm [<folder of the build>]
# The text of its files, and what Footprint measures, run in the emulator where the preset is built for another processor.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
build=${2:-build/$1}
cmake --build "$build" --target Footprint labsh >/dev/null
emulator=()
[[ $1 != arm ]] || emulator=(qemu-arm -L build/arm-sysroot)

echo '| of | |'
echo '|---|--:|'
for file in libHost.so ExpressionEvaluator.dll ScriptTools.dll labsh; do
    size "$build/bin/$file" | awk -v file="$file" 'NR == 2 { printf "| text of `%s` | %.0f KiB |\n", file, $1 / 1024 }'
done
"${emulator[@]}" "$build/bin/Footprint" "$PWD/$build/bin/ExpressionEvaluator.dll"
