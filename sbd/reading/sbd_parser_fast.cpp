#include "sbd/reading/sbd_parser_fast.h"

#include <algorithm>
#include <cstring>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_grammar_actions.h"
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
  // Only words of 4 and 5 letters need a look.
  if (word.size() - 4 > 1) return SBD_TOK_IDENTIFIER;
  if (word == "true" || word == "TRUE" || word == "True") return SBD_TOK_TRUE;
  if (word == "false" || word == "FALSE" || word == "False") return SBD_TOK_FALSE;
  return SBD_TOK_IDENTIFIER;
}

// Recursive descent over the grammar, with stacks of its own in place of recursion. Every function
// is told where it begins and returns where it ended, or null at a fault, however far it got; so
// the place stays in a register.
class FAULTLESS_PARSER {
 public:
  FAULTLESS_PARSER(std::string_view text, SBD_STORE& store, SBD_READING_STATE& state,
                   SBD_PARSER_PARA& para)
      : m_end(text.data() + text.size()),
        m_store(store),
        m_state(state),
        m_para(para),
        m_line_begin(text.data()),
        m_next_mark(text.data()) {}

  bool parse() {
    const char* next = m_line_begin;
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
        return next == m_end && m_open_blocks.empty() && finish();
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
      m_next_mark = m_store.source.mark_lines(newline, {m_line, m_line_begin});
    }
    ++m_line;
    m_line_begin = newline + 1;
  }

  SBD_TOKEN_INFO token(const char* begin, const char* end) const {
    return {m_line, std::string_view(begin, static_cast<std::size_t>(end - begin)), &m_store};
  }

  // An identifier or an indexed name, of which the first character was seen to begin one.
  const char* skip_declared_name(const char* begin, SBD_TOKEN_INFO& name) {
    const char* next = sbd_skip_name(begin);
    while (skip_index(next)) {
    }
    name = token(begin, next);
    return word_code(name.text) == SBD_TOK_IDENTIFIER ? next : nullptr;
  }

  // An identifier or a qualified name; where an indexed name stands, that is a fault.
  const char* skip_reference_name(const char* begin, SBD_TOKEN_INFO& name, bool& has_dot) {
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
        name = token(begin, next);
        const bool is_name = has_dot || (!has_index && word_code(name.text) == SBD_TOK_IDENTIFIER);
        return is_name ? next : nullptr;
      }
    }
  }

  // The rest of the line from "#" on, with its newline; a fault at the end of the text.
  const char* skip_comment(const char* begin, SBD_TOKEN_INFO& comment) {
    const auto* const newline =
        static_cast<const char*>(std::memchr(begin, '\n', static_cast<std::size_t>(m_end - begin)));
    if (newline == nullptr) return nullptr;
    count_line(newline);
    m_is_tail = false;
    comment = token(begin, newline + 1);
    return newline + 1;
  }

  void append(SBD_NODE* node) {
    if (m_members.last == nullptr) {
      m_members.first = node;
    } else {
      m_members.last->next = node;
    }
    m_members.last = node;
  }

  const char* parse_comment_line(const char* next) {
    SBD_TOKEN_INFO comment;
    if (m_is_tail || (next = skip_comment(next, comment)) == nullptr) return nullptr;
    append(sbd_do_comment(&comment));
    ++m_members.comments;
    return next;
  }

  // A statement or the head of a block.
  const char* parse_named(const char* next) {
    SBD_TOKEN_INFO name;
    next = skip_declared_name(next, name);
    if (next == nullptr) return nullptr;
    const char* const name_end = next;
    next = skip_blank_space(next);
    switch (*next) {
      case '=':
        return m_open_blocks.empty() ? nullptr : parse_assignment(next + 1, name);
      case '<':
        return m_open_blocks.empty() ? nullptr : parse_reference(next + 1, name);
      default:
        // Two names with nothing between them would be one token.
        return next == name_end || name_end[-1] == ']' ? nullptr : parse_block_head(next, name);
    }
  }

  const char* parse_block_head(const char* next, const SBD_TOKEN_INFO& type) {
    if (!sbd_is(*next, CC_NAME_START)) return nullptr;
    SBD_TOKEN_INFO name;
    next = skip_declared_name(next, name);
    if (next == nullptr) return nullptr;
    next = skip_blank_space(next);
    if (*next != '{') return nullptr;
    m_open_blocks.push_back({type, name, m_members});
    m_members = {nullptr, nullptr, 0, m_state.open_members.size()};
    return next + 1;
  }

  const char* close_block(const char* next) {
    if (m_open_blocks.empty() || m_members.first == nullptr) return nullptr;
    ++next;
    m_is_tail = true;
    const OPEN_BLOCK open = m_open_blocks.back();
    m_open_blocks.pop_back();
    SBD_NODE* const node = SBD_GRAMMAR_ACTIONS::do_block(&open.type, &open.name, m_members.first,
                                                         m_para.symbol_table, &m_state);
    node->block->m_last = m_members.last;
    node->block->m_end_position = m_store.source.offset_of(next);

    // The block's own name was entered last; it belongs to the scope around the block.
    auto& names = m_state.open_members;
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
    return next;
  }

  // Takes the innermost open scope's names from the open ones.
  void close_scope(SBD_NODE* block) {
    auto& names = m_state.open_members;
    const SBD_OPEN_MEMBER* const first = names.begin() + m_members.first_name;
    if (m_store.facts.gives_parents) {
      for (const SBD_OPEN_MEMBER* name = first; name != names.end(); ++name) {
        name->symbol->parent = block != nullptr ? block : name->symbol->node;
      }
    }
    const bool is_unique =
        m_store.names.close_scope(block, first, names.end(), m_members.comments, m_store.pool);
    if (!is_unique) m_store.facts.has_duplicate_names = true;
    names.truncate(m_members.first_name);
  }

  bool finish() {
    close_scope(nullptr);
    m_store.source.set_last_line({m_line, m_line_begin});
    m_para.root = m_members.first;
    m_store.last_root = m_members.last;
    return true;
  }

  // The ";" of a statement and the comment behind it; `comment` is null where there is none.
  const char* parse_statement_end(const char* next, SBD_TOKEN_INFO& comment_token,
                                  const SBD_TOKEN_INFO*& comment) {
    comment = nullptr;
    if (*next != ';') return nullptr;
    m_is_tail = true;
    next = sbd_skip_blanks(next + 1);
    if (*next != '#') return next;
    comment = &comment_token;
    return skip_comment(next, comment_token);
  }

  const char* parse_assignment(const char* next, const SBD_TOKEN_INFO& name) {
    next = skip_blank_space(next);
    SBD_PARA_VALUE* value = nullptr;
    next = *next == '{' ? parse_list(next, value) : parse_simple_value(next, value);
    if (next == nullptr) return nullptr;
    SBD_PARA_ATTR* attributes = nullptr;
    if (*next == '[' && (next = parse_attributes(next, attributes)) == nullptr) return nullptr;
    SBD_TOKEN_INFO comment_token;
    const SBD_TOKEN_INFO* comment = nullptr;
    next = parse_statement_end(next, comment_token, comment);
    if (next == nullptr) return nullptr;
    append(SBD_GRAMMAR_ACTIONS::do_assignment(&name, value, attributes, comment,
                                              m_para.symbol_table, &m_state));
    return next;
  }

  const char* parse_reference(const char* next, const SBD_TOKEN_INFO& name) {
    SBD_PARA_REF* references = nullptr;
    SBD_PARA_REF* last = nullptr;
    do {
      SBD_TOKEN_INFO element;
      bool has_dot = false;
      next = skip_reference_name(skip_blank_space(next), element, has_dot);
      if (next == nullptr) return nullptr;
      SBD_PARA_REF* const reference = sbd_do_para_ref(&element);
      if (last == nullptr) {
        references = reference;
      } else {
        sbd_join_para_ref(last, reference);
      }
      last = reference;
      next = skip_blank_space(next);
    } while (*next++ == ',');
    if (next[-1] != '>') return nullptr;
    SBD_TOKEN_INFO comment_token;
    const SBD_TOKEN_INFO* comment = nullptr;
    next = parse_statement_end(skip_blank_space(next), comment_token, comment);
    if (next == nullptr) return nullptr;
    SBD_NODE* const node = sbd_do_reference(&name, references, comment, m_para.symbol_table);
    append(node);
    m_store.facts.references.push_back(node->statement);
    return next;
  }

  const char* parse_attributes(const char* next, SBD_PARA_ATTR*& attributes) {
    // Right behind a number, "[" leaves the scanner where it knows no names.
    if (m_is_unit && sbd_is(next[1], CC_NAME_START)) return nullptr;
    SBD_PARA_ATTR* last = nullptr;
    ++next;
    do {
      SBD_TOKEN_INFO key;
      bool has_dot = false;
      next = skip_reference_name(skip_blank_space(next), key, has_dot);
      if (next == nullptr || has_dot) return nullptr;
      next = skip_blank_space(next);
      SBD_TOKEN_INFO value;
      const bool has_value = sbd_is(*next, CC_NAME_START | CC_DOT);
      if (has_value) {
        next = skip_reference_name(next, value, has_dot);
        if (next == nullptr || !has_dot) return nullptr;
        next = skip_blank_space(next);
      }
      SBD_PARA_ATTR* const attribute = sbd_do_para_attr(&key, has_value ? &value : nullptr);
      if (last == nullptr) {
        attributes = attribute;
      } else {
        sbd_join_para_attr(last, attribute);
      }
      last = attribute;
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
    const SBD_TOKEN_INFO word = token(begin, next);
    if (*next == '.' || skip_index(next)) return nullptr;
    value = SBD_GRAMMAR_ACTIONS::do_para_value(word_code(word.text), &word);
    return skip_blank_space(next);
  }

  const char* parse_string(const char* begin, SBD_PARA_VALUE*& value) {
    const char* next = sbd_find_quote_or_newline(begin + 1, m_end);
    while (next != nullptr && *next == '\n') {
      count_line(next);
      next = sbd_find_quote_or_newline(next + 1, m_end);
    }
    if (next == nullptr) return nullptr;
    ++next;
    const SBD_TOKEN_INFO string = token(begin, next);
    value = SBD_GRAMMAR_ACTIONS::do_para_value(SBD_TOK_STRING, &string);
    return skip_blank_space(next);
  }

  const char* parse_number(const char* begin, SBD_PARA_VALUE*& value) {
    int code = 0;
    const char* next = skip_number(begin, code);
    if (next == nullptr) return nullptr;
    const SBD_TOKEN_INFO number = token(begin, next);
    value = SBD_GRAMMAR_ACTIONS::do_para_value(code, &number);
    const char* const digits_end = next;
    if (sbd_is(*next, CC_LETTER)) {
      next = skip_unit(next, value->unit);
      if (next == nullptr) return nullptr;
      value->m_length = static_cast<std::uint32_t>(next - begin);
      return skip_blank_space(next);
    }
    next = skip_blank_space(next);
    m_is_unit = next == digits_end;
    return next;
  }

  // A number, and its token's code.
  static const char* skip_number(const char* begin, int& code) {
    const char sign = *begin;
    const bool has_sign = sign == '+' || sign == '-';
    const char* const digits = has_sign ? begin + 1 : begin;
    const char* next = sbd_skip_digits(digits);
    if (*next == '.') {
      const bool has_digits_before = next != digits;
      const char* const decimals = ++next;
      next = sbd_skip_digits(next);
      code = SBD_TOK_FLOAT;
      return has_digits_before || next != decimals ? next : nullptr;
    }
    if (next == digits) return nullptr;
    code = sign == '-' ? SBD_TOK_FLOAT : SBD_TOK_UDECIMAL;
    if (digits[0] != '0') return next;
    // A zero with a sign must be the whole number.
    if (has_sign) return next == digits + 1 ? next : nullptr;
    return skip_prefixed_number(begin, next, code);
  }

  // A number that begins with "0"; `end` is behind its decimal digits.
  static const char* skip_prefixed_number(const char* begin, const char* end, int& code) {
    const char* next = begin + 1;
    if (end == next && (*next == 'x' || *next == 'X')) {
      const char* const digits = ++next;
      next = sbd_skip_hex_digits(next);
      code = SBD_TOK_HEXAL;
      return next == digits ? nullptr : next;
    }
    if (end == next && (*next == 'b' || *next == 'B')) {
      const char* const digits = ++next;
      while (*next == '0' || *next == '1') ++next;
      code = SBD_TOK_BINARY;
      return next == digits ? nullptr : next;
    }
    if (end == next) return next;
    for (; next != end; ++next) {
      if (*next > '7') return nullptr;
    }
    code = SBD_TOK_OCTAL;
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
        value = m_store.make<SBD_PARA_VALUE>();
        value->type = SBD_PARA_VALUE::VT_LIST;
        value->m_position = m_store.position_of(open.begin);
        value->m_length = static_cast<std::uint32_t>(next - open.begin);
        value->list = m_store.make_list(elements.end() - count, count);
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

  const char* const m_end;
  SBD_STORE& m_store;
  SBD_READING_STATE& m_state;
  SBD_PARSER_PARA& m_para;
  std::uint32_t m_line = 1;
  bool m_is_tail = false;  // A "#" would be a tail comment: ";" or "}" came on this line.
  bool m_is_unit = false;  // The scanner still waits for the last number's unit.
  const char* m_line_begin;
  const char* m_next_mark;  // The first place whose line the source has not marked.
  MEMBER_LIST m_members;
  SBD_SCRATCH<OPEN_BLOCK, 16> m_open_blocks;
};

// Lends the store what the builders need.
class READING {
 public:
  READING(SBD_STORE& store, SBD_READING_STATE& state) : m_store(store) { m_store.lend(&state); }
  ~READING() { m_store.lend(nullptr); }
  READING(const READING&) = delete;
  READING& operator=(const READING&) = delete;

 private:
  SBD_STORE& m_store;
};

// How much memory the records of a text are going to take, as its beginning has it: rather too
// little, since the pool grows in small steps.
std::size_t estimate_records(std::string_view text) {
  constexpr std::size_t k_longest_sample = 255 * k_run_step;
  constexpr std::size_t k_per_statement = 133;
  constexpr std::size_t k_per_brace = 125;  // Of a block; a list has the memory of its elements.
  constexpr std::size_t k_per_comma = 33;
  const std::size_t sample =
      std::min((text.size() + k_run_step - 1) / k_run_step * k_run_step, k_longest_sample);
  if (sample == 0) return 0;
  const SBD_MARK_COUNTS counts = sbd_count_marks(text.data(), sample);
  const std::size_t bytes = counts.semicolons * k_per_statement + counts.braces * k_per_brace +
                            counts.commas * k_per_comma;
  const double share = static_cast<double>(text.size()) / static_cast<double>(sample);
  return static_cast<std::size_t>(static_cast<double>(bytes) * share);
}

}  // namespace

bool sbd_parse_faultless(std::string_view text, SBD_STORE& store, SBD_PARSER_PARA& para) {
  store.pool.reserve(estimate_records(text));
  SBD_READING_STATE state;
  const READING reading(store, state);
  return FAULTLESS_PARSER(text, store, state, para).parse();
}
