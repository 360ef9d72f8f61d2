local client

vim.api.nvim_create_autocmd({ "BufRead", "BufNewFile" }, {
  pattern = "*.macro",
  callback = function(event)
    client = client or vim.lsp.start_client({
      name = "vexa-standin",
      cmd = { "vexa-standin", "lsp" },
      root_dir = vim.fn.getcwd(),
    })
    vim.lsp.buf_attach_client(event.buf, client)
    vim.bo[event.buf].omnifunc = "v:lua.vim.lsp.omnifunc"
  end,
})
