-- A session in Neovim's own client; writes what it saw to seen.json in the working directory.
-- $ZIRPA is the server; without it there is none.

local seen = {}
local chosen = 1
vim.ui.select = function(items, _, on_choice)
  seen.offered = vim.tbl_map(function(item)
    return (item.action or item[2]).title
  end, items)
  on_choice(items[chosen], chosen)
end
local told = {}
vim.notify = function(text)
  table.insert(told, text)
end

local function wait(what, condition)
  assert(vim.wait(20000, condition, 20), 'waited in vain: ' .. what)
end

local function lines()
  return vim.api.nvim_buf_get_lines(0, 0, -1, false)
end

local function wait_for_text(what, number, text)
  wait(what, function()
    return lines()[number]:find(text, 1, true) ~= nil
  end)
end

local function hints()
  local space = vim.api.nvim_get_namespaces()['zirpa.hints']
  local texts = {}
  for _, mark in ipairs(vim.api.nvim_buf_get_extmarks(0, space, 0, -1, { details = true })) do
    texts[tostring(mark[2] + 1)] = mark[4].virt_text[1][1]
  end
  return texts
end

local function session()
  require('zirpa').setup({ cmd = { vim.env.ZIRPA, 'lsp' } })
  vim.cmd('edit prog.szirpa')
  wait('diagnostics', function()
    return #vim.diagnostic.get(0) > 0
  end)
  seen.diagnostics = vim.tbl_map(function(each)
    return { each.lnum + 1, each.col + 1, each.code, each.message }
  end, vim.diagnostic.get(0))
  seen.filetype = vim.bo.filetype

  vim.api.nvim_win_set_cursor(0, { 2, 9 })
  vim.lsp.buf.code_action()
  wait_for_text('the fix', 2, 'LDA ')
  wait('no diagnostics', function()
    return #vim.diagnostic.get(0) == 0
  end)
  -- Without a screen the editor sees no key, and so no change of the text.
  vim.cmd('doautocmd <nomodeline> TextChanged')
  wait('hints', function()
    return (hints()['2'] or ''):find(':') ~= nil
  end)
  seen.hints = hints()
  vim.cmd('ZirpaHints')
  seen.hidden_hints = hints()

  vim.api.nvim_win_set_cursor(0, { 2, 17 })
  vim.cmd('normal gd')
  wait('the jump', function()
    return vim.api.nvim_win_get_cursor(0)[1] ~= 2
  end)
  seen.jump = vim.api.nvim_win_get_cursor(0)[1]

  vim.lsp.buf.rename('tempo')
  wait_for_text('the new name', 6, 'tempo')
  seen.text = lines()

  vim.cmd('ZirpaListing')
  wait('the listing', function()
    return vim.bo.buftype == 'nofile'
  end)
  seen.listing = lines()
end

local function session_without_server()
  require('zirpa').setup({ cmd = { 'no-such-program', 'lsp' } })
  vim.cmd('edit prog.szirpa')
  vim.cmd('edit! prog.szirpa')
  seen.clients = #vim.lsp.get_active_clients()
  seen.filetype = vim.bo.filetype
end

local is_fine, failure = xpcall(
  vim.env.ZIRPA and session or session_without_server,
  debug.traceback
)
if not is_fine then
  seen.failure = failure
end
seen.told = told
vim.fn.writefile({ vim.fn.json_encode(seen) }, 'seen.json')
vim.cmd('qall!')
