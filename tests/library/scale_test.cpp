// Large documents. There are no limits on time here; what takes more than linear time would run
// into the time limit of the test program.
#include <gtest/gtest.h>

#include <limits.h>
#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define IS_SANITIZED 1
#elif defined(__has_feature)
#define IS_SANITIZED (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define IS_SANITIZED 0
#endif

namespace {

constexpr int SHRINK = IS_SANITIZED ? 10 : 1;
constexpr int MILLION = 1000000 / SHRINK;
constexpr int HUNDRED_THOUSAND = 100000 / SHRINK;

// Appends without the temporary strings that would dominate in sanitized programs.
std::string text_of_names(int count) {
  std::string text = "device d {\n";
  text.reserve(static_cast<std::size_t>(count) * 20);
  for (int i = 0; i < count; i++) {
    text += "name_";
    text += std::to_string(i);
    text += "=1;\n";
  }
  return text += "}\n";
}

std::string name_of(int index) {
  return "d.NAME_" + std::to_string(index);
}

// ---- Many names in one block -------------------------------------------------------------------

TEST(MANY_NAMES, AreReadFoundAndCleared) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text_of_names(MILLION)));
  EXPECT_EQ(count_symbols(document), static_cast<std::size_t>(MILLION) + 1);
  for (int i = 0; i < MILLION; i++) {
    unsigned long value = 0;
    ASSERT_TRUE(document.get_value(name_of(i).c_str(), value));
  }
  EXPECT_FALSE(document.is_parameter_defined(name_of(MILLION).c_str()));
  document.clear();
  EXPECT_EQ(count_symbols(document), 0U);
}

TEST(MANY_NAMES, MayBeCheckedAgain) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text_of_names(MILLION)));
  EXPECT_TRUE(document.resolve_symbol(root_of(document), root_of(document)));
  EXPECT_TRUE(document.check_semantic(root_of(document)));
  EXPECT_TRUE(recorder.is_silent());
}

TEST(MANY_NAMES, HaveTheirPositions) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text_of_names(MILLION)));
  unsigned long line = 2;
  for (const SBD_NODE* node = root_of(document)->block->members; node; node = node->next) {
    SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
    ASSERT_TRUE(document.get_range(node, range));
    ASSERT_EQ(range.line, line++);
  }
}

// Deletes all members in the order and expects nothing but the block to be left.
void delete_members(SBD_FILE_PARSER& document, const std::vector<SBD_NODE*>& order) {
  SBD_NODE* const device = root_of(document);
  for (SBD_NODE* const node : order) document.delete_node(node, device);
  EXPECT_EQ(device->block->members, nullptr);
  EXPECT_EQ(count_symbols(document), 1U);
}

TEST(MANY_NAMES, AreDeletedFromTheFront) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text_of_names(MILLION)));
  delete_members(document, members_of(document, root_of(document)));
}

TEST(MANY_NAMES, AreDeletedFromTheBack) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text_of_names(MILLION)));
  std::vector<SBD_NODE*> order = members_of(document, root_of(document));
  std::reverse(order.begin(), order.end());
  delete_members(document, order);
}

TEST(MANY_NAMES, AreDeletedInRandomOrder) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text_of_names(MILLION)));
  std::vector<SBD_NODE*> order = members_of(document, root_of(document));
  std::shuffle(order.begin(), order.end(), std::mt19937(1));
  delete_members(document, order);
}

TEST(MANY_NAMES, AreFoundWhileOthersAreDeleted) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text_of_names(HUNDRED_THOUSAND)));
  SBD_NODE* const device = root_of(document);
  for (int i = 0; i < HUNDRED_THOUSAND - 1; i++) {
    document.delete_node(document.get_ref_object(name_of(i).c_str(), nullptr), device);
    ASSERT_FALSE(document.is_parameter_defined(name_of(i).c_str()));
    ASSERT_TRUE(document.is_parameter_defined(name_of(i + 1).c_str()));
  }
}

