" Prints what a syntax file makes of the text in the buffer: for each line its runs of one class, as
" CLASS(text), those of blanks alone left out; what has no class is -(text).
"   vim -es -u NONE -S classes.vim TEXT
syntax on
let s:printed = []
for s:number in range(1, line('$'))
  let s:runs = ''
  let s:class = ''
  let s:text = ''
  for s:column in range(1, len(getline(s:number)) + 1)
    let s:next = synIDattr(synID(s:number, s:column, 1), 'name')
    let s:character = strpart(getline(s:number), s:column - 1, 1)
    if s:next !=# s:class || s:character ==# ''
      if s:text =~# '\S'
        let s:runs .= ' ' . (s:class ==# '' ? '-' : s:class) . '(' . s:text . ')'
      endif
      let s:class = s:next
      let s:text = ''
    endif
    let s:text .= s:character
  endfor
  call add(s:printed, s:number . ':' . s:runs)
endfor
call writefile(s:printed, '/dev/stdout')
quit!
