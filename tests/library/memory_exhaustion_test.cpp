// The host's memory may run out at any allocation. Nothing may be thrown at the caller, nothing may
// leak, and the document must stay usable.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

constexpr char TEXT[] =
    "# c\n"
    "device d {\n"
    "  a = {1, \"s\", {2K, 0x3}} [k, l .v]; # t\n"
    "  bus b { r <d.a, .s>; slave s { x = true; } }\n"
    "}\n";

// Runs the work once for each of its allocations, which fails, alone or with all later ones.
void for_each_failure(const std::function<void()>& work) {
  MESSAGE_RECORDER recorder;
  for (const bool and_later : {false, true}) {
    for (std::size_t count = 1;; count++) {
      SCOPED_TRACE(count);
      const std::size_t before = sbd_host::get_memory_account("SBD").total_allocations;
      sbd_host::fail_allocation("SBD", count, and_later);
      EXPECT_NO_THROW(work());
      sbd_host::fail_allocation("SBD", 0, false);
      const std::size_t after = sbd_host::get_memory_account("SBD").total_allocations;
      recorder.forget();
      if (testing::Test::HasFailure() || after - before + 1 < count) break;  // Was not reached.
      ASSERT_LT(count, 10000U);
    }
  }
}

// A document after a read that may have failed is whole or empty, and can be read again.
void expect_usable(SBD_FILE_PARSER& document, bool is_read, const std::string& tree) {
  sbd_host::fail_allocation("SBD", 0, false);
  EXPECT_EQ(outline(document), is_read ? tree : "");
  EXPECT_EQ(find_inconsistency(document), "");
  EXPECT_TRUE(read_text(document, TEXT));
  EXPECT_EQ(outline(document), tree);
}

class MEMORY_EXHAUSTION : public testing::Test {
 protected:
  void TearDown() override { sbd_host::fail_allocation("SBD", 0, false); }
  const std::string m_tree = outline(*document_of(TEXT));
};

TEST_F(MEMORY_EXHAUSTION, WhileATextIsRead) {
  for_each_failure([&] {
    SBD_FILE_PARSER document;
    if (document.get_parser_para().symbol_table == nullptr) return;
    const bool is_read = read_text(document, TEXT);
    expect_usable(document, is_read, m_tree);
  });
}

TEST_F(MEMORY_EXHAUSTION, WhileADocumentIsReadAgain) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.write("f.sbd", TEXT);
  auto document = document_of("device old { x = 1; }");
  for_each_failure([&] {
    if (document->read(path.c_str())) {
      EXPECT_EQ(outline(*document), m_tree);
    }
    EXPECT_EQ(find_inconsistency(*document), "");
  });
  expect_usable(*document, document->read(path.c_str()), m_tree);
}

TEST_F(MEMORY_EXHAUSTION, WhileFaultsAreReported) {
  for (const std::string_view text :
       {"device d { x 5; y = @; }", "device d { x = 1; X = 2; }", "device d { r <.no, no>; }",
        "module m { device d { x = 1; } }"}) {
    SBD_FILE_PARSER document;
    for_each_failure([&] {
      EXPECT_FALSE(read_text(document, text));
      EXPECT_EQ(root_of(document), nullptr);
    });
  }
}

// Documents without memory answer as empty ones.
TEST_F(MEMORY_EXHAUSTION, WhileADocumentIsMade) {
  for_each_failure([&] {
    SBD_FILE_PARSER document;
    SBD_STRING name;
    EXPECT_EQ(document.get_parser_para().root, nullptr);
    EXPECT_EQ(document.get_ref_object("d", nullptr), nullptr);
    EXPECT_FALSE(document.is_block_defined("d"));
    EXPECT_FALSE(document.get_ref_name(nullptr, name));
    EXPECT_EQ(document.get_source(), "");
    document.clear();
  });
}

TEST_F(MEMORY_EXHAUSTION, WhileADocumentIsAsked) {
  const std::string long_name(200, 'n');
  const auto document = document_of("device " + long_name + " { x = 5; s = \"" + long_name +
                                    "\"; r <.x>; bus " + long_name + " { x = 1; } }");
  const std::string parameter = long_name + ".x";
  for_each_failure([&] {
    unsigned long value = 5;
    SBD_STRING text;
    SBD_STRING_LIST names;
    document->get_value(long_name.c_str(), "x", value);
    document->get_value(long_name.c_str(), "s", text);
    document->get_value(long_name.c_str(), "r", names);
    document->get_ref_name(document->get_ref_object(parameter.c_str(), nullptr), text);
    document->get_typed_blocks("bus", names, static_cast<const char*>(nullptr));
    document->is_referenced(parameter.c_str());
    EXPECT_EQ(value, 5U);
  });
  EXPECT_TRUE(document->is_parameter_defined(parameter.c_str()));
}

TEST_F(MEMORY_EXHAUSTION, WhileADocumentIsChecked) {
  auto document = document_of(TEXT);
  for_each_failure([&] {
    document->resolve_symbol(root_of(*document), root_of(*document));
    document->check_semantic(root_of(*document));
    EXPECT_EQ(outline(*document), m_tree);
  });
  SBD_NODE* const root = root_of(*document);
  EXPECT_TRUE(document->resolve_symbol(root, root));
  EXPECT_TRUE(document->check_semantic(root));
  EXPECT_EQ(find_inconsistency(*document), "");
}

}  // namespace
