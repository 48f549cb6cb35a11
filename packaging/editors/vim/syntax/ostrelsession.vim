" Vim syntax file of sessions, which ostrel-session(5) describes.
if exists('b:current_syntax')
  finish
endif
let s:cpo = &cpo
set cpo&vim
syntax case match

syntax keyword ostrelsessionOperation check_set commit constants deps end get index indices range
syntax keyword ostrelsessionOperation reset reset_status set set_status single_check_set single_get
syntax keyword ostrelsessionOperation single_reset single_reset_status single_set single_set_status
syntax keyword ostrelsessionOperation single_validate start try up validate why
syntax keyword ostrelsessionLoop for in include
syntax match ostrelsessionArrow "->" nextgroup=ostrelsessionOutcome
syntax match ostrelsessionOutcome contained ".*$"
  \ contains=ostrelsessionRefused,ostrelsessionString,ostrelsessionVariable,ostrelsessionComment
syntax match ostrelsessionRefused contained "\<refused:"
syntax match ostrelsessionVariable "\$\%(\w\+\|{\w\+}\)"
syntax match ostrelsessionEscape contained +\\\%([\\"#$ntr]\|x\x\x\)+
syntax region ostrelsessionString start=+"+ skip=+\\.+ end=+"+ oneline
  \ contains=ostrelsessionVariable,ostrelsessionEscape
syntax match ostrelsessionComment "\%(^\|\s\)\zs#.*$" contains=@Spell

highlight default link ostrelsessionOperation Statement
highlight default link ostrelsessionLoop Repeat
highlight default link ostrelsessionArrow Operator
highlight default link ostrelsessionRefused Exception
highlight default link ostrelsessionVariable Identifier
highlight default link ostrelsessionEscape SpecialChar
highlight default link ostrelsessionString String
highlight default link ostrelsessionComment Comment

let b:current_syntax = 'ostrelsession'
let &cpo = s:cpo
unlet s:cpo
