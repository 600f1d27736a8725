// Random edits of random documents: what an edit may touch, and that tree and text agree.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "sbd/sbd_source_document.h"
#include "tests/reference/document_dump.h"
#include "tests/reference/text_generator.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/test_scale.h"
#include "tests/support/tree_builder.h"

namespace {

using RANGE = SBD_FILE_PARSER::SBD_SOURCE_RANGE;

struct OBJECT {
  std::string name;
  const SBD_NODE* node;
  const SBD_NODE* block;
};

std::vector<OBJECT> objects_of(const SBD_FILE_PARSER& document) {
  std::vector<OBJECT> objects;
  std::vector<std::pair<const SBD_NODE*, const SBD_NODE*>> left;
  left.push_back({root_of(document), nullptr});
  while (!left.empty()) {
    const auto [node, block] = left.back();
    left.pop_back();
    if (node == nullptr) continue;
    left.push_back({node->next, block});
    SBD_STRING name;
    if (!document.get_ref_name(node, name)) continue;
    objects.push_back({std::string(name), node, block});
    if (node->type == SBD_NODE::NT_BLOCK) left.push_back({node->block->members, node});
  }
  return objects;
}

std::string own_name(const std::string& name) {
  return name.substr(name.rfind('.') + 1);
}

std::string scope_name(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string::npos ? "" : name.substr(0, dot);
}

constexpr const char* k_values[] = {
    "1",    "0x1Fk", "0X1fMHz", "077",  "0b11K",        "-2.50", "7.",
    "true", "False", "word",    "\"\"", "\"a ; }\n#\"", "{1,2}", "{ a,{1K , -3},\"x\" }",
    "1 2",  "{1}",   "+3Hz"};
constexpr const char* k_types[] = {"bus", "MODULE", "region", "device", "thing"};

// One document under edit. Before each edit the text is also read by a plain document, which gets
// the same edit.
class RANDOM_SESSION {
 public:
  explicit RANDOM_SESSION(std::uint64_t seed)
      : m_random(seed),
        m_text(generate_descriptor(seed, 5 + static_cast<std::size_t>(seed % 60),
                                   VALIDITY::SEMANTICS, 6)) {
    EXPECT_TRUE(m_source.read_text(m_text.data(), m_text.size(), TEST_FILE));
  }

  void edit() {
    m_plain = std::make_unique<SBD_FILE_PARSER>();
    ASSERT_TRUE(read_text(*m_plain, m_text));
    m_objects = objects_of(*m_plain);
    m_messages.forget();
    m_begin = m_end = 0;
    m_is_checked = true;
    ASSERT_TRUE(m_source.begin());
    edit_both();
    m_source_messages = m_source_messages_of_edit;
    EXPECT_EQ(m_source_messages, m_messages.texts()) << m_what;
    EXPECT_EQ(m_messages.conditions(), std::vector<std::string>()) << m_what;
    check();
  }

 private:
  std::size_t pick(std::size_t count) {
    return count == 0 ? 0 : static_cast<std::size_t>(m_random() % count);
  }
  template <class T, std::size_t N>
  T pick_of(T const (&values)[N]) {
    return values[pick(N)];
  }

  std::string any_name() {
    if (m_objects.empty() || pick(12) == 0) return "none_of_these.such";
    return m_objects[pick(m_objects.size())].name;
  }

  std::string new_name() { return pick(8) == 0 ? "bad name" : "n" + std::to_string(pick(1000)); }

  const OBJECT* find(const std::string& name) const {
    for (const OBJECT& object : m_objects) {
      if (object.name == name) return &object;
    }
    return nullptr;
  }

  std::string any_block() {
    for (int i = 0; i != 10; ++i) {
      const std::string name = any_name();
      const OBJECT* const object = find(name);
      if (object != nullptr && object->node->type == SBD_NODE::NT_BLOCK) return name;
    }
    return "none_of_these.such";
  }

  // A member of the block, or nothing that is one.
  std::string any_member(const std::string& block) {
    std::vector<std::string> names;
    for (const OBJECT& object : m_objects) {
      if (scope_name(object.name) == block) names.push_back(own_name(object.name));
    }
    return names.empty() || pick(20) == 0 ? "none" : names[pick(names.size())];
  }

  // The edit through the text-keeping document, then through the plain one.
  template <class EDIT, class PLAIN>
  void both(EDIT&& on_source, PLAIN&& on_plain) {
    m_is_done = on_source();
    m_source_messages_of_edit = m_messages.texts();
    EXPECT_EQ(m_messages.conditions(), std::vector<std::string>()) << m_what;
    m_messages.forget();
    on_plain(*m_plain);
  }

