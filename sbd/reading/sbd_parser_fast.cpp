#include "sbd/reading/sbd_parser_fast.h"

#include <cstring>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/reading/sbd_store.h"
#include "sbd/sbd_parser.h"

using SBD_BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
using SBD_PARA_ATTR = SBD_FILE_PARSER::SBD_PARA_ATTR;
using SBD_PARA_REF = SBD_FILE_PARSER::SBD_PARA_REF;
using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_PARSER_PARA = SBD_FILE_PARSER::SBD_PARSER_PARA;
using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;
using SBD_TOKEN_INFO = SBD_FILE_PARSER::SBD_TOKEN_INFO;

namespace {

// The members that a block, or the top level, has so far.
struct MEMBER_LIST {
  SBD_NODE* first = nullptr;
  SBD_NODE* last = nullptr;
  std::size_t comments = 0;
  std::size_t first_name = 0;  // Index of its first name among the open ones.
};

// A block whose "}" has not come yet.
struct OPEN_BLOCK {
  SBD_TOKEN_INFO type;
  SBD_TOKEN_INFO name;
  MEMBER_LIST enclosing;
};

// Skips a group of one digit in brackets, if there is one.
inline bool skip_index(const char*& next) {
  if (next[0] != '[' || !sbd_is(next[1], CC_DIGIT) || next[2] != ']') return false;
  next += 3;
  return true;
}

// The token that a word is: an identifier, or one of the Boolean words.
inline int word_code(std::string_view word) {
  if (word.size() == 4 && (word == "true" || word == "TRUE" || word == "True")) return SBD_TOK_TRUE;
  if (word.size() == 5 && (word == "false" || word == "FALSE" || word == "False")) {
    return SBD_TOK_FALSE;
  }
  return SBD_TOK_IDENTIFIER;
}

// Recursive descent over the grammar, with stacks of its own in place of recursion. Every function
// returns false at a fault, however far it got.
class FAULTLESS_PARSER {
 public:
  FAULTLESS_PARSER(std::string_view text, SBD_STORE& store, SBD_PARSER_PARA& para)
      : m_next(text.data()), m_end(text.data() + text.size()), m_store(store), m_para(para) {}

  bool parse() {
    for (;;) {
      skip_blank_space();
      const char c = *m_next;
      if (sbd_is(c, CC_NAME_START)) {
        if (!parse_named()) return false;
      } else if (c == '#') {
        if (!parse_comment_line()) return false;
      } else if (c == '}') {
        if (!close_block()) return false;
      } else {
        return c == '\0' && m_next == m_end && m_open_blocks.empty() && finish();
      }
    }
  }

 private:
  // Skips blanks and newlines, which end the condition in which a "#" is a tail comment.
  void skip_blank_space() {
    for (;;) {
      m_next = sbd_skip_blanks(m_next);
      if (*m_next != '\n') return;
      count_line(m_next++);
      m_is_tail = false;
    }
  }

  void count_line(const char* newline) { m_store.source.note_newline(newline, m_line++); }

  SBD_TOKEN_INFO token(const char* begin) const {
    return {m_line, std::string_view(begin, static_cast<std::size_t>(m_next - begin)), &m_store};
  }

  // Skips an identifier or an indexed name.
  bool skip_declared_name(SBD_TOKEN_INFO& name) {
    const char* const begin = m_next;
    if (!sbd_is(*m_next, CC_NAME_START)) return false;
    m_next = sbd_skip_name(m_next);
    while (skip_index(m_next)) {
    }
    name = token(begin);
    return word_code(name.text) == SBD_TOK_IDENTIFIER;
  }

  // Skips an identifier or a qualified name; where an indexed name stands, that is a fault.
  bool skip_reference_name(SBD_TOKEN_INFO& name, bool& has_dot) {
    const char* const begin = m_next;
    if (!sbd_is(*begin, CC_NAME_START | CC_DOT)) return false;
    has_dot = false;
    bool has_index = false;
    for (;;) {
      m_next = sbd_skip_name(m_next);
      if (*m_next == '.') {
        has_dot = true;
        ++m_next;
      } else if (*m_next == '[' && skip_index(m_next)) {
        has_index = true;
      } else {
        name = token(begin);
        return has_dot || (!has_index && word_code(name.text) == SBD_TOK_IDENTIFIER);
      }
    }
  }

  // The rest of the line from "#" on, with its newline; false at the end of the text.
  bool skip_comment(SBD_TOKEN_INFO& comment) {
    const char* const begin = m_next;
    const void* const newline = std::memchr(m_next, '\n', static_cast<std::size_t>(m_end - m_next));
    if (newline == nullptr) return false;
    m_next = static_cast<const char*>(newline) + 1;
    count_line(m_next - 1);
    m_is_tail = false;
    comment = token(begin);
    return true;
  }

