" For the plugin ALE: zirpa's language server
" Language: ZIRPA assembler (HXzirpa)

call ale#Set('szirpa_zirpa_executable', 'zirpa')
" The settings of zirpa.json.
call ale#Set('szirpa_zirpa_settings', {})

call ale#linter#Define('szirpa', {
      \ 'name': 'zirpa',
      \ 'lsp': 'stdio',
      \ 'executable': {buffer -> ale#Var(buffer, 'szirpa_zirpa_executable')},
      \ 'command': '%e lsp',
      \ 'lsp_config': {buffer -> {'zirpa': ale#Var(buffer, 'szirpa_zirpa_settings')}},
      \ 'project_root': {buffer -> fnamemodify(bufname(buffer), ':p:h')},
      \ })
