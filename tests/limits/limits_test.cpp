// How far things go: nesting that needs no more stack the deeper it is, and counts around the
// widths of the fields that hold them.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>

#include "sbd/sbd_source_document.h"
#include "sbd/sbd_veldran.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool k_is_sanitized = true;
#else
constexpr bool k_is_sanitized = false;
#endif

constexpr std::size_t k_depth = k_is_sanitized ? 20000 : 100000;
constexpr std::size_t k_stack = k_is_sanitized ? std::size_t{512} << 10 : std::size_t{128} << 10;

std::string repeat(const std::string& text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  for (std::size_t i = 0; i != count; ++i) result += text;
  return result;
}

std::string nested_blocks(std::size_t depth) {
  return "device d {\n" + repeat("module m {\n", depth) + "x = 1; y < .x >;\n" +
         repeat("}\n", depth) + "}\n";
}

std::string deepest(std::size_t depth) {
  return "d" + repeat(".m", depth);
}

std::string nested_lists(std::size_t depth) {
  return "device d { x = " + repeat("{1, ", depth) + "2" + repeat("}", depth) + "; z = 1; }\n";
}

// Runs the work in a thread with a small stack.
void run_in_small_stack(const std::function<void()>& work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, k_stack), 0);
  pthread_t thread;
  const auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  void* const argument = const_cast<std::function<void()>*>(&work);
  ASSERT_EQ(pthread_create(&thread, &attributes, run, argument), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

// ---- Nesting -----------------------------------------------------------------------------------

TEST(DEPTH, EditsOfTheTree) {
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, nested_blocks(k_depth)));
    const std::string block = deepest(k_depth);
    EXPECT_TRUE(document.set_value(block.c_str(), "x", 2UL, 16, SBD_PARA_VALUE::QU_KB));
    EXPECT_TRUE(document.set_value(block.c_str(), "z", SBD_STRING_LIST{(block + ".x").c_str()}));
    EXPECT_TRUE(document.create_block("bus", "b", block.c_str()));
    EXPECT_TRUE(document.rename("b", "c", block.c_str()));
    EXPECT_TRUE(document.move_member((block + ".c").c_str(), (block + ".x").c_str(), false));
    EXPECT_TRUE(document.set_attribute(block.c_str(), "x", nullptr));
    document.delete_reference((block + ".x").c_str());
    document.delete_parameter(block.c_str(), "x");
    EXPECT_FALSE(document.is_parameter_defined((block + ".x").c_str()));
    document.delete_block("d.m");
    EXPECT_FALSE(document.is_block_defined("d.m"));
  });
}

// The blanks in front of the lines grow with the square of the depth.
TEST(DEPTH, Writing) {
  constexpr std::size_t k_written_depth = 3000;
  run_in_small_stack([] {
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, nested_blocks(k_written_depth)));
    EXPECT_TRUE(document.write("/dev/null"));
    ASSERT_TRUE(read_text(document, nested_lists(k_depth)));
    EXPECT_TRUE(document.write("/dev/null"));
  });
}

TEST(DEPTH, EditsThatKeepTheText) {
  const TEMPORARY_DIRECTORY folder;
  const std::string path = folder.write("deep.sbd", nested_blocks(k_depth));
  run_in_small_stack([&path] {
    SBD_SOURCE_DOCUMENT source;
    ASSERT_TRUE(source.read(path.c_str()));
    const std::string block = deepest(k_depth);
    EXPECT_TRUE(source.set_value((block + ".x").c_str(), "0x2K"));
    EXPECT_TRUE(source.add_value((block + ".z").c_str(), nested_lists(10).substr(15, 51).c_str()));
    ASSERT_TRUE(source.begin());
    EXPECT_TRUE(source.rename("d.m", "n", true));
    EXPECT_TRUE(source.remove_block("d.n"));
    ASSERT_TRUE(source.roll_back());
    SBD_STRING why;
    EXPECT_TRUE(source.verify(why)) << why;
    EXPECT_TRUE(source.save(nullptr));
  });
}

TEST(DEPTH, EditsOfNestedLists) {
  run_in_small_stack([] {
    const std::string text = nested_lists(k_depth);
    SBD_SOURCE_DOCUMENT source;
    ASSERT_TRUE(source.read_text(text.data(), text.size(), TEST_FILE));
    const std::string list = repeat("{3, ", k_depth) + "4" + repeat("}", k_depth);
    EXPECT_TRUE(source.set_value("d.x", list.c_str()));
    EXPECT_TRUE(source.add_value("d.y", list.c_str()));
    SBD_STRING why;
    EXPECT_TRUE(source.verify(why)) << why;
    EXPECT_TRUE(source.set_value("d.x", "1"));
    EXPECT_TRUE(source.remove_parameter("d.y"));
    EXPECT_EQ(source.text(), "device d { x = 1; z = 1; }\n");
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(document, text));
    const SBD_PARA_VALUE* const value = document.get_para_value("d", "x");
    EXPECT_TRUE(document.set_para_value("d", "copy", *value));
  });
}

