#include "sbd/reading/sbd_parser_fast.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_numbers.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/reading/sbd_tree_maker.h"

using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_PARSER_PARA = SBD_FILE_PARSER::SBD_PARSER_PARA;

namespace {

// Skips a group of one digit in brackets, if there is one.
inline bool skip_index(const char*& next) {
  if (next[0] != '[' || !sbd_is(next[1], CC_DIGIT) || next[2] != ']') return false;
  next += 3;
  return true;
}

// What a word is: an identifier, or one of the Boolean words.
enum class WORD { IDENTIFIER, TRUE, FALSE };

inline WORD kind_of(std::string_view word) {
  // Only words of 4 and 5 letters need a look.
  if (word.size() != 4 && word.size() != 5) return WORD::IDENTIFIER;
  if (word == "true" || word == "TRUE" || word == "True") return WORD::TRUE;
  if (word == "false" || word == "FALSE" || word == "False") return WORD::FALSE;
  return WORD::IDENTIFIER;
}

// Recursive descent over the grammar, with stacks of its own in place of recursion. Every function
// is told where it begins and returns where it ended, or null at a fault, however far it got; so
// the place stays in a register.
class FAULTLESS_PARSER {
 public:
  using NAME = SBD_TREE_MAKER::NAME;

  FAULTLESS_PARSER(std::string_view text, SBD_STORE& store, SBD_PARSER_PARA& para)
      : m_source(store.source),
        m_tree(store, para),
        m_text(store.pool.progress),
        m_next_mark(text.data()) {
    m_text = {text.data(), text.data(), text.data() + text.size()};
  }

  bool parse() {
    const char* next = m_text.here;
    while (next != nullptr) {
      next = skip_lines(next);
      const char c = *next;
      if (sbd_is(c, CC_NAME_START)) {
        next = parse_named(next);
      } else if (c == '#') {
        next = parse_comment_line(next);
      } else if (c == '}') {
        next = close_block(next);
      } else {
        if (next != m_text.end || m_tree.is_in_block()) return false;
        finish();
        return true;
      }
    }
    return false;
  }

 private:
  // Skips blanks and newlines, which end the condition in which a "#" is a tail comment.
  const char* skip_lines(const char* next) {
    next = sbd_skip_blanks(next);
    while (*next == '\n') {
      count_line(next);
      m_is_tail = false;
      next = sbd_skip_indentation(next + 1);
    }
    return next;
  }

  // The same between two tokens, where there usually is one blank or nothing.
  const char* skip_blank_space(const char* next) {
    if (*next == ' ') ++next;
    return static_cast<unsigned char>(*next) > ' ' ? next : skip_lines(next);
  }

  void count_line(const char* newline) {
    if (newline >= m_next_mark) {
      m_next_mark = m_source.mark_lines(newline, {m_line, m_text.here});
    }
    ++m_line;
    m_text.here = newline + 1;
  }

  static std::string_view text_between(const char* begin, const char* end) {
    return {begin, static_cast<std::size_t>(end - begin)};
  }

  // An identifier or an indexed name, of which the first character was seen to begin one.
  const char* skip_declared_name(const char* begin, NAME& name) const {
    const char* next = sbd_skip_name(begin);
    while (skip_index(next)) {
    }
    name = {text_between(begin, next), m_line};
    return kind_of(name.text) == WORD::IDENTIFIER ? next : nullptr;
  }

  // An identifier or a qualified name; where an indexed name stands, that is a fault.
  static const char* skip_reference_name(const char* begin, std::string_view& name, bool& has_dot) {
    if (!sbd_is(*begin, CC_NAME_START | CC_DOT)) return nullptr;
    has_dot = false;
    bool has_index = false;
    for (const char* next = begin;;) {
      next = sbd_skip_name(next);
      if (*next == '.') {
        has_dot = true;
        ++next;
      } else if (*next == '[' && skip_index(next)) {
        has_index = true;
      } else {
        name = text_between(begin, next);
        const bool is_name = has_dot || (!has_index && kind_of(name) == WORD::IDENTIFIER);
        return is_name ? next : nullptr;
      }
    }
  }

  // The rest of the line from "#" on, with its newline; a fault at the end of the text.
  const char* skip_comment(const char* begin, std::string_view& comment) {
    const auto* const newline = static_cast<const char*>(
        std::memchr(begin, '\n', static_cast<std::size_t>(m_text.end - begin)));
    if (newline == nullptr) return nullptr;
    count_line(newline);
    m_is_tail = false;
    comment = text_between(begin, newline + 1);
    return newline + 1;
  }

