#include "tests/reference/text_generator.h"

#include <algorithm>
#include <cctype>
#include <random>
#include <set>
#include <utility>

namespace {

// The standard distributions differ between libraries; these draws do not.
class RANDOM {
 public:
  explicit RANDOM(std::uint64_t seed) : m_engine(seed) {}

  // Below `limit`, which is not 0.
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(m_engine() % limit); }
  // From `low` to `high`.
  std::size_t between(std::size_t low, std::size_t high) { return low + below(high - low + 1); }
  bool chance(std::size_t percent) { return below(100) < percent; }
  char pick(std::string_view characters) { return characters[below(characters.size())]; }
  template <class LIST>
  const auto& pick_of(const LIST& list) {
    return list[below(list.size())];
  }

 private:
  std::mt19937_64 m_engine;
};

constexpr std::string_view k_letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
constexpr std::string_view k_word =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789";
constexpr std::string_view k_digits = "0123456789";

std::string lower_case(std::string_view text) {
  std::string lower(text);
  for (char& character : lower) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return lower;
}

std::string random_case(RANDOM& random, std::string_view text) {
  std::string mixed(text);
  for (char& character : mixed) {
    if (!random.chance(30)) continue;
    const auto code = static_cast<unsigned char>(character);
    character = static_cast<char>(std::islower(code) ? std::toupper(code) : std::tolower(code));
  }
  return mixed;
}

bool is_boolean_word(std::string_view word) {
  return word == "true" || word == "TRUE" || word == "True" || word == "false" || word == "FALSE" ||
         word == "False";
}

std::string random_identifier(RANDOM& random) {
  // Words that look like something else in another place.
  static const std::vector<std::string> k_special = {
      "device", "module", "bus", "K",  "KB",    "MHz",    "tRue",       "FALSe", "_",  "e5",
      "x0",     "b1",     "M",   "Hz", "true_", "falsey", "parameters", "G1",    "_0", "clk"};
  if (random.chance(12)) return random.pick_of(k_special);
  std::string word(1, random.pick(k_letters));
  const std::size_t length = random.chance(2) ? random.between(100, 400) : random.below(9);
  for (std::size_t i = 0; i < length; ++i) word += random.pick(k_word);
  if (is_boolean_word(word)) word += '_';
  return word;
}

std::string random_indices(RANDOM& random, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += '[';
    text += random.pick(k_digits);
    text += ']';
  }
  return text;
}

std::string random_declared_name(RANDOM& random) {
  std::string name = random_identifier(random);
  if (random.chance(25)) name += random_indices(random, random.between(1, 3));
  return name;
}

std::string random_qualified_name(RANDOM& random) {
  static const std::vector<std::string> k_special = {
      ".",     "..",   ".5",     ".[3]",      "a..b",   "x.",      "a[1].b[2][3]",
      ".5K",   "_.",   "a.[0]",  "true.x",    ".true",  "a[1]b.c", "p.0x5",
      "d.5.6", "...x", "e.e[9]", "a[0][1]._", "r[1].2", ".K"};
  if (random.chance(30)) return random.pick_of(k_special);
  std::string name;
  if (random.chance(70)) name += random_declared_name(random);
  const std::size_t parts = random.between(1, 4);
  for (std::size_t i = 0; i < parts; ++i) {
    name += '.';
    name += random_declared_name(random);
  }
  return name;
}

std::string random_digits(RANDOM& random, std::size_t length, std::string_view digits) {
  std::string text;
  for (std::size_t i = 0; i < length; ++i) text += random.pick(digits);
  return text;
}

// Mostly short, sometimes around the limits of 32 and 64 bits, rarely beyond all limits.
std::size_t number_length(RANDOM& random) {
  if (random.chance(70)) return random.between(1, 5);
  if (random.chance(90)) return random.between(6, 24);
  return random.between(25, 400);
}

// Draws stand in statements of their own here and below: the operands of one expression may be
// evaluated in any order.
std::string random_decimal(RANDOM& random) {
  static const std::vector<std::string> k_limits = {"0",
                                                    "1",
                                                    "2147483647",
                                                    "2147483648",
                                                    "4294967295",
                                                    "4294967296",
                                                    "4294967297",
                                                    "9223372036854775807",
                                                    "9223372036854775808",
                                                    "18446744073709551616"};
  if (random.chance(25)) return random.pick_of(k_limits);
  std::string text(1, random.pick("123456789"));
  const std::size_t length = number_length(random) - 1;
  text += random_digits(random, length, k_digits);
  return text;
}

