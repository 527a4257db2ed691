# Completion of labsh in fish. Made of what labsh lists, by Tools/options.sh.
complete -c labsh -n __fish_use_subcommand -s h -l help -d 'Print this help message and exit'
complete -c labsh -n __fish_use_subcommand -l version -d 'Print the version and exit'
complete -c labsh -n __fish_use_subcommand -s f -r -F -d 'Run the commands of this file'
complete -c labsh -n __fish_use_subcommand -s k -d 'Go on with a script after a command failed'
complete -c labsh -n __fish_use_subcommand -l strict -d 'Fail where a command such as If goes on after a failure, not just warn'
complete -c labsh -n __fish_use_subcommand -s x -d 'Show on standard error each command, its conditions and the variables it changes'
complete -c labsh -n __fish_use_subcommand -l junit -r -F -d 'Report each Assert to this file, in the XML of JUnit, and count them'
complete -c labsh -n __fish_use_subcommand -l log -r -F -d 'Record the session in this file, behind what it holds: each line with its time'
complete -c labsh -n __fish_use_subcommand -l lsp -d 'Serve an editor: the language server protocol on standard input and output'
complete -c labsh -n __fish_use_subcommand -l fresh -d 'Work on a new instrument that is thrown away at the end'
complete -c labsh -n __fish_use_subcommand -l data -x -a '(__fish_complete_directories)' -d 'The instrument\'s data folder'
complete -c labsh -n __fish_use_subcommand -l plugin -r -F -d 'Load this plug-in too'
complete -c labsh -n __fish_use_subcommand -l check -d 'Look for what is wrong with the scripts FILE..., without running them'
complete -c labsh -n __fish_use_subcommand -a 'Assert AssertFail Calc Check Config Echo Event Exit Help If Log Plugins Run Set Stats Status Test Usage Wait Watch While'
complete -c labsh -n '__fish_seen_subcommand_from Help' -a 'Assert AssertFail Calc Check Config Echo Event Exit Help If Log Plugins Run Set Stats Status Test Usage Wait Watch While abs acos asin atan Average Avg Bool ceil Config cos cosh CStr DateToDays DaysToDate Defined EndsWith Exist exp Fcvt FileCrc FileExist FileSize FileZynqChecksum floor FmtEng FromHex Ftoa GetConfig GetConfigBool GetConfigDbl GetConfigInt GetConfigStr GetConfigUInt GetEnv GetEvent GetProcId GetStatus GetUsage Icpt IF IndexOf InitIfNa InStr int Intercept IsErr IsError IsInList IsNA IsRunning LCase Left Len ListItem ListLen ln log Matches Max Med Median Mid Min Mod Not Rand Random Right Round Sd sign sin sinh Slope sqr sqrt StartsWith StDev StrCat StrReplace SubString Sum tan tanh ToHex ToString UCase Val VersionCompare variables operators functions scripts errors references'
complete -c labsh -n '__fish_seen_subcommand_from Assert' -o q
complete -c labsh -n '__fish_seen_subcommand_from Assert' -o c
complete -c labsh -n '__fish_seen_subcommand_from Calc' -o help
complete -c labsh -n '__fish_seen_subcommand_from Calc' -o q
complete -c labsh -n '__fish_seen_subcommand_from Calc' -o v
complete -c labsh -n '__fish_seen_subcommand_from Check' -o json
complete -c labsh -n '__fish_seen_subcommand_from Check' -o colour
complete -c labsh -n '__fish_seen_subcommand_from Config' -o n
complete -c labsh -n '__fish_seen_subcommand_from Config' -o z
complete -c labsh -n '__fish_seen_subcommand_from Config' -o json
complete -c labsh -n '__fish_seen_subcommand_from Config' -o doc
complete -c labsh -n '__fish_seen_subcommand_from Echo' -o f
complete -c labsh -n '__fish_seen_subcommand_from Event' -o z
complete -c labsh -n '__fish_seen_subcommand_from Event' -o json
complete -c labsh -n '__fish_seen_subcommand_from If' -o l
complete -c labsh -n '__fish_seen_subcommand_from If' -o v
complete -c labsh -n '__fish_seen_subcommand_from If' -o r
complete -c labsh -n '__fish_seen_subcommand_from Log' -o n
complete -c labsh -n '__fish_seen_subcommand_from Log' -o c
complete -c labsh -n '__fish_seen_subcommand_from Log' -o e
complete -c labsh -n '__fish_seen_subcommand_from Log' -o d
complete -c labsh -n '__fish_seen_subcommand_from Set' -o i
complete -c labsh -n '__fish_seen_subcommand_from Set' -o v
complete -c labsh -n '__fish_seen_subcommand_from Set' -o z
complete -c labsh -n '__fish_seen_subcommand_from Status' -o n
complete -c labsh -n '__fish_seen_subcommand_from Status' -o d
complete -c labsh -n '__fish_seen_subcommand_from Status' -o t
complete -c labsh -n '__fish_seen_subcommand_from Status' -o z
complete -c labsh -n '__fish_seen_subcommand_from Status' -o json
complete -c labsh -n '__fish_seen_subcommand_from Test' -o junit
complete -c labsh -n '__fish_seen_subcommand_from Usage' -o z
complete -c labsh -n '__fish_seen_subcommand_from Usage' -o json
complete -c labsh -n '__fish_seen_subcommand_from Watch' -o w
complete -c labsh -n '__fish_seen_subcommand_from Watch' -o c
complete -c labsh -n '__fish_seen_subcommand_from Watch' -o o
complete -c labsh -n '__fish_seen_subcommand_from Watch' -o hist
complete -c labsh -n '__fish_seen_subcommand_from While' -o c
complete -c labsh -n '__fish_seen_subcommand_from While' -o er
complete -c labsh -n '__fish_seen_subcommand_from While' -o l
complete -c labsh -n '__fish_seen_subcommand_from While' -o v
complete -c labsh -n '__fish_seen_subcommand_from While' -o w
complete -c labsh -n '__fish_seen_subcommand_from While' -o r