TEST(MANY_NAMES, MayBeTopLevelBlocks) {
  std::string text;
  for (int i = 0; i < HUNDRED_THOUSAND; i++) text += "device d" + std::to_string(i) + " {x=1;}\n";
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text));
  for (int i = 0; i < HUNDRED_THOUSAND; i++) {
    ASSERT_TRUE(document.is_parameter_defined(("D" + std::to_string(i) + ".X").c_str()));
  }
  for (SBD_NODE* const node : members_of(document, nullptr)) document.delete_node(node, nullptr);
  EXPECT_EQ(root_of(document), nullptr);
}

TEST(MANY_NAMES, MayBeTheSameInManyBlocks) {
  std::string text = "device d {\n";
  for (int i = 0; i < HUNDRED_THOUSAND; i++)
    text += "bus b" + std::to_string(i) + " {x=1; r <.x>;}\n";
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text + "}"));
  for (int i = 0; i < HUNDRED_THOUSAND; i++) {
    ASSERT_TRUE(document.is_parameter_defined(("D.B" + std::to_string(i) + ".X").c_str()));
  }
}

// ---- One bucket --------------------------------------------------------------------------------

// Different names whose hashes are all the same: each of their pairs of letters adds the same.
std::vector<std::string> names_of_one_bucket(int count) {
  std::vector<std::string> names;
  for (int i = 0; i < count; i++) {
    std::string name = "n";
    for (int bit = 0; bit < 20; bit++) name += (i >> bit & 1) != 0 ? "bA" : "aQ";
    names.push_back(name);
  }
  return names;
}

TEST(ONE_BUCKET, HoldsAllNames) {
  const std::vector<std::string> names = names_of_one_bucket(HUNDRED_THOUSAND);
  std::string text = "device d {\n";
  for (const std::string& name : names) text += name + "=1;\n";
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text + "}"));
  ASSERT_GE(chain_of(document, names[0].c_str()).size(), names.size());

  for (const std::string& name : names) {
    ASSERT_TRUE(document.is_parameter_defined("d", name.c_str()));
  }
  std::vector<SBD_NODE*> order = members_of(document, root_of(document));
  std::shuffle(order.begin(), order.end(), std::mt19937(1));
  delete_members(document, order);
}

// ---- Equal names -------------------------------------------------------------------------------

TEST(EQUAL_NAMES, AreAllReportedButTheFirst) {
  std::string text = "device d {\n";
  for (int i = 0; i < HUNDRED_THOUSAND; i++) text += i % 2 == 0 ? "x=1;\n" : "X=1;\n";
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, text + "}"));
  ASSERT_EQ(recorder.messages().size(), static_cast<std::size_t>(HUNDRED_THOUSAND) - 1);
  EXPECT_EQ(recorder.messages().front().text, declaration_error_text(TEST_FILE, "X", 3));
  EXPECT_EQ(recorder.messages().back().text,
            declaration_error_text(TEST_FILE, "X", HUNDRED_THOUSAND + 1));
}

TEST(EQUAL_NAMES, OfBlocksAreAllReportedButTheFirst) {
  std::string text;
  for (int i = 0; i < HUNDRED_THOUSAND; i++) text += "device d {x=1;}\n";
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, text));
  EXPECT_EQ(recorder.texts(3).size(), static_cast<std::size_t>(HUNDRED_THOUSAND) - 1);
}

// ---- References --------------------------------------------------------------------------------

TEST(MANY_REFERENCES, MayBeToOneTarget) {
  std::string text = "device d {\n a = 1; b = 1;\n";
  for (int i = 0; i < HUNDRED_THOUSAND; i++) text += "r" + std::to_string(i) + " <.a>;\n";
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text + "}"));
  const SBD_NODE* const a = document.get_ref_object("d.a", nullptr);
  for (int i = 0; i < HUNDRED_THOUSAND; i++) {
    ASSERT_EQ(document.get_para_ref("d", ("r" + std::to_string(i)).c_str())->target, a);
  }
  EXPECT_TRUE(document.is_referenced("d.a"));
  EXPECT_FALSE(document.is_referenced("d.b"));
}

