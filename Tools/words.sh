# For scripts that write what is made of the words of the shell, [--check] [<labsh>], sourced by them at their beginning.
# Goes to the root of the sources and sets check (empty without --check), labsh, usage, commands and functions.
check=
if [[ ${1-} == --check ]]; then
    check=yes
    shift
fi
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
labsh=$(realpath "${1:-build/release/bin/labsh}")
export LC_ALL=C.UTF-8

usage=$("$labsh" --fresh Help | sed -n '/^Commands:/,/^Topics:/s/^ //p')
commands=$(sed 's/ .*//' <<<"$usage")
functions=$("$labsh" --fresh 'Calc -help' |
    sed -n '/^Expression evaluator functions:/,/^Expression evaulator operators:/s/^ \([^ ].*\) - .*/\1/p' |
    grep -oE '[A-Za-z0-9_]+\(' | tr -d '(' | LC_ALL=C sort -fu)