  const char* parse_comment_line(const char* next) {
    std::string_view comment;
    if (m_is_tail || (next = skip_comment(next, comment)) == nullptr) return nullptr;
    m_tree.add_comment(comment);
    return next;
  }

  // A statement or the head of a block.
  const char* parse_named(const char* next) {
    NAME name;
    next = skip_declared_name(next, name);
    if (next == nullptr) return nullptr;
    const char* const name_end = next;
    next = skip_blank_space(next);
    switch (*next) {
      case '=':
        return m_tree.is_in_block() ? parse_assignment(next + 1, name) : nullptr;
      case '<':
        return m_tree.is_in_block() ? parse_reference(next + 1, name) : nullptr;
      default:
        // Two names with nothing between them would be one token.
        return next == name_end || name_end[-1] == ']' ? nullptr : parse_block_head(next, name);
    }
  }

  const char* parse_block_head(const char* next, const NAME& type) {
    if (!sbd_is(*next, CC_NAME_START)) return nullptr;
    NAME name;
    next = skip_declared_name(next, name);
    if (next == nullptr) return nullptr;
    next = skip_blank_space(next);
    if (*next != '{') return nullptr;
    m_tree.open_block(type.text, name);
    return next + 1;
  }

  const char* close_block(const char* next) {
    if (!m_tree.is_in_block() || m_tree.is_empty()) return nullptr;
    ++next;
    m_is_tail = true;
    m_tree.close_block(next);
    return next;
  }

  void finish() {
    m_tree.finish();
    m_source.set_last_line({m_line, m_text.here});
    m_text = {};
  }

  // The ";" of a statement and the comment behind it, null where there is none.
  const char* parse_statement_end(const char* next, std::string_view& comment) {
    if (*next != ';') return nullptr;
    m_is_tail = true;
    next = sbd_skip_blanks(next + 1);
    return *next == '#' ? skip_comment(next, comment) : next;
  }

  const char* parse_assignment(const char* next, const NAME& name) {
    next = skip_blank_space(next);
    SBD_PARA_VALUE* value = nullptr;
    next = *next == '{' ? parse_list(next, value) : parse_simple_value(next, value);
    if (next == nullptr) return nullptr;
    SBD_PARA_ATTR* attributes = nullptr;
    if (*next == '[' && (next = parse_attributes(next, attributes)) == nullptr) return nullptr;
    std::string_view comment;
    next = parse_statement_end(next, comment);
    if (next == nullptr) return nullptr;
    m_tree.add_assignment(name, value, attributes, comment);
    return next;
  }

  const char* parse_reference(const char* next, const NAME& name) {
    SBD_PARA_REF* references = nullptr;
    SBD_PARA_REF** link = &references;
    do {
      std::string_view element;
      bool has_dot = false;
      next = skip_reference_name(skip_blank_space(next), element, has_dot);
      if (next == nullptr) return nullptr;
      *link = m_tree.make_reference(element);
      link = &(*link)->next;
      next = skip_blank_space(next);
    } while (*next++ == ',');
    if (next[-1] != '>') return nullptr;
    std::string_view comment;
    next = parse_statement_end(skip_blank_space(next), comment);
    if (next == nullptr) return nullptr;
    m_tree.add_reference(name, references, comment);
    return next;
  }

  const char* parse_attributes(const char* next, SBD_PARA_ATTR*& attributes) {
    // Right behind a number, "[" leaves the scanner where it knows no names.
    if (m_is_unit && sbd_is(next[1], CC_NAME_START)) return nullptr;
    SBD_PARA_ATTR** link = &attributes;
    ++next;
    do {
      std::string_view key;
      bool has_dot = false;
      next = skip_reference_name(skip_blank_space(next), key, has_dot);
      if (next == nullptr || has_dot) return nullptr;
      next = skip_blank_space(next);
      std::string_view value;
      if (sbd_is(*next, CC_NAME_START | CC_DOT)) {
        next = skip_reference_name(next, value, has_dot);
        if (next == nullptr || !has_dot) return nullptr;
        next = skip_blank_space(next);
      }
      *link = m_tree.make_attribute(key, value);
      link = &(*link)->next;
    } while (*next++ == ',');
    return next[-1] == ']' ? skip_blank_space(next) : nullptr;
  }

  // A value that is no list, and the blank space behind it.
  const char* parse_simple_value(const char* next, SBD_PARA_VALUE*& value) {
    m_is_unit = false;
    const char c = *next;
    if (sbd_is(c, CC_DIGIT) || c == '+' || c == '-') return parse_number(next, value);
    if (sbd_is(c, CC_NAME_START)) return parse_word(next, value);
    return c == '"' ? parse_string(next, value) : nullptr;
  }

