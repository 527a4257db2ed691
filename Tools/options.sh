#!/bin/bash
# Writes what is made of the options and commands that the shell lists, into Packaging: the page of the manual, and the
# completion of bash, zsh and fish. With --check it writes nothing, and fails where they are not what it would write:
# Tools/options.sh [--check] [<labsh>]
set -eu
source "${BASH_SOURCE[0]%/*}/words.sh"
unset LABSH_HOME XDG_DATA_HOME
export HOME=\~

# The options, a line each: names joined by commas, what stands behind them (FILE, DIR or -), and the meaning.
options=$("$labsh" --help | awk '
    function tell() { if (names) print names, argument, meaning; names = "" }
    /^  -/ {
        tell()
        meaning = match($0, /[^ ]  +[^ ]/) ? substr($0, RSTART + RLENGTH - 1) : ""
        names = $1
        argument = $2 ~ /^(FILE|DIR)/ ? substr($2, 1, match($2 "=", "=") - 1) : "-"
        next
    }
    names && !meaning { sub(/^ +/, ""); meaning = $0 }
    END { tell() }')
# The options of the commands that have some, a line each: the name and they.
commandOptions=$(while read -r command; do
    words=$("$labsh" --fresh Help "$command" | sed -n '/^Options/,/^[^ ]/s/^ *\(-[a-z][][a-z]*\).*/\1/p' | tr -d '[]')
    [[ ! $words ]] || echo "$command" $words
done <<<"$commands")
topics=$("$labsh" --fresh Help | sed -n '/^Topics:/,$s/^ \([a-z]*\) - .*/\1/p')
# Joined by blanks.
commands=$(xargs <<<"$commands")
explained="$commands $(xargs <<<"$functions") $(xargs <<<"$topics")"

made="Made of what labsh lists, by Tools/options.sh"

# The names of options that match a pattern of what stands behind them, joined: namesOf <pattern> <text>
namesOf() {
    awk -v pattern="^($1)\$" -v separator="$2" '
        $2 ~ pattern { gsub(",", separator, $1); names = names (names ? separator : "") $1 }
        END { print names }' <<<"$options"
}

bashCompletion() {
    cat <<EOF
# Completion of labsh in bash. $made.
_labsh()
{
    local word=\$2 at first= option=
    COMPREPLY=()
    for ((at = 1; at < COMP_CWORD; ++at)); do
        case \${COMP_WORDS[at]} in
            -f | --check) first=- ;;& # files and variables follow
            $(namesOf 'FILE|DIR' ' | '))
                option=\${COMP_WORDS[at]}
                ((++at))
                [[ \${COMP_WORDS[at]} != = ]] || ((++at)) ;; # --data=DIR is three words here
            -*) ;;
            *) break ;;
        esac
    done
    if ((at > COMP_CWORD)); then
        [[ \$option != --data ]] || compopt +o default -o dirnames
        return
    fi
    ((at == COMP_CWORD)) || first=\${first:-\${COMP_WORDS[at]}}
    local words=
    case \$first:\$word in
        :-* | -:-*) words="$(namesOf '.*' ' ')" ;;
        : | :[!-]*) words="$commands" ;;
        Help:*) words="$explained" ;;
$(sed 's/^\([^ ]*\) \(.*\)/        \1:-*) words="\2" ;;/' <<<"$commandOptions")
    esac
    mapfile -t COMPREPLY < <(compgen -W "\$words" -- "\$word")
}
complete -o default -F _labsh labsh
EOF
}

zshCompletion() {
    cat <<EOF
#compdef labsh
# Completion of labsh in zsh. $made.
local -a commands=($commands)
local -a explained=($explained)
local -A options=(
$(sed 's/^\([^ ]*\) \(.*\)/    \1 "\2"/' <<<"$commandOptions")
)
local -a state line
_arguments -S -A '-*' \\
$(while read -r names argument meaning; do
        meaning=${meaning//:/\\:}
        action=
        [[ $argument != FILE ]] || action=:file:_files
        [[ $argument != DIR ]] || action=:folder:_directories
        for name in ${names//,/ }; do
            [[ $name != --* || ! $action ]] || name+== # or behind the name and =
            echo "    '$name[${meaning//\'/\'\\\'\'}]$action' \\"
        done
    done <<<"$options")
    '*::word:->words' && return
if ((\${+opt_args[-f]} || \${+opt_args[--check]})); then
    _files
elif ((CURRENT == 1)); then
    compadd -a commands
elif [[ \$words[1] == Help ]]; then
    compadd -a explained
else
    compadd -- \${=options[\$words[1]]} || _files
fi
EOF
}

fishCompletion() {
    cat <<EOF
# Completion of labsh in fish. $made.

# The first word behind the options, and - where they say that files follow.
function __labsh_first
    set -l words (commandline -opc)[2..]
    while string match -q -- '-*' "\$words[1]"
        contains -- \$words[1] -f --check; and echo -; and return
        contains -- \$words[1] $(namesOf 'FILE|DIR' ' '); and set -e words[1]
        set -e words[1]
    end
    echo \$words[1]
end
EOF
    while read -r names argument meaning; do
        line="complete -c labsh -n 'contains -- \"\$(__labsh_first)\" \"\" -'"
        for name in ${names//,/ }; do
            [[ $name == --* ]] && line+=" -l ${name#--}" || line+=" -s ${name#-}"
        done
        [[ $argument != FILE ]] || line+=" -r -F"
        [[ $argument != DIR ]] || line+=" -x -a '(__fish_complete_directories)'"
        echo "$line -d '${meaning//\'/\\\'}'"
    done <<<"$options"
    echo "complete -c labsh -n 'test -z \"\$(__labsh_first)\"' -a '$commands'"
    echo "complete -c labsh -n 'test \"\$(__labsh_first)\" = Help' -a '$explained'"
    while read -r command words; do
        for word in $words; do
            echo "complete -c labsh -n 'test \"\$(__labsh_first)\" = $command' -o ${word#-}"
        done
    done <<<"$commandOptions"
}

# Without the date and the version of help2man.
manual() {
    help2man --no-info --include=Packaging/labsh.h2m "$labsh" |
        sed "1s|.*|.\\\\\" $made.|; s/^\(\.TH [^ ]* \"1\"\) \"[^\"]*\"/\1 \"\"/"
}

failed=
# The output of a command as a file: keep <file> <command>...
keep() {
    local file=Packaging/$1 new
    shift
    new=$("$@")
    if [[ $check && $new != "$(<"$file")" ]]; then
        echo "$file is not what the shell lists: run Tools/options.sh"
        diff "$file" - <<<"$new" || true
        failed=yes
    elif [[ ! $check ]]; then
        echo "$new" >"$file"
    fi
}
mkdir -p Packaging/completion
keep completion/labsh.bash bashCompletion
keep completion/_labsh zshCompletion
keep completion/labsh.fish fishCompletion
keep labsh.1 manual
[[ ! $failed ]]
