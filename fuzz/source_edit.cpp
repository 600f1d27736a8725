// Edits that keep the text: bytes outside the range that an edit is about stay, and the text means
// what the tree holds.
#include <algorithm>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "tests/reference/document_dump.h"

namespace {

constexpr std::size_t k_most_edits = 8;
constexpr std::size_t k_longest_value = 40;
constexpr std::size_t k_longest_name = 12;
constexpr std::string_view k_blanks = " \t\r";
constexpr std::string_view k_space = " \t\r\n";

constexpr const char* k_values[] = {
    "1",    "0x1FK", "0X1fMHz", "077",   "0b11K",        "-2.50", "7.",  "true",
    "word", "\"\"",  "+3Hz",    "{1,2}", "\"a ; }\n#\"", "1 2",   "{1}", "{ a,{1K , -3},\"x\" }",
    "",     "False", "1;",      "1 #c"};
constexpr const char* k_new_names[] = {"n",  "n1",  "N1", "n[0]", "n[1][2]", "n[12]",
                                       "1n", "a b", "",   "x",    "main",    "true"};
constexpr const char* k_types[] = {"device", "bus",    "MODULE",     "slave",
                                   "master", "region", "Parameters", "thing"};
constexpr const char* k_attribute_values[] = {"a.b", ".b", "board.title", "a.b[1]"};

// How much two texts have in common at their begin and behind.
std::size_t common_begin(std::string_view a, std::string_view b) {
  const auto ends = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  return static_cast<std::size_t>(ends.first - a.begin());
}

std::size_t common_end(std::string_view a, std::string_view b) {
  const auto ends = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend());
  return static_cast<std::size_t>(ends.first - a.rbegin());
}

class EDITING {
 public:
  EDITING(FUZZ_RUN& run, FUZZ_BYTES& bytes, SBD_SOURCE_DOCUMENT& source)
      : m_run(run), m_bytes(bytes), m_source(source) {}

  void edit() {
    m_before = m_source.text();
    if (!read_text(m_plain, m_before)) fuzz_fail("the text can be read", __LINE__, m_before);
    m_objects = objects_of(m_plain);
    m_touched = TOUCHED::ANYTHING;
    FUZZ_EXPECT(m_source.begin(), m_before);
    const bool is_done = perform();
    FUZZ_EXPECT(m_run.take_posted().size() <= 1, m_before);
    const std::string after(m_source.text());
    if (!is_done) {
      FUZZ_EXPECT(after == m_before, after);
      FUZZ_EXPECT(dump_shape(m_source.document()) == dump_shape(m_plain), after);
      FUZZ_EXPECT(m_source.commit(), after);
      return;
    }
    check_touched(after);
    settle(after);
  }

 private:
  enum class TOUCHED { ANYTHING, RANGE, INSERTION, REMOVAL };

  // A full name; now and then one that does not exist.
  std::string any_name() {
    const std::size_t choice = m_bytes.pick(m_objects.size() + 2);
    if (choice < m_objects.size()) return m_objects[choice].name;
    if (choice == m_objects.size()) return "none.such";
    return typed_name();
  }

  // As a caller hands it over.
  std::string typed_name() {
    const std::string name = m_bytes.text(k_longest_name);
    return name.substr(0, name.find('\0'));
  }

  std::string new_name() { return m_bytes.chance(8) ? typed_name() : m_bytes.pick_of(k_new_names); }

  // In this order whatever the compiler, so that an input always means the same.
  std::string new_member() {
    const std::string block = any_name();
    return block + "." + new_name();
  }

  std::string any_value() {
    return m_bytes.chance(4) ? m_bytes.text(k_longest_value) : m_bytes.pick_of(k_values);
  }

  // The object of that name, which may be spelled in other letters.
  const OBJECT* find(const std::string& name) const {
    const NODE* const node = m_plain.get_ref_object(name.c_str(), nullptr);
    for (const OBJECT& object : m_objects) {
      if (object.node == node) return &object;
    }
    return nullptr;
  }

