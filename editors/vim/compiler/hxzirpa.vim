" Vim compiler plugin
" Compiler: HXzirpa, the ZIRPA cross-assembler
"
" ":make" assembles the current file with warnings; further options go before it, as in ":make -L".

if exists('current_compiler')
  finish
endif
let current_compiler = 'hxzirpa'
let s:cpo_save = &cpo
set cpo&vim

CompilerSet makeprg=HXzirpa\ -w\ $*\ %:S

" Three forms as they are printed, then as a listing holds them, then what belongs to no line. All
" else, such as the program's closing line, is left out.
CompilerSet errorformat=
      \%E%f\ (%l)\ Error:\ %m,
      \%W%f\ (%l)\ Warning:\ %m,
      \%E%f\ (%l)Fatal\ error:\ %m,
      \%E\"%f\"\ line\ %l\\,\ ERROR:\ %m,
      \%W\"%f\"\ LINE:\ %l\\,WARNING:\ %m,
      \%E\"%f\"\ (%l)\ Fatal\ error:\ %m,
      \%+EFatal\ error:\ %.%#,
      \%+EHXzirpa:\ Can't\ %.%#,
      \%+WHXzirpa:\ Unknown\ %.%#,
      \%-G%.%#

let &cpo = s:cpo_save
unlet s:cpo_save
