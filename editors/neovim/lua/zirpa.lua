-- zirpa's language server for Neovim's own client, from 0.7 on:
--
--   require('zirpa').setup()
--
-- Clients before 0.10 know of no hints in the text; for these they are drawn here, after the lines.

local M = {}

local defaults = {
  cmd = { 'zirpa', 'lsp' },
  hints = true, -- addresses, bytes and values
  keys = true,
  settings = {}, -- those of zirpa.json, inlayHints and format
}

local options = defaults
local is_missing_told = false
local client_before_start -- of a Neovim that has no vim.lsp.start
local drawn = vim.api.nvim_create_namespace('zirpa.hints')

local has_own_hints = vim.lsp.inlay_hint ~= nil

-- ---- Hints ----

-- What belongs to a line stands after it, values ahead of bytes, in the order of the answer.
local function draw(buffer, hints)
  local texts = {}
  for _, hint in ipairs(hints) do
    local line = hint.position.line
    texts[line] = (texts[line] or '') .. '  ' .. hint.label
  end
  vim.api.nvim_buf_clear_namespace(buffer, drawn, 0, -1)
  for line, text in pairs(texts) do
    if line < vim.api.nvim_buf_line_count(buffer) then
      vim.api.nvim_buf_set_extmark(buffer, drawn, line, 0, {
        virt_text = { { text, 'NonText' } },
        priority = 1,
      })
    end
  end
end

local function refresh(buffer)
  if not vim.api.nvim_buf_is_loaded(buffer) then
    return
  end
  if not vim.b[buffer].zirpa_hints then
    vim.api.nvim_buf_clear_namespace(buffer, drawn, 0, -1)
    return
  end
  local params = {
    textDocument = { uri = vim.uri_from_bufnr(buffer) },
    range = {
      start = { line = 0, character = 0 },
      ['end'] = { line = vim.api.nvim_buf_line_count(buffer), character = 0 },
    },
  }
  vim.lsp.buf_request(buffer, 'textDocument/inlayHint', params, function(_, hints)
    if hints and vim.api.nvim_buf_is_loaded(buffer) and vim.b[buffer].zirpa_hints then
      draw(buffer, hints)
    end
  end)
end

local function show_hints(buffer, is_on)
  vim.b[buffer].zirpa_hints = is_on
  if has_own_hints then
    vim.lsp.inlay_hint.enable(is_on, { bufnr = buffer })
  else
    refresh(buffer)
  end
end

local function follow_changes(buffer)
  local group = vim.api.nvim_create_augroup('zirpa.hints.' .. buffer, {})
  vim.api.nvim_create_autocmd({ 'TextChanged', 'TextChangedI' }, {
    group = group,
    buffer = buffer,
    callback = function()
      refresh(buffer)
    end,
  })
end

-- ---- The listing ----

local function show_listing(buffer)
  local params = { textDocument = { uri = vim.uri_from_bufnr(buffer) } }
  vim.lsp.buf_request(buffer, 'zirpa/listing', params, function(failure, result)
    if not result then
      vim.notify('zirpa: no listing: ' .. (failure and failure.message or ''), vim.log.levels.WARN)
      return
    end
    vim.cmd('vertical new')
    vim.api.nvim_buf_set_lines(0, 0, -1, false, vim.split(result.text, '\n'))
    for name, value in pairs({ buftype = 'nofile', bufhidden = 'wipe', modifiable = false }) do
      vim.bo[name] = value
    end
    vim.wo.wrap = false
  end)
end

-- ---- The client ----

local function set_keys(buffer)
  local keys = {
    K = vim.lsp.buf.hover,
    gd = vim.lsp.buf.definition,
    grr = vim.lsp.buf.references,
    grn = vim.lsp.buf.rename,
    gra = vim.lsp.buf.code_action,
  }
  for key, action in pairs(keys) do
    vim.keymap.set('n', key, function()
      action()
    end, { buffer = buffer })
  end
end

local function on_attach(client, buffer)
  vim.bo[buffer].omnifunc = 'v:lua.vim.lsp.omnifunc'
  if options.keys then
    set_keys(buffer)
  end
  vim.api.nvim_buf_create_user_command(buffer, 'ZirpaHints', function()
    show_hints(buffer, not vim.b[buffer].zirpa_hints)
  end, { desc = 'Show or hide addresses, bytes and values' })
  vim.api.nvim_buf_create_user_command(buffer, 'ZirpaListing', function()
    show_listing(buffer)
  end, { desc = 'Show the listing beside the source' })
  if not has_own_hints then
    follow_changes(buffer)
  end
  show_hints(buffer, options.hints)
end

local function start(buffer)
  if vim.fn.executable(options.cmd[1]) == 0 then
    if not is_missing_told then
      is_missing_told = true
      vim.notify('zirpa: there is no program ' .. options.cmd[1], vim.log.levels.WARN)
    end
    return
  end
  local config = {
    name = 'zirpa',
    cmd = options.cmd,
    root_dir = vim.fn.getcwd(),
    init_options = options.settings,
    settings = { zirpa = options.settings },
    on_attach = on_attach,
  }
  if vim.lsp.start then
    vim.lsp.start(config)
    return
  end
  if not client_before_start or vim.lsp.client_is_stopped(client_before_start) then
    client_before_start = vim.lsp.start_client(config)
  end
  vim.lsp.buf_attach_client(buffer, client_before_start)
end

function M.setup(given)
  options = vim.tbl_deep_extend('force', defaults, given or {})
  if next(options.settings) == nil then
    options.settings = vim.empty_dict()
  end
  vim.api.nvim_create_autocmd('FileType', {
    group = vim.api.nvim_create_augroup('zirpa', {}),
    pattern = 'szirpa',
    callback = function(event)
      start(event.buf)
    end,
  })
end

return M
