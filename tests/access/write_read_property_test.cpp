// What was written reads back to the same tree and is written again to the same bytes.
//
// SBD_TEST_SCALE multiplies the number of random documents.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/access/access_support.h"
#include "tests/access/second_model.h"
#include "tests/reference/document_dump.h"
#include "tests/reference/text_generator.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"

namespace {

bool starts_with(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// The dump without what a new layout changes: lines of names, and decimals behind the sixth.
std::string dump_without_layout(const SBD_FILE_PARSER& document) {
  const std::string dump = dump_document(document);
  std::string result;
  std::size_t begin = 0;
  while (begin < dump.size()) {
    const std::size_t end = dump.find('\n', begin);
    std::string line = dump.substr(begin, end - begin);
    begin = end + 1;
    if (starts_with(line, "block ") || starts_with(line, "assignment ") ||
        starts_with(line, "reference ")) {
      line.erase(line.rfind(" line "));
    } else if (starts_with(line, "number 4 ")) {
      char* rest = nullptr;
      const double number = std::strtod(line.c_str() + 9, &rest);
      char rounded[512];
      std::snprintf(rounded, sizeof rounded, "%f", number);
      line = std::string("number 4 ") + rounded + rest;
    }
    result += line + "\n";
  }
  return result;
}

// The full names of all targets, in file order.
void collect_targets(const SBD_FILE_PARSER& document, const SBD_NODE* node, std::string& names) {
  for (; node != nullptr; node = node->next) {
    if (node->type == SBD_NODE::NT_BLOCK) {
      collect_targets(document, node->block->members, names);
    } else if (node->type == SBD_NODE::NT_STATEMENT &&
               node->statement->type == SBD_STATEMENT::ST_REFERENCE) {
      for (const auto* element = node->statement->reference; element; element = element->next) {
        SBD_STRING name;
        EXPECT_TRUE(document.get_ref_name(element->target, name));
        names += name.c_str();
        names += '\n';
      }
    }
  }
}

std::string targets_of(const SBD_FILE_PARSER& document) {
  std::string names;
  collect_targets(document, root_of(document), names);
  return names;
}

// True when a number of the text is too large for a double. It is written as a word then.
bool has_infinity(const std::string& source) {
  SBD_FILE_PARSER document;
  EXPECT_TRUE(read_text(document, source)) << source;
  const std::string dump = dump_document(document);
  return dump.find("\nnumber 4 inf ") != std::string::npos ||
         dump.find("\nnumber 4 -inf ") != std::string::npos;
}

void expect_round_trip(const std::string& source) {
  SBD_FILE_PARSER first;
  ASSERT_TRUE(read_text(first, source)) << source;
  const std::string text = written(first);

  second_model::MODEL model;
  model.import(first);
  ASSERT_EQ(text, model.write()) << source;
  ASSERT_EQ(model.compare(first), "") << source;
  SBD_FILE_PARSER second;
  ASSERT_TRUE(read_text(second, text)) << source << "\nwritten:\n" << text;
  ASSERT_EQ(dump_without_layout(second), dump_without_layout(first)) << source;
  ASSERT_EQ(targets_of(second), targets_of(first)) << source;
  const std::string again = written(second);
  ASSERT_EQ(again, text) << source;

  SBD_FILE_PARSER third;
  ASSERT_TRUE(read_text(third, again)) << source;
  ASSERT_EQ(dump_document(third), dump_document(second)) << source;
  // The numbers as well, now that they have six decimals.
  ASSERT_EQ(written(third), text) << source;
}

TEST(ROUND_TRIP, KeepsGeneratedDocuments) {
  const MESSAGE_RECORDER recorder;
  std::size_t compared = 0;
  for (std::uint64_t seed = 1; seed <= scaled(4000); seed++) {
    const std::size_t count = seed % 50 == 0 ? 300 : 1 + static_cast<std::size_t>(seed % 40);
    const std::string source = generate_descriptor(seed, count, VALIDITY::SEMANTICS);
    if (has_infinity(source)) continue;
    compared++;
    expect_round_trip(source);
    if (HasFatalFailure()) {
      ADD_FAILURE() << "seed " << seed;
      return;
    }
  }
  EXPECT_GT(compared, scaled(4000) * 9 / 10);
  EXPECT_TRUE(recorder.is_silent()) << testing::PrintToString(recorder.texts());
}

TEST(ROUND_TRIP, KeepsDeepDocuments) {
  const MESSAGE_RECORDER recorder;
  for (std::uint64_t seed = 1; seed <= scaled(20); seed++) {
    const std::string source = generate_descriptor(seed, 1000, VALIDITY::SEMANTICS, 400);
    if (!has_infinity(source)) expect_round_trip(source);
    if (HasFatalFailure()) return;
  }
}

TEST(ROUND_TRIP, KeepsLargeDocumentsInFiles) {
  const TEMPORARY_DIRECTORY directory;
  const MESSAGE_RECORDER recorder;
  int compared = 0;
  for (std::uint64_t seed = 1; seed <= 12; seed++) {
    const std::string source = generate_descriptor(seed, 3000, VALIDITY::SEMANTICS);
    if (has_infinity(source)) continue;
    compared++;
    const std::string path = directory.write("in.sbd", source);
    const std::string copy = directory.path_of("out.sbd");
    SBD_FILE_PARSER first;
    ASSERT_TRUE(first.read(path.c_str()));
    ASSERT_TRUE(first.write(copy.c_str()));
    const std::string text = file_content(copy);
    EXPECT_TRUE(text == written(first));
    SBD_FILE_PARSER second;
    ASSERT_TRUE(second.read(copy.c_str()));
    EXPECT_TRUE(dump_without_layout(second) == dump_without_layout(first));
    ASSERT_TRUE(second.write(copy.c_str()));  // While it is the document's own file.
    EXPECT_TRUE(file_content(copy) == text);
  }
  EXPECT_GT(compared, 0);
}

// ---- Single values -----------------------------------------------------------------------------

TEST(ROUND_TRIP, KeepsEveryFormOfValue) {
  for (const char* const value :
       {"0",           "+5",           "4294967295", "00",    "017",       "037777777777",
        "0x0",         "0xfF",         "0XFFFFFFFF", "0b0",   "0B101",     "1.5",
        "-5",          "5.",           "-.5",        "+.25",  "-0",        "-0.0000001",
        "64K",         "64KB",         "0x40M",      "010GB", "33mhz",     "0b11Hz",
        "true",        "FALSE",        "True",       "abc",   "tRue",      "\"\"",
        "\"a b\"",     "\"\n\"",       "\"# c\"",    "{1,2}", "{1K,2MHz}", "{{1,2},{a,\"b\"}}",
        "{true,-1.5}", "{{{1,2},3},4}"}) {
    SCOPED_TRACE(value);
    expect_round_trip("device d { x = " + std::string(value) + "; y = " + value +
                      " [k a.b, l]; # c\n z = " + value + "; # c\r\n}");
  }
}

TEST(ROUND_TRIP, KeepsRandomFloatsOfSixDecimals) {
  std::mt19937_64 random(3);
  std::string source = "device d {\n";
  std::vector<double> numbers;
  for (int i = 0; i < 20000; i++) {
    const auto micros = static_cast<std::int64_t>(random() >> (14 + random() % 50));
    numbers.push_back(static_cast<double>(micros) / (i % 2 == 0 ? 1e6 : -1e6));
    char digits[64];
    std::snprintf(digits, sizeof digits, "%f", numbers.back());
    source += "p" + std::to_string(i) + " = " + digits + ";\n";
  }
  const auto first = document_of(source + "}");
  const auto second = document_of(written(*first));
  for (std::size_t i = 0; i < numbers.size(); i++) {
    double value = 0;
    ASSERT_TRUE(second->get_value(("d.p" + std::to_string(i)).c_str(), value));
    ASSERT_EQ(value, numbers[i]);
  }
}

// ---- What the format has no form for -----------------------------------------------------------

TEST(ROUND_TRIP, DoesNotHoldForWhatCanNotBeRead) {
  const MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER made;
  ASSERT_TRUE(made.create_block("device", "d", nullptr));
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, written(made)));  // A block needs a member.
  ASSERT_TRUE(made.set_value("d", "x", 5UL, 10, SBD_PARA_VALUE::QU_NONE));
  EXPECT_TRUE(read_text(document, written(made)));
  ASSERT_TRUE(made.set_value("d", "r", string_list({})));
  EXPECT_FALSE(read_text(document, written(made)));  // A reference list needs an element.
  made.delete_parameter("d", "r");
  constexpr double k_infinity = std::numeric_limits<double>::infinity();
  ASSERT_TRUE(made.set_value("d", "x", -k_infinity, SBD_PARA_VALUE::QU_NONE));
  EXPECT_FALSE(read_text(document, written(made)));  // "-inf" is no number.
}

}  // namespace