  void append(SBD_NODE* node) {
    if (m_members.last == nullptr) {
      m_members.first = node;
    } else {
      sbd_join_node(m_members.last, node);
    }
    m_members.last = node;
  }

  bool parse_comment_line() {
    SBD_TOKEN_INFO comment;
    if (m_is_tail || !skip_comment(comment)) return false;
    append(sbd_do_comment(&comment));
    ++m_members.comments;
    return true;
  }

  // A statement or the head of a block.
  bool parse_named() {
    SBD_TOKEN_INFO name;
    if (!skip_declared_name(name)) return false;
    skip_blank_space();
    switch (*m_next) {
      case '=':
        ++m_next;
        return !m_open_blocks.empty() && parse_assignment(name);
      case '<':
        ++m_next;
        return !m_open_blocks.empty() && parse_reference(name);
      default:
        return name.text.back() != ']' && parse_block_head(name);
    }
  }

  bool parse_block_head(const SBD_TOKEN_INFO& type) {
    // Two names with nothing between them would be one token.
    SBD_TOKEN_INFO name;
    if (m_next == type.text.data() + type.text.size() || !skip_declared_name(name)) return false;
    skip_blank_space();
    if (*m_next != '{') return false;
    ++m_next;
    m_open_blocks.push_back({type, name, m_members});
    m_members = {nullptr, nullptr, 0, m_store.open_members.size()};
    return true;
  }

  bool close_block() {
    if (m_open_blocks.empty() || m_members.first == nullptr) return false;
    ++m_next;
    m_is_tail = true;
    const OPEN_BLOCK open = m_open_blocks.back();
    m_open_blocks.pop_back();
    SBD_NODE* const node =
        sbd_do_block(&open.type, &open.name, m_members.first, m_para.symbol_table);
    node->block->m_last = m_members.last;
    node->block->m_end_position = m_store.source.offset_of(m_next);

    // The block's own name was entered last; it belongs to the scope around the block.
    auto& names = m_store.open_members;
    const SBD_OPEN_MEMBER own_name = names.back();
    names.pop_back();
    close_scope(node);
    names.push_back(own_name);

    m_members = open.enclosing;
    append(node);
    const auto type = node->block->block_type;
    const bool is_top_level = m_open_blocks.empty();
    if (type == SBD_BLOCK::BT_UNKNOWN || (type == SBD_BLOCK::BT_DEVICE) != is_top_level) {
      m_store.facts.has_misplaced_blocks = true;
    }
    return true;
  }

  // Takes the innermost open scope's names from the open ones.
  void close_scope(SBD_NODE* block) {
    auto& names = m_store.open_members;
    if (m_store.facts.gives_parents) {
      for (std::size_t i = m_members.first_name; i != names.size(); ++i) {
        SBD_SYMBOL* const symbol = names[i].symbol;
        symbol->parent = block != nullptr ? block : symbol->node;
      }
    }
    const bool is_unique = m_store.names.close_scope(block, names.begin() + m_members.first_name,
                                                     names.end(), m_members.comments, m_store.pool);
    if (!is_unique) m_store.facts.has_duplicate_names = true;
    names.truncate(m_members.first_name);
  }

  bool finish() {
    close_scope(nullptr);
    m_para.root = m_members.first;
    m_store.last_root = m_members.last;
    return true;
  }

  // The ";" of a statement and the comment behind it; `comment` is null where there is none.
  bool parse_statement_end(SBD_TOKEN_INFO& comment_token, const SBD_TOKEN_INFO*& comment) {
    if (*m_next != ';') return false;
    ++m_next;
    m_is_tail = true;
    m_next = sbd_skip_blanks(m_next);
    comment = nullptr;
    if (*m_next != '#') return true;
    comment = &comment_token;
    return skip_comment(comment_token);
  }

  bool parse_assignment(const SBD_TOKEN_INFO& name) {
    SBD_PARA_VALUE* value = nullptr;
    skip_blank_space();
    if (!(*m_next == '{' ? parse_list(value) : parse_simple_value(value))) return false;
    SBD_PARA_ATTR* attributes = nullptr;
    if (*m_next == '[' && !parse_attributes(attributes)) return false;
    SBD_TOKEN_INFO comment_token;
    const SBD_TOKEN_INFO* comment = nullptr;
    if (!parse_statement_end(comment_token, comment)) return false;
    append(sbd_do_assignment(&name, value, attributes, comment, m_para.symbol_table));
    return true;
  }

