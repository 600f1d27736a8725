// What must hold for every text: random documents, read and taken apart.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

// A random text without faults, and what it should give.
class RANDOM_TEXT {
 public:
  explicit RANDOM_TEXT(unsigned seed) : m_random(seed) {
    const int count = static_cast<int>(m_random() % 4);
    for (int i = 0; i < count; i++) {
      add_comments(0);
      add_block("device", "", 0);
    }
    add_comments(0);
  }

  const std::string& text() const { return m_text; }
  const std::string& tree() const { return m_tree; }
  const std::vector<std::string>& blocks() const { return m_blocks; }
  const std::vector<std::string>& parameters() const { return m_parameters; }

 private:
  bool maybe(unsigned one_in) { return m_random() % one_in == 0; }
  template <class T>
  T any(std::initializer_list<T> choices) {
    return choices.begin()[m_random() % choices.size()];
  }

  // Adds to the text, with blanks and newlines before it, and counts the lines.
  void put(const std::string& token) {
    for (int i = static_cast<int>(m_random() % 3); i > 0; i--) m_text += any({' ', '\t', '\r'});
    if (maybe(6)) newline();
    if (!m_text.empty() && std::string("\n ;{}").find(m_text.back()) == std::string::npos) {
      m_text += ' ';
    }
    m_text += token;
    m_line += static_cast<int>(std::count(token.begin(), token.end(), '\n'));
  }
  void newline() {
    m_text += '\n';
    m_line++;
  }

  std::string at_line() const { return " @" + std::to_string(m_line); }

  std::string new_name() {
    std::string name(1, any({'a', 'B', '_', 'n', 'N'}));
    for (auto i = m_random() % 5; i > 0; i--) name += any({'a', 'B', '_', '7', 'N'});
    name += "_" + std::to_string(m_names++);
    while (maybe(4)) name += "[" + std::to_string(m_random() % 10) + "]";
    return name;
  }

  void add_comments(std::size_t depth) {
    while (maybe(3)) {
      newline();
      m_text += "# { \" ;\n";
      m_line++;
      m_tree.append(2 * depth, ' ');
      m_tree += "'# { \" ;\\n'\n";
    }
  }

  void add_block(const std::string& type, const std::string& outer, std::size_t depth) {
    const std::string name = new_name();
    const std::string full = outer.empty() ? name : outer + "." + name;
    put(type);
    put(name);
    m_tree.append(2 * depth, ' ');
    m_tree += type + " " + name + at_line() + "\n";
    m_blocks.push_back(full);
    put("{");
    add_statement(full, depth + 1);
    for (auto i = m_random() % 6; i > 0; i--) {
      add_comments(depth + 1);
      if (depth < 6 && maybe(3)) {
        add_block(any<std::string>({"bus", "Module", "SLAVE", "master", "region", "parameters"}),
                  full, depth + 1);
      } else {
        add_statement(full, depth + 1);
      }
    }
    newline();
    put("}");
  }

  void add_statement(const std::string& block, std::size_t depth) {
    const std::string name = new_name();
    put(name);
    const std::string line = at_line();
    m_parameters.push_back(block + "." + name);
    m_tree.append(2 * depth, ' ');
    m_tree += name;
    if (maybe(4)) {
      add_references(block);
    } else {
      put("=");
      m_tree += " = ";
      add_value(0);
      if (maybe(5)) {
        put("[");
        put("key");
        put(",");
        put("other");
        put("a.b");
        put("]");
        m_tree += " [key, other a.b]";
      }
    }
    put(";");
    m_tree += line;
    if (maybe(5)) {
      m_text += " # c\n";
      m_line++;
      m_tree += " '# c\\n'";
    }
    m_tree += "\n";
  }

  void add_references(const std::string& block) {
    m_tree += " < ";
    for (int i = 0; i < 3; i++) {
      const bool is_relative = maybe(2);
      const std::string& target = maybe(2) ? any({m_blocks.front(), m_blocks.back()})
                                           : m_parameters[m_random() % m_parameters.size()];
      const bool is_inside = target.compare(0, block.size() + 1, block + ".") == 0;
      std::string name = is_relative && is_inside ? target.substr(block.size()) : target;
      // A name with an index but without a point can't be written as a reference.
      if (name.find('.') == std::string::npos && name.find('[') != std::string::npos) {
        name = m_parameters.back();
      }
      put(i == 0 ? "<" : ",");
      put(name);
      m_tree += (i == 0 ? "" : ", ") + name;
    }
    put(">");
    m_tree += " >";
  }

  void add_value(int depth) {
    if (depth < 3 && maybe(4)) {
      put("{");
      m_tree += "{";
      add_value(depth + 1);
      for (auto i = 1 + m_random() % 3; i > 0; i--) {
        put(",");
        m_tree += ", ";
        add_value(depth + 1);
      }
      put("}");
      m_tree += "}";
      return;
    }
    struct CHOICE {
      const char* text;
      const char* tree;
    };
    const CHOICE choice = any<CHOICE>({{"5", "5"},
                                       {"+5K", "5 K"},
                                       {"017MB", "0o15 M"},
                                       {"0x1fG", "0x31 G"},
                                       {"0b101", "0b5"},
                                       {"-1.5MHz", "-1.5f MHz"},
                                       {"-7hz", "-7f Hz"},
                                       {"TRUE", "true"},
                                       {"False", "false"},
                                       {"\"\n#;\"", "'\"\\n#;\"'"},
                                       {"word", "'word'"}});
    put(choice.text);
    m_tree += choice.tree;
  }

