// Documents that are asked so often that they keep an index of whole names: the answers are those
// that the first questions got, whatever happens to the document meanwhile.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

// More questions than any of these documents needs until it is asked often.
constexpr int OFTEN = 5000;

constexpr char TEXT[] =
    "device Board {\n"
    "  value = 1;\n"
    "  bus a { same = 1; region[0] = 2; slave inner { same = 3; Deep_and_rather_long_name = 4; } "
    "}\n"
    "  bus b { same = 5; r <Board.a.same, .same>; }\n"
    "}\n"
    "device other { same = 6; bus b { same = 7; } }\n";

std::size_t live_bytes() {
  return sbd_host::get_memory_account("SBD").live_bytes;
}

void ask_often(const SBD_FILE_PARSER& document, const char* name) {
  for (int i = 0; i != OFTEN; ++i) static_cast<void>(document.get_ref_object(name, nullptr));
}

std::string changed_case(std::string name, std::mt19937& random) {
  for (char& c : name) {
    if (random() % 2 == 0) continue;
    const auto byte = static_cast<unsigned char>(c);
    c = static_cast<char>(std::isupper(byte) != 0 ? std::tolower(byte) : std::toupper(byte));
  }
  return name;
}

// The full names of all objects.
std::vector<std::string> names_of(const SBD_FILE_PARSER& document) {
  std::vector<std::string> names;
  std::vector<const SBD_NODE*> left = {document.get_parser_para().root};
  while (!left.empty()) {
    const SBD_NODE* const node = left.back();
    left.pop_back();
    if (node == nullptr) continue;
    left.push_back(node->next);
    SBD_STRING name;
    if (document.get_ref_name(node, name)) names.emplace_back(name.data(), name.size());
    if (node->type == SBD_NODE::NT_BLOCK) left.push_back(node->block->members);
  }
  return names;
}

// What a question gets: the full name of what was found, and what is reported.
std::vector<std::string> answer_of(const SBD_FILE_PARSER& document, const std::string& question) {
  MESSAGE_RECORDER recorder;
  const SBD_NODE* const node = document.get_ref_object(question.c_str(), nullptr);
  std::vector<std::string> answer = recorder.conditions();
  SBD_STRING name;
  if (document.get_ref_name(node, name)) answer.emplace_back(name.data(), name.size());
  return answer;
}

TEST(MANY_LOOKUPS, AnswersStayTheSame) {
  const auto document = document_of(TEXT);
  std::vector<std::string> questions = names_of(*document);
  std::mt19937 random(4711);
  for (const std::string& name : names_of(*document)) {
    questions.push_back(changed_case(name, random));
    questions.push_back(name + ".same");
    questions.push_back(name + "x");
    questions.push_back("x" + name);
    questions.push_back(name.substr(0, name.size() - 1));
    questions.push_back(name + ".");
    questions.push_back("." + name);
  }
  for (const char* const odd :
       {"", ".", "..", "board..same", "same", "board.b.", "board.a.region[0]", "board.a.region[1]",
        "board.a.region.0", "nothing.at.all"}) {
    questions.emplace_back(odd);
  }

  const std::size_t bytes_before = live_bytes();
  ask_often(*document, "board.value");
  ASSERT_GT(live_bytes(), bytes_before) << "no index was made";
  for (const std::string& question : questions) {
    SCOPED_TRACE(question);
    const auto unasked = document_of(TEXT);
    EXPECT_EQ(answer_of(*document, question), answer_of(*unasked, question));
  }
}

TEST(MANY_LOOKUPS, RelativeNamesAreThoseOfTheirBlock) {
  const auto document = document_of(TEXT);
  ask_often(*document, "board.value");
  const SBD_NODE* const inner = document->get_ref_object("board.a.inner", nullptr);
  ASSERT_NE(inner, nullptr);
  EXPECT_EQ(document->get_ref_object("same", inner),
            document->get_ref_object("board.a.inner.same", nullptr));
  EXPECT_EQ(document->get_ref_object("board.value", inner), nullptr);
}

TEST(MANY_LOOKUPS, TwoNameFormsToo) {
  const auto document = document_of(TEXT);
  ask_often(*document, "board.value");
  unsigned long number = 0;
  EXPECT_TRUE(document->get_value("Board.A.Inner", "SAME", number));
  EXPECT_EQ(number, 3U);
  EXPECT_TRUE(document->get_value("board", "b.same", number));
  EXPECT_EQ(number, 5U);
  EXPECT_FALSE(document->get_value("board.a", "nothing", number));
}