  bool parse_reference(const SBD_TOKEN_INFO& name) {
    SBD_PARA_REF* references = nullptr;
    SBD_PARA_REF* last = nullptr;
    do {
      skip_blank_space();
      SBD_TOKEN_INFO element;
      bool has_dot = false;
      if (!skip_reference_name(element, has_dot)) return false;
      SBD_PARA_REF* const reference = sbd_do_para_ref(&element);
      if (last == nullptr) {
        references = reference;
      } else {
        sbd_join_para_ref(last, reference);
      }
      last = reference;
      skip_blank_space();
    } while (*m_next++ == ',');
    if (m_next[-1] != '>') return false;
    skip_blank_space();
    SBD_TOKEN_INFO comment_token;
    const SBD_TOKEN_INFO* comment = nullptr;
    if (!parse_statement_end(comment_token, comment)) return false;
    SBD_NODE* const node = sbd_do_reference(&name, references, comment, m_para.symbol_table);
    append(node);
    m_store.facts.references.push_back(node->statement);
    return true;
  }

  bool parse_attributes(SBD_PARA_ATTR*& attributes) {
    SBD_PARA_ATTR* last = nullptr;
    ++m_next;
    // Right behind a number, "[" leaves the scanner where it knows no names.
    if (m_is_unit && sbd_is(*m_next, CC_NAME_START)) return false;
    do {
      skip_blank_space();
      SBD_TOKEN_INFO key;
      bool has_dot = false;
      if (!skip_reference_name(key, has_dot) || has_dot) return false;
      skip_blank_space();
      SBD_TOKEN_INFO value;
      const bool has_value = sbd_is(*m_next, CC_NAME_START | CC_DOT);
      if (has_value) {
        if (!skip_reference_name(value, has_dot) || !has_dot) return false;
        skip_blank_space();
      }
      SBD_PARA_ATTR* const attribute = sbd_do_para_attr(&key, has_value ? &value : nullptr);
      if (last == nullptr) {
        attributes = attribute;
      } else {
        sbd_join_para_attr(last, attribute);
      }
      last = attribute;
    } while (*m_next++ == ',');
    if (m_next[-1] != ']') return false;
    skip_blank_space();
    return true;
  }

  // A value that is no list, and the blank space behind it.
  bool parse_simple_value(SBD_PARA_VALUE*& value) {
    m_is_unit = false;
    const char c = *m_next;
    if (sbd_is(c, CC_DIGIT) || c == '+' || c == '-') return parse_number(value);
    if (sbd_is(c, CC_NAME_START)) return parse_word(value);
    return c == '"' && parse_string(value);
  }

  bool parse_word(SBD_PARA_VALUE*& value) {
    const char* const begin = m_next;
    m_next = sbd_skip_name(m_next);
    const SBD_TOKEN_INFO word = token(begin);
    if (*m_next == '.' || skip_index(m_next)) return false;
    value = sbd_do_para_value(word_code(word.text), &word);
    skip_blank_space();
    return true;
  }

  bool parse_string(SBD_PARA_VALUE*& value) {
    const char* const begin = m_next++;
    for (; *m_next != '"'; ++m_next) {
      if (*m_next == '\n') {
        count_line(m_next);
      } else if (m_next == m_end) {
        return false;
      }
    }
    ++m_next;
    const SBD_TOKEN_INFO string = token(begin);
    value = sbd_do_para_value(SBD_TOK_STRING, &string);
    skip_blank_space();
    return true;
  }

  bool parse_number(SBD_PARA_VALUE*& value) {
    const char* const begin = m_next;
    const int code = skip_number();
    if (code == 0) return false;
    const SBD_TOKEN_INFO number = token(begin);
    value = sbd_do_para_value(code, &number);
    const char* const digits_end = m_next;
    if (sbd_is(*m_next, CC_LETTER)) {
      value->unit = skip_unit();
      if (value->unit == SBD_PARA_VALUE::QU_NONE) return false;
      value->m_length = static_cast<std::uint32_t>(m_next - begin);
      skip_blank_space();
      return true;
    }
    skip_blank_space();
    m_is_unit = m_next == digits_end;
    return true;
  }

  // Skips a number and returns its token's code, or 0 where none stands.
  int skip_number() {
    const char* next = m_next;
    const char sign = *next;
    const bool has_sign = sign == '+' || sign == '-';
    if (has_sign) ++next;
    const char* const digits = next;
    while (sbd_is(*next, CC_DIGIT)) ++next;
    if (*next == '.') {
      const bool has_digits_before = next != digits;
      ++next;
      const char* const decimals = next;
      while (sbd_is(*next, CC_DIGIT)) ++next;
      if (!has_digits_before && next == decimals) return 0;
      m_next = next;
      return SBD_TOK_FLOAT;
    }
    if (next == digits) return 0;
    if (digits[0] != '0') {
      m_next = next;
      return sign == '-' ? SBD_TOK_FLOAT : SBD_TOK_UDECIMAL;
    }
    return has_sign ? skip_signed_zero(next, sign) : skip_prefixed_number(next);
  }

