#!/bin/bash
# Makes what the fuzzers begin with, out of the texts of the tests and of what was built: a folder of inputs for each
# target, and the dictionary of the language: Fuzz/seeds.sh <folder> <folder of the programs>
set -eu
export LC_ALL=C.UTF-8
out=$(realpath "$1") programs=$(realpath "$2")
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

# Writes each paragraph of the standard input to a file of its own: paragraphs <folder> <name>
paragraphs() {
    mkdir -p "$out/$1"
    awk -v start="$out/$1/$2" 'BEGIN { RS = "" } { file = start NR; print > file; close(file) }'
}

# Expressions, each behind the byte that chooses how it is evaluated again.
{
    sed -n '/^\/\//d; s/ => .*//p' Tests/Expressions/*.txt Tests/Functions/*.txt
    sed -n '/^\/\//d; /(/p' Tests/Functions/SampleCalls.txt
    sed -n 's/^ *\(.*\) -> .*/\1/p' Common/ExpressionEvaluator/{HELP,FUNCTIONS}.TXT
} | awk '{ print NR % 5 $0 "\n" }' | paragraphs Evaluator expression
for file in "$out"/Evaluator/*; do
    truncate -s -1 "$file" # without the line end
done

# Scripts.
for target in Check CommandLine LanguageServer ScriptReader; do
    sed -n 's/^> Say/> Echo/I; s/^> //p; /^$/p' Tests/Sessions/*.txt | paragraphs $target session
    sed -n 's/^| //p; /^$/p' Tests/ScriptTools/Findings.txt | paragraphs $target finding
    for file in Tests/Scripts/*.txt Examples/Scripts/*.txt; do
        cp "$file" "$out/$target/$(basename "$file")"
    done
done
for file in Tests/Scripts/{Items,Lines,RunScripts}.txt; do
    name=$out/ScriptReader/$(basename "$file" .txt)
    iconv -t UTF-16 "$file" >"$name-utf16"
    iconv -t UTF-16BE "$file" | sed '1s/^/\xFE\xFF/' >"$name-utf16be"
    sed '1s/^/\xEF\xBB\xBF/; s/$/\r/' "$file" >"$name-crlf"
done

# What clients send to the language server, several messages at a time.
sed -n '/^#/d; s/^-> //p; /^$/p' Tests/Shell/LanguageServer.txt |
    LC_ALL=C awk 'NF { printf "Content-Length: %d\r\n\r\n%s", length($0), $0; next } { print "\n" }' |
    paragraphs LanguageServer messages

# Settings, behind the one that is made.
mkdir -p "$out/IniFile"
for file in Shell/Profile/*.ini Tests/Functions/Profile/*.ini; do
    name=$out/IniFile/$(tr / - <<<"$file")
    { echo 'Log]EELog=true' && cat "$file"; } >"$name"
    { echo ']Seed = 7 ' && sed '1s/^/\xEF\xBB\xBF/; s/$/\r/' "$file"; } >"$name-crlf"
    { echo 'items]unittest.bool=' && sed 's/^\[.*/& x\n[open\n\x00/' "$file" | head -c -1; } >"$name-odd"
done

# Libraries of both word sizes and byte orders, with little in them.
mkdir -p "$out/ElfSections"
objcopy -j .ov.version -j .ov.HELP.TXT "$programs/ExpressionEvaluator.dll" "$out/ElfSections/texts" 2>/dev/null
for target in x86_64 armv7 powerpc64; do
    clang-14 --target=$target-linux-gnueabihf -c -x assembler - -o "$out/ElfSections/$target" <<<'
        .globl _Z25DllRegistryGetNextCommandj
        _Z25DllRegistryGetNextCommandj: .long 0
        .section .ov.HELP.TXT,"",%progbits
        .asciz "one\r\ntwo\n"'
done
for style in gnu sysv; do
    clang-14 -shared -nostartfiles -fPIC -O1 -Wl,--hash-style=$style,--strip-all,-z,noseparate-code,-z,norelro \
        -x c - -o "$out/ElfSections/$style" <<<'
            int puts(const char*);
            static _Thread_local int count = 1;
            __attribute__((constructor)) static void begin() { puts("begin"); }
            __attribute__((destructor)) static void end() { puts("end"); }
            int* _Z25DllRegistryGetNextCommandj() { return &count; }
            void (*call)() = begin;'
done

# Writes the lines of the standard input as a dictionary: dictionary <target>
dictionary() {
    sed 's/^ *//; /^$/d; s/[\\"]/\\&/g; s/.*/"&"/' | sort -u >"$out/$1.dict"
}

# The words of the language: functions, operators, names and numbers; commands with their words and options.
labsh() { LABSH_HOME=$out/home "$programs/labsh" "$@"; }
usages=$(labsh Help | sed -n '/^Commands:/,/^Topics:/s/^ //p')
commands=$(sed 's/ .*//' <<<"$usages")
{
    grep -ohE '^[A-Za-z0-9]+\(|\bor [A-Za-z0-9]+\(' Common/ExpressionEvaluator/FUNCTIONS.TXT | sed 's/^or //'
    sed -n '/^Operators/,/^Examples/s/^ \(.*\)  [A-Z].*/\1/p' Common/ExpressionEvaluator/HELP.TXT | tr -s ' ' '\n'
    grep -ohE '%[A-Z]\{' Common/ExpressionEvaluator/HELP.TXT
    printf '%s\n' -1 0 1 8 9 15 16 31 32 63 64 100 200 2147483648 -2147483649 4294967296 1e15 1e308 1e-320 # limits
    echo "$commands"
    sed 's/^[^ ]*//; s/<[^>]*>//g' <<<"$usages" | grep -oE '\b[A-Z][a-z]+\b'
    sed 's/^/Help /' <<<"$commands" | labsh | grep -oE '^ *-[A-Za-z]+'
    sed -n 's/^\([A-Za-z.0-9]*\) *=.*/\1/p; s/^\[.*\]/&/p' Shell/Profile/*.ini Tests/Functions/Profile/*.ini
} | dictionary CommandLine
cp "$out/CommandLine.dict" "$out/Evaluator.dict"
cp "$out/CommandLine.dict" "$out/Check.dict"
rm -rf "$out/home"
{
    echo 'Content-Length: '
    grep -ohE '"[A-Za-z$]+/[A-Za-z/]+"|"[a-z][A-Za-z]+"' Shell/LanguageServer/*.cpp | tr -d '"'
} | dictionary LanguageServer
