#!/bin/bash
# Writes the words of the language into the modes of Editors, as the shell itself lists them. With --check it writes
# nothing, and fails where they are not what it would write: Tools/editors.sh [--check] [<labsh>]
set -eu
source "${BASH_SOURCE[0]%/*}/words.sh"

# Words of a usage line that stand in no brackets but those of a part that may be left out.
keywords=$(sed 's/^[^ ]*//; s/<[^>]*>//g' <<<"$usage" | grep -oE '\b[A-Z][a-z]+\b' | sort -u)
operators=$("$labsh" --fresh 'Calc -help' | sed -n '/^Expression evaulator operators:/{n;p}' | grep -oE '[a-z]+')

# The words, joined by the text, each in the marks: joined <words> <text> [<mark>]
joined() {
    local text
    text=$(sed "s/.*/${3-}&${3-}/" <<<"$1" | tr '\n' '\t')
    text=${text%$'\t'}
    echo "${text//$'\t'/$2}"
}

failed=
# Runs sed on a file: rewrite <file> <expression>...
rewrite() {
    local file=$1 new expressions=() each
    shift
    for each; do
        expressions+=(-e "$each")
    done
    new=$(sed "${expressions[@]}" "$file")
    if [[ $new == "$(<"$file")" ]]; then
        return
    elif [[ $check ]]; then
        echo "$file lacks words that the shell knows, or has others: run Tools/editors.sh"
        diff "$file" - <<<"$new" || true
        failed=yes
    else
        echo "$new" >"$file"
    fi
}

# In the grammar of VS Code: pattern <name> <words> <what stands in front and behind>
pattern() {
    echo "s/^\( *\"$1\": .*\"match\": \"\)[^\"]*/\1(?i)$3\\\\\\\\b($(joined "$2" '|'))\\\\\\\\b$4/"
}

rewrite Editors/vscode/syntaxes/labsh.tmLanguage.json \
    "$(pattern keywords "$keywords" '' '')" "$(pattern functions "$functions" '' '(?=\\\\()')" \
    "$(pattern commands "$commands" '' '')" "$(pattern wordOperators "$operators" '' '')"
rewrite Editors/vscode/package.json "s/^\(    \"version\": \"\)[^\"]*/\1$("$labsh" --version | cut -d ' ' -f 2)/"
rewrite Editors/vim/syntax/labsh.vim \
    "s/^\(syntax keyword labshKeyword\).*/\1 $(joined "$keywords" ' ')/" \
    "s/^\(syntax keyword labshFunctionName contained\).*/\1 $(joined "$functions" ' ')/" \
    "s/^\(syntax keyword labshCommand\).*/\1 $(joined "$commands" ' ')/" \
    "s/^\(syntax keyword labshOperator\).*/\1 $(joined "$operators" ' ')/"
rewrite Editors/emacs/labsh-mode.el \
    "s/^(defconst labsh-keywords.*/(defconst labsh-keywords '($(joined "$keywords" ' ' '"')))/" \
    "s/^(defconst labsh-functions.*/(defconst labsh-functions '($(joined "$functions" ' ' '"')))/" \
    "s/^(defconst labsh-commands.*/(defconst labsh-commands '($(joined "$commands" ' ' '"')))/" \
    "s/^(defconst labsh-operators.*/(defconst labsh-operators '($(joined "$operators" ' ' '"')))/"
[[ ! $failed ]]
