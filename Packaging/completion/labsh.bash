# Completion of labsh in bash. Made of what labsh lists, by Tools/options.sh.
_labsh()
{
    local word=$2 at first= option=
    COMPREPLY=()
    for ((at = 1; at < COMP_CWORD; ++at)); do
        case ${COMP_WORDS[at]} in
            -f | --check) first=- ;;& # files and variables follow
            -f | --junit | --log | --data | --plugin)
                option=${COMP_WORDS[at]}
                ((++at))
                [[ ${COMP_WORDS[at]} != = ]] || ((++at)) ;; # --data=DIR is three words here
            -*) ;;
            *) break ;;
        esac
    done
    if ((at > COMP_CWORD)); then
        [[ $option != --data ]] || compopt +o default -o dirnames
        return
    fi
    ((at == COMP_CWORD)) || first=${first:-${COMP_WORDS[at]}}
    local words=
    case $first:$word in
        :-* | -:-*) words="-h --help --version -f -k --strict -x --junit --log --lsp --fresh --data --plugin --check" ;;
        : | :[!-]*) words="Assert AssertFail Calc Check Config Echo Event Exit Help If Log Plugins Run Set Stats Status Test Usage Wait Watch While" ;;
        Help:*) words="Assert AssertFail Calc Check Config Echo Event Exit Help If Log Plugins Run Set Stats Status Test Usage Wait Watch While abs acos asin atan Average Avg Bool ceil Config cos cosh CStr DateToDays DaysToDate Defined EndsWith Exist exp Fcvt FileCrc FileExist FileSize FileZynqChecksum floor FmtEng FromHex Ftoa GetConfig GetConfigBool GetConfigDbl GetConfigInt GetConfigStr GetConfigUInt GetEnv GetEvent GetProcId GetStatus GetUsage Icpt IF IndexOf InitIfNa InStr int Intercept IsErr IsError IsInList IsNA IsRunning LCase Left Len ListItem ListLen ln log Matches Max Med Median Mid Min Mod Not Rand Random Right Round Sd sign sin sinh Slope sqr sqrt StartsWith StDev StrCat StrReplace SubString Sum tan tanh ToHex ToString UCase Val VersionCompare variables operators functions scripts errors references" ;;
        Assert:-*) words="-q -c" ;;
        Calc:-*) words="-help -q -v" ;;
        Check:-*) words="-json -colour" ;;
        Config:-*) words="-n -z -json -doc" ;;
        Echo:-*) words="-f" ;;
        Event:-*) words="-z -json" ;;
        If:-*) words="-l -v -r" ;;
        Log:-*) words="-n -c -e -d" ;;
        Set:-*) words="-i -v -z" ;;
        Status:-*) words="-n -d -t -z -json" ;;
        Test:-*) words="-junit" ;;
        Usage:-*) words="-z -json" ;;
        Watch:-*) words="-w -c -o -hist" ;;
        While:-*) words="-c -er -l -v -w -r" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _labsh labsh
