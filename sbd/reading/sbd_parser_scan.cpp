// The scanner: longest match over the tokens that the start condition knows.
#include <cstring>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_chars.h"
#include "sbd/sbd_parser.h"

namespace {

constexpr int k_skipped = -1;     // Blanks and newlines.
constexpr int k_unexpected = -2;  // A character that begins no token.
constexpr int k_end = 0;          // The end of the input.

// What was matched: a token code, or one of the above, and its length.
struct MATCH {
  int code = k_unexpected;
  std::size_t length = 1;

  // Takes another match when it is longer: of equal ones, the first one wins. None is empty.
  void improve(int other_code, std::size_t other_length) {
    if (other_length > length || code == k_unexpected) {
      code = other_code;
      length = other_length;
    }
  }
};

char char_at(std::string_view text, std::size_t index) {
  return index < text.size() ? text[index] : '\0';
}

std::size_t length_while(std::string_view text, std::size_t from, std::uint8_t classes) {
  while (from < text.size() && sbd_is(text[from], classes)) ++from;
  return from;
}

bool has_index_at(std::string_view text, std::size_t at) {
  return char_at(text, at) == '[' && sbd_is(char_at(text, at + 1), CC_DIGIT) &&
         char_at(text, at + 2) == ']';
}

bool equal_ignoring_case(std::string_view text, std::string_view lower) {
  if (text.size() < lower.size()) return false;
  for (std::size_t i = 0; i != lower.size(); ++i) {
    if (sbd_to_lower(text[i]) != lower[i]) return false;
  }
  return true;
}

bool is_any_of(std::string_view word, std::string_view a, std::string_view b, std::string_view c) {
  return word == a || word == b || word == c;
}

// Words, identifiers, indexed and qualified names.
void match_names(std::string_view text, MATCH& match) {
  if (!sbd_is(text[0], CC_NAME_START | CC_DOT)) return;
  if (sbd_is(text[0], CC_NAME_START)) {
    std::size_t length = length_while(text, 0, CC_NAME);
    const std::string_view word = text.substr(0, length);
    if (is_any_of(word, "true", "TRUE", "True")) match.improve(SBD_TOK_TRUE, length);
    if (is_any_of(word, "false", "FALSE", "False")) match.improve(SBD_TOK_FALSE, length);
    match.improve(SBD_TOK_IDENTIFIER, length);
    const std::size_t identifier_length = length;
    while (has_index_at(text, length)) length += 3;
    if (length != identifier_length) match.improve(SBD_TOK_INDEXED_NAME, length);
  }
  bool has_dot = false;
  std::size_t length = 0;
  for (;;) {
    if (sbd_is(char_at(text, length), CC_QUALIFIED)) {
      has_dot = has_dot || text[length] == '.';
      ++length;
    } else if (has_index_at(text, length)) {
      length += 3;
    } else {
      break;
    }
  }
  if (has_dot) match.improve(SBD_TOK_QUALIFIED_NAME, length);
}

void match_decimal_and_float(std::string_view text, MATCH& match) {
  const bool has_sign = text[0] == '+' || text[0] == '-';
  const std::size_t begin = has_sign ? 1 : 0;
  const std::size_t digits_end = length_while(text, begin, CC_DIGIT);
  if (digits_end != begin) {
    const std::size_t length = text[begin] == '0' ? begin + 1 : digits_end;
    match.improve(text[0] == '-' ? SBD_TOK_FLOAT : SBD_TOK_UDECIMAL, length);
  }
  if (char_at(text, digits_end) != '.') return;
  const std::size_t length = length_while(text, digits_end + 1, CC_DIGIT);
  if (digits_end != begin || length != digits_end + 1) match.improve(SBD_TOK_FLOAT, length);
}

void match_numbers(std::string_view text, MATCH& match) {
  match_decimal_and_float(text, match);
  if (text[0] != '0') return;
  std::size_t length = 1;
  while (char_at(text, length) >= '0' && char_at(text, length) <= '7') ++length;
  if (length > 1) match.improve(SBD_TOK_OCTAL, length);
  if (sbd_to_lower(char_at(text, 1)) == 'x') {
    length = length_while(text, 2, CC_DIGIT | CC_HEX_LETTER);
    if (length > 2) match.improve(SBD_TOK_HEXAL, length);
  }
  if (sbd_to_lower(char_at(text, 1)) == 'b') {
    length = 2;
    while (char_at(text, length) == '0' || char_at(text, length) == '1') ++length;
    if (length > 2) match.improve(SBD_TOK_BINARY, length);
  }
}

struct UNIT_ROW {
  char letter;
  int code;
};
constexpr UNIT_ROW k_size_units[] = {{'K', SBD_TOK_KB}, {'M', SBD_TOK_MB}, {'G', SBD_TOK_GB}};

void match_units(std::string_view text, MATCH& match) {
  for (const UNIT_ROW& row : k_size_units) {
    if (text[0] == row.letter) match.improve(row.code, char_at(text, 1) == 'B' ? 2 : 1);
  }
  if (equal_ignoring_case(text, "hz")) match.improve(SBD_TOK_HZ, 2);
  if (equal_ignoring_case(text, "mhz")) match.improve(SBD_TOK_MHZ, 3);
}

void match_string(std::string_view text, MATCH& match) {
  if (text[0] != '"') return;
  const std::size_t end = text.find('"', 1);
  if (end != std::string_view::npos) match.improve(SBD_TOK_STRING, end + 1);
}

void match_comment(std::string_view text, int code, MATCH& match) {
  if (text[0] != '#') return;
  const std::size_t end = text.find('\n');
  if (end != std::string_view::npos) match.improve(code, end + 1);
}

void match_punctuation(std::string_view text, MATCH& match) {
  constexpr std::string_view k_punctuation = "{}=;[]<>,";
  if (k_punctuation.find(text[0]) != std::string_view::npos) match.improve(text[0], 1);
}

void match_blank_space(std::string_view text, MATCH& match) {
  if (text[0] == '\n') match.improve(k_skipped, 1);
  if (sbd_is(text[0], CC_BLANK)) match.improve(k_skipped, length_while(text, 0, CC_BLANK));
}

// The longest match at the begin of `text`, which is not empty. Of equally long ones the first one
// tried here wins, so that "true" is a Boolean word and ".5" a name.
MATCH match_token(std::string_view text, sbd_yyFlexLexer::START_CONDITION condition) {
  MATCH match;
  match_blank_space(text, match);
  if (condition != sbd_yyFlexLexer::UNIT) {
    const bool is_tail = condition == sbd_yyFlexLexer::TAIL;
    match_comment(text, is_tail ? SBD_TOK_COMMENT_TAIL : SBD_TOK_COMMENT_LINE, match);
    match_names(text, match);
    match_string(text, match);
  }
  match_numbers(text, match);
  match_punctuation(text, match);
  if (condition == sbd_yyFlexLexer::UNIT) match_units(text, match);
  return match;
}

// The start condition behind a token or a skipped text.
sbd_yyFlexLexer::START_CONDITION condition_behind(int code, bool is_newline,
                                                  sbd_yyFlexLexer::START_CONDITION condition) {
  switch (code) {
    case SBD_TOK_UDECIMAL:
    case SBD_TOK_OCTAL:
    case SBD_TOK_HEXAL:
    case SBD_TOK_BINARY:
    case SBD_TOK_FLOAT:
      return sbd_yyFlexLexer::UNIT;
    case SBD_TOK_KB:
    case SBD_TOK_MB:
    case SBD_TOK_GB:
    case SBD_TOK_HZ:
    case SBD_TOK_MHZ:
    case SBD_TOK_COMMENT_LINE:
    case SBD_TOK_COMMENT_TAIL:
      return sbd_yyFlexLexer::NORMAL;
    case ';':
    case '}':
      return sbd_yyFlexLexer::TAIL;
    case ',':
      return condition == sbd_yyFlexLexer::UNIT ? sbd_yyFlexLexer::NORMAL : condition;
    case k_skipped:
      return is_newline || condition == sbd_yyFlexLexer::UNIT ? sbd_yyFlexLexer::NORMAL : condition;
    default:
      return condition;
  }
}

}  // namespace

