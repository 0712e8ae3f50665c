" Answers questions about the editor's state, for the tests: reads them from questions.json and
" writes answers.json, both in the working directory. $VIM_FILES is the directory under test.
set nocompatible encoding=latin1
let &runtimepath = $VIM_FILES .. ',' .. $VIMRUNTIME
packadd matchit
filetype plugin on
syntax on

" The names of the syntax groups at places of a file.
func s:Groups(question)
  exe 'edit!' fnameescape(a:question.file)
  return map(a:question.places,
        \ {_, place -> synIDattr(synID(place[0], place[1] + 1, 1), 'name')})
endfunc

func s:Entry(entry)
  return {'file': bufname(a:entry.bufnr), 'line': a:entry.lnum, 'type': a:entry.type,
        \ 'message': a:entry.text, 'valid': a:entry.valid}
endfunc

" The quickfix list that a file of messages gives.
func s:Errors(question)
  compiler hxzirpa
  exe 'cgetfile' fnameescape(a:question.file)
  return map(getqflist(), {_, entry -> s:Entry(entry)})
endfunc

" The values of options with a file in the editor.
func s:Options(question)
  exe 'edit!' fnameescape(a:question.file)
  return map(a:question.names, {_, name -> eval('&' .. name)})
endfunc

" The lines to which "%" goes, from one to the next.
func s:Jumps(question)
  exe 'edit!' fnameescape(a:question.file)
  exe a:question.line
  return map(range(a:question.count), {-> [execute('normal %'), line('.')][1]})
endfunc

" The quickfix list that ":make" with some arguments gives.
func s:Made(question)
  exe 'edit!' fnameescape(a:question.file)
  compiler hxzirpa
  exe 'silent make!' a:question.arguments
  return map(getqflist(), {_, entry -> s:Entry(entry)})
endfunc

let s:answer = {
      \ 'groups': function('s:Groups'), 'errors': function('s:Errors'),
      \ 'options': function('s:Options'), 'jumps': function('s:Jumps'), 'made': function('s:Made')}

let s:questions = json_decode(join(readfile('questions.json'), ''))
let s:answers = map(s:questions, {_, question -> s:answer[question.ask](question)})
call writefile([json_encode(s:answers)], 'answers.json')
qall!