TEST(DEPTH, DevicesAreRead) {
  run_in_small_stack([] {
    MESSAGE_RECORDER recorder;
    const std::string text = "device board { family = veldran_arm; type = qmxa4;\n" +
                             repeat("module m {\n", k_depth) +
                             "type = veldran_stripe; parameters clocks { input_clock_frequency = " +
                             repeat("{1, ", k_depth) + "2" + repeat("}", k_depth) + "; }\n" +
                             repeat("}\n", k_depth) + "}\n";
    SBD_VELDRAN device("board");
    EXPECT_FALSE(device.read_text(text.data(), text.size(), TEST_FILE));
    EXPECT_FALSE(device.get_parameter_faults().empty());
    EXPECT_TRUE(recorder.conditions().empty());
  });
}

// ---- Counts ------------------------------------------------------------------------------------

// How many references have found a node is kept in 16 bits.
TEST(COUNTS, ReferencesToOneObject) {
  for (const std::size_t count : {65534U, 65535U, 65536U, 70000U}) {
    SCOPED_TRACE(count);
    MESSAGE_RECORDER recorder;
    SBD_FILE_PARSER document;
    ASSERT_TRUE(read_text(
        document, "device d { a = 1; r < d.a" + repeat(", d.a", count - 1) + " >; s < .a >; }"));
    EXPECT_TRUE(document.is_referenced("d.a"));
    document.delete_parameter("d", "r");
    EXPECT_TRUE(document.is_referenced("d.a"));
    document.delete_parameter("d", "a");
    EXPECT_TRUE(document.is_parameter_defined("d.a"));
    EXPECT_EQ(recorder.numbers(), std::vector<int>{8});
    document.delete_parameter("d", "s");
    EXPECT_FALSE(document.is_referenced("d.a"));
    document.delete_parameter("d", "a");
    EXPECT_FALSE(document.is_parameter_defined("d.a"));
  }
}

TEST(COUNTS, LongNamesAreEditedAndAskedFor) {
  const std::string name(std::size_t{1} << 20, 'n');
  SBD_SOURCE_DOCUMENT source;
  const std::string text = "device d { a = 1; }\n";
  ASSERT_TRUE(source.read_text(text.data(), text.size(), TEST_FILE));
  EXPECT_TRUE(source.rename("d.a", name.c_str(), true));
  EXPECT_TRUE(source.document().is_parameter_defined(("d." + name).c_str()));
  EXPECT_TRUE(source.rename(("d." + name).c_str(), "a", true));
  EXPECT_EQ(source.text(), text);
}

TEST(COUNTS, EveryFaultIsReported) {
  constexpr std::size_t k_faults = 20000;
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(read_text(document, repeat("$", k_faults)));
  EXPECT_EQ(recorder.messages().size(), k_faults);
  recorder.forget();
  EXPECT_FALSE(read_text(document, "device d {" + repeat("a = 1;", k_faults + 1) + "}"));
  EXPECT_EQ(recorder.messages().size(), k_faults);
  recorder.forget();
  EXPECT_FALSE(read_text(document, "device d { r < .n" + repeat(", .n", k_faults - 1) + ">; }"));
  EXPECT_EQ(recorder.messages().size(), k_faults);
}

// In a file, an index has one digit; a caller's name may have more, which has no form in a file.
TEST(COUNTS, DigitsOfAnIndex) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_TRUE(read_text(document, "device d { x[9] = 1; }"));
  EXPECT_FALSE(read_text(document, "device d { x[10] = 1; }"));
  EXPECT_TRUE(document.is_valid_parameter_name("x[10]"));
}

// ---- Messages
// ------------------------------------------------------------------------------------

// There are as many as there are faults, and none is kept: memory does not grow with them.
TEST(COUNTS, MessagesAreNotKept) {
  const std::string text(200000, '@');
  std::size_t count = 0;
  std::size_t first_blocks = 0;
  std::size_t most_blocks = 0;
  sbd_host::set_message_handler([&](const sbd_host::MESSAGE&) {
    const std::size_t blocks = sbd_host::get_memory_account("SBD").live_blocks;
    if (count++ == 0) first_blocks = blocks;
    most_blocks = std::max(most_blocks, blocks);
  });
  {
    SBD_FILE_PARSER document;
    EXPECT_FALSE(document.read_text(text.data(), text.size(), "many.sbd"));
  }
  sbd_host::set_message_handler({});
  EXPECT_GE(count, text.size());
  EXPECT_EQ(most_blocks, first_blocks);
}

}  // namespace
