/* The grammar of the reference reader.

   Only what bison does by itself recovers from errors: two rules hold the error token, and after an
   error further ones stay silent until three tokens were shifted. Semantic values are pieces of the
   canonical text, kept by the state.

   Inside a block, "error" is a block as well as a statement. Bison takes the earlier rule, which
   leaves rule 22 without use; the build turns its two warnings about that off (conflicts-rr, other),
   and makes any other conflict an error. */

%define api.prefix {ref_yy}
%define api.token.prefix {REF_TOK_}
%define api.pure full
%define lr.type lalr
%param {REFERENCE_STATE* state}
%param {REFERENCE_SCANNER* scanner}

%code requires {
#include "tests/reference/reference_internal.h"
}

%code {
/* Nesting is limited by memory only. */
#define YYMAXDEPTH 1000000000

static int ref_yylex(REF_YYSTYPE* value, REFERENCE_STATE* state, REFERENCE_SCANNER* scanner);
static void ref_yyerror(REFERENCE_STATE* state, REFERENCE_SCANNER* scanner, const char* message);
}

%union {
  REFERENCE_WORD word;
  struct {
    int token;
    REFERENCE_WORD word;
  } number;
  std::string* dump;
  int unit;
}

%token <word> IDENTIFIER 258
%token <word> UDECIMAL 259
%token <word> OCTAL 260
%token <word> HEXAL 261
%token <word> BINARY 262
%token <word> FLOAT 263
%token KB 264
%token MB 265
%token GB 266
%token HZ 267
%token MHZ 268
%token <word> TRUE 269
%token <word> FALSE 270
%token <word> STRING 271
%token <word> COMMENT_LINE 272
%token <word> COMMENT_TAIL 273
%token <word> INDEXED_NAME 274
%token <word> QUALIFIED_NAME 275

%type <dump> object_list object block block_member_list block_member statement
%type <dump> expression expression_list para_ref_list para_ref para_attr_list para_attr
%type <word> block_name parameter
%type <number> number
%type <unit> unit

%%

input
  : %empty                                      /* 1 */
  | object_list                                 /* 2 */ { state->dump = std::move(*$1); }
  ;

object_list
  : object                                      /* 3 */ { $$ = $1; }
  | object_list object                          /* 4 */ { $$ = state->join($1, $2); }
  ;

object
  : COMMENT_LINE                                /* 5 */ { $$ = state->keep(reference_comment($1)); }
  | block                                       /* 6 */ { $$ = $1; }
  ;

block
  : IDENTIFIER block_name '{' block_member_list '}'  /* 7 */
      { reference_block($1, $2, $$ = $4); }
  | error                                       /* 8 */ { $$ = state->keep(std::string()); }
  ;

block_name
  : IDENTIFIER                                  /* 9 */ { $$ = $1; }
  | INDEXED_NAME                                /* 10 */ { $$ = $1; }
  ;

block_member_list
  : block_member                                /* 11 */ { $$ = $1; }
  | block_member_list block_member              /* 12 */ { $$ = state->join($1, $2); }
  ;

block_member
  : COMMENT_LINE                                /* 13 */ { $$ = state->keep(reference_comment($1)); }
  | statement                                   /* 14 */ { $$ = $1; }
  | block                                       /* 15 */ { $$ = $1; }
  ;

statement
  : parameter '=' expression ';'                /* 16 */
      { reference_assignment($1, nullptr, nullptr, $$ = $3); }
  | parameter '=' expression ';' COMMENT_TAIL   /* 17 */
      { reference_assignment($1, nullptr, &$5, $$ = $3); }
  | parameter '=' expression '[' para_attr_list ']' ';'  /* 18 */
      { reference_assignment($1, $5, nullptr, $$ = $3); }
  | parameter '=' expression '[' para_attr_list ']' ';' COMMENT_TAIL  /* 19 */
      { reference_assignment($1, $5, &$8, $$ = $3); }
  | parameter '<' para_ref_list '>' ';'         /* 20 */
      { reference_reference($1, nullptr, $$ = $3); }
  | parameter '<' para_ref_list '>' ';' COMMENT_TAIL  /* 21 */
      { reference_reference($1, &$6, $$ = $3); }
  | error                                       /* 22 */ { $$ = state->keep(std::string()); }
  ;

parameter
  : IDENTIFIER                                  /* 23 */ { $$ = $1; }
  | INDEXED_NAME                                /* 24 */ { $$ = $1; }
  ;

expression
  : number unit                                 /* 25 */
      { $$ = state->keep(reference_number($1.token, $1.word, $2)); }
  | number                                      /* 26 */
      { $$ = state->keep(reference_number($1.token, $1.word, 0)); }
  | TRUE                                        /* 27 */ { $$ = state->keep(reference_bool(true)); }
  | FALSE                                       /* 28 */ { $$ = state->keep(reference_bool(false)); }
  | STRING                                      /* 29 */ { $$ = state->keep(reference_string($1)); }
  | IDENTIFIER                                  /* 30 */ { $$ = state->keep(reference_string($1)); }
  | '{' expression_list '}'                     /* 31 */ { reference_list($$ = $2); }
  ;

expression_list
  : expression ',' expression                   /* 32 */ { $$ = state->join($1, $3); }
  | expression_list ',' expression              /* 33 */ { $$ = state->join($1, $3); }
  ;

number
  : UDECIMAL                                    /* 34 */ { $$ = {REF_TOK_UDECIMAL, $1}; }
  | BINARY                                      /* 35 */ { $$ = {REF_TOK_BINARY, $1}; }
  | OCTAL                                       /* 36 */ { $$ = {REF_TOK_OCTAL, $1}; }
  | HEXAL                                       /* 37 */ { $$ = {REF_TOK_HEXAL, $1}; }
  | FLOAT                                       /* 38 */ { $$ = {REF_TOK_FLOAT, $1}; }
  ;

unit
  : KB                                          /* 39 */ { $$ = 1; }
  | MB                                          /* 40 */ { $$ = 2; }
  | GB                                          /* 41 */ { $$ = 3; }
  | HZ                                          /* 42 */ { $$ = 4; }
  | MHZ                                         /* 43 */ { $$ = 5; }
  ;

para_ref_list
  : para_ref                                    /* 44 */ { $$ = $1; }
  | para_ref_list ',' para_ref                  /* 45 */ { $$ = state->join($1, $3); }
  ;

para_ref
  : QUALIFIED_NAME                              /* 46 */ { $$ = state->keep(reference_name($1)); }
  | IDENTIFIER                                  /* 47 */ { $$ = state->keep(reference_name($1)); }
  ;

para_attr_list
  : para_attr                                   /* 48 */ { $$ = $1; }
  | para_attr_list ',' para_attr                /* 49 */ { $$ = state->join($1, $3); }
  ;

para_attr
  : IDENTIFIER                                  /* 50 */
      { $$ = state->keep(reference_attribute($1, nullptr)); }
  | IDENTIFIER QUALIFIED_NAME                   /* 51 */
      { $$ = state->keep(reference_attribute($1, &$2)); }
  ;

%%

static int ref_yylex(REF_YYSTYPE* value, REFERENCE_STATE* state, REFERENCE_SCANNER* scanner) {
  const int code = scanner->next();
  if (code >= 258) value->word = {state->keep(std::string(state->text)), state->line};
  return code;
}

static void ref_yyerror(REFERENCE_STATE* state, REFERENCE_SCANNER*, const char*) {
  state->add_fault();
}