  const char* parse_word(const char* begin, SBD_PARA_VALUE*& value) {
    const char* next = sbd_skip_name(begin);
    const std::string_view word = text_between(begin, next);
    if (*next == '.' || skip_index(next)) return nullptr;
    const WORD kind = kind_of(word);
    value = kind == WORD::IDENTIFIER ? m_tree.make_word(word)
                                     : m_tree.make_bool(kind == WORD::TRUE, word);
    return skip_blank_space(next);
  }

  const char* parse_string(const char* begin, SBD_PARA_VALUE*& value) {
    const char* next = sbd_find_quote_or_newline(begin + 1, m_text.end);
    while (next != nullptr && *next == '\n') {
      count_line(next);
      next = sbd_find_quote_or_newline(next + 1, m_text.end);
    }
    if (next == nullptr) return nullptr;
    ++next;
    value = m_tree.make_string(text_between(begin, next));
    return skip_blank_space(next);
  }

  const char* parse_number(const char* begin, SBD_PARA_VALUE*& value) {
    NUMBER number;
    const char* next = skip_number(begin, number);
    if (next == nullptr) return nullptr;
    const char* const digits_end = next;
    const bool has_unit = sbd_is(*next, CC_LETTER);
    auto unit = SBD_PARA_VALUE::QU_NONE;
    if (has_unit && (next = skip_unit(next, unit)) == nullptr) return nullptr;
    value = m_tree.make_number(number.type, number.value, unit, text_between(begin, next));
    next = skip_blank_space(next);
    m_is_unit = next == digits_end;
    return next;
  }

  struct NUMBER {
    void set(SBD_PARA_VALUE::VALUE_TYPE new_type, double new_value) {
      type = new_type;
      value = new_value;
    }

    SBD_PARA_VALUE::VALUE_TYPE type;
    double value;
  };

  static const char* skip_number(const char* begin, NUMBER& number) {
    const char sign = *begin;
    const bool has_sign = sign == '+' || sign == '-';
    const char* const digits = has_sign ? begin + 1 : begin;
    const char* next = sbd_skip_digits(digits);
    if (*next == '.') {
      const bool has_digits_before = next != digits;
      const char* const decimals = ++next;
      next = sbd_skip_digits(next);
      if (!has_digits_before && next == decimals) return nullptr;
      number.set(SBD_PARA_VALUE::VT_FLOAT, sbd_convert_float(text_between(begin, next)));
      return next;
    }
    if (next == digits) return nullptr;
    // A zero with a sign must be the whole number.
    if (digits[0] == '0' && has_sign && next != digits + 1) return nullptr;
    if (digits[0] == '0' && !has_sign) return skip_prefixed_number(begin, next, number);
    if (sign == '-') {
      number.set(SBD_PARA_VALUE::VT_FLOAT, sbd_convert_float(text_between(begin, next)));
    } else {
      number.set(SBD_PARA_VALUE::VT_UDECIMAL,
                 sbd_convert_padded_decimal(text_between(begin, next)));
    }
    return next;
  }

  // A number that begins with "0"; `end` is behind its decimal digits.
  static const char* skip_prefixed_number(const char* begin, const char* end, NUMBER& number) {
    const char* next = begin + 1;
    if (end == next && (*next == 'x' || *next == 'X')) {
      const char* const digits = ++next;
      next = sbd_skip_hex_digits(next);
      if (next == digits) return nullptr;
      number.set(SBD_PARA_VALUE::VT_HEXAL,
                 sbd_convert_padded_hexadecimal(text_between(digits, next)));
      return next;
    }
    if (end == next && (*next == 'b' || *next == 'B')) {
      const char* const digits = ++next;
      while (*next == '0' || *next == '1') ++next;
      if (next == digits) return nullptr;
      number.set(SBD_PARA_VALUE::VT_BINARY, sbd_convert_binary(text_between(digits, next)));
      return next;
    }
    if (end == next) {
      number.set(SBD_PARA_VALUE::VT_UDECIMAL, 0);
      return next;
    }
    for (; next != end; ++next) {
      if (*next > '7') return nullptr;
    }
    number.set(SBD_PARA_VALUE::VT_OCTAL, sbd_convert_octal(text_between(begin, end)));
    return next;
  }

