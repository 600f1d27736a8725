// A second reader of descriptor text, made by flex and bison, against which the library's reader
// is compared. It knows the syntax only, and nothing of the library.
#ifndef TESTS_REFERENCE_REFERENCE_READER_H
#define TESTS_REFERENCE_REFERENCE_READER_H

#include <string>
#include <string_view>
#include <vector>

// A syntax error: the scanner's match at that moment, and its line counter.
struct REFERENCE_FAULT {
  std::string text;
  unsigned line;
};

struct REFERENCE_RESULT {
  std::vector<REFERENCE_FAULT> faults;  // In the order in which they are found.
  std::string dump;                     // The tree as canonical text; empty after a fault.
  bool gave_up = false;                 // The end of the input came during error recovery.
};

REFERENCE_RESULT read_reference(std::string_view text);

struct REFERENCE_TOKEN {
  int code;
  std::string text;
  unsigned line;  // The line counter behind the token.
};

// All tokens, the last of which is the end of the input (code 0, no text). Unexpected characters
// are appended to `unexpected` unless it is null.
std::vector<REFERENCE_TOKEN> scan_reference(std::string_view text,
                                            std::vector<REFERENCE_FAULT>* unexpected);

// ---- Canonical text ----------------------------------------------------------------------------
//
// One line per item, texts in quotes with escapes. What lies inside a block or a list stands
// between its line and an "end" line; what belongs to a statement follows its line.
//
//   block TYPE-NUMBER "type" "name" line N ... end
//   assignment "name" line N     then the value, attributes, tail
//   reference "name" line N      then the targets, tail
//   comment "text"
//   number KIND %.17g unit N
//   bool 0|1 unit N
//   string "text" unit N
//   list unit N ... end
//   attribute "key" ["value"]
//   target "name"
//   tail "text"

// Appends `text` in quotes. Texts are C strings in the tree, so a text ends at its first NUL.
void append_quoted(std::string& line, std::string_view text);

// Appends the number as it stands in the canonical text.
void append_number(std::string& line, double number);

#endif
