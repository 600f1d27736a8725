// Large and misleading texts: what is found in documents with so many references that they are
// looked for together, what is said about those that are not, and what memory texts take.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"

namespace {

// What references name: blocks and parameters, far away and nearby, in scopes of every size.
const std::vector<std::string> GOOD_NAMES = {
    "board",
    "BOARD.Note",
    "board.bus_0",
    "board.bus_1.module_3.value_2",
    "board.bus_0.module_1.region[1]",
    "Board.Bus_0.Module_1.REGION[1].x",
    "board.wide.name_39",
    "board.wide.name_0",
    ".here",
    ".part",
    ".part.inside",
    "second",
    "second.a_name_that_is_a_little_longer_than_two_steps_of_sixteen"};
const std::vector<std::string> BAD_NAMES = {"boar",
                                            "board.no",
                                            "board.bus_0.no.x",
                                            "board.note.x",
                                            ".no",
                                            ".part.no",
                                            ".here.x",
                                            "board..note",
                                            "board.",
                                            ".",
                                            ".part.",
                                            "second.third",
                                            "board.bus_1.module_9",
                                            "no.note",
                                            "board.wide.name_40",
                                            "..note",
                                            "board.bus_0.",
                                            "bus_0",
                                            "note",
                                            ".board"};

std::string frame() {
  std::string text = "device board {\n  note = 1;\n";
  for (const std::string bus : {"bus_0", "bus_1"}) {
    text += "  bus " + bus + " {\n";
    for (int i = 0; i < 6; i++) {
      text += "    module module_" + std::to_string(i) + " { value_1 = 1; value_2 = 2;\n";
      text += "      region region[0] { x = 1; } region region[1] { x = 2; } }\n";
    }
    text += "  }\n";
  }
  text += "  bus wide {\n";
  for (int i = 0; i < 40; i++) text += "    name_" + std::to_string(i) + " = 1;\n";
  return text + "  }\n";
}

struct MADE_UP {
  std::string text;
  std::vector<std::string> names;  // In file order,
  std::vector<int> lines;          // and the lines of their statements.
};

// A document with so many statements of one to three references, one in `bad_every` of them bad.
MADE_UP make_up(int statements, int bad_every, unsigned seed) {
  std::mt19937 random(seed);
  const auto pick = [&random](std::size_t count) {
    return static_cast<std::size_t>(random() % count);
  };
  MADE_UP made;
  made.text = frame() + "  module refers {\n    here = 1;\n    module part { inside = 1; }\n";
  int line = 1;
  for (const char c : made.text) line += c == '\n';
  for (int i = 0; i < statements; i++) {
    made.text += "    r_" + std::to_string(i) + " <";
    const std::size_t count = 1 + pick(3);
    for (std::size_t k = 0; k < count; k++) {
      const bool is_bad = bad_every != 0 && pick(static_cast<std::size_t>(bad_every)) == 0;
      const std::vector<std::string>& names = is_bad ? BAD_NAMES : GOOD_NAMES;
      made.names.push_back(names[pick(names.size())]);
      made.lines.push_back(line);
      made.text += (k != 0 ? ", " : " ") + made.names.back();
    }
    made.text += " >;\n";
    line++;
  }
  made.text +=
      "  }\n}\ndevice second { a_name_that_is_a_little_longer_than_two_steps_of_sixteen = 1; }\n";
  return made;
}

// What the document says about one name by itself.
const SBD_NODE* look_up(const SBD_FILE_PARSER& document, const std::string& name) {
  const std::string full = name.front() == '.' ? "board.refers" + name : name;
  return document.get_ref_object(full.c_str(), nullptr);
}

std::vector<const SBD_NODE*> targets_of(const SBD_FILE_PARSER& document, int statements) {
  std::vector<const SBD_NODE*> targets;
  for (int i = 0; i < statements; i++) {
    const std::string name = "board.refers.r_" + std::to_string(i);
    const SBD_STATEMENT* const statement =
        document.get_ref_object(name.c_str(), nullptr)->statement;
    for (const auto* reference = statement->reference; reference != nullptr;
         reference = reference->next) {
      targets.push_back(reference->target);
    }
  }
  return targets;
}

class MANY_TARGETS : public testing::TestWithParam<int> {};

TEST_P(MANY_TARGETS, AreThoseThatTheNamesStandFor) {
  for (unsigned seed = 0; seed < 20; seed++) {
    const MADE_UP made = make_up(GetParam(), 0, seed);
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, made.text));
    const std::vector<const SBD_NODE*> targets = targets_of(document, GetParam());
    ASSERT_EQ(targets.size(), made.names.size());
    for (std::size_t i = 0; i < targets.size(); i++) {
      EXPECT_NE(targets[i], nullptr) << made.names[i];
      EXPECT_EQ(targets[i], look_up(document, made.names[i])) << made.names[i];
    }
    const std::string one = "board.bus_1.module_3.value_2";
    const bool is_named = std::count(made.names.begin(), made.names.end(), one) != 0;
    EXPECT_EQ(document.is_referenced(one.c_str()), is_named);
    EXPECT_FALSE(document.is_referenced("board.bus_1.module_3.value_1"));
  }
}