std::string random_float(RANDOM& random) {
  if (random.chance(25)) return "-" + random_decimal(random);
  std::string text;
  if (random.chance(40)) text += random.pick("+-");
  const std::size_t form = random.below(3);
  // A fraction without a sign and without digits before the point would be a qualified name.
  if (form == 1 && text.empty()) text += '+';
  if (form != 1) {
    const std::size_t length = number_length(random);
    text += random_digits(random, length, k_digits);
  }
  text += '.';
  if (form != 0) {
    const std::size_t length = number_length(random);
    text += random_digits(random, length, k_digits);
  }
  return text;
}

std::string random_number(RANDOM& random) {
  std::string text;
  std::size_t length = number_length(random);
  std::string_view digits;
  switch (random.below(5)) {
    case 0:
      if (random.chance(20)) text += '+';
      text += random_decimal(random);
      return text;
    case 1:
      text += '0';
      digits = "01234567";
      break;
    case 2:
      text += '0';
      text += random.pick("xX");
      digits = "0123456789abcdefABCDEF";
      break;
    case 3:
      text += '0';
      text += random.pick("bB");
      digits = "01";
      length *= 3;
      break;
    default:
      return random_float(random);
  }
  text += random_digits(random, length, digits);
  return text;
}

std::string random_unit(RANDOM& random) {
  static const std::vector<std::string> k_units = {"K",   "KB",  "M",   "MB", "G",   "GB",
                                                   "Hz",  "hz",  "HZ",  "hZ", "MHz", "MHZ",
                                                   "mhz", "mHz", "Mhz", "mHZ"};
  return random.pick_of(k_units);
}

std::string random_comment_body(RANDOM& random) {
  static const std::vector<std::string> k_bodies = {"",          " a comment",    "##",
                                                    " \"quoted", " x = 5;",       " { } < >",
                                                    "\t",        " \xc3\xa4\xff", " \\n %s %d"};
  if (random.chance(60)) return random.pick_of(k_bodies);
  std::string body;
  const std::size_t length = random.below(30);
  for (std::size_t i = 0; i < length; ++i) {
    const char character = static_cast<char>(random.between(1, 255));
    if (character != '\n') body += character;
  }
  return body;
}

std::string random_string(RANDOM& random, bool with_nul) {
  static const std::vector<std::string> k_bodies = {
      "",           "a b", "two\nlines", "\r\n\r\n", "# no comment",
      "x = 5; }",   "\\",  "\n\n\n",     "\xff\xfe", "%d %s",
      "device d {", "/",   "'",          "{1, 2}"};
  std::string body;
  if (random.chance(60)) {
    body = random.pick_of(k_bodies);
  } else {
    const std::size_t length = random.below(40);
    for (std::size_t i = 0; i < length; ++i) {
      const char character = static_cast<char>(random.between(with_nul ? 0 : 1, 255));
      if (character != '"') body += character;
    }
  }
  return '"' + body + '"';
}

// Puts tokens together. It follows the scanner's conditions just so far that what it writes is
// scanned as the tokens it was given, with as few or as many blanks as the layout asks for.
class EMITTER {
 public:
  enum LAYOUT { PRETTY, TIGHT, ONE_LINE, ODD };

  explicit EMITTER(RANDOM& random) : m_random(random) {
    m_layout = static_cast<LAYOUT>(random.below(4));
    m_line_end = random.chance(30) ? "\r\n" : "\n";
  }

  // An identifier, name, Boolean word or string.
  void word(std::string_view text) {
    gap();
    if (m_is_glued || m_is_unit) blank();
    m_text += text;
    m_is_glued = true;
  }

  void number(std::string_view text, std::string_view unit) {
    gap();
    if (m_is_glued || m_is_unit) blank();
    m_text += text;
    m_is_unit = true;
    if (!unit.empty()) {
      m_text += unit;
      m_is_unit = false;
    }
    m_is_glued = true;
    m_is_tail = false;
  }

  void punctuation(char character) {
    gap();
    m_text += character;
    m_is_glued = false;
    if (character == ';' || character == '}') {
      m_is_tail = true;
      m_is_unit = false;
    } else if (character == ',') {
      m_is_unit = false;
    }
  }