  // A unit. What follows it is the next token's affair.
  static const char* skip_unit(const char* next, SBD_PARA_VALUE::QUANTITY_UNIT& unit) {
    const char c = *next;
    if (sbd_to_lower(c) == 'm' && sbd_to_lower(next[1]) == 'h' && sbd_to_lower(next[2]) == 'z') {
      unit = SBD_PARA_VALUE::QU_MHZ;
      return next + 3;
    }
    if (sbd_to_lower(c) == 'h' && sbd_to_lower(next[1]) == 'z') {
      unit = SBD_PARA_VALUE::QU_HZ;
      return next + 2;
    }
    if (c != 'K' && c != 'M' && c != 'G') return nullptr;
    unit = c == 'K' ? SBD_PARA_VALUE::QU_KB
                    : (c == 'M' ? SBD_PARA_VALUE::QU_MB : SBD_PARA_VALUE::QU_GB);
    return next + (next[1] == 'B' ? 2 : 1);
  }

  // A list with all that is nested in it, and the blank space behind it.
  const char* parse_list(const char* next, SBD_PARA_VALUE*& value) {
    struct OPEN_LIST {
      const char* begin;
      std::size_t first_element;
    };
    SBD_SCRATCH<OPEN_LIST, 16> open_lists;
    SBD_SCRATCH<SBD_PARA_VALUE*, 64> elements;
    for (;;) {
      // In front of an element.
      if (*next == '{') {
        open_lists.push_back({next, elements.size()});
        next = skip_blank_space(next + 1);
        continue;
      }
      next = parse_simple_value(next, value);
      if (next == nullptr) return nullptr;
      // Behind an element.
      while (*next == '}') {
        elements.push_back(value);
        const OPEN_LIST open = open_lists.back();
        const std::size_t count = elements.size() - open.first_element;
        if (count < 2) return nullptr;
        ++next;
        m_is_tail = true;
        value = m_tree.make_list(elements.end() - count, count, text_between(open.begin, next));
        elements.truncate(open.first_element);
        open_lists.pop_back();
        m_is_unit = false;
        next = skip_blank_space(next);
        if (open_lists.empty()) return next;
      }
      if (*next != ',') return nullptr;
      elements.push_back(value);
      next = skip_blank_space(next + 1);
    }
  }

  SBD_SOURCE& m_source;
  SBD_TREE_MAKER m_tree;
  std::uint32_t m_line = 1;
  bool m_is_tail = false;      // A "#" would be a tail comment: ";" or "}" came on this line.
  bool m_is_unit = false;      // The scanner still waits for the last number's unit.
  SBD_POOL::PROGRESS& m_text;  // As far as the beginning of the line that is parsed.
  const char* m_next_mark;     // The first place whose line the source has not marked.
};

// How much memory the records of a text are going to take, as its beginning has it: rather too
// little, since the pool grows when more is lacking. Marks in comments must not mislead it much.
std::size_t estimate_records(std::string_view text) {
  constexpr std::size_t k_longest_sample = 255 * k_run_step;
  constexpr std::size_t k_per_statement = 123;
  constexpr std::size_t k_per_brace = 125;  // Of a block; a list has the memory of its elements.
  constexpr std::size_t k_per_comma = 25;
  constexpr std::size_t k_per_new_name = 10;
  constexpr std::size_t k_most_new_names = 128;
  constexpr double k_most_per_byte = 8;
  constexpr auto k_most = static_cast<double>(std::numeric_limits<std::size_t>::max()) / 4;
  const std::size_t sample =
      std::min((text.size() + k_run_step - 1) / k_run_step * k_run_step, k_longest_sample);
  if (sample == 0) return 0;
  const SBD_MARK_COUNTS counts = sbd_count_marks(text.data(), sample);
  const std::size_t bytes = counts.semicolons * k_per_statement + counts.braces * k_per_brace +
                            counts.commas * k_per_comma;
  const double share = static_cast<double>(text.size()) / static_cast<double>(sample);
  const auto names = static_cast<double>(counts.semicolons + counts.braces) * share;
  const double new_names = std::min<double>(names, k_most_new_names);
  const double estimate = static_cast<double>(bytes) * share + new_names * k_per_new_name;
  const double most = std::min(static_cast<double>(text.size()) * k_most_per_byte, k_most);
  return static_cast<std::size_t>(std::min(estimate, most));
}

}  // namespace

// All in one piece: calls would cost as much as many of the functions do.
#if defined(__GNUC__)
[[gnu::flatten]]
#endif
bool sbd_parse_faultless(std::string_view text, SBD_STORE& store, SBD_PARSER_PARA& para) {
  store.pool.reserve(estimate_records(text));
  return FAULTLESS_PARSER(text, store, para).parse();
}
