" Vim syntax file of definition texts, which ostrel-definitions(5) describes.
if exists('b:current_syntax')
  finish
endif
let s:cpo = &cpo
set cpo&vim
syntax case match

" A definition: a name, the access, and statements in braces.
syntax match ostrelName "[^][[:space:]]\+" nextgroup=ostrelAccess skipwhite skipempty
syntax keyword ostrelAccess contained index ro rostrict rw wo nextgroup=ostrelBody skipwhite skipempty
syntax region ostrelBody contained matchgroup=ostrelBrace start="{" end="}"
  \ contains=ostrelStatement,ostrelItems,ostrelExpression,ostrelComment
syntax keyword ostrelStatement contained index
syntax keyword ostrelStatement contained ctrlRO ctrlValid default rangeDoc rangeValid valueChange
syntax region ostrelItems contained matchgroup=ostrelBrace start="{" end="}"
  \ contains=ostrelOperand,ostrelNumber,ostrelSign,ostrelString,ostrelExpression,ostrelComment
syntax match ostrelSign contained "\.\.\|->\|[,-]"

" An expression, in parentheses.
syntax region ostrelExpression contained matchgroup=ostrelParenthesis start="(" end=")"
  \ contains=ostrelExpression,ostrelOperand,ostrelOperator,ostrelNumber,ostrelFigure,ostrelThis,ostrelString,ostrelComment
syntax match ostrelOperator contained "[-|&^=!<>+*/%$]"
syntax match ostrelOperand contained "[^[:space:](){}|&^=!<>+*/%$,.\"-]\+"
syntax match ostrelNumber contained "\<\%(0[xX]\x\+\|\d\+\)\>"
syntax match ostrelThis contained "\<sw::this\>"
syntax match ostrelFigure contained
  \ "\<vidStd::[^[:space:](){}|&^=!<>+*/%$,\"-]\{-1,}::\%(alpf\|clkDiv\|f0\|f0sw\|f0v0\|f0v1\|f1\|f1sw\|f1v0\|f1v1\|fr\|spal\|sptl\|tlpf\)\>"

" Comments are lines of their own, also within a quoted text.
syntax region ostrelString contained start=+"+ end=+"+ contains=ostrelComment
syntax match ostrelComment "^\s*#.*$" contains=ostrelAllow,@Spell
syntax match ostrelAllow contained "check: allow\>.*$"

highlight default link ostrelName Identifier
highlight default link ostrelAccess Type
highlight default link ostrelStatement Keyword
highlight default link ostrelOperator Operator
highlight default link ostrelSign Operator
highlight default link ostrelNumber Number
highlight default link ostrelFigure Function
highlight default link ostrelThis Special
highlight default link ostrelString String
highlight default link ostrelComment Comment
highlight default link ostrelAllow SpecialComment
highlight default link ostrelBrace Delimiter
highlight default link ostrelParenthesis Delimiter

let b:current_syntax = 'ostrel'
let &cpo = s:cpo
unlet s:cpo