  void comment_line(const std::string& body) {
    gap();
    if (m_is_tail || m_is_unit || m_random.chance(70)) line_end();
    if (m_random.chance(30)) blank();
    comment(body);
  }

  void comment_tail(const std::string& body) {
    if (m_layout != TIGHT && m_random.chance(70)) blank();
    comment(body);
  }

  // Where a new line begins in a file that people read.
  void new_line(std::size_t depth) {
    if (m_layout != PRETTY) return;
    line_end();
    for (std::size_t i = 0; i < std::min<std::size_t>(depth, 20); ++i) m_text += "  ";
  }

  void end_of_text() {
    if (m_random.chance(70)) line_end();
  }

  std::string take() { return std::move(m_text); }

 private:
  void comment(const std::string& body) {
    m_text += '#';
    m_text += body;
    // A comment ends with a newline in every layout.
    m_text += m_line_end;
    forget();
  }

  void line_end() {
    m_text += m_line_end;
    forget();
  }

  void blank() {
    m_text += m_random.chance(80) ? ' ' : m_random.pick(" \t\r");
    m_is_glued = false;
    m_is_unit = false;
  }

  void forget() {
    m_is_glued = false;
    m_is_unit = false;
    m_is_tail = false;
  }

  void gap() {
    switch (m_layout) {
      case PRETTY:
        if (m_random.chance(60)) blank();
        break;
      case TIGHT:
        break;
      case ONE_LINE:
        if (m_random.chance(30)) blank();
        break;
      case ODD:
        for (std::size_t count = m_random.below(4); count > 0; --count) {
          if (m_random.chance(30)) {
            line_end();
          } else {
            blank();
          }
        }
        break;
    }
  }

  RANDOM& m_random;
  LAYOUT m_layout;
  std::string_view m_line_end;
  std::string m_text;
  bool m_is_glued = false;  // A word that would follow directly would run into the last one.
  bool m_is_unit = false;   // The scanner is behind a number.
  bool m_is_tail = false;   // A "#" would be a trailing comment.
};

// The document to be written, so that references can name what comes later.
struct PLAN {
  enum KIND { BLOCK, STATEMENT, COMMENT };
  KIND kind = COMMENT;
  std::string type;
  std::string name;
  std::size_t parent = 0;
  std::size_t depth = 0;
  std::vector<std::size_t> members;
  std::set<std::string> used_names;
};

class DESCRIPTOR_MAKER {
 public:
  DESCRIPTOR_MAKER(std::uint64_t seed, VALIDITY validity, std::size_t max_depth)
      : m_random(seed),
        m_emitter(m_random),
        m_is_semantic(validity == VALIDITY::SEMANTICS),
        m_max_depth(max_depth),
        m_is_deep(m_random.chance(15)),
        m_plans(1) {
    m_plans[0].kind = PLAN::BLOCK;  // Stands for the top level.
  }

  std::string make(std::size_t node_count) {
    std::vector<std::size_t> blocks = {0};
    std::size_t deepest = 0;
    while (m_plans.size() <= node_count) {
      // A deep document keeps on nesting; others spread over all blocks made so far.
      std::size_t parent = m_random.pick_of(blocks);
      if (m_is_deep && m_random.chance(80)) parent = deepest;
      const std::size_t node = add_node(parent, PLAN::BLOCK);
      if (m_plans[node].kind != PLAN::BLOCK) continue;
      blocks.push_back(node);
      if (m_plans[node].depth > m_plans[deepest].depth) deepest = node;
    }
    // A block needs a member.
    for (const std::size_t block : blocks) {
      if (block != 0 && m_plans[block].members.empty()) add_node(block, PLAN::STATEMENT);
    }
    emit();
    return m_emitter.take();
  }

 private:
  // `wanted` says whether a block may be added or only something without members.
  std::size_t add_node(std::size_t parent, PLAN::KIND wanted) {
    PLAN plan;
    plan.parent = parent;
    plan.depth = m_plans[parent].depth + 1;
    const bool may_nest = wanted == PLAN::BLOCK && plan.depth <= m_max_depth;
    const std::size_t draw = m_random.below(100);
    if (may_nest && draw < (m_is_deep ? 50u : parent == 0 ? 70u : 25u)) {
      plan.kind = PLAN::BLOCK;
      plan.type = make_type(parent == 0);
    } else if (parent != 0 && draw < 90) {
      plan.kind = PLAN::STATEMENT;
    }
    if (plan.kind != PLAN::COMMENT) plan.name = make_name(m_plans[parent]);
    const std::size_t index = m_plans.size();
    m_plans[parent].members.push_back(index);
    m_plans.push_back(std::move(plan));
    return index;
  }

