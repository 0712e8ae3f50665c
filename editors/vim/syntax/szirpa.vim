" Vim syntax file
" Language: ZIRPA assembler (HXzirpa)
"
" A statement is read as the assembler reads it: a label in the first column, an operation that ends
" at a blank, an operand that ends at a blank too, and then text that is ignored.

if exists('b:current_syntax')
  finish
endif
let s:cpo_save = &cpo
set cpo&vim

syn case ignore
syn cluster szirpaOperation
      \ contains=szirpaComment,szirpaMnemonic,szirpaBranch,szirpaDirective,szirpaIllegal
syn cluster szirpaExpression
      \ contains=szirpaName,szirpaRegister,szirpaOperator,szirpaStep,szirpaNumber,szirpaCharacter

" ---- Lines ----

syn match szirpaIllegal /^[!-~]\+/
syn match szirpaBlanks /^\s\+/ nextgroup=@szirpaOperation
syn match szirpaLabel /^[a-z_][a-z0-9_$.]\{,127}:\=/ nextgroup=@szirpaOperation skipwhite
syn match szirpaConstant /^[a-z_][a-z0-9_$.]\{,127}:\=\ze\s*equ[!-~]\@!/
      \ nextgroup=@szirpaOperation skipwhite
syn match szirpaIllegalIf /^\s*#\s*if[!-~]\@!/
" These go on while their lines end in a plus sign.
syn match szirpaDebugger /\C^\.stab\%(.*+\n\)*.*/
syn sync minlines=50
syn match szirpaComment /^;.*/ contains=szirpaTodo,@Spell

" ---- Fields behind an operation ----

syn match szirpaIllegal contained /[!-~]\+/
syn match szirpaComment contained /;.*/ contains=szirpaTodo,@Spell
syn match szirpaIgnored contained /[!-:<-~].*/ contains=@Spell
syn match szirpaOperand contained /;\@!\%('.'\|[!-~]\)\+/ contains=@szirpaExpression
      \ nextgroup=szirpaComment,szirpaIgnored skipwhite
" The first character of a string may be a quote, which then does not close it.
syn match szirpaString contained /"\%(\\.\|[^\\]\)\%(\\.\|[^\\"]\)*"/ contains=szirpaEscape
      \ nextgroup=szirpaComment,szirpaIgnored skipwhite
syn match szirpaEscape contained /\\[bnrt\\"'0-9]/
syn match szirpaTestedName contained /[!-~]\+/ nextgroup=szirpaComment,szirpaIgnored skipwhite
syn match szirpaDefinedName contained /[!-~]\+/ nextgroup=szirpaComment,szirpaOperand skipwhite
syn match szirpaMessage contained /.\+/

" ---- Expressions; of two matches at one place, the later one counts ----

syn match szirpaOperator contained /[-+*\/&|^~!=<>#()%]/
syn match szirpaStep contained /,\@1<=[-+]\ze[xy][a-z0-9_]\@!\|\%(,[xy]\)\@2<=[-+]/
syn match szirpaName contained /[a-z_][a-z0-9_$.]*/
syn match szirpaNumber contained /\$\x\+\|\d\+\|[a-z0-9_$.')]\@1<!%[01]\+/
syn match szirpaCharacter contained /'.'/

" ---- Words ----

syn keyword szirpaTodo contained TODO FIXME XXX

" Written by tools/write_grammar.py: begin
syn match szirpaMnemonic contained
      \ /\%(adca\|adda\|anda\|andcc\|asl\|asr\|bita\|clr\|cmpa\|cmpsp\|cmpx\|cmpy\|com\|dec
      \\|eora\|exg\|inc\|jmp\|jsr\|lda\|ldsp\|ldx\|ldy\|leasp\|leax\|leay\|lsl\|lsr\|neg
      \\|ora\|orcc\|rol\|ror\|sbca\|sta\|stsp\|stx\|sty\|suba\|tfr\|tst\)[!-~]\@!/
      \ nextgroup=szirpaComment,szirpaOperand skipwhite
syn match szirpaBranch contained
      \ /\%(bcc\|bcs\|beq\|bge\|bgt\|bhi\|bhs\|ble\|blo\|bls\|blt\|bmi\|bne\|bpl\|bra\|bsr
      \\|bvc\|bvs\)[!-~]\@!/
      \ nextgroup=szirpaComment,szirpaOperand skipwhite
syn match szirpaMnemonic contained
      \ /\%(asla\|asra\|clra\|coma\|daa\|deca\|inca\|lsla\|lsra\|nega\|nop\|psha\|pshc
      \\|pshcc\|pshx\|pshy\|pula\|pulc\|pulcc\|pulx\|puly\|rola\|rora\|rti\|rts\|tsta\)[!-~]\@!/
      \ nextgroup=szirpaComment,szirpaIgnored skipwhite
syn match szirpaDirective contained
      \ /\%(org\|rmb\|fcb\|equ\|end\)[!-~]\@!/
      \ nextgroup=szirpaComment,szirpaOperand skipwhite
syn match szirpaDirective contained
      \ /\%(fcs\)[!-~]\@!/
      \ nextgroup=szirpaComment,szirpaString skipwhite
syn match szirpaHash
      \ /^\s*#\s*\ze\%(#if\|else\|endif\|elif\|ifdef\|ifndef\|define\|error\)[!-~]\@!/
      \ nextgroup=szirpaConditional skipwhite
syn match szirpaConditional contained
      \ /\%(#if\)[!-~]\@!/
      \ nextgroup=szirpaComment,szirpaOperand skipwhite
syn match szirpaConditional contained
      \ /\%(elif\|ifdef\|ifndef\)[!-~]\@!/
      \ nextgroup=szirpaTestedName skipwhite
syn match szirpaConditional contained
      \ /\%(define\)[!-~]\@!/
      \ nextgroup=szirpaDefinedName skipwhite
syn match szirpaConditional contained
      \ /\%(else\|endif\)[!-~]\@!/
      \ nextgroup=szirpaComment,szirpaIgnored skipwhite
syn match szirpaConditional contained
      \ /\%(error\)[!-~]\@!/
      \ nextgroup=szirpaMessage skipwhite
syn match szirpaRegister contained /\%(a\|cc\|x\|y\|sp\)[a-z0-9_]\@!/
" Written by tools/write_grammar.py: end

hi def link szirpaBranch Statement
hi def link szirpaCharacter Character
hi def link szirpaComment Comment
hi def link szirpaConditional PreCondit
hi def link szirpaConstant Constant
hi def link szirpaDebugger PreProc
hi def link szirpaDefinedName Constant
hi def link szirpaDirective PreProc
hi def link szirpaEscape SpecialChar
hi def link szirpaHash PreCondit
hi def link szirpaIgnored Comment
hi def link szirpaIllegal Error
hi def link szirpaIllegalIf Error
hi def link szirpaLabel Label
hi def link szirpaMessage String
hi def link szirpaMnemonic Statement
hi def link szirpaName Identifier
hi def link szirpaNumber Number
hi def link szirpaOperator Operator
hi def link szirpaRegister Special
hi def link szirpaStep Operator
hi def link szirpaString String
hi def link szirpaTestedName Identifier
hi def link szirpaTodo Todo

let b:current_syntax = 'szirpa'
let &cpo = s:cpo_save
unlet s:cpo_save
