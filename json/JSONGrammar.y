/* The language of a JSON text. Values stand in the builder, texts in what is read: no rule owns anything. A
   bracket opens its container when it is scanned: no rule but the empty ones looks beyond its last token, so all
   that stands before the bracket is in its place by then. */

%define api.prefix {json}
%define api.pure full
%param {JSONBuilder& builder} {StringRun& run}
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

// The builder owns the parser's stack, so an exception out of the parser leaks nothing.
#define YYMALLOC(size) builder.growParserStack(size)
#define YYFREE(stack) static_cast<void>(stack)

int scanToken(JSONSTYPE* value, JSONBuilder& builder, StringRun& run);

static int jsonlex(JSONSTYPE* value, JSONBuilder& builder, StringRun& run) {
    const int token = run.take(value->text);
    return token != 0 ? token : scanToken(value, builder, run);
}

static void jsonerror(JSONBuilder&, StringRun&, const char* message) { std::fprintf(stderr, "error: %s\n", message); }
}

%union {
    JSONTokenText text;
    std::int64_t integer;
    double number;
    bool truth;
}

%token Comma 258 Colon 259 LeftBracket 260 RightBracket 261 LeftBrace 262 RightBrace 263
%token <text> DoubleQuotedString 264 SingleQuotedString 265
%token <integer> NumberInt 266
%token <number> NumberFloat 267
%token <truth> BooleanToken 268
%token NullToken 269

%start document

%%

document: value;

object: LeftBrace members RightBrace { builder.closeObject(); };

array: LeftBracket items RightBracket { builder.closeArray(); };

value:
    NumberInt    { builder.setInt($1); }
  | NumberFloat  { builder.setFloat($1); }
  | BooleanToken { builder.setBool($1); }
  | NullToken    { builder.setNull(); }
  | DoubleQuotedString { builder.setText($1); }
  | SingleQuotedString { builder.setText($1); }
  | object
  | array
  ;

members:
    %empty
  | DoubleQuotedString Colon value               { builder.addMember($1); }
  | SingleQuotedString Colon value               { builder.addMember($1); }
  | members Comma DoubleQuotedString Colon value { builder.addMember($3); }
  | members Comma SingleQuotedString Colon value { builder.addMember($3); }
  ;

items:
    %empty
  | value             { builder.addItem(); }
  | items Comma value { builder.addItem(); }
  ;
