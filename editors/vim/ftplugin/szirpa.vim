" Vim filetype plugin
" Language: ZIRPA assembler (HXzirpa)

if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal comments=:;
setlocal commentstring=;\ %s
" Names may hold "$" and ".".
setlocal iskeyword=@,48-57,_,36,46
setlocal suffixesadd=.szirpa
setlocal formatoptions-=t formatoptions+=croql
let b:undo_ftplugin = 'setlocal comments< commentstring< iskeyword< suffixesadd<'
      \ .. ' formatoptions<'

" For the matchit plugin: "%" goes from one conditional word to the next.
if exists('loaded_matchit') && !exists('b:match_words')
  let b:match_ignorecase = 1
  let b:match_words = '^\s*#\s*\%(#if\|ifdef\|ifndef\)[!-~]\@!'
        \ .. ':^\s*#\s*elif[!-~]\@!:^\s*#\s*else[!-~]\@!:^\s*#\s*endif[!-~]\@!'
  let b:undo_ftplugin ..= ' | unlet! b:match_ignorecase b:match_words'
endif