  void edit_both() {
    switch (pick(10)) {
      case 0:
      case 1:
        return set_value();
      case 2:
      case 3:
        return add_value();
      case 4:
        return set_references();
      case 5:
        return set_attributes();
      case 6:
        return remove();
      case 7:
        return add_block();
      case 8:
        return remove_references();
      default:
        return rename();
    }
  }

  void allow(const RANGE& range) {
    m_begin = range.offset;
    m_end = range.offset + range.length;
  }

  // Stretches what may change over the comment behind it and all white space around.
  void allow_lines() {
    constexpr std::string_view k_space = " \t\r\n";
    while (m_begin != 0 && k_space.find(m_text[m_begin - 1]) != std::string_view::npos) --m_begin;
    m_end = std::min(m_text.find_first_not_of(" \t\r", m_end), m_text.size());
    if (m_end != m_text.size() && m_text[m_end] == '#') m_end = m_text.find('\n', m_end);
    m_end = std::min(m_text.find_first_not_of(k_space, m_end), m_text.size());
  }

  void set_plain_value(SBD_FILE_PARSER& plain, const std::string& name, const char* value) {
    const std::string text = std::string("device d{v=") + value + ";}";
    {
      SBD_FILE_PARSER one;
      if (!read_text(one, text)) return;
      plain.set_para_value(scope_name(name).c_str(), own_name(name).c_str(),
                           *one.get_para_value("d", "v"));
    }
  }

  static bool is_value(const std::string& value) {
    return value != "1 2" && value != "{1}" && value != "0x1Fk";
  }

  void set_value() {
    const std::string name = any_name();
    std::string value = pick_of(k_values);
    if (!is_value(value)) value = "9";
    if (scope_name(name).empty()) return no_edit();
    m_what = "set_value " + name + " " + value;
    const OBJECT* const object = find(name);
    RANGE range;
    if (object != nullptr && object->node->type == SBD_NODE::NT_STATEMENT &&
        object->node->statement->type == SBD_STATEMENT::ST_ASSIGNMENT &&
        m_plain->get_range(object->node->statement->value, range)) {
      allow(range);
    }
    both([&] { return m_source.set_value(name.c_str(), value.c_str()); },
         [&](SBD_FILE_PARSER& plain) { set_plain_value(plain, name, value.c_str()); });
  }

  SBD_PLACE any_place(const std::string& sibling) {
    switch (pick(3)) {
      case 0:
        return {};
      case 1:
        return SBD_PLACE::before(sibling.c_str());
      default:
        return SBD_PLACE::behind(sibling.c_str());
    }
  }

  void move_plain(SBD_FILE_PARSER& plain, const std::string& name, const SBD_PLACE& place) {
    if (place.kind == SBD_PLACE::AT_END) return;
    const std::string scope = scope_name(name);
    const std::string sibling = scope.empty() ? place.sibling : scope + "." + place.sibling;
    plain.move_member(name.c_str(), sibling.c_str(), place.kind == SBD_PLACE::BEHIND);
  }

  void add_value() {
    const std::string block = any_block();
    const std::string name = block + "." + new_name();
    const std::string sibling = any_member(block);
    if (sibling == "none" || find(name) != nullptr) return no_edit();
    const SBD_PLACE place = any_place(sibling);
    std::string value = pick_of(k_values);
    if (!is_value(value)) value = "9";
    m_what = "add_value " + name + " " + value + " " + std::to_string(place.kind) + " " + sibling;
    m_is_insertion = true;
    both([&] { return m_source.add_value(name.c_str(), value.c_str(), place); },
         [&](SBD_FILE_PARSER& plain) {
           set_plain_value(plain, name, value.c_str());
           if (m_is_done) move_plain(plain, name, place);
         });
  }

  void set_references() {
    const std::string block = any_block();
    const std::string sibling = any_member(block);
    if (sibling == "none") return no_edit();
    const bool is_new = pick(2) == 0;
    const std::string name = is_new ? block + "." + new_name() : any_name();
    const SBD_PLACE place = is_new ? any_place(sibling) : SBD_PLACE();
    SBD_STRING_LIST names;
    for (std::size_t count = 1 + pick(3); count != 0; --count) {
      const std::string one = any_name();
      if (one.find('.') != std::string::npos) names.emplace_back(one.c_str());
    }
    if (names.empty() || scope_name(name).empty()) return no_edit();
    m_what = "set_references " + name;
    const OBJECT* const object = find(name);
    if (object == nullptr) m_is_insertion = true;
    if (object != nullptr && object->node->type == SBD_NODE::NT_STATEMENT &&
        object->node->statement->type == SBD_STATEMENT::ST_REFERENCE) {
      RANGE first;
      RANGE last;
      m_plain->get_range(object->node->statement->reference, first);
      for (auto* one = object->node->statement->reference; one != nullptr; one = one->next) {
        m_plain->get_range(one, last);
      }
      m_begin = first.offset;
      m_end = last.offset + last.length;
    }
    both([&] { return m_source.set_references(name.c_str(), names, place); },
         [&](SBD_FILE_PARSER& plain) {
           plain.set_value(scope_name(name).c_str(), own_name(name).c_str(), names);
           if (m_is_done && object == nullptr) move_plain(plain, name, place);
         });
  }

