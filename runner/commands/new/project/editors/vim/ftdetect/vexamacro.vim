" Files that end in .macro are macros of add-ons.
autocmd BufNewFile,BufRead *.macro setfiletype vexamacro