TEST(MANY_REFERENCES, MayAllBeDeleted) {
  std::string text = "device d {\n a = 1;\n";
  for (int i = 0; i < HUNDRED_THOUSAND; i++) text += "r" + std::to_string(i) + " <.a>;\n";
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text + "}"));
  SBD_NODE* const device = root_of(document);
  for (SBD_NODE* const node : members_of(document, device)) {
    if (node == device->block->members) continue;
    ASSERT_TRUE(document.is_referenced("d.a"));
    document.delete_node(node, device);
  }
  EXPECT_FALSE(document.is_referenced("d.a"));
}

TEST(MANY_REFERENCES, MayBeInOneStatement) {
  std::string text = "device d {\n a = 1; r <.a";
  for (int i = 0; i < HUNDRED_THOUSAND; i++) text += ",\nd.a";
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, text + ">; }"));
  SBD_STRING_LIST names;
  EXPECT_TRUE(document.get_value("d", "r", names));
  EXPECT_EQ(names.size(), static_cast<std::size_t>(HUNDRED_THOUSAND) + 1);
}

TEST(MANY_REFERENCES, MayAllBeUnresolved) {
  std::string text = "device d {\n r <.no";
  for (int i = 0; i < HUNDRED_THOUSAND; i++) text += ", .no";
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, text + ">; }"));
  EXPECT_EQ(recorder.texts(4).size(), static_cast<std::size_t>(HUNDRED_THOUSAND) + 1);
}

// ---- Built by hand -----------------------------------------------------------------------------

// Many parameters in one block, their names chosen by the caller.
void build(SBD_FILE_PARSER& document, const std::vector<std::string>& names) {
  SBD_NODE* const device = enter(document, make_block("device", "d"), nullptr);
  for (const std::string& name : names) {
    enter(document, make_assignment(name.c_str(), make_number(1)), device);
  }
}

TEST(BUILT_BY_HAND, ManyNamesAreResolvedFoundAndDeleted) {
  std::vector<std::string> names;
  for (int i = 0; i < HUNDRED_THOUSAND; i++) names.push_back("name_" + std::to_string(i));
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  build(document, names);
  ASSERT_TRUE(document.resolve_symbol(root_of(document), root_of(document)));
  for (int i = 0; i < HUNDRED_THOUSAND; i++) {
    ASSERT_TRUE(document.is_parameter_defined(name_of(i).c_str()));
  }
  std::vector<SBD_NODE*> order = members_of(document, root_of(document));
  std::shuffle(order.begin(), order.end(), std::mt19937(1));
  delete_members(document, order);
  EXPECT_TRUE(recorder.is_silent());
}

TEST(BUILT_BY_HAND, ManyEqualNamesAreReported) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  build(document, std::vector<std::string>(static_cast<std::size_t>(HUNDRED_THOUSAND), "x"));
  EXPECT_FALSE(document.resolve_symbol(root_of(document), root_of(document)));
  EXPECT_EQ(recorder.texts(3).size(), static_cast<std::size_t>(HUNDRED_THOUSAND) - 1);
}

// ---- Deep nesting in a small stack -------------------------------------------------------------