  std::string make_type(bool is_top_level) {
    static const std::vector<std::string> k_nested = {"bus",    "module", "slave",
                                                      "master", "region", "parameters"};
    if (!m_is_semantic && m_random.chance(30)) return random_identifier(m_random);
    if (m_is_semantic ? is_top_level : m_random.chance(30)) return random_case(m_random, "device");
    return random_case(m_random, m_random.pick_of(k_nested));
  }

  std::string make_name(PLAN& scope) {
    std::string name = random_declared_name(m_random);
    if (!m_is_semantic) {
      return m_names.empty() || m_random.chance(80) ? m_names.emplace_back(name)
                                                    : m_random.pick_of(m_names);
    }
    while (!scope.used_names.insert(lower_case(name)).second) {
      name = random_identifier(m_random);
      name += std::to_string(m_random.below(100000));
    }
    return name;
  }

  void emit() {
    // Blocks that are being written, with the member that comes next.
    std::vector<std::pair<std::size_t, std::size_t>> open = {{0, 0}};
    while (!open.empty()) {
      const std::size_t block = open.back().first;
      if (open.back().second == m_plans[block].members.size()) {
        open.pop_back();
        if (block == 0) break;
        m_emitter.new_line(open.size() - 1);
        m_emitter.punctuation('}');
        continue;
      }
      const std::size_t node = m_plans[block].members[open.back().second++];
      if (node != 1) m_emitter.new_line(open.size() - 1);
      switch (m_plans[node].kind) {
        case PLAN::BLOCK:
          m_emitter.word(m_plans[node].type);
          m_emitter.word(m_plans[node].name);
          m_emitter.punctuation('{');
          open.emplace_back(node, 0);
          break;
        case PLAN::STATEMENT:
          emit_statement(node);
          break;
        case PLAN::COMMENT:
          m_emitter.comment_line(random_comment_body(m_random));
          break;
      }
    }
    m_emitter.end_of_text();
  }

  void emit_statement(std::size_t node) {
    m_emitter.word(m_plans[node].name);
    if (m_random.chance(25)) {
      m_emitter.punctuation('<');
      const std::size_t count = m_random.chance(50) ? 1 : m_random.between(2, 6);
      for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) m_emitter.punctuation(',');
        m_emitter.word(make_target(node));
      }
      m_emitter.punctuation('>');
    } else {
      m_emitter.punctuation('=');
      emit_value(0);
      if (m_random.chance(20)) emit_attributes();
    }
    m_emitter.punctuation(';');
    if (m_random.chance(15)) m_emitter.comment_tail(random_comment_body(m_random));
  }

  void emit_value(std::size_t depth) {
    static const std::vector<std::string> k_booleans = {"true",  "TRUE",  "True",
                                                        "false", "FALSE", "False"};
    const std::size_t draw = m_random.below(100);
    if (draw < 50) {
      const std::string number = random_number(m_random);
      m_emitter.number(number, m_random.chance(40) ? random_unit(m_random) : "");
    } else if (draw < 60) {
      m_emitter.word(m_random.pick_of(k_booleans));
    } else if (draw < 72) {
      m_emitter.word(random_string(m_random, !m_is_semantic));
    } else if (draw < 84 || depth > 6) {
      m_emitter.word(random_identifier(m_random));
    } else {
      m_emitter.punctuation('{');
      const std::size_t count = m_random.between(2, depth == 0 && m_random.chance(10) ? 40 : 4);
      for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) m_emitter.punctuation(',');
        emit_value(depth + 1);
      }
      m_emitter.punctuation('}');
    }
  }

  void emit_attributes() {
    m_emitter.punctuation('[');
    const std::size_t count = m_random.between(1, 3);
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) m_emitter.punctuation(',');
      m_emitter.word(random_identifier(m_random));
      if (m_random.chance(50)) m_emitter.word(random_qualified_name(m_random));
    }
    m_emitter.punctuation(']');
  }

  std::string make_target(std::size_t statement) {
    if (!m_is_semantic) {
      return m_random.chance(40) ? random_identifier(m_random) : random_qualified_name(m_random);
    }
    const std::size_t scope = m_plans[statement].parent;
    if (m_random.chance(40)) {
      // Relative to the enclosing block: down from it, at least one step.
      std::string name;
      std::size_t node = scope;
      do {
        node = pick_member(node);
        name += '.';
        name += random_case(m_random, m_plans[node].name);
      } while (has_named_member(node) && m_random.chance(40));
      return name;
    }
    // From the top level: up from any node.
    std::size_t node = 0;
    while (m_plans[node].name.empty()) node = m_random.between(1, m_plans.size() - 1);
    // Only a dot makes a name with an index a target.
    while (m_plans[node].parent == 0 && m_plans[node].name.back() == ']') node = statement;
    std::string name = random_case(m_random, m_plans[node].name);
    for (std::size_t up = m_plans[node].parent; up != 0; up = m_plans[up].parent) {
      name = random_case(m_random, m_plans[up].name) + "." + name;
    }
    // Another letter case must not turn the name of a device into a Boolean word.
    return is_boolean_word(name) ? m_plans[node].name : name;
  }

  bool has_named_member(std::size_t block) const {
    for (const std::size_t member : m_plans[block].members) {
      if (!m_plans[member].name.empty()) return true;
    }
    return false;
  }

  std::size_t pick_member(std::size_t block) {
    std::size_t member = 0;
    do {
      member = m_random.pick_of(m_plans[block].members);
    } while (m_plans[member].name.empty());
    return member;
  }

  RANDOM m_random;
  EMITTER m_emitter;
  bool m_is_semantic;
  std::size_t m_max_depth;
  bool m_is_deep;
  std::vector<PLAN> m_plans;
  std::vector<std::string> m_names;
};

