" The settings of Vim in the pictures.
set nocompatible background=dark number noruler noshowcmd laststatus=0 shortmess+=F
let &runtimepath = $EDITOR_FILES .. '/vim,' .. $ALE .. ',' .. $VIMRUNTIME
let g:ale_szirpa_zirpa_executable = $ZIRPA
let g:ale_sign_error = 'E>'
let g:ale_virtualtext_cursor = 0
filetype plugin on
syntax on
highlight SignColumn ctermbg=NONE
