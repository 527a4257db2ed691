-- Serves the scripts of labsh in Neovim, from 0.7 on. In init.lua:
--     require('labsh').setup()
--     require('labsh').setup({ cmd = { '/opt/lab/labsh', '--data', '/srv/bench', '--lsp' } })
local M = {}

function M.setup(options)
  local config = vim.tbl_extend('force', { name = 'labsh', cmd = { 'labsh', '--lsp' } }, options or {})
  local client
  vim.api.nvim_create_autocmd('FileType', {
    pattern = 'labsh',
    callback = function(event)
      if not client or not vim.lsp.get_client_by_id(client) then
        client = vim.lsp.start_client(config)
      end
      if client then
        vim.lsp.buf_attach_client(event.buf, client)
        vim.bo[event.buf].omnifunc = 'v:lua.vim.lsp.omnifunc'
      end
    end,
  })
end

return M