// A rough division into tokens and the blanks between them, for changes that move whole tokens.
std::vector<std::string> split_text(std::string_view text) {
  std::vector<std::string> pieces;
  std::size_t position = 0;
  while (position < text.size()) {
    const char first = text[position];
    std::size_t end = position + 1;
    if (k_word.find(first) != std::string_view::npos || first == '.') {
      while (end < text.size() &&
             (k_word.find(text[end]) != std::string_view::npos || text[end] == '.')) {
        ++end;
      }
    } else if (first == '"') {
      const std::size_t close = text.find('"', end);
      if (close != std::string_view::npos) end = close + 1;
    } else if (first == '#') {
      const std::size_t close = text.find('\n', end);
      if (close != std::string_view::npos) end = close + 1;
    }
    pieces.emplace_back(text.substr(position, end - position));
    position = end;
  }
  return pieces;
}

std::string join_pieces(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece : pieces) text += piece;
  return text;
}

std::string random_bytes(RANDOM& random) {
  static const std::vector<std::string> k_bytes = {std::string(1, '\0'),
                                                   "\xff",
                                                   "\x80",
                                                   "#",
                                                   "\"",
                                                   "\n",
                                                   "\r",
                                                   ";",
                                                   "}",
                                                   "{",
                                                   "@",
                                                   "'",
                                                   "\\",
                                                   "-",
                                                   "+",
                                                   ".",
                                                   "[",
                                                   "]",
                                                   ",",
                                                   "=",
                                                   "<",
                                                   ">",
                                                   "K",
                                                   "0",
                                                   " ",
                                                   "\t",
                                                   std::string("\0\0", 2)};
  if (random.chance(80)) return random.pick_of(k_bytes);
  std::string bytes;
  for (std::size_t count = random.between(1, 6); count > 0; --count) {
    bytes += static_cast<char>(random.between(0, 255));
  }
  return bytes;
}

void mutate_characters(RANDOM& random, std::string& text) {
  const std::size_t position = random.below(text.size());
  const std::size_t length = random.between(1, std::min<std::size_t>(4, text.size() - position));
  switch (random.below(5)) {
    case 0:
      text.erase(position, length);
      break;
    case 1:
      text.insert(position, random_bytes(random));
      break;
    case 2:
      text.replace(position, 1, random_bytes(random));
      break;
    case 3:
      text.insert(position, text.substr(position, length));
      break;
    default:
      std::swap(text[position], text[random.below(text.size())]);
      break;
  }
}