  void set_attributes() {
    const std::string name = any_name();
    SBD_FILE_PARSER::SBD_PARA_ATTR second;
    second.attr_key = const_cast<char*>("k2");
    SBD_FILE_PARSER::SBD_PARA_ATTR first;
    first.attr_key = const_cast<char*>("k");
    first.attr_value = const_cast<char*>("a.b[1]");
    if (pick(2) == 0) first.next = &second;
    const auto* const chain = pick(3) == 0 ? nullptr : &first;
    m_what = "set_attributes " + name;
    const OBJECT* const object = find(name);
    RANGE range;
    if (object != nullptr && object->node->type == SBD_NODE::NT_STATEMENT &&
        object->node->statement->type == SBD_STATEMENT::ST_ASSIGNMENT) {
      m_plain->get_range(object->node->statement->value, range);
      m_begin = range.offset + range.length;
      m_plain->get_range(object->node, range);
      m_end = range.offset + range.length - 1;
    }
    both([&] { return m_source.set_attributes(name.c_str(), chain); },
         [&](SBD_FILE_PARSER& plain) {
           plain.set_attribute(scope_name(name).c_str(), own_name(name).c_str(), chain);
         });
  }

  void remove() {
    const std::string name = any_name();
    const OBJECT* const object = find(name);
    RANGE range;
    if (object != nullptr && m_plain->get_range(object->node, range)) {
      allow(range);
      allow_lines();
    }
    m_what = "remove " + name;
    if (object != nullptr && object->node->type == SBD_NODE::NT_BLOCK) {
      both([&] { return m_source.remove_block(name.c_str()); },
           [&](SBD_FILE_PARSER& plain) { plain.delete_block(name.c_str()); });
    } else {
      both([&] { return m_source.remove_parameter(name.c_str()); },
           [&](SBD_FILE_PARSER& plain) {
             plain.delete_parameter(scope_name(name).c_str(), own_name(name).c_str());
           });
    }
  }

  // With two members, since an empty block has no form.
  void add_block() {
    const bool is_top = pick(4) == 0;
    const std::string block = is_top ? "" : any_block();
    const std::string own = new_name();
    const std::string name = is_top ? own : block + "." + own;
    const std::string sibling = any_member(block);
    if (find(name) != nullptr || sibling == "none") return no_edit();
    const SBD_PLACE place = any_place(sibling);
    const char* const type = is_top && pick(4) != 0 ? "device" : pick_of(k_types);
    m_what = "add_block " + name + " " + type + std::to_string(place.kind) + " " + sibling;
    m_is_insertion = true;
    const char* const parent = is_top ? nullptr : block.c_str();
    both([&] { return m_source.add_block(type, own.c_str(), parent, place); },
         [&](SBD_FILE_PARSER& plain) {
           plain.create_block(type, own.c_str(), parent);
           if (m_is_done) move_plain(plain, name, place);
         });
    if (!m_is_done) return;
    const std::string inner = name + ".inner";
    ASSERT_TRUE(m_source.add_block("module", "inner", name.c_str()));
    ASSERT_TRUE(m_source.set_value((inner + ".x").c_str(), "1"));
    ASSERT_TRUE(m_source.add_value((name + ".y").c_str(), "0x2K", SBD_PLACE::before("inner")));
    m_plain->create_block("module", "inner", name.c_str());
    set_plain_value(*m_plain, inner + ".x", "1");
    set_plain_value(*m_plain, name + ".y", "0x2K");
    move_plain(*m_plain, name + ".y", SBD_PLACE::before("inner"));
    if (pick(3) != 0) return;
    ASSERT_TRUE(m_source.rename(inner.c_str(), "outer", false));
    m_plain->rename("inner", "outer", name.c_str());
    if (pick(3) != 0) return;
    ASSERT_TRUE(m_source.remove_block((name + ".outer").c_str()));
    m_plain->delete_block((name + ".outer").c_str());
  }

  void remove_references() {
    const std::string name = any_name();
    m_what = "remove_references " + name;
    m_is_checked = false;
    both([&] { return m_source.remove_references(name.c_str()); },
         [&](SBD_FILE_PARSER& plain) { plain.delete_reference(name.c_str()); });
  }

