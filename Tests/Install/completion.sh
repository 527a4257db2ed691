#!/bin/bash
# Completes the beginnings of command lines in bash, zsh and fish:
#     Tests/Install/completion.sh <file for bash> <file for zsh> <file for fish>
set -eu
bashFile=$(realpath "$1") zshFile=$(realpath "$2") fishFile=$(realpath "$3")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
mkdir folder
touch script.txt

# What is typed, and what becomes of its last word.
cases=(
    'labsh --ju' --junit
    'labsh --fresh -k --st' --strict
    'labsh --strict --che' --check
    'labsh Plu' Plugins
    'labsh -x Plu' Plugins
    'labsh Help Wat' Watch
    'labsh Help Medi' Median
    'labsh Help refer' references
    'labsh Calc -he' -help
    'labsh --log sess While -e' -er
    'labsh -f scr' script.txt
    'labsh --plugin scr' script.txt
    'labsh --data fol' folder/
)

# Each prints what the lines become, a line each.

# A folder with its slash; what bash itself completes, by files, where the function has none.
inBash() {
    bash --norc -c '
        source "$0"
        compopt() { :; }
        for typed; do
            read -ra COMP_WORDS <<<"$typed"
            COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
            word=${COMP_WORDS[COMP_CWORD]}
            _labsh labsh "$word" "${COMP_WORDS[COMP_CWORD - 1]}"
            ((${#COMPREPLY[@]})) || mapfile -t COMPREPLY < <(compgen -f -- "$word")
            [[ ! -d ${COMPREPLY[*]} ]] || COMPREPLY[0]+=/
            echo "${COMP_WORDS[*]::COMP_CWORD} ${COMPREPLY[*]}"
        done' "$bashFile" "$@"
}

inFish() {
    fish --no-config -c '
        source $argv[1]
        for typed in $argv[2..]
            set words (string split " " $typed)
            echo $words[..-2] (complete -C $typed | cut -f 1)
        end' "$fishFile" "$@"
}

# An interactive one in a terminal of its own, which is typed into; Ctrl-X gives the line away.
inZsh() {
    zsh -f -c '
        zmodload zsh/zpty
        zpty shell "TERM=dumb zsh -f -i"
        zpty -w shell "fpath=(${(q)0} \$fpath); autoload -U compinit && compinit -D -u"
        zpty -w shell "give() { print -r -- \$BUFFER >line.new; mv line.new line }; zle -N give; bindkey ^X give"
        for typed; do
            zpty -w -n shell $'"'\x15'"'"$typed"$'"'\t\x18'"'
            for ((i = 0; i < 3000; ++i)); do
                [[ -e line ]] && break
                zpty -r -t shell ignored || sleep 0.02
            done
            cat line
            rm line
        done
        zpty -d shell' "${zshFile%/*}" "$@" | sed 's/ *$//'
}

for ((i = 0; i < ${#cases[@]}; i += 2)); do
    typed+=("${cases[i]}")
    expected+="${cases[i]% *} ${cases[i + 1]}"$'\n'
done
for shell in Bash Zsh Fish; do
    if ! diff <(printf %s "$expected") <("in$shell" "${typed[@]}"); then
        echo "$shell completes otherwise."
        failed=yes
    fi
done
[[ ! ${failed-} ]]
