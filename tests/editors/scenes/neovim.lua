-- The settings of Neovim in the pictures.
vim.opt.runtimepath:prepend({ vim.env.EDITOR_FILES .. '/vim', vim.env.EDITOR_FILES .. '/neovim' })
vim.opt.number = true
vim.opt.signcolumn = 'yes'
vim.opt.laststatus = 0
vim.opt.ruler = false
vim.opt.showcmd = false
vim.opt.shortmess:append('F')
vim.opt.updatetime = 100
require('zirpa').setup({ cmd = { vim.env.ZIRPA, 'lsp' } })
vim.cmd('highlight NormalFloat ctermfg=252 ctermbg=237')
vim.cmd('highlight SignColumn ctermbg=NONE')
