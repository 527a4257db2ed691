" Scripts of labsh. Tools/editors.sh writes the lists of words.
if exists('b:current_syntax')
    finish
endif

syntax case ignore
syntax match labshComment /^\s*#.*$/
syntax match labshContinuation /\\$/
syntax match labshNumber /\%([0-9a-z_.]\)\@<!\%(0x\x\+\|\%(\d\+\.\?\d*\|\.\d\+\)\%(e[+-]\?\d\+\)\?\)\%([0-9a-z_.]\)\@!/
syntax match labshReference /%[SCUE]{[^}]*}\?/
syntax region labshString start=/"/ skip=/\\["\\]/ end=/"/ oneline contains=labshReference
syntax match labshOption /\%(\s\)\@<=--\?\a\+/
syntax match labshFunction /\<\h[[:alnum:]_.]*(\@=/ contains=labshFunctionName
syntax keyword labshKeyword Do Else Then
syntax keyword labshFunctionName contained abs acos asin atan Average Avg Bool ceil Config cos cosh CStr DateToDays DaysToDate Defined EndsWith Exist exp Fcvt FileCrc FileExist FileSize FileZynqChecksum floor FmtEng FromHex Ftoa GetConfig GetConfigBool GetConfigDbl GetConfigInt GetConfigStr GetConfigUInt GetEnv GetEvent GetProcId GetStatus GetUsage Icpt IF IndexOf InitIfNa InStr int Intercept IsErr IsError IsInList IsNA IsRunning LCase Left Len ListItem ListLen ln log Matches Max Med Median Mid Min Mod Not Rand Random Right Round Sd sign sin sinh Slope sqr sqrt StartsWith StDev StrCat StrReplace SubString Sum tan tanh ToHex ToString UCase Val VersionCompare
syntax keyword labshCommand Assert AssertFail Calc Check Config Echo Event Exit Help If Log Plugins Run Set Stats Status Test Usage Wait Watch While
syntax keyword labshOperator and or xor

highlight default link labshComment Comment
highlight default link labshContinuation Special
highlight default link labshNumber Number
highlight default link labshReference Identifier
highlight default link labshString String
highlight default link labshOption PreProc
highlight default link labshKeyword Conditional
highlight default link labshFunctionName Function
highlight default link labshCommand Statement
highlight default link labshOperator Operator

let b:current_syntax = 'labsh'