  std::mt19937 m_random;
  std::string m_text;
  std::string m_tree;
  std::vector<std::string> m_blocks;
  std::vector<std::string> m_parameters;
  int m_line = 1;
  int m_names = 0;
};

class RANDOM_DOCUMENT : public testing::TestWithParam<unsigned> {
 protected:
  static constexpr unsigned COUNT = 100;
  // Runs for a hundred texts of the seed.
  template <class WORK>
  void for_each_text(const WORK& work) {
    for (unsigned i = 0; i < COUNT && !HasFailure(); i++) {
      const RANDOM_TEXT random(GetParam() * COUNT + i);
      SCOPED_TRACE(random.text());
      MESSAGE_RECORDER recorder;
      SBD_FILE_PARSER document;
      ASSERT_TRUE(read_text(document, random.text())) << testing::PrintToString(recorder.texts());
      work(document, random);
      EXPECT_TRUE(recorder.is_silent());
    }
  }
};

TEST_P(RANDOM_DOCUMENT, HasTheTreeOfItsText) {
  for_each_text([](SBD_FILE_PARSER& document, const RANDOM_TEXT& random) {
    EXPECT_EQ(outline(document), random.tree());
  });
}

TEST_P(RANDOM_DOCUMENT, IsConsistent) {
  for_each_text([](SBD_FILE_PARSER& document, const RANDOM_TEXT& random) {
    EXPECT_EQ(find_inconsistency(document), "");
    EXPECT_EQ(count_symbols(document), random.blocks().size() + random.parameters().size());
  });
}

TEST_P(RANDOM_DOCUMENT, FindsEveryNameAndGivesItBack) {
  for_each_text([](SBD_FILE_PARSER& document, const RANDOM_TEXT& random) {
    for (const std::vector<std::string>* names : {&random.blocks(), &random.parameters()}) {
      for (const std::string& name : *names) {
        SBD_STRING full;
        const SBD_NODE* const node = document.get_ref_object(name.c_str(), nullptr);
        ASSERT_TRUE(document.get_ref_name(node, full)) << name;
        EXPECT_EQ(full.c_str(), name);
        EXPECT_EQ(document.is_block_defined(name.c_str()), names == &random.blocks());
      }
    }
  });
}

TEST_P(RANDOM_DOCUMENT, HasRangesInsideTheirBlocks) {
  for_each_text([](SBD_FILE_PARSER& document, const RANDOM_TEXT& random) {
    for (const std::string& block : random.blocks()) {
      const SBD_NODE* const node = document.get_ref_object(block.c_str(), nullptr);
      SBD_FILE_PARSER::SBD_SOURCE_RANGE outer;
      ASSERT_TRUE(document.get_range(node, outer));
      EXPECT_EQ(random.text()[outer.offset + outer.length - 1], '}');
      std::size_t end = outer.offset;
      for (const SBD_NODE* const member : members_of(document, node)) {
        SBD_FILE_PARSER::SBD_SOURCE_RANGE inner;
        ASSERT_TRUE(document.get_range(member, inner));
        EXPECT_GE(inner.offset, end);
        end = inner.offset + inner.length;
      }
      EXPECT_LT(end, outer.offset + outer.length);
    }
  });
}

TEST_P(RANDOM_DOCUMENT, ResolvesItsReferences) {
  for_each_text([](SBD_FILE_PARSER& document, const RANDOM_TEXT& random) {
    for (const std::string& name : random.parameters()) {
      SBD_NODE* const node = document.get_ref_object(name.c_str(), nullptr);
      if (node->statement->type != SBD_STATEMENT::ST_REFERENCE) continue;
      const std::string block = name.substr(0, name.rfind('.'));
      const SBD_PARA_REF* reference = node->statement->reference;
      for (; reference != nullptr; reference = reference->next) {
        const std::string full = (reference->name[0] == '.' ? block : "") + reference->name;
        EXPECT_EQ(reference->target, document.get_ref_object(full.c_str(), nullptr));
        EXPECT_NE(reference->target, nullptr);
      }
    }
  });
}

TEST_P(RANDOM_DOCUMENT, StaysConsistentWhileItIsTakenApart) {
  for_each_text([](SBD_FILE_PARSER& document, const RANDOM_TEXT& random) {
    std::mt19937 order(static_cast<unsigned>(random.text().size()));
    std::vector<std::string> names = random.parameters();
    names.insert(names.end(), random.blocks().begin(), random.blocks().end());
    std::shuffle(names.begin(), names.end(), order);
    for (const std::string& name : names) {
      SBD_NODE* const node = document.get_ref_object(name.c_str(), nullptr);
      if (node == nullptr) continue;  // Went with its block.
      SBD_NODE* const parent = symbol_of(node)->parent;
      document.delete_node(node, parent == node ? nullptr : parent);
      ASSERT_EQ(find_inconsistency(document), "");
    }
    EXPECT_EQ(count_symbols(document), 0U);
  });
}

INSTANTIATE_TEST_SUITE_P(Of, RANDOM_DOCUMENT, testing::Range(1U, 6U),
                         [](const testing::TestParamInfo<unsigned>& seed) {
                           return "Seed" + std::to_string(seed.param);
                         });

}  // namespace
