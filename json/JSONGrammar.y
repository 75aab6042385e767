/* The language of a JSON text. Values and texts stand in the builder; what a rule has of its own is how many
   of them are members or items. A text is taken from the scanner's buffer before the next token is read: the
   states behind a string token leave the parser no choice. */

%define api.prefix {json}
%parse-param {JSONBuilder& builder}
%expect 0

%code requires {
#include "json/JSONScanner.h"

#include <cstdint>
}

%code {
#include "json/JSONBuilder.h"

#include <cstdio>

#define YYINITDEPTH 200
#define YYMAXDEPTH 10000

int jsonlex();

static std::string_view inside(JSONTokenText quoted) { return {quoted.bytes + 1, quoted.size - 2}; }

static void jsonerror(JSONBuilder&, const char* message) { std::fprintf(stderr, "error: %s\n", message); }
}

%union {
    JSONTokenText text;
    std::int64_t integer;
    double number;
    bool truth;
    std::size_t count;
}

%token Comma 258 Colon 259 LeftBracket 260 RightBracket 261 LeftBrace 262 RightBrace 263
%token <text> DoubleQuotedString 264 SingleQuotedString 265
%token <integer> NumberInt 266
%token <number> NumberFloat 267
%token <truth> BooleanToken 268
%token NullToken 269

%type <count> members items

%start document

%%

document: value;

object: LeftBrace members RightBrace { builder.closeObject($2); };

array: LeftBracket items RightBracket { builder.closeArray($2); };

value:
    NumberInt    { builder.pushInt($1); }
  | NumberFloat  { builder.pushFloat($1); }
  | BooleanToken { builder.pushBool($1); }
  | NullToken    { builder.pushNull(); }
  | string       { builder.turnTextIntoValue(); }
  | object
  | array
  ;

string:
    DoubleQuotedString { builder.pushEscapedText(inside($1)); }
  | SingleQuotedString { builder.pushText(inside($1)); }
  ;

members:
    %empty                            { $$ = 0; }
  | string Colon value                { $$ = 1; }
  | members Comma string Colon value  { $$ = $1 + 1; }
  ;

items:
    %empty            { $$ = 0; }
  | value             { $$ = 1; }
  | items Comma value { $$ = $1 + 1; }
  ;