FlexLexer::~FlexLexer() = default;

void FlexLexer::LexerError(const char* text) {
  sbd_report_internal_error(text, k_source_parser, __LINE__);
}

void FlexLexer::init_yy_location() {
  m_location = m_prev_location = LOCATION();
}

void FlexLexer::set_yy_location() {
  m_location = {m_offset, m_text.size(), m_first_line, m_offset - m_first_line_begin + 1, m_line};
}

void FlexLexer::set_prev_location() {
  m_prev_location = m_location;
}

void FlexLexer::set_match(std::string_view text) {
  m_offset += m_text.size();
  m_text = text;
  m_first_line = m_line;
  m_first_line_begin = m_line_begin;
  for (std::size_t i = 0; i != text.size(); ++i) {
    if (text[i] != '\n') continue;
    ++m_line;
    m_line_begin = m_offset + i + 1;
  }
}

sbd_yyFlexLexer::sbd_yyFlexLexer(const char* text, std::size_t length)
    : m_input(text, text != nullptr ? length : 0) {
  SBD_CHECK(text != nullptr || length == 0, "text != NULL", k_source_parser);
  init_yy_location();
}

int sbd_yyFlexLexer::yylex() {
  if (m_condition != NORMAL && m_condition != TAIL && m_condition != UNIT) {
    LexerError("fatal flex scanner internal error--no action found");
    m_condition = NORMAL;
  }
  for (;;) {
    const std::string_view rest = m_input.substr(m_offset + m_text.size());
    const MATCH match = rest.empty() ? MATCH{k_end, 0} : match_token(rest, m_condition);
    set_match(rest.substr(0, match.length));
    set_prev_location();
    set_yy_location();
    if (match.code == k_end) return 0;
    m_condition = condition_behind(match.code, m_text[0] == '\n', m_condition);
    if (match.code == k_unexpected) {
      sbd_yyerror(this, m_para);
    } else if (match.code != k_skipped) {
      return match.code;
    }
  }
}
