" A session in Vim with the plugin ALE; writes what it saw to seen.json in the working directory.
" $ZIRPA is the server.
set nocompatible hidden
let &runtimepath = $EDITOR_FILES .. '/vim,' .. $ALE .. ',' .. $VIMRUNTIME
filetype plugin on
let g:ale_szirpa_zirpa_executable = $ZIRPA
let g:ale_linters_explicit = 0
let s:seen = {}

func s:WaitFor(what, Condition)
  for s:turn in range(400)
    if a:Condition()
      return
    endif
    sleep 50m
  endfor
  throw 'waited in vain: ' .. a:what
endfunc

" What the user would type.
let s:typed = []
func s:StandInForTheUser()
  runtime autoload/ale/util.vim
  func! ale#util#Input(message, value, ...) abort
    let s:prompt = a:message
    return remove(s:typed, 0)
  endfunc
endfunc

func s:Diagnostics()
  return map(filter(copy(ale#engine#GetLoclist(bufnr(''))), {_, each -> has_key(each, 'code')}),
        \ {_, each -> [each.lnum, each.col, each.code, each.text]})
endfunc

func s:Session()
  edit prog.szirpa
  ALELint
  call s:WaitFor('diagnostics', {-> !empty(s:Diagnostics())})
  let s:seen.diagnostics = s:Diagnostics()

  call cursor(2, 9)
  let s:typed = ['1']
  ALECodeAction
  call s:WaitFor('the fix', {-> getline(2) =~# 'LDA '})
  let s:seen.offered = map(filter(split(s:prompt, "\n"), {_, line -> line =~# '^\d)'}),
        \ {_, line -> substitute(line, '^\d) ', '', '')})

  call cursor(2, 17)
  ALEGoToDefinition
  call s:WaitFor('the jump', {-> line('.') != 2})
  let s:seen.jump = line('.')

  let s:typed = ['tempo']
  ALERename
  call s:WaitFor('the new name', {-> getline(6) =~# 'tempo'})
  let s:seen.text = getline(1, '$')
endfunc

try
  runtime plugin/ale.vim
  call s:StandInForTheUser()
  call s:Session()
catch
  let s:seen.failure = v:throwpoint .. ': ' .. v:exception .. "\n" .. execute('messages')
endtry
call writefile([json_encode(s:seen)], 'seen.json')
qall!