  SBD_PLACE any_place() {
    const std::string name = any_name();
    m_sibling = name.substr(name.rfind('.') + 1);
    switch (m_bytes.pick(3)) {
      case 0:
        return {};
      case 1:
        return SBD_PLACE::before(m_sibling.c_str());
      default:
        return SBD_PLACE::behind(m_sibling.c_str());
    }
  }

  void touch(std::size_t begin, std::size_t end) {
    m_touched = TOUCHED::RANGE;
    m_begin = begin;
    m_end = end;
  }

  bool perform() {
    switch (m_bytes.pick(10)) {
      case 0:
      case 1:
        return set_value(any_name());
      case 2:
        return add_value(new_member());
      case 3:
        return set_references();
      case 4:
        return set_attributes(any_name());
      case 5:
        return remove(any_name());
      case 6:
        return add_block();
      case 7:
        return m_source.remove_references(any_name().c_str());
      case 8:
        return rename(any_name());
      default:
        return m_source.remove_attributes(any_name().c_str());
    }
  }

  bool set_value(const std::string& name) {
    const OBJECT* const object = find(name);
    RANGE range;
    if (object != nullptr && object->is_assignment() &&
        m_plain.get_range(object->node->statement->value, range)) {
      touch(range.offset, range.offset + range.length);
    }
    return m_source.set_value(name.c_str(), any_value().c_str());
  }

  bool add_value(const std::string& name) {
    m_touched = TOUCHED::INSERTION;
    const SBD_PLACE place = any_place();
    return m_source.add_value(name.c_str(), any_value().c_str(), place);
  }

  bool set_references() {
    const bool is_new = m_bytes.chance(2);
    const std::string name = is_new ? new_member() : any_name();
    const OBJECT* const object = find(name);
    if (object == nullptr) m_touched = TOUCHED::INSERTION;
    if (object != nullptr && object->is_reference()) {
      RANGE range;
      FUZZ_EXPECT(m_plain.get_range(object->node->statement->reference, range), name);
      const std::size_t begin = range.offset;
      for (const auto* one = object->node->statement->reference; one != nullptr; one = one->next) {
        m_plain.get_range(one, range);
      }
      touch(begin, range.offset + range.length);
    }
    SBD_STRING_LIST names;
    for (std::size_t count = m_bytes.pick(4); count != 0; --count) {
      names.emplace_back(any_name().c_str());
    }
    const SBD_PLACE place = any_place();
    return m_source.set_references(name.c_str(), names, place);
  }

  bool set_attributes(const std::string& name) {
    const OBJECT* const object = find(name);
    RANGE range;
    if (object != nullptr && object->is_assignment()) {
      FUZZ_EXPECT(m_plain.get_range(object->node->statement->value, range), name);
      const std::size_t begin = range.offset + range.length;
      FUZZ_EXPECT(m_plain.get_range(object->node, range), name);
      touch(begin, range.offset + range.length - 1);
    }
    SBD_FILE_PARSER::SBD_PARA_ATTR chain[3];
    const std::size_t count = m_bytes.pick(4);
    for (std::size_t i = 0; i != count; ++i) {
      chain[i].attr_key = const_cast<char*>("key");
      if (m_bytes.chance(2)) {
        chain[i].attr_value = const_cast<char*>(m_bytes.pick_of(k_attribute_values));
      }
      if (i != 0) chain[i - 1].next = &chain[i];
    }
    return m_source.set_attributes(name.c_str(), count == 0 ? nullptr : chain);
  }

  bool remove(const std::string& name) {
    const OBJECT* const object = find(name);
    RANGE range;
    if (object != nullptr) {
      FUZZ_EXPECT(m_plain.get_range(object->node, range), name);
      touch_lines(range.offset, range.offset + range.length);
    }
    if (object != nullptr && object->is_block()) return m_source.remove_block(name.c_str());
    return m_source.remove_parameter(name.c_str());
  }

