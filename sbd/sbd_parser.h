// Scanner, parser and tree builders: how descriptor text becomes the tree of SBD_FILE_PARSER.
//
// Most programs call SBD_FILE_PARSER::read and never need this header.
#ifndef SBD_SBD_PARSER_H
#define SBD_SBD_PARSER_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/sbd_file_parser.h"

// Token codes. Punctuation has its character's code; 0 is the end of the input.
enum SBD_TOKEN : int {
  SBD_TOK_IDENTIFIER = 258,
  SBD_TOK_UDECIMAL = 259,
  SBD_TOK_OCTAL = 260,
  SBD_TOK_HEXAL = 261,
  SBD_TOK_BINARY = 262,
  SBD_TOK_FLOAT = 263,
  SBD_TOK_KB = 264,
  SBD_TOK_MB = 265,
  SBD_TOK_GB = 266,
  SBD_TOK_HZ = 267,
  SBD_TOK_MHZ = 268,
  SBD_TOK_TRUE = 269,
  SBD_TOK_FALSE = 270,
  SBD_TOK_STRING = 271,
  SBD_TOK_COMMENT_LINE = 272,
  SBD_TOK_COMMENT_TAIL = 273,
  SBD_TOK_INDEXED_NAME = 274,
  SBD_TOK_QUALIFIED_NAME = 275
};

// What every scanner has: the current match, the line counter and the location of matches.
class SBD_API FlexLexer {
 public:
  // Where a match stands: its first byte with line and column, its length, and the line counter
  // behind it. Columns count bytes from 1.
  struct LOCATION {
    std::size_t offset = 0;        // In bytes, from 0 on.
    std::size_t length = 0;        // In bytes.
    std::uint32_t first_line = 1;  // Of its first byte.
    std::size_t column = 1;        // Of its first byte.
    std::uint32_t line = 1;        // The counter behind the match.
  };

  virtual ~FlexLexer();

  // The next token's code; its text and line are then in the current match.
  virtual int yylex() = 0;
  // Reports a failure of the scanner itself as an internal error.
  virtual void LexerError(const char* text);

  // The characters of the current match; empty at the end of the input.
  std::string_view yytext() const { return m_text; }
  // The line counter: 1, plus one for every newline matched so far.
  std::uint32_t lineno() const { return m_line; }

  // The name that messages give to the input; null until it is set. Not copied.
  const char* file_name() const { return m_file_name; }
  void set_file_name(const char* name) { m_file_name = name; }

  // Puts both locations at the start of the input.
  void init_yy_location();
  // Makes the current match's location the current one.
  void set_yy_location();
  // Remembers the current location as that of the match before.
  void set_prev_location();
  const LOCATION& yy_location() const { return m_location; }
  const LOCATION& prev_location() const { return m_prev_location; }

 protected:
  FlexLexer() = default;

  // Makes `text`, which stands behind the current match, the current match, and counts its lines.
  void set_match(std::string_view text);

  std::string_view m_text;
  std::size_t m_offset = 0;  // Of the current match.
  std::uint32_t m_line = 1;

 private:
  const char* m_file_name = nullptr;
  std::uint32_t m_first_line = 1;      // Of the current match,
  std::size_t m_first_line_begin = 0;  // and where that line begins.
  std::size_t m_line_begin = 0;        // Where the line behind the current match begins.
  LOCATION m_location;
  LOCATION m_prev_location;
};

// The scanner of descriptor text. It reads a buffer that the caller keeps alive.
class SBD_API sbd_yyFlexLexer : public FlexLexer {
 public:
  // The start conditions: which tokens are recognised, and what a "#" is.
  enum START_CONDITION : int { NORMAL = 0, TAIL = 1, UNIT = 2 };

  // Scans `length` bytes.
  sbd_yyFlexLexer(const char* text, std::size_t length);

  // Scans the next token. An unexpected character is reported to the parser's error routine and
  // skipped. Returns 0 at the end of the input.
  int yylex() override;

  // The document state that unexpected characters are counted in; null counts nowhere.
  void set_parser_para(SBD_FILE_PARSER::SBD_PARSER_PARA* para) { m_para = para; }

  START_CONDITION start_condition() const { return m_condition; }     // That of the next token.
  void begin(START_CONDITION condition) { m_condition = condition; }  // Changes it.

  std::string_view input() const { return m_input; }  // The whole text.

 private:
  std::string_view m_input;
  SBD_FILE_PARSER::SBD_PARSER_PARA* m_para = nullptr;
  START_CONDITION m_condition = NORMAL;
};

// Parses the input of `scanner`, an sbd_yyFlexLexer that has scanned nothing yet, into
// `parser_para`, the SBD_PARSER_PARA of an empty document: the root is set, the declared names are
// entered, syntax errors are posted and counted. Returns 0 when the input was parsed to its end,
// with or without errors that could be recovered from, and 1 when it was given up, as it is after
// an internal error when the host has no memory. After an error there is no tree. The document
// keeps a copy of the text unless the text is its own.
SBD_API int sbd_yyparse(FlexLexer* scanner, void* parser_para);

