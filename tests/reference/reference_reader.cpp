#include "tests/reference/reference_reader.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <utility>

// The generated header, for the token codes.
#include "reference_grammar.h"
#include "tests/reference/reference_internal.h"

void append_quoted(std::string& line, std::string_view text) {
  static const char k_digits[] = "0123456789abcdef";
  line += '"';
  for (char character : text) {
    if (character == '\0') character = ' ';  // As the tree, whose texts end at a NUL, keeps it.
    const unsigned code = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
      line += '\\';
      line += character;
    } else if (code >= 0x20 && code < 0x7f) {
      line += character;
    } else {
      line += "\\x";
      line += k_digits[code >> 4];
      line += k_digits[code & 15];
    }
  }
  line += '"';
}

void append_number(std::string& line, double number) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.17g", number);
  line += buffer;
}

namespace {

// Letter case of the type keyword does not matter; an unknown keyword gets the last number.
int block_type_number(const std::string& type) {
  static const char* const k_keywords[] = {"device", "bus",    "module",    "slave",
                                           "master", "region", "parameters"};
  std::string lower;
  for (char character : type) {
    lower += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  int number = 0;
  for (const char* keyword : k_keywords) {
    if (lower == keyword) return number;
    ++number;
  }
  return number;
}

void append_line_number(std::string& line, unsigned number) {
  line += " line ";
  line += std::to_string(number);
}

// What follows a value of any kind.
void append_unit(std::string& line, int unit) {
  line += " unit ";
  line += std::to_string(unit);
  line += '\n';
}

void append_tail(std::string& lines, const REFERENCE_WORD* comment) {
  if (comment == nullptr) return;
  lines += "tail ";
  append_quoted(lines, *comment->text);
  lines += '\n';
}

// Integers are converted in 64 bits, where too large ones saturate, and keep the low 32 bits.
double integer_value(int token, const std::string& text) {
  std::uint64_t value = 0;
  switch (token) {
    case REF_TOK_OCTAL:
      value = std::strtoull(text.c_str(), nullptr, 8);
      break;
    case REF_TOK_HEXAL:
      value = std::strtoull(text.c_str(), nullptr, 16);
      break;
    case REF_TOK_BINARY:
      // Shifting drops what does not fit, so no length of the number saturates.
      for (char digit : text.substr(2)) value = value << 1 | (digit == '1' ? 1u : 0u);
      break;
    default:
      value = static_cast<std::uint64_t>(std::strtoll(text.c_str(), nullptr, 10));
      break;
  }
  return static_cast<double>(static_cast<std::uint32_t>(value));
}

}  // namespace

void reference_block(const REFERENCE_WORD& type, const REFERENCE_WORD& name, std::string* members) {
  std::string line = "block ";
  line += std::to_string(block_type_number(*type.text));
  line += ' ';
  append_quoted(line, *type.text);
  line += ' ';
  append_quoted(line, *name.text);
  append_line_number(line, name.line);
  line += '\n';
  members->insert(0, line);
  *members += "end\n";
}

void reference_list(std::string* elements) {
  std::string line = "list";
  append_unit(line, 0);
  elements->insert(0, line);
  *elements += "end\n";
}

void reference_assignment(const REFERENCE_WORD& name, const std::string* attributes,
                          const REFERENCE_WORD* comment, std::string* value) {
  std::string line = "assignment ";
  append_quoted(line, *name.text);
  append_line_number(line, name.line);
  line += '\n';
  value->insert(0, line);
  if (attributes != nullptr) *value += *attributes;
  append_tail(*value, comment);
}

void reference_reference(const REFERENCE_WORD& name, const REFERENCE_WORD* comment,
                         std::string* references) {
  std::string line = "reference ";
  append_quoted(line, *name.text);
  append_line_number(line, name.line);
  line += '\n';
  references->insert(0, line);
  append_tail(*references, comment);
}

std::string reference_comment(const REFERENCE_WORD& comment) {
  std::string line = "comment ";
  append_quoted(line, *comment.text);
  line += '\n';
  return line;
}

std::string reference_number(int token, const REFERENCE_WORD& text, int unit) {
  int kind = 0;
  double number = 0;
  if (token == REF_TOK_FLOAT) {
    kind = 4;
    number = std::strtod(text.text->c_str(), nullptr);
  } else {
    kind = token - REF_TOK_UDECIMAL;
    number = integer_value(token, *text.text);
  }
  std::string line = "number ";
  line += std::to_string(kind);
  line += ' ';
  append_number(line, number);
  append_unit(line, unit);
  return line;
}

std::string reference_bool(bool flag) {
  std::string line = flag ? "bool 1" : "bool 0";
  append_unit(line, 0);
  return line;
}

std::string reference_string(const REFERENCE_WORD& text) {
  std::string line = "string ";
  append_quoted(line, *text.text);
  append_unit(line, 0);
  return line;
}

std::string reference_name(const REFERENCE_WORD& name) {
  std::string line = "target ";
  append_quoted(line, *name.text);
  line += '\n';
  return line;
}

std::string reference_attribute(const REFERENCE_WORD& key, const REFERENCE_WORD* value) {
  std::string line = "attribute ";
  append_quoted(line, *key.text);
  if (value != nullptr) {
    line += ' ';
    append_quoted(line, *value->text);
  }
  line += '\n';
  return line;
}

REFERENCE_RESULT read_reference(std::string_view text) {
  REFERENCE_STATE state;
  REFERENCE_SCANNER scanner(text, &state);
  REFERENCE_RESULT result;
  result.gave_up = ref_yyparse(&state, &scanner) != 0;
  if (state.faults.empty()) result.dump = std::move(state.dump);
  result.faults = std::move(state.faults);
  return result;
}

std::vector<REFERENCE_TOKEN> scan_reference(std::string_view text,
                                            std::vector<REFERENCE_FAULT>* unexpected) {
  REFERENCE_STATE state;
  REFERENCE_SCANNER scanner(text, &state);
  std::vector<REFERENCE_TOKEN> tokens;
  do {
    const int code = scanner.next();
    tokens.push_back({code, std::string(state.text), state.line});
  } while (tokens.back().code != 0);
  if (unexpected != nullptr) {
    for (REFERENCE_FAULT& fault : state.faults) unexpected->push_back(std::move(fault));
  }
  return tokens;
}