void mutate_tokens(RANDOM& random, std::string& text) {
  std::vector<std::string> pieces = split_text(text);
  const auto at = [&pieces](std::size_t index) {
    return pieces.begin() + static_cast<std::ptrdiff_t>(index);
  };
  const std::size_t index = random.below(pieces.size());
  switch (random.below(5)) {
    case 0:
      pieces.erase(at(index), at(random.between(index + 1, std::min(index + 3, pieces.size()))));
      break;
    case 1:
      pieces.insert(at(index), random.pick_of(full_vocabulary()));
      break;
    case 2:
      pieces[index] = random.pick_of(full_vocabulary());
      break;
    case 3: {
      const std::string piece = pieces[index];
      pieces.insert(at(random.below(pieces.size())), piece);
      break;
    }
    default:
      std::swap(pieces[index], pieces[random.below(pieces.size())]);
      break;
  }
  text = join_pieces(pieces);
}

}  // namespace

std::string generate_descriptor(std::uint64_t seed, std::size_t node_count, VALIDITY validity,
                                std::size_t max_depth) {
  return DESCRIPTOR_MAKER(seed, validity, max_depth).make(node_count);
}

std::string mutate_text(std::string_view text, std::string_view other, std::uint64_t seed) {
  RANDOM random(seed);
  std::string changed(text);
  for (std::size_t count = random.between(1, 4); count > 0; --count) {
    if (changed.empty()) changed = random_bytes(random);
    const std::size_t draw = random.below(100);
    if (draw < 45) {
      mutate_characters(random, changed);
    } else if (draw < 88) {
      mutate_tokens(random, changed);
    } else if (draw < 92) {
      changed.resize(random.below(changed.size() + 1));
    } else if (draw < 94) {
      changed.erase(0, random.below(changed.size() + 1));
    } else {
      const std::size_t from = random.below(other.size() + 1);
      const std::string_view piece = other.substr(from, random.below(200));
      changed.insert(random.below(changed.size() + 1), piece);
    }
  }
  return changed;
}

std::string generate_token_soup(std::uint64_t seed, std::size_t length) {
  RANDOM random(seed);
  // How likely a blank is decides whether tokens run into each other.
  const std::size_t blanks = random.below(101);
  std::string text;
  for (std::size_t i = 0; i < length; ++i) {
    switch (random.below(8)) {
      case 0:
        text += random_number(random);
        if (random.chance(50)) text += random_unit(random);
        break;
      case 1:
        text += random_declared_name(random);
        break;
      case 2:
        text += random_qualified_name(random);
        break;
      case 3:
        text += random.chance(50) ? random_bytes(random) : random_string(random, true);
        break;
      default:
        text += random.pick_of(full_vocabulary());
        break;
    }
    if (random.chance(blanks)) text += random.pick(" \n\t\r  ");
  }
  return text;
}

const std::vector<std::string>& full_vocabulary() {
  static const std::vector<std::string> k_texts = {
      "a",    "true", "r[0]", "p.q", "5", "-1.5", "017", "0x1F", "0b10", "5K", "7mhz", "\"s\n\"",
      "#c\n", "\n",   "{",    "}",   "=", ";",    "[",   "]",    "<",    ">",  ",",    "@"};
  return k_texts;
}

const std::vector<std::string>& small_vocabulary() {
  static const std::vector<std::string> k_texts = {"a",  "r[0]", "p.q", "5K", "\"s\"", "#c\n",
                                                   "\n", "{",    "}",   "=",  ";",     "[",
                                                   "]",  "<",    ">",   ",",  "5"};
  return k_texts;
}

bool for_each_sequence(const std::vector<std::string>& vocabulary, std::size_t length,
                       std::string_view glue, std::size_t stride,
                       const std::function<bool(const std::string&)>& visit) {
  std::vector<std::size_t> digits(length, 0);
  std::string text;
  while (true) {
    text.clear();
    for (std::size_t i = 0; i < length; ++i) {
      if (i > 0) text += glue;
      text += vocabulary[digits[i]];
    }
    if (!visit(text)) return false;
    // Count on by `stride`, the last text being the lowest digit.
    std::size_t carry = stride;
    for (std::size_t i = length; i > 0 && carry > 0; --i) {
      carry += digits[i - 1];
      digits[i - 1] = carry % vocabulary.size();
      carry /= vocabulary.size();
    }
    if (carry > 0) return true;
  }
}