  void rename() {
    const std::string name = any_name();
    const std::string own = new_name();
    const bool with_references = pick(2) == 0;
    m_what = "rename " + name + " " + own + (with_references ? " with references" : "");
    const OBJECT* const object = find(name);
    RANGE range;
    if (object != nullptr && m_plain->get_name_range(object->node, range)) allow(range);
    m_is_checked = !with_references;
    const std::string scope = scope_name(name);
    m_is_rewritten = with_references;
    both([&] { return m_source.rename(name.c_str(), own.c_str(), with_references); },
         [&](SBD_FILE_PARSER& plain) {
           plain.rename(own_name(name).c_str(), own.c_str(),
                        scope.empty() ? nullptr : scope.c_str());
         });
  }

  void no_edit() {
    m_what = "nothing";
    m_is_done = false;
    m_source_messages_of_edit.clear();
  }

  void check() {
    const std::string after(m_source.text());
    const bool is_insertion = m_is_insertion;
    const bool is_rewritten = m_is_rewritten;
    m_is_insertion = m_is_rewritten = false;
    if (!m_is_done) {
      EXPECT_EQ(after, m_text) << m_what;
      EXPECT_TRUE(m_source.commit());
      return;
    }
    if (is_insertion) {
      expect_insertion(after);
    } else if (m_is_checked) {
      EXPECT_EQ(after.compare(0, m_begin, m_text, 0, m_begin), 0) << m_what << "\n"
                                                                  << m_text << "\n=>\n"
                                                                  << after;
      const std::size_t behind = m_text.size() - m_end;
      ASSERT_GE(after.size(), m_begin + behind) << m_what;
      EXPECT_EQ(after.compare(after.size() - behind, behind, m_text, m_end, behind), 0)
          << m_what << "\n"
          << m_text << "\n=>\n"
          << after;
    }
    if (!is_rewritten) {
      EXPECT_EQ(dump_shape(*m_plain), dump_shape(m_source.document())) << m_what;
    }

    SBD_STRING why;
    m_messages.forget();
    if (m_source.verify(why)) {
      SBD_FILE_PARSER reread;
      ASSERT_TRUE(read_text(reread, after)) << m_what << "\n" << after;
      EXPECT_EQ(dump_shape(reread), dump_shape(m_source.document())) << m_what << "\n"
                                                                     << m_text << "\n=>\n"
                                                                     << after;
      EXPECT_TRUE(m_source.commit());
      m_text = after;
      return;
    }
    const bool is_expected = why.find("A block must have members.") != SBD_STRING::npos ||
                             why.find("names nothing.") != SBD_STRING::npos ||
                             why.find("can't stand") != SBD_STRING::npos;
    EXPECT_TRUE(is_expected) << m_what << ": " << why << "\n" << m_text << "\n=>\n" << after;
    EXPECT_TRUE(m_messages.is_silent()) << m_what << "\n" << after;
    EXPECT_TRUE(m_source.roll_back());
    EXPECT_EQ(m_source.text(), m_text) << m_what;
    EXPECT_TRUE(m_source.verify(why)) << why;
  }

  void expect_insertion(const std::string& after) {
    std::size_t same = 0;
    while (same != m_text.size() && same != after.size() && after[same] == m_text[same]) ++same;
    std::size_t same_end = 0;
    while (same_end != m_text.size() && same_end != after.size() &&
           after[after.size() - same_end - 1] == m_text[m_text.size() - same_end - 1]) {
      ++same_end;
    }
    EXPECT_GE(same + same_end, m_text.size()) << m_what << "\n" << m_text << "\n=>\n" << after;
  }

  MESSAGE_RECORDER m_messages;
  std::mt19937_64 m_random;
  std::string m_text;
  SBD_SOURCE_DOCUMENT m_source;
  std::unique_ptr<SBD_FILE_PARSER> m_plain;
  std::vector<OBJECT> m_objects;
  std::string m_what;
  bool m_is_done = false;
  bool m_is_insertion = false;
  bool m_is_rewritten = false;
  bool m_is_checked = true;  // What changes lies between m_begin and m_end.
  std::size_t m_begin = 0;
  std::size_t m_end = 0;
  std::vector<std::string> m_source_messages_of_edit;
  std::vector<std::string> m_source_messages;
};

TEST(SOURCE_PROPERTY, EditsTouchWhatTheyAreAboutAndTreeAndTextAgree) {
  for (std::uint64_t seed = 1; seed <= scaled(300); ++seed) {
    SCOPED_TRACE(seed);
    RANDOM_SESSION session(seed);
    for (int i = 0; i != 30; ++i) {
      session.edit();
      if (testing::Test::HasFailure()) return;
    }
  }
}

}  // namespace
