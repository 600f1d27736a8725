// Documents used by several threads; to be run with the thread sanitizer.
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

// Runs the work in several threads that start together.
void run_in_threads(int count, const std::function<void(int)>& work) {
  std::atomic<int> waiting(count);
  std::vector<std::thread> threads;
  for (int i = 0; i < count; i++) {
    threads.emplace_back([&, i] {
      waiting--;
      while (waiting > 0) std::this_thread::yield();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

std::string device_text(int parameters) {
  std::string text = "device d {\n";
  for (int i = 0; i < parameters; i++) {
    text += "  p" + std::to_string(i) + " = " + std::to_string(i) + "K [k .v]; # c\n";
  }
  return text + "  bus b { list = {1, \"s\", {2, 3}}; r <d.p0, .list>; }\n}\n";
}

// Asks a document of device_text everything once.
void expect_answers(const SBD_FILE_PARSER& document, int parameters) {
  for (int i = 0; i < parameters; i++) {
    const std::string name = "D.P" + std::to_string(i);
    unsigned long value = 0;
    ASSERT_TRUE(document.get_value(name.c_str(), value));
    ASSERT_EQ(value, static_cast<unsigned long>(i) * 1024);
    SBD_STRING full;
    SBD_NODE* const node = document.get_ref_object(name.c_str(), nullptr);
    ASSERT_TRUE(document.get_ref_name(node, full));
    SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
    ASSERT_TRUE(document.get_range(node, range));
    ASSERT_EQ(range.line, static_cast<unsigned long>(i) + 2);
    ASSERT_TRUE(document.get_comment_range(node, range));
    ASSERT_EQ(document.is_referenced(name.c_str()), i == 0);
  }
  SBD_STRING_LIST names;
  document.get_typed_blocks("bus", names, static_cast<const char*>(nullptr));
  EXPECT_EQ(names.size(), 1U);
  names.clear();
  EXPECT_TRUE(document.get_value("d.b", "r", names));
  EXPECT_EQ(names.size(), 2U);
  EXPECT_EQ(document.get_ref_object("d.none", nullptr), nullptr);
  EXPECT_TRUE(document.is_valid_parameter_name("p[0]"));
}

TEST(THREADS, MayUseADocumentEach) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.write("f.sbd", device_text(300));
  run_in_threads(2, [&](int) {
    for (int i = 0; i < 20; i++) {
      SBD_FILE_PARSER document;
      EXPECT_TRUE(document.read(path.c_str()));
      expect_answers(document, 300);
      SBD_NODE* const device = root_of(document);
      enter(document, make_assignment("mine", make_number(1)), device);
      document.delete_node(device->block->members, device);
      document.clear();
      EXPECT_TRUE(read_text(document, device_text(10)));
    }
  });
}

TEST(THREADS, MayReadFaultyTextsAtOnce) {
  MESSAGE_RECORDER recorder;
  run_in_threads(4, [&](int thread) {
    const std::string name = "f" + std::to_string(thread);
    SBD_FILE_PARSER document;
    for (int i = 0; i < 50; i++) {
      EXPECT_FALSE(read_text(document, "device d { x 5; }", name.c_str()));
      EXPECT_FALSE(read_text(document, "device d { x = 1; x = 2; }", name.c_str()));
      EXPECT_FALSE(read_text(document, "device d { r <no>; }", name.c_str()));
    }
  });
  EXPECT_EQ(recorder.messages().size(), 600U);
  EXPECT_EQ(recorder.texts(2).size(), 200U);
  EXPECT_TRUE(recorder.internal_errors().empty());
}

TEST(THREADS, MayQueryASharedDocument) {
  const auto document = document_of(device_text(2000));
  run_in_threads(4, [&](int) {
    for (int i = 0; i < 3; i++) expect_answers(*document, 2000);
  });
}

TEST(THREADS, MayQueryASharedDocumentThatWasEdited) {
  auto document = document_of(device_text(500));
  SBD_NODE* const device = root_of(*document);
  for (int i = 0; i < 200; i++) {
    const std::string name = "new" + std::to_string(i);
    SBD_NODE* const node = enter(*document, make_assignment(name.c_str(), make_number(i)), device);
    symbol_of(node)->parent = device;
  }
  run_in_threads(4, [&](int) {
    expect_answers(*document, 500);
    for (int i = 0; i < 200; i++) {
      unsigned long value = 0;
      ASSERT_TRUE(document->get_value(("d.NEW" + std::to_string(i)).c_str(), value));
      ASSERT_EQ(value, static_cast<unsigned long>(i));
    }
  });
}

TEST(THREADS, MayQueryASharedDocumentBuiltByHand) {
  SBD_FILE_PARSER document;
  SBD_NODE* const device = enter(document, make_block("device", "d"), nullptr);
  for (int i = 0; i < 1000; i++) {
    enter(document, make_assignment(("p" + std::to_string(i)).c_str(), make_number(i)), device);
  }
  ASSERT_TRUE(document.resolve_symbol(device, device));
  const SBD_FILE_PARSER& shared = document;
  run_in_threads(4, [&](int) {
    for (int i = 0; i < 1000; i++) {
      unsigned long value = 0;
      ASSERT_TRUE(shared.get_value("d", ("P" + std::to_string(i)).c_str(), value));
      ASSERT_EQ(value, static_cast<unsigned long>(i));
    }
  });
}

TEST(THREADS, MayPassADocumentOn) {
  auto document = document_of(device_text(100));
  std::thread([&] {
    document->delete_node(root_of(*document)->block->members, root_of(*document));
  }).join();
  std::thread([&] { EXPECT_FALSE(document->is_parameter_defined("d.p0")); }).join();
  std::thread([&] { document.reset(); }).join();
}

}  // namespace