// The parser's error routine: counts a syntax error at the scanner's current match and posts it.
SBD_API void sbd_yyerror(FlexLexer* scanner, void* parser_para);

// ---- Tree builders -----------------------------------------------------------------------------
//
// The actions of the grammar's rules. Each returns a new record; records made from the reader's own
// tokens lie in the memory of the document that is read, all others come from the host's memory
// manager as if by `new`. Null where an argument must not be null is an internal error, and the
// record then lacks that part. When the host has no memory for a record, that is an internal error,
// too; the result is then null, and records that were handed over stay the caller's. A NUL byte in
// a string or a comment becomes a blank, since texts end at their first NUL.

// The record of the scanner's current match.
SBD_API SBD_FILE_PARSER::SBD_TOKEN_INFO sbd_copy_token(const sbd_yyFlexLexer& scanner);

// Makes a symbol from the name token, for `node`, without parent, and enters it at the head of its
// bucket. A second symbol of the same name, type and node is an internal error.
SBD_API SBD_FILE_PARSER::SBD_SYMBOL* sbd_create_symbol(
    SBD_FILE_PARSER::SBD_SYMBOL::SYMBOL_TYPE type, SBD_FILE_PARSER::SBD_NODE* node,
    const SBD_FILE_PARSER::SBD_TOKEN_INFO* name, SBD_FILE_PARSER::SBD_SYMBOL_TABLE* symbol_table);

// A block of the type and name with the list `members`, which may be null.
SBD_API SBD_FILE_PARSER::SBD_NODE* sbd_do_block(const SBD_FILE_PARSER::SBD_TOKEN_INFO* type,
                                                const SBD_FILE_PARSER::SBD_TOKEN_INFO* name,
                                                SBD_FILE_PARSER::SBD_NODE* members,
                                                SBD_FILE_PARSER::SBD_SYMBOL_TABLE* symbol_table);

// An assignment; `attributes` and `comment` may be null.
SBD_API SBD_FILE_PARSER::SBD_NODE* sbd_do_assignment(
    const SBD_FILE_PARSER::SBD_TOKEN_INFO* name, SBD_FILE_PARSER::SBD_PARA_VALUE* value,
    SBD_FILE_PARSER::SBD_PARA_ATTR* attributes, const SBD_FILE_PARSER::SBD_TOKEN_INFO* comment,
    SBD_FILE_PARSER::SBD_SYMBOL_TABLE* symbol_table);

// A reference statement; `comment` may be null.
SBD_API SBD_FILE_PARSER::SBD_NODE* sbd_do_reference(
    const SBD_FILE_PARSER::SBD_TOKEN_INFO* name, SBD_FILE_PARSER::SBD_PARA_REF* references,
    const SBD_FILE_PARSER::SBD_TOKEN_INFO* comment,
    SBD_FILE_PARSER::SBD_SYMBOL_TABLE* symbol_table);

// A comment line.
SBD_API SBD_FILE_PARSER::SBD_NODE* sbd_do_comment(const SBD_FILE_PARSER::SBD_TOKEN_INFO* comment);

// The value that a number, Boolean, string or identifier token stands for, without unit. Any other
// code is an internal error and gives null. Integers are converted to the low 32 bits of the
// 64-bit number (which saturates for decimal, octal and hexadecimal digits), floats as in C.
SBD_API SBD_FILE_PARSER::SBD_PARA_VALUE* sbd_do_para_value(
    int code, const SBD_FILE_PARSER::SBD_TOKEN_INFO* token);

// An element of a reference list, not resolved.
SBD_API SBD_FILE_PARSER::SBD_PARA_REF* sbd_do_para_ref(const SBD_FILE_PARSER::SBD_TOKEN_INFO* name);

// An attribute; `value` may be null.
SBD_API SBD_FILE_PARSER::SBD_PARA_ATTR* sbd_do_para_attr(
    const SBD_FILE_PARSER::SBD_TOKEN_INFO* key, const SBD_FILE_PARSER::SBD_TOKEN_INFO* value);

// Each appends the second list to the end of the first and returns the first, or the one that is
// not null.
SBD_API SBD_FILE_PARSER::SBD_NODE* sbd_join_node(SBD_FILE_PARSER::SBD_NODE* first,
                                                 SBD_FILE_PARSER::SBD_NODE* second);
SBD_API SBD_FILE_PARSER::SBD_PARA_REF* sbd_join_para_ref(SBD_FILE_PARSER::SBD_PARA_REF* first,
                                                         SBD_FILE_PARSER::SBD_PARA_REF* second);
SBD_API SBD_FILE_PARSER::SBD_PARA_ATTR* sbd_join_para_attr(SBD_FILE_PARSER::SBD_PARA_ATTR* first,
                                                           SBD_FILE_PARSER::SBD_PARA_ATTR* second);

#endif