// Runs the work in a thread with a small stack. What the sanitizers put on it does not count.
void run_in_small_stack(const std::function<void()>& work) {
  const std::size_t size = IS_SANITIZED ? std::size_t{512} << 10 : std::size_t{128} << 10;
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

std::string repeat(const char* text, int count) {
  std::string result;
  for (int i = 0; i < count; i++) result += text;
  return result;
}

std::string text_of_nested_blocks(int depth) {
  return "device b {" + repeat("bus b {", depth) + "x=1; r <.x>;" + repeat("}", depth) + "}";
}

TEST(NESTED_BLOCKS, AreReadQueriedAndCleared) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, text_of_nested_blocks(MILLION)));
    const std::string block = "b" + repeat(".B", MILLION);
    SBD_NODE* const x = document.get_ref_object((block + ".x").c_str(), nullptr);
    ASSERT_NE(x, nullptr);
    SBD_STRING name;
    EXPECT_TRUE(document.get_ref_name(x, name));
    EXPECT_EQ(name.size(), block.size() + 2);
    EXPECT_TRUE(document.is_referenced((block + ".x").c_str()));
    EXPECT_FALSE(document.is_referenced("b"));
    EXPECT_TRUE(document.resolve_symbol(root_of(document), root_of(document)));
    document.clear();
    EXPECT_EQ(root_of(document), nullptr);
  });
}

// All full names together have a size that is the square of the depth.
TEST(NESTED_BLOCKS, AreListed) {
  constexpr int DEPTH = 5000 / SHRINK;
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, text_of_nested_blocks(DEPTH)));
    SBD_STRING_LIST names;
    document.get_typed_blocks("bus", names, static_cast<const char*>(nullptr));
    EXPECT_EQ(names.size(), static_cast<std::size_t>(DEPTH));
    document.get_typed_blocks("slave", names, static_cast<const char*>(nullptr));
    EXPECT_EQ(names.size(), 0U);
  });
}

TEST(NESTED_BLOCKS, AreSearchedWithoutListing) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, text_of_nested_blocks(MILLION)));
    SBD_STRING_LIST names;
    document.get_typed_blocks("device", names, static_cast<const char*>(nullptr));
    EXPECT_EQ(names.size(), 1U);
  });
}

TEST(NESTED_BLOCKS, AreDestroyed) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, text_of_nested_blocks(MILLION)));
  });
}

TEST(NESTED_BLOCKS, AreDeletedFromOutside) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, text_of_nested_blocks(MILLION)));
    document.delete_node(root_of(document), nullptr);
    EXPECT_EQ(count_symbols(document), 0U);
  });
}

TEST(NESTED_BLOCKS, BuiltByHandAreResolvedCheckedAndFreed) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    SBD_NODE* node = enter(document, make_block("device", "b0"), nullptr);
    for (int i = 1; i < HUNDRED_THOUSAND; i++) {
      node = enter(document, make_block("bus", ("b" + std::to_string(i)).c_str()), node);
    }
    EXPECT_TRUE(document.resolve_symbol(root_of(document), root_of(document)));
    EXPECT_TRUE(document.check_semantic(root_of(document)));
    EXPECT_FALSE(document.is_referenced(node, root_of(document)));
  });
}

TEST(NESTED_BLOCKS, ThatAreNotClosedAreReportedOnce) {
  run_in_small_stack([] {
    MESSAGE_RECORDER recorder;
    SBD_FILE_PARSER document;
    EXPECT_FALSE(read_text(document, repeat("device b {", MILLION)));
    EXPECT_EQ(recorder.texts(), std::vector<std::string>{syntax_error_text(TEST_FILE, "", 1)});
  });
}

TEST(NESTED_LISTS, AreReadAndDestroyed) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(
        document, "device d { x = " + repeat("{1,", MILLION) + "2" + repeat("}", MILLION) + "; }"));
    const SBD_PARA_VALUE* value = document.get_para_value("d", "x");
    int depth = 0;
    for (; value->type == SBD_PARA_VALUE::VT_LIST; value = (*value->list)[1]) {
      ASSERT_EQ((*value->list)[0]->number, 1.0);
      depth++;
    }
    EXPECT_EQ(depth, MILLION);
    EXPECT_EQ(value->number, 2.0);
  });
}

TEST(NESTED_LISTS, AtTheirFirstElementAreReadAndDestroyed) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(
        document, "device d { x = " + repeat("{", MILLION) + "1" + repeat(",2}", MILLION) + "; }"));
    const SBD_PARA_VALUE* value = document.get_para_value("d", "x");
    int depth = 0;
    for (; value->type == SBD_PARA_VALUE::VT_LIST; value = (*value->list)[0]) depth++;
    EXPECT_EQ(depth, MILLION);
  });
}

