autocmd BufNewFile,BufRead *.szirpa setfiletype szirpa