// Every change of names takes effect at once, also after many questions.
TEST(MANY_LOOKUPS, EditsTakeEffect) {
  const auto document = document_of(TEXT);
  const auto has = [&document](const char* name) {
    return document->get_ref_object(name, nullptr) != nullptr;
  };
  ask_often(*document, "board.a.same");
  document->delete_parameter("board.a", "same");
  EXPECT_TRUE(has("board.a.same")) << "it is referenced";
  document->delete_reference("board.a.same");
  document->delete_parameter("board.a", "same");
  EXPECT_FALSE(has("board.a.same"));

  ask_often(*document, "board.b.same");
  EXPECT_TRUE(document->rename("b", "c", "board"));
  EXPECT_FALSE(has("board.b.same"));
  EXPECT_TRUE(has("board.c.same"));

  ask_often(*document, "board.c.same");
  document->create_block("slave", "made", "board.c");
  document->set_value("board.c.made", "p", 1);
  EXPECT_TRUE(has("board.c.made.p"));

  ask_often(*document, "board.c.made.p");
  document->delete_block("board.c.made");
  EXPECT_FALSE(has("board.c.made.p"));
  EXPECT_TRUE(has("other.b.same"));
}

TEST(MANY_LOOKUPS, FirstEditAfterTheyWereManyTakesEffect) {
  for (const char* const name : {"board.a.inner", "other"}) {
    const auto document = document_of(TEXT);
    const std::string member = std::string(name) + ".same";
    ask_often(*document, member.c_str());
    document->delete_block(name);
    EXPECT_EQ(document->get_ref_object(member.c_str(), nullptr), nullptr);
  }
  const auto document = document_of(TEXT);
  ask_often(*document, "board.value");
  EXPECT_TRUE(document->rename("value", "worth", "board"));
  EXPECT_EQ(document->get_ref_object("board.value", nullptr), nullptr);
  EXPECT_NE(document->get_ref_object("board.worth", nullptr), nullptr);
}

TEST(MANY_LOOKUPS, AnotherReadForgetsThem) {
  const auto document = document_of(TEXT);
  ask_often(*document, "board.a.same");
  const std::string text = "device board { bus c { same = 1; } }";
  ASSERT_TRUE(document->read_text(text.data(), text.size(), "again.sbd"));
  EXPECT_EQ(document->get_ref_object("board.a.same", nullptr), nullptr);
  ask_often(*document, "board.c.same");
  document->clear();
  EXPECT_EQ(document->get_ref_object("board.c.same", nullptr), nullptr);
}

// Paths of every length, also of those that the index has no room for.
TEST(MANY_LOOKUPS, DeepBlocksAreFound) {
  constexpr int DEPTH = 300;
  std::string text = "device d0 { x0 = 0;";
  for (int i = 1; i != DEPTH; ++i) {
    text +=
        " bus d" + std::to_string(i) + " { x" + std::to_string(i) + " = " + std::to_string(i) + ";";
  }
  text += std::string(DEPTH, '}');
  const auto document = document_of(text.c_str());
  ask_often(*document, "d0.x0");
  std::string path;
  for (int i = 0; i != DEPTH; ++i) {
    path += (i == 0 ? "d" : ".d") + std::to_string(i);
    unsigned long number = 0;
    ASSERT_TRUE(document->get_value((path + ".X" + std::to_string(i)).c_str(), number)) << path;
    ASSERT_EQ(number, static_cast<unsigned long>(i));
    ASSERT_FALSE(document->get_value((path + ".y").c_str(), number));
  }
}

// Without memory for it there is no index, and nobody notices.
TEST(MANY_LOOKUPS, NoMemoryForTheIndexIsNoFault) {
  for (std::size_t count = 1; count != 64; ++count) {
    const auto document = document_of(TEXT);
    MESSAGE_RECORDER recorder;
    const std::size_t bytes_before = live_bytes();
    sbd_host::fail_allocation("SBD", count, true);
    ask_often(*document, "board.a.same");
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_NE(document->get_ref_object("board.a.inner.same", nullptr), nullptr);
    EXPECT_EQ(document->get_ref_object("board.a.inner.other", nullptr), nullptr);
    EXPECT_TRUE(recorder.is_silent());
    if (live_bytes() == bytes_before) continue;
    EXPECT_GT(count, 1U);
    return;  // It succeeded.
  }
  ADD_FAILURE() << "it never succeeded";
}

}  // namespace