TEST(NESTED_LISTS, HaveTheirPositions) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(
        document, "device d { x = " + repeat("{1,", MILLION) + "2" + repeat("}", MILLION) + "; }"));
    SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
    ASSERT_TRUE(document.get_range(document.get_para_value("d", "x"), range));
    EXPECT_EQ(range.offset, 15U);
    EXPECT_EQ(range.length, static_cast<std::size_t>(MILLION) * 4 + 1);
  });
}

TEST(NESTED_LISTS, BuiltByHandAreFreed) {
  run_in_small_stack([] {
    SBD_PARA_VALUE* value = make_number(1);
    for (int i = 0; i < HUNDRED_THOUSAND; i++) value = make_list({value, make_string("s")});
    SBD_FILE_PARSER().free_para_val(value);
  });
}

TEST(NESTED_LISTS, ThatAreNotClosedAreReportedOnce) {
  run_in_small_stack([] {
    MESSAGE_RECORDER recorder;
    SBD_FILE_PARSER document;
    EXPECT_FALSE(read_text(document, "device d { x = " + repeat("{1,", MILLION)));
    EXPECT_EQ(recorder.texts(), std::vector<std::string>{syntax_error_text(TEST_FILE, "", 1)});
  });
}

// ---- Long lists --------------------------------------------------------------------------------

TEST(LONG_LIST, KeepsItsElements) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, "device d { x = {0" + repeat(",\n1", MILLION) + "}; }"));
  const SBD_VALUE_LIST& list = *document.get_para_value("d", "x")->list;
  ASSERT_EQ(list.size(), static_cast<std::size_t>(MILLION) + 1);
  EXPECT_EQ(list[0]->number, 0.0);
  EXPECT_EQ(list[list.size() - 1]->number, 1.0);
}

// Strings are where a ";" may stand that ends nothing.
TEST(LONG_LIST, OfStringsHasItsPosition) {
  std::string list = "{\";\"";
  for (int i = 1; i != MILLION; i++) list += ",\";\"";
  list += "}";
  const std::string statement = "x = " + list + " ;";
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, "device d {\n" + statement + " # c\n}"));
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  ASSERT_TRUE(document.get_range(document.get_para_value("d", "x"), range));
  EXPECT_EQ(range.length, list.size());
  const SBD_NODE* const node = document.get_ref_object("d.x", nullptr);
  ASSERT_TRUE(document.get_range(node, range));
  EXPECT_EQ(range.length, statement.size());
  ASSERT_TRUE(document.get_comment_range(node, range));
  EXPECT_EQ(range.column, statement.size() + 2);
}

TEST(LONG_LIST, OfAttributesKeepsItsElements) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(
      read_text(document, "device d { x = 1 [k" + repeat(", k a.b", HUNDRED_THOUSAND) + "]; }"));
  int count = 0;
  for (const auto* attribute = document.get_para_attr("d", "x"); attribute; count++) {
    attribute = attribute->next;
  }
  EXPECT_EQ(count, HUNDRED_THOUSAND + 1);
}

// ---- Many faults -------------------------------------------------------------------------------

TEST(MANY_FAULTS, OfSyntaxAreAllReported) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(
      read_text(document, "device d {\n" + repeat("x 5; y = 1;\n", HUNDRED_THOUSAND) + "}"));
  EXPECT_EQ(recorder.texts(2).size(), static_cast<std::size_t>(HUNDRED_THOUSAND));
}

TEST(MANY_FAULTS, OfUnexpectedCharactersAreAllReported) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, repeat("@", HUNDRED_THOUSAND)));
  EXPECT_EQ(recorder.texts(2).size(), static_cast<std::size_t>(HUNDRED_THOUSAND));
}

}  // namespace
