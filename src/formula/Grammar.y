// The grammar of the formula language, from loose to tight. The text of an error, which the lexer
// gives only where the host reads it, may stand wherever the reference stood that was lost.
//
// Every binary level is left-recursive, so all operators group from the left, comparison and power
// included. There is no error recovery: the parser unwinds and frees what it built. Its stack holds
// 1024 symbols; a formula that needs more fails like a syntax error, and so does a tree deeper than
// kMaxFormulaDepth.
//
// No exception may pass through the generated parser, since it would not free the stack: an action
// that fails gives null, which ends the parse.

%define api.pure full
%define api.prefix {cells_grammar_}
%define parse.error simple
%param { cells::internal::ParserState & state }
%expect 0

%code requires {
#include "values/ValueLists.h"
#include "formula/CCFunc.h"
#include "formula/FormulaList.h"

namespace cells::internal {
struct ParserState;
class ArrayBuilder;
}
}

%code provides {
// The next token of the lexer, and the report of an error, which is silent.
int cells_grammar_lex(CELLS_GRAMMAR_STYPE * value, cells::internal::ParserState & state);
void cells_grammar_error(cells::internal::ParserState & state, char const * message);
}

%code {
#include "formula/internal/GrammarActions.h"

#include <new>

using namespace cells::internal;

#define YYINITDEPTH 1025
#define YYMAXDEPTH 1025
}

%union {
    CCFormula * formula;
    cells::internal::FormulaListBuilder * list;
    cells::internal::ArrayBuilder * rows;
    CCCellValue * value;
    CCFunc * func;
    wchar_t * name;
}

%token SEP SEP2 ADD SUB PERCENT POW MUL DIV AND OR NOT LT LE GT GE EQ NE DOTS COLON BANG AT UNKNOWN
%token <formula> CONST REF ERROR
%token <func> FUNC
%token <name> NAME
%type <formula> expr or and not compare add mul pow pct unary primary refexpr plainref range refitem
%type <formula> sheetref sheet call
%type <list> args list
%type <rows> rows
%type <value> item value

%destructor { delete $$; } <formula> <list> <rows> <value>
%destructor { std::free($$); } <name>

%%

formula: expr { state.result.reset($1); }
       ;

expr: or
    ;

or: or OR and   { if (!($$ = Combine(state, Operator::kOr, $1, $3))) YYABORT; }
  | and
  ;

and: and AND not { if (!($$ = Combine(state, Operator::kAnd, $1, $3))) YYABORT; }
   | not
   ;

not: NOT not { if (!($$ = Apply(state, Operator::kNot, $2))) YYABORT; }
   | compare
   ;

compare: compare GT add { if (!($$ = Combine(state, Operator::kGreater, $1, $3))) YYABORT; }
       | compare LT add { if (!($$ = Combine(state, Operator::kLess, $1, $3))) YYABORT; }
       | compare GE add { if (!($$ = Combine(state, Operator::kGreaterOrEqual, $1, $3))) YYABORT; }
       | compare LE add { if (!($$ = Combine(state, Operator::kLessOrEqual, $1, $3))) YYABORT; }
       | compare NE add { if (!($$ = Combine(state, Operator::kNotEqual, $1, $3))) YYABORT; }
       | compare EQ add { if (!($$ = Combine(state, Operator::kEqual, $1, $3))) YYABORT; }
       | add
       ;

add: add ADD mul { if (!($$ = Combine(state, Operator::kAdd, $1, $3))) YYABORT; }
   | add SUB mul { if (!($$ = Combine(state, Operator::kSubtract, $1, $3))) YYABORT; }
   | mul
   ;

mul: mul MUL pow { if (!($$ = Combine(state, Operator::kMultiply, $1, $3))) YYABORT; }
   | mul DIV pow { if (!($$ = Combine(state, Operator::kDivide, $1, $3))) YYABORT; }
   | pow
   ;

pow: pow POW pct { if (!($$ = Combine(state, Operator::kPower, $1, $3))) YYABORT; }
   | pct
   ;

pct: unary PERCENT { if (!($$ = Apply(state, Operator::kPercent, $1))) YYABORT; }
   | unary
   ;

unary: SUB unary { if (!($$ = Apply(state, Operator::kMinusSign, $2))) YYABORT; }
     | ADD unary { if (!($$ = Apply(state, Operator::kPlusSign, $2))) YYABORT; }
     | primary
     ;

primary: '(' expr ')' { $$ = $2; }
       | call
       | AT call      { $$ = $2; }
       | refexpr
       | CONST
       | '{' rows '}' { if (!($$ = MakeArray(state, $2))) YYABORT; }
       ;

call: FUNC '(' args ')' { if (!($$ = Call(state, $1, $3))) YYABORT; }
    ;

refexpr: plainref
       | sheetref
       ;

plainref: range
        | REF
        | ERROR
        ;

range: refitem DOTS refitem  { if (!($$ = Combine(state, Operator::kRange, $1, $3))) YYABORT; }
     | refitem COLON refitem { if (!($$ = Combine(state, Operator::kRange, $1, $3))) YYABORT; }
     ;

refitem: REF
       | ERROR
       | call
       ;

sheetref: sheet plainref { if (!($$ = Combine(state, Operator::kFullRef, $1, $2))) YYABORT; }
        | sheet refitem DOTS sheet refitem  { if (!($$ = SheetCorners(state, $1, $2, $4, $5))) YYABORT; }
        | sheet refitem COLON sheet refitem { if (!($$ = SheetCorners(state, $1, $2, $4, $5))) YYABORT; }
        ;

sheet: NAME BANG            { if (!($$ = Sheet(state, $1))) YYABORT; }
     | NAME COLON NAME BANG { if (!($$ = SheetRun(state, $1, $3))) YYABORT; }
     ;

args: list
    | %empty { $$ = nullptr; }
    ;

list: list SEP expr { if (!($$ = AddArgument(state, $1, $3))) YYABORT; }
    | expr          { if (!($$ = AddArgument(state, nullptr, $1))) YYABORT; }
    ;

rows: rows SEP2 item { if (!($$ = AddItem(state, $1, $3, true))) YYABORT; }
    | rows SEP item  { if (!($$ = AddItem(state, $1, $3, false))) YYABORT; }
    | item           { if (!($$ = AddItem(state, nullptr, $1, false))) YYABORT; }
    ;

item: value
    | ADD value { $$ = $2; }
    | SUB value { $$ = Negated($2); }
    ;

value: ERROR         { if (!($$ = TakeValue(state, $1))) YYABORT; }
     | CONST         { if (!($$ = TakeValue(state, $1))) YYABORT; }
     | CONST PERCENT { if (!($$ = TakeValue(state, $1))) YYABORT; AsPercent($$); }
     ;

%%

namespace cells::internal {

CCFormula * ParseTree(CTX * ctx, wchar_t const *& text, int mode) {
    ParserState state(ctx, text, mode);
    bool const done = cells_grammar_parse(state) == 0;
    text = state.lexer.Position();
    if (state.outOfMemory) throw std::bad_alloc();
    return done ? state.result.release() : nullptr;
}

}
