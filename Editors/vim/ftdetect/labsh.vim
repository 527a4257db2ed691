autocmd BufRead,BufNewFile *.labsh setfiletype labsh
