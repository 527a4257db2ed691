-- A session of Neovim with the server: writes down what the editor gets. The test sets labsh and transcript.
local out = io.open(transcript, 'w')
local function say(...)
  out:write(string.format(...), '\n')
  out:flush()
end

local function wait(what, condition)
  if not vim.wait(30000, condition, 10) then
    say('waited in vain for %s', what)
    vim.cmd('cquit!')
  end
end

local function showDiagnostics()
  for _, found in ipairs(vim.diagnostic.get(0)) do
    say('  %d:%d: %s [%s]', found.lnum + 1, found.col + 1, found.message, found.code or found.user_data.lsp.code)
  end
end

local function ask(method, line, character, params)
  params = vim.tbl_extend('force', {
    textDocument = vim.lsp.util.make_text_document_params(),
    position = { line = line, character = character },
  }, params or {})
  local answers = vim.lsp.buf_request_sync(0, method, params, 30000)
  local _, answer = next(answers or {})
  return answer and answer.result
end

require('labsh').setup({ cmd = { labsh, '--data', 'data', '--lsp' } })
vim.cmd('edit script.labsh')
say('filetype %s, omnifunc %s', vim.bo.filetype, vim.bo.omnifunc)
wait('the server', function()
  local _, client = next(vim.lsp.buf_get_clients(0))
  return client and client.initialized
end)

say('diagnostics of the script:')
wait('diagnostics', function() return #vim.diagnostic.get(0) > 0 end)
showDiagnostics()

vim.api.nvim_buf_set_lines(0, 1, 2, false, { 'Calc Round(target,1)' })
wait('their end', function() return #vim.diagnostic.get(0) == 0 end)
say('none of what was typed over it')

vim.api.nvim_buf_set_lines(0, 2, 2, false, { 'Calc Ro' })
say('completion of "Calc Ro":')
for _, item in ipairs(ask('textDocument/completion', 2, 7).items) do
  say('  %s: %s', item.label, item.detail)
  vim.lsp.util.apply_text_edits({ item.textEdit }, 0, 'utf-16')
end
say('as chosen: %s', vim.api.nvim_buf_get_lines(0, 2, 3, false)[1])

say('hover: %s', ask('textDocument/hover', 1, 13).contents.value)
say('signature: %s', ask('textDocument/signatureHelp', 2, 11).signatures[1].label)
say('definition: line %d', ask('textDocument/definition', 1, 13).range.start.line + 1)

vim.api.nvim_buf_set_lines(0, 2, 3, false, { 'if  target>1   then echo  "a  b";calc target' })
vim.lsp.buf.formatting_sync(nil, 30000)
say('formatted: %s', vim.api.nvim_buf_get_lines(0, 2, 3, false)[1])
vim.lsp.stop_client(vim.lsp.get_active_clients())
wait('the end of the server', function() return #vim.lsp.get_active_clients() == 0 end)
say('ended')
vim.cmd('qall!')