TEST_P(MANY_TARGETS, ThatAreMissingAreReportedInFileOrder) {
  for (unsigned seed = 0; seed < 20; seed++) {
    const MADE_UP made = make_up(GetParam(), 16, seed);
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < made.names.size(); i++) {
      for (const std::string& bad : BAD_NAMES) {
        if (bad == made.names[i]) {
          expected.push_back(reference_error_text(TEST_FILE, bad.c_str(), made.lines[i]));
        }
      }
    }
    MESSAGE_RECORDER recorder;
    SBD_FILE_PARSER document;
    EXPECT_EQ(read_text(document, made.text), expected.empty());
    EXPECT_EQ(recorder.texts(), expected);
  }
}

TEST_P(MANY_TARGETS, OfWhichOneIsMissingAreReported) {
  for (const std::string& bad : BAD_NAMES) {
    MADE_UP made = make_up(GetParam(), 0, 1);
    const std::string last = "r_" + std::to_string(GetParam() - 1) + " <";
    made.text.insert(made.text.find(last) + last.size(), " " + bad + ",");
    MESSAGE_RECORDER recorder;
    SBD_FILE_PARSER document;
    EXPECT_FALSE(read_text(document, made.text)) << bad;
    EXPECT_EQ(recorder.texts(),
              std::vector<std::string>{reference_error_text(TEST_FILE, bad, made.lines.back())});
    EXPECT_TRUE(recorder.internal_errors().empty()) << bad;
  }
}

INSTANTIATE_TEST_SUITE_P(Of, MANY_TARGETS, testing::Values(3, 255, 256, 257, 700));

// Blocks one in the other, each of which is referred to: searches end at different depths.
TEST(DEEP_TARGETS, AreFoundAtTheirOwnDepth) {
  constexpr std::size_t DEPTH = 300;
  std::string text = "device d {\n";
  for (std::size_t i = 1; i < DEPTH; i++) text += "bus b {\n";
  std::string name = "d";
  for (std::size_t i = 0; i < DEPTH; i++) {
    text += "r" + std::to_string(i) + " <" + name + ">;\n";
    name += ".b";
  }
  for (std::size_t i = 0; i < DEPTH; i++) text += "}\n";
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text));

  const SBD_NODE* block = root_of(document);
  std::vector<const SBD_NODE*> blocks = {block};
  while (block->block->members->type == SBD_NODE::NT_BLOCK) {
    block = block->block->members;
    blocks.push_back(block);
  }
  ASSERT_EQ(blocks.size(), DEPTH);
  const SBD_NODE* statement = block->block->members;
  for (std::size_t i = 0; i < DEPTH; i++, statement = statement->next) {
    EXPECT_EQ(statement->statement->reference->target, blocks[i]) << i;
  }
}

// ---- Memory ------------------------------------------------------------------------------------

std::size_t memory_of(const std::string& text) {
  SBD_FILE_PARSER document;
  EXPECT_TRUE(read_text(document, text));
  return sbd_host::get_memory_account("SBD").live_bytes;
}

// Half of a text is one line, and the memory for it could only be guessed from the other half.
TEST(LONG_LINES, TakeNoMoreMemoryThanShortOnes) {
  for (const std::size_t lines : {0U, 1U, 100U, 5000U, 20000U}) {
    std::string short_lines = "device d {\n";
    std::string long_line = "device d {\n";
    for (std::size_t i = 0; i < 20000; i++) {
      const std::string statement = "p" + std::to_string(i) + " = 1;";
      short_lines += statement + "\n";
      long_line += statement + (i < lines ? "\n" : " ");
    }
    EXPECT_LT(memory_of(long_line + "}"), memory_of(short_lines + "}") * 5 / 4) << lines;
  }
}

// The beginning says nothing of what follows: as little, or as much, as there can be.
TEST(MISLEADING_TEXTS, TakeNoMoreMemoryThanIsPromised) {
  constexpr std::size_t MOST_PER_BYTE = 45;
  for (const std::size_t size : {20000U, 300000U, 3000000U}) {
    std::string blocks = "device d {";
    std::string values = "device d {";
    for (int i = 0; blocks.size() < size; i++) blocks += "bus b" + std::to_string(i) + "{a=1;}";
    for (int i = 0; values.size() < size; i++) values += "a" + std::to_string(i) + "=1;";
    const std::string comment = "#" + std::string(4085, 'x') + "\n";
    const std::string nothing = comment + std::string(size / 14, '\n');
    for (const std::string& dense : {blocks + "}", values + "}"}) {
      EXPECT_LT(memory_of(dense), dense.size() * MOST_PER_BYTE);
      EXPECT_LT(memory_of(comment + dense), (comment + dense).size() * MOST_PER_BYTE);
      EXPECT_LT(memory_of(nothing + dense), (nothing + dense).size() * MOST_PER_BYTE);
    }
    const std::string marks = "#" + std::string(4085, ';') + "\n";
    const std::string sparse = marks + "#" + std::string(size, 'x') + "\ndevice d { a = 1; }";
    EXPECT_LT(memory_of(sparse), sparse.size() * 12);
  }
}

}  // namespace
