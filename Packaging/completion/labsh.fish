# Completion of labsh in fish. Made of what labsh lists, by Tools/options.sh.

# The first word behind the options, and - where they say that files follow.
function __labsh_first
    set -l words (commandline -opc)[2..]
    while string match -q -- '-*' "$words[1]"
        contains -- $words[1] -f --check; and echo -; and return
        contains -- $words[1] -f --junit --log --data --plugin; and set -e words[1]
        set -e words[1]
    end
    echo $words[1]
end
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -s h -l help -d 'Print this help message and exit'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l version -d 'Print the version and exit'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -s f -r -F -d 'Run the commands of this file'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -s k -d 'Go on with a script after a command failed'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l strict -d 'Fail where a command such as If goes on after a failure, not just warn'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -s x -d 'Show on standard error each command, its conditions and the variables it changes'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l junit -r -F -d 'Report each Assert to this file, in the XML of JUnit, and count them'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l log -r -F -d 'Record the session in this file, behind what it holds: each line with its time'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l lsp -d 'Serve an editor: the language server protocol on standard input and output'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l fresh -d 'Work on a new instrument that is thrown away at the end'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l data -x -a '(__fish_complete_directories)' -d 'The instrument\'s data folder'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l plugin -r -F -d 'Load this plug-in too'
complete -c labsh -n 'contains -- "$(__labsh_first)" "" -' -l check -d 'Look for what is wrong with the scripts FILE..., without running them'
complete -c labsh -n 'test -z "$(__labsh_first)"' -a 'Assert AssertFail Calc Check Config Echo Event Exit Help If Log Plugins Run Set Stats Status Test Usage Wait Watch While'
complete -c labsh -n 'test "$(__labsh_first)" = Help' -a 'Assert AssertFail Calc Check Config Echo Event Exit Help If Log Plugins Run Set Stats Status Test Usage Wait Watch While abs acos asin atan Average Avg Bool ceil Config cos cosh CStr DateToDays DaysToDate Defined EndsWith Exist exp Fcvt FileCrc FileExist FileSize FileZynqChecksum floor FmtEng FromHex Ftoa GetConfig GetConfigBool GetConfigDbl GetConfigInt GetConfigStr GetConfigUInt GetEnv GetEvent GetProcId GetStatus GetUsage Icpt IF IndexOf InitIfNa InStr int Intercept IsErr IsError IsInList IsNA IsRunning LCase Left Len ListItem ListLen ln log Matches Max Med Median Mid Min Mod Not Rand Random Right Round Sd sign sin sinh Slope sqr sqrt StartsWith StDev StrCat StrReplace SubString Sum tan tanh ToHex ToString UCase Val VersionCompare variables operators functions scripts errors references'
complete -c labsh -n 'test "$(__labsh_first)" = Assert' -o q
complete -c labsh -n 'test "$(__labsh_first)" = Assert' -o c
complete -c labsh -n 'test "$(__labsh_first)" = Calc' -o help
complete -c labsh -n 'test "$(__labsh_first)" = Calc' -o q
complete -c labsh -n 'test "$(__labsh_first)" = Calc' -o v
complete -c labsh -n 'test "$(__labsh_first)" = Check' -o json
complete -c labsh -n 'test "$(__labsh_first)" = Check' -o colour
complete -c labsh -n 'test "$(__labsh_first)" = Config' -o n
complete -c labsh -n 'test "$(__labsh_first)" = Config' -o z
complete -c labsh -n 'test "$(__labsh_first)" = Config' -o json
complete -c labsh -n 'test "$(__labsh_first)" = Config' -o doc
complete -c labsh -n 'test "$(__labsh_first)" = Echo' -o f
complete -c labsh -n 'test "$(__labsh_first)" = Event' -o z
complete -c labsh -n 'test "$(__labsh_first)" = Event' -o json
complete -c labsh -n 'test "$(__labsh_first)" = If' -o l
complete -c labsh -n 'test "$(__labsh_first)" = If' -o v
complete -c labsh -n 'test "$(__labsh_first)" = If' -o r
complete -c labsh -n 'test "$(__labsh_first)" = Log' -o n
complete -c labsh -n 'test "$(__labsh_first)" = Log' -o c
complete -c labsh -n 'test "$(__labsh_first)" = Log' -o e
complete -c labsh -n 'test "$(__labsh_first)" = Log' -o d
complete -c labsh -n 'test "$(__labsh_first)" = Set' -o i
complete -c labsh -n 'test "$(__labsh_first)" = Set' -o v
complete -c labsh -n 'test "$(__labsh_first)" = Set' -o z
complete -c labsh -n 'test "$(__labsh_first)" = Status' -o n
complete -c labsh -n 'test "$(__labsh_first)" = Status' -o d
complete -c labsh -n 'test "$(__labsh_first)" = Status' -o t
complete -c labsh -n 'test "$(__labsh_first)" = Status' -o z
complete -c labsh -n 'test "$(__labsh_first)" = Status' -o json
complete -c labsh -n 'test "$(__labsh_first)" = Test' -o junit
complete -c labsh -n 'test "$(__labsh_first)" = Usage' -o z
complete -c labsh -n 'test "$(__labsh_first)" = Usage' -o json
complete -c labsh -n 'test "$(__labsh_first)" = Watch' -o w
complete -c labsh -n 'test "$(__labsh_first)" = Watch' -o c
complete -c labsh -n 'test "$(__labsh_first)" = Watch' -o o
complete -c labsh -n 'test "$(__labsh_first)" = Watch' -o hist
complete -c labsh -n 'test "$(__labsh_first)" = While' -o c
complete -c labsh -n 'test "$(__labsh_first)" = While' -o er
complete -c labsh -n 'test "$(__labsh_first)" = While' -o l
complete -c labsh -n 'test "$(__labsh_first)" = While' -o v
complete -c labsh -n 'test "$(__labsh_first)" = While' -o w
complete -c labsh -n 'test "$(__labsh_first)" = While' -o r
