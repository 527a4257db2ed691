" Scripts of labsh: comments, words, and continued lines.
if exists('b:did_ftplugin')
    finish
endif
let b:did_ftplugin = 1

setlocal comments=:# commentstring=#\ %s
setlocal iskeyword=@,48-57,_,.
setlocal formatoptions-=t formatoptions+=croql
let b:undo_ftplugin = 'setlocal comments< commentstring< iskeyword< formatoptions<'
