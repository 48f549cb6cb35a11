autocmd BufRead,BufNewFile *.ostrel setfiletype ostrel
autocmd BufRead,BufNewFile *.session setfiletype ostrelsession