  // What may go with a node: the comment behind it, and white space around.
  void touch_lines(std::size_t begin, std::size_t end) {
    const std::size_t size = m_before.size();
    while (begin != 0 && k_space.find(m_before[begin - 1]) != std::string_view::npos) --begin;
    end = std::min(m_before.find_first_not_of(k_blanks, end), size);
    if (end != size && m_before[end] == '#') end = std::min(m_before.find('\n', end), size);
    end = std::min(m_before.find_first_not_of(k_space, end), size);
    touch(begin, end);
    m_touched = TOUCHED::REMOVAL;
  }

  bool add_block() {
    m_touched = TOUCHED::INSERTION;
    const bool is_top = m_bytes.chance(4);
    const std::string parent = is_top ? "" : any_name();
    const std::string own = new_name();
    const SBD_PLACE place = any_place();
    if (!m_source.add_block(m_bytes.pick_of(k_types), own.c_str(), parent.c_str(), place)) {
      return false;
    }
    const std::string name = parent.empty() ? own : parent + "." + own;
    FUZZ_EXPECT(m_source.set_value((name + ".inner").c_str(), "0x2K"), name);
    return true;
  }

  bool rename(const std::string& name) {
    const bool with_references = m_bytes.chance(2);
    const OBJECT* const object = find(name);
    RANGE range;
    if (object != nullptr && !with_references && m_plain.get_name_range(object->node, range)) {
      touch(range.offset, range.offset + range.length);
    }
    return m_source.rename(name.c_str(), new_name().c_str(), with_references);
  }

  void check_touched(const std::string& after) {
    const std::size_t begin = common_begin(m_before, after);
    const std::size_t end = common_end(m_before, after);
    switch (m_touched) {
      case TOUCHED::ANYTHING:
        break;
      case TOUCHED::INSERTION:
        FUZZ_EXPECT(begin + end >= m_before.size(), m_before + "\n=>\n" + after);
        break;
      case TOUCHED::REMOVAL:
        FUZZ_EXPECT(begin + end >= after.size(), m_before + "\n=>\n" + after);
        [[fallthrough]];
      case TOUCHED::RANGE:
        FUZZ_EXPECT(begin >= m_begin, m_before + "\n=>\n" + after);
        FUZZ_EXPECT(end >= m_before.size() - m_end, m_before + "\n=>\n" + after);
        break;
    }
  }

  // Keeps the edit when text and tree agree; otherwise the edit has made what can't be saved, which
  // must be for a reason, and is taken back.
  void settle(const std::string& after) {
    SBD_STRING why;
    const bool is_good = m_source.verify(why);
    if (is_good) {
      SBD_FILE_PARSER reread;
      FUZZ_EXPECT(read_text(reread, after), after);
      FUZZ_EXPECT(dump_shape(reread) == dump_shape(m_source.document()), after);
    } else {
      FUZZ_EXPECT(why.find("The text ") != 0, after + "\n" + why.c_str());
    }
    if (is_good && !m_bytes.chance(8)) {
      FUZZ_EXPECT(m_source.commit(), after);
      return;
    }
    FUZZ_EXPECT(m_source.roll_back(), after);
    FUZZ_EXPECT(m_source.text() == m_before, m_source.text());
    FUZZ_EXPECT(dump_shape(m_source.document()) == dump_shape(m_plain), after);
  }

  FUZZ_RUN& m_run;
  FUZZ_BYTES& m_bytes;
  SBD_SOURCE_DOCUMENT& m_source;
  SBD_FILE_PARSER m_plain;  // Of the text before the edit.
  std::vector<OBJECT> m_objects;
  std::string m_before;
  std::string m_sibling;
  TOUCHED m_touched = TOUCHED::ANYTHING;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FUZZ_RUN run(FUZZ_RUN::EMPTY_NAMES::ARE_ALLOWED);
  FUZZ_BYTES bytes(data, size);
  const std::string text = bytes.descriptor();
  SBD_SOURCE_DOCUMENT source;
  if (!source.read_text(text.data(), text.size(), k_file_name)) {
    FUZZ_EXPECT(source.text().empty(), text);
    return 0;
  }
  FUZZ_EXPECT(source.text() == text, text);
  EDITING editing(run, bytes, source);
  for (std::size_t count = 0; count != k_most_edits && !bytes.empty(); ++count) editing.edit();
  return 0;
}
