#include "tools/edit_script.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr std::size_t k_widest_word = 100;

bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

std::string quote(std::string_view word) {
  return fmt::format("'{}'", make_visible(word, k_widest_word));
}

// Takes a word off the front of the line, which does not begin with a blank.
bool take_word(std::string_view& line, std::string& word, std::string& fault) {
  std::size_t depth = 0;
  bool is_quoted = false;
  std::size_t length = 0;
  for (; length < line.size(); ++length) {
    const char c = line[length];
    if (c == '"') is_quoted = !is_quoted;
    if (is_quoted) continue;
    if (depth == 0 && is_blank(c)) break;
    if (c == '{') ++depth;
    if (c == '}' && depth > 0) --depth;
  }
  word = line.substr(0, length);
  line.remove_prefix(length);
  if (is_quoted) fault = fmt::format("the quotes of {} stay open", quote(word));
  if (!is_quoted && depth > 0) fault = fmt::format("the braces of {} stay open", quote(word));
  return fault.empty();
}

// The words of one line, from which an edit is made.
class LINE_READER {
 public:
  LINE_READER(std::vector<std::string> words, EDIT& edit)
      : m_words(std::move(words)), m_edit(edit) {}

  // Returns what is wrong; empty when nothing is.
  std::string read() {
    const std::string command = take_name();
    if (command == "set") {
      read_set();
    } else if (command == "unset") {
      read_unset();
    } else if (command == "ref") {
      read_references();
    } else if (command == "attr") {
      read_attributes();
    } else if (command == "block") {
      read_block();
    } else if (command == "rename") {
      read_rename();
    } else {
      fail(fmt::format("{} is no edit: set, unset, ref, attr, block add, block remove or rename",
                       quote(command)));
    }
    if (m_at < m_words.size()) fail(fmt::format("{} is too much", quote(m_words[m_at])));
    return m_fault;
  }

 private:
  // The first fault is told.
  void fail(const std::string& fault) {
    if (m_fault.empty()) m_fault = fault;
    m_at = m_words.size();
  }

  bool has_more() const { return m_at < m_words.size(); }

  std::string take_name(std::string_view what = "an edit") {
    if (!has_more()) {
      fail(fmt::format("{} is missing", what));
      return {};
    }
    return m_words[m_at++];
  }

  bool take_option(std::string_view option) {
    if (!has_more() || m_words[m_at] != option) return false;
    ++m_at;
    return true;
  }

  // What is not an option, until one comes.
  std::vector<std::string> take_operands() {
    std::vector<std::string> operands;
    while (has_more() && m_words[m_at].rfind("--", 0) != 0) operands.push_back(m_words[m_at++]);
    return operands;
  }

  bool take_place() {
    if (take_option("--after")) {
      m_edit.place = SBD_PLACE::BEHIND;
    } else if (take_option("--before")) {
      m_edit.place = SBD_PLACE::BEFORE;
    } else {
      return false;
    }
    m_edit.sibling = take_name("the name of a sibling");
    return true;
  }

  void read_set() {
    m_edit.kind = EDIT::KIND::SET;
    m_edit.name = take_name("the name of a parameter");
    m_edit.value = take_name("a value");
    take_place();
  }

  void read_unset() {
    m_edit.kind = EDIT::KIND::UNSET;
    m_edit.name = take_name("the name of a parameter");
    m_edit.with_references = take_option("--with-references");
  }

  void read_references() {
    if (take_option("--remove")) {
      m_edit.kind = EDIT::KIND::REMOVE_REFERENCES;
      m_edit.name = take_name("the name of what is referred to");
      return;
    }
    m_edit.kind = EDIT::KIND::SET_REFERENCES;
    m_edit.name = take_name("the name of a reference statement");
    m_edit.targets = take_operands();
    if (m_edit.targets.empty()) fail("a target is missing");
    take_place();
  }

  void read_attributes() {
    m_edit.kind = EDIT::KIND::SET_ATTRIBUTES;
    m_edit.name = take_name("the name of a parameter");
    if (take_option("--clear")) return;
    for (const std::string& operand : take_operands()) {
      m_edit.attributes.push_back(split_pair(operand));
    }
    if (m_edit.attributes.empty()) fail("an attribute or --clear is missing");
  }

  void read_block() {
    const std::string action = take_name("\"add\" or \"remove\"");
    if (action == "remove") {
      m_edit.kind = EDIT::KIND::REMOVE_BLOCK;
      m_edit.name = take_name("the name of a block");
      m_edit.with_references = take_option("--with-references");
      return;
    }
    if (action != "add") fail(fmt::format("{} is neither \"add\" nor \"remove\"", quote(action)));
    m_edit.kind = EDIT::KIND::ADD_BLOCK;
    m_edit.value = take_name("the type of a block");
    m_edit.name = take_name("the name of a block");
    while (take_place() || take_member()) continue;
  }

  bool take_member() {
    if (!take_option("--set")) return false;
    m_edit.members.push_back(split_pair(take_name("a parameter with its value")));
    if (!m_edit.members.back().value) {
      fail(fmt::format("{} has no value", quote(m_edit.members.back().key)));
    }
    return true;
  }

  void read_rename() {
    m_edit.kind = EDIT::KIND::RENAME;
    m_edit.name = take_name("a name");
    m_edit.value = take_name("a new name");
    m_edit.with_references = !take_option("--no-references");
  }

  std::vector<std::string> m_words;
  EDIT& m_edit;
  std::size_t m_at = 0;
  std::string m_fault;
};

}  // namespace

bool split_words(std::string_view line, std::vector<std::string>& words, std::string& fault) {
  words.clear();
  fault.clear();
  // To the library, a name or a value ends there.
  if (line.find('\0') != std::string_view::npos) {
    fault = "a NUL byte can't be part of an edit";
    return false;
  }
  for (;;) {
    while (!line.empty() && is_blank(line.front())) line.remove_prefix(1);
    if (line.empty() || line.front() == '#') return true;
    std::string word;
    if (!take_word(line, word, fault)) return false;
    words.push_back(std::move(word));
  }
}

bool read_edit_script(std::string_view script, const std::string& name, std::vector<EDIT>& edits,
                      std::string& fault) {
  std::vector<std::string> words;
  for (std::size_t number = 1; !script.empty(); ++number) {
    const std::size_t length = std::min(script.find('\n'), script.size());
    const bool is_split = split_words(script.substr(0, length), words, fault);
    script.remove_prefix(std::min(length + 1, script.size()));
    const std::string origin = fmt::format("{}:{}", name, number);
    if (is_split && words.empty()) continue;
    if (is_split) {
      EDIT edit;
      edit.origin = origin;
      fault = LINE_READER(std::move(words), edit).read();
      edits.push_back(std::move(edit));
    }
    if (fault.empty()) continue;
    fault = fmt::format("{}: {}", make_visible(origin), fault);
    return false;
  }
  return true;
}

}  // namespace sbd_tool
