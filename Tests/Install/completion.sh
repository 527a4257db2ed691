#!/bin/bash
# Completes the beginnings of command lines in bash, zsh and fish:
#     Tests/Install/completion.sh <file for bash> <file for zsh> <file for fish>
set -eu
bashFile=$(realpath "$1") zshFile=$(realpath "$2") fishFile=$(realpath "$3")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
mkdir folder 'my folder'
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
    'labsh --data my' 'my\ folder/'
    'labsh --data folder Plu' Plugins
    'labsh --data=folder Plu' Plugins
    'labsh --log sess --st' --strict
)

# Types lines into an interactive shell, in a terminal of its own; Ctrl-T gives the line away, as the setup sees to. Each
# prints what the lines become, a line each: typeInto <shell> <setup> <line>...
typeInto() {
    zsh -f -c '
        zmodload zsh/zpty
        zpty shell "TERM=dumb INPUTRC=/dev/null HISTFILE= $1"
        zpty -w shell "$2"
        for line in "${@:3}"; do
            zpty -w -n shell $'"'\x15'"'"$line"$'"'\t\x14'"'
            for ((i = 0; i < 3000; ++i)); do
                [[ -e line ]] && break
                zpty -r -t shell ignored || sleep 0.02
            done
            cat line
            rm line
        done
        zpty -d shell' zsh "$@" | sed 's/[ =]*$//'
}

inBash() {
    typeInto "bash --norc --noprofile -i" "source $bashFile; bind 'set bell-style none'
        give() { printf '%s\\n' \"\$READLINE_LINE\" >line.new; mv line.new line; }; bind -x '\"\\C-t\": give'" "$@"
}

inZsh() {
    typeInto "zsh -f -i" "fpath=(${zshFile%/*} \$fpath); autoload -U compinit && compinit -D -u
        give() { print -r -- \$BUFFER >line.new; mv line.new line }; zle -N give; bindkey ^T give" "$@"
}

inFish() {
    fish --no-config -c '
        source $argv[1]
        for typed in $argv[2..]
            set words (string split " " $typed)
            echo $words[..-2] (complete -C $typed | cut -f 1 | string escape --no-quoted)
        end' "$fishFile" "$@"
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