  // A zero with a sign must be the whole number.
  int skip_signed_zero(const char* end, char sign) {
    if (end - m_next != 2) return 0;
    m_next = end;
    return sign == '-' ? SBD_TOK_FLOAT : SBD_TOK_UDECIMAL;
  }

  // A number that begins with "0"; `end` is behind its decimal digits.
  int skip_prefixed_number(const char* end) {
    const char* next = m_next + 1;
    if (end == next && (*next == 'x' || *next == 'X')) {
      const char* const digits = ++next;
      while (sbd_is(*next, CC_DIGIT | CC_HEX_LETTER)) ++next;
      m_next = next;
      return next == digits ? 0 : SBD_TOK_HEXAL;
    }
    if (end == next && (*next == 'b' || *next == 'B')) {
      const char* const digits = ++next;
      while (*next == '0' || *next == '1') ++next;
      m_next = next;
      return next == digits ? 0 : SBD_TOK_BINARY;
    }
    for (; next != end; ++next) {
      if (*next > '7') return 0;
    }
    const bool is_octal = end - m_next > 1;
    m_next = end;
    return is_octal ? SBD_TOK_OCTAL : SBD_TOK_UDECIMAL;
  }

  // Skips a unit; QU_NONE where none stands. What follows the unit is the next token's affair.
  SBD_PARA_VALUE::QUANTITY_UNIT skip_unit() {
    const char c = m_next[0];
    if (sbd_to_lower(c) == 'm' && sbd_to_lower(m_next[1]) == 'h' &&
        sbd_to_lower(m_next[2]) == 'z') {
      m_next += 3;
      return SBD_PARA_VALUE::QU_MHZ;
    }
    if (sbd_to_lower(c) == 'h' && sbd_to_lower(m_next[1]) == 'z') {
      m_next += 2;
      return SBD_PARA_VALUE::QU_HZ;
    }
    if (c != 'K' && c != 'M' && c != 'G') return SBD_PARA_VALUE::QU_NONE;
    m_next += m_next[1] == 'B' ? 2 : 1;
    if (c == 'K') return SBD_PARA_VALUE::QU_KB;
    return c == 'M' ? SBD_PARA_VALUE::QU_MB : SBD_PARA_VALUE::QU_GB;
  }

  // A list with all that is nested in it, and the blank space behind it.
  bool parse_list(SBD_PARA_VALUE*& value) {
    struct OPEN_LIST {
      const char* begin;
      std::size_t first_element;
    };
    SBD_SCRATCH<OPEN_LIST, 16> open_lists;
    SBD_SCRATCH<SBD_PARA_VALUE*, 64> elements;
    for (;;) {
      // In front of an element.
      if (*m_next == '{') {
        open_lists.push_back({m_next, elements.size()});
        ++m_next;
        skip_blank_space();
        continue;
      }
      if (!parse_simple_value(value)) return false;
      // Behind an element.
      while (*m_next == '}') {
        elements.push_back(value);
        const OPEN_LIST open = open_lists.back();
        const std::size_t count = elements.size() - open.first_element;
        if (count < 2) return false;
        ++m_next;
        m_is_tail = true;
        value = m_store.make<SBD_PARA_VALUE>();
        value->type = SBD_PARA_VALUE::VT_LIST;
        value->m_position = m_store.position_of(open.begin);
        value->m_length = static_cast<std::uint32_t>(m_next - open.begin);
        value->list = m_store.make_list(elements.end() - count, count);
        elements.truncate(open.first_element);
        open_lists.pop_back();
        m_is_unit = false;
        skip_blank_space();
        if (open_lists.empty()) return true;
      }
      if (*m_next != ',') return false;
      elements.push_back(value);
      ++m_next;
      skip_blank_space();
    }
  }

  const char* m_next;
  const char* const m_end;
  SBD_STORE& m_store;
  SBD_PARSER_PARA& m_para;
  std::uint32_t m_line = 1;
  bool m_is_tail = false;  // A "#" would be a tail comment: ";" or "}" came on this line.
  bool m_is_unit = false;  // The scanner still waits for the last number's unit.
  MEMBER_LIST m_members;
  SBD_SCRATCH<OPEN_BLOCK, 16> m_open_blocks;
};

}  // namespace

bool sbd_parse_faultless(std::string_view text, SBD_STORE& store, SBD_PARSER_PARA& para) {
  // Records take about three times the room of the text that they are made from.
  constexpr std::size_t k_record_bytes_per_byte = 3;
  store.pool.reserve(text.size() * k_record_bytes_per_byte);
  return FAULTLESS_PARSER(text, store, para).parse();
}
