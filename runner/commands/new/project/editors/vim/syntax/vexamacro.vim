" Macros of add-ons: a command per line, ID COMMAND OPTION=VALUE or ID COMMAND OPTION = VALUE.
if exists('b:current_syntax')
  finish
endif
syntax case match

syntax match vexaComment /^\s*#.*$/
syntax match vexaId /^\s*[^# \t]\S*/ nextgroup=vexaCommand skipwhite
syntax match vexaCommand /\S\+/ contained nextgroup=@vexaParts skipwhite

syntax cluster vexaParts contains=vexaOption,vexaText,vexaSet,vexaBoolean,vexaNumber,vexaAssign
syntax match vexaOption /[^ \t='"[\]]\+\ze\s*=/ contained nextgroup=vexaAssign skipwhite
syntax match vexaAssign /=/ contained nextgroup=vexaText,vexaSet,vexaBoolean,vexaNumber skipwhite
syntax match vexaText /'\([^'\\]\|\\.\)*\('\|$\)/ contained nextgroup=vexaOption skipwhite
syntax match vexaText /"\([^"\\]\|\\.\)*\("\|$\)/ contained nextgroup=vexaOption skipwhite
syntax match vexaSet /\[[^\]]*\]\?/ contained nextgroup=vexaOption skipwhite
syntax match vexaBoolean /\c\(true\|false\|t\|f\|yes\|no\)\ze\(\s\|$\)/ contained nextgroup=vexaOption skipwhite
syntax match vexaNumber /[-+]\?\(\d\+\.\?\d*\|\.\d\+\)\([eE][-+]\?\d\+\)\?\ze\(\s\|$\)/ contained nextgroup=vexaOption skipwhite

highlight default link vexaComment Comment
highlight default link vexaId Type
highlight default link vexaCommand Function
highlight default link vexaOption Identifier
highlight default link vexaAssign Operator
highlight default link vexaText String
highlight default link vexaSet Constant
highlight default link vexaBoolean Boolean
highlight default link vexaNumber Number

let b:current_syntax = 'vexamacro'
