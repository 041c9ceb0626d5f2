// The grammar of the formula language, from loose to tight.
//
// Every binary level is left-recursive, so all operators group from the left, comparison and power
// included. There is no error recovery: the parser unwinds and frees what it built. Its stack holds
// 1024 symbols; a formula that needs more fails like a syntax error, and so does a tree deeper than
// kMaxFormulaDepth.

%define api.pure full
%define api.prefix {cells_grammar_}
%define parse.error simple
%param { cells::internal::ParserState & state }
%expect 0

%code requires {
#include "core/ValueLists.h"
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
#include "formula/GrammarActions.h"

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
%token <formula> CONST REF
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

or: or OR and   { if (!($$ = Combine(Operator::kOr, $1, $3))) YYABORT; }
  | and
  ;

and: and AND not { if (!($$ = Combine(Operator::kAnd, $1, $3))) YYABORT; }
   | not
   ;

not: NOT not { if (!($$ = Apply(Operator::kNot, $2))) YYABORT; }
   | compare
   ;

compare: compare GT add { if (!($$ = Combine(Operator::kGreater, $1, $3))) YYABORT; }
       | compare LT add { if (!($$ = Combine(Operator::kLess, $1, $3))) YYABORT; }
       | compare GE add { if (!($$ = Combine(Operator::kGreaterOrEqual, $1, $3))) YYABORT; }
       | compare LE add { if (!($$ = Combine(Operator::kLessOrEqual, $1, $3))) YYABORT; }
       | compare NE add { if (!($$ = Combine(Operator::kNotEqual, $1, $3))) YYABORT; }
       | compare EQ add { if (!($$ = Combine(Operator::kEqual, $1, $3))) YYABORT; }
       | add
       ;

add: add ADD mul { if (!($$ = Combine(Operator::kAdd, $1, $3))) YYABORT; }
   | add SUB mul { if (!($$ = Combine(Operator::kSubtract, $1, $3))) YYABORT; }
   | mul
   ;

mul: mul MUL pow { if (!($$ = Combine(Operator::kMultiply, $1, $3))) YYABORT; }
   | mul DIV pow { if (!($$ = Combine(Operator::kDivide, $1, $3))) YYABORT; }
   | pow
   ;

pow: pow POW pct { if (!($$ = Combine(Operator::kPower, $1, $3))) YYABORT; }
   | pct
   ;

pct: unary PERCENT { if (!($$ = Apply(Operator::kPercent, $1))) YYABORT; }
   | unary
   ;

unary: SUB unary { if (!($$ = Apply(Operator::kMinusSign, $2))) YYABORT; }
     | ADD unary { if (!($$ = Apply(Operator::kPlusSign, $2))) YYABORT; }
     | primary
     ;

primary: '(' expr ')' { $$ = $2; }
       | call
       | AT call      { $$ = $2; }
       | refexpr
       | CONST
       | '{' rows '}' { $$ = MakeArray($2); }
       ;

call: FUNC '(' args ')' { if (!($$ = Call($1, $3))) YYABORT; }
    ;

refexpr: plainref
       | sheetref
       ;

plainref: range
        | REF
        ;

range: refitem DOTS refitem  { if (!($$ = Combine(Operator::kRange, $1, $3))) YYABORT; }
     | refitem COLON refitem { if (!($$ = Combine(Operator::kRange, $1, $3))) YYABORT; }
     ;

refitem: REF
       | call
       ;

sheetref: sheet plainref { if (!($$ = Combine(Operator::kFullRef, $1, $2))) YYABORT; }
        | sheet refitem DOTS sheet refitem  { if (!($$ = SheetCorners($1, $2, $4, $5))) YYABORT; }
        | sheet refitem COLON sheet refitem { if (!($$ = SheetCorners($1, $2, $4, $5))) YYABORT; }
        ;

sheet: NAME BANG            { $$ = Sheet($1); }
     | NAME COLON NAME BANG { $$ = SheetRun($1, $3); }
     ;

args: list
    | %empty { $$ = nullptr; }
    ;

list: list SEP expr { $1->Add($3); $$ = $1; }
    | expr          { $$ = new FormulaListBuilder; $$->Add($1); }
    ;

rows: rows SEP2 { $1->EndRow(); } item { $1->Add($4); $$ = $1; }
    | rows SEP item { $1->Add($3); $$ = $1; }
    | item { $$ = new ArrayBuilder; $$->Add($1); }
    ;

item: value
    | ADD value { $$ = $2; }
    | SUB value { $$ = Negated($2); }
    ;

value: CONST         { $$ = TakeValue($1); }
     | CONST PERCENT { $$ = AsPercent(TakeValue($1)); }
     ;

%%

namespace cells::internal {

CCFormula * ParseTree(CTX * ctx, wchar_t const *& text, int mode) {
    ParserState state(ctx, text, mode);
    bool const done = cells_grammar_parse(state) == 0;
    text = state.lexer.Position();
    return done ? state.result.release() : nullptr;
}

}
