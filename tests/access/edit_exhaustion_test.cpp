// The host's memory may run out, and its message handler may throw, at any moment of an edit. Then
// nothing is thrown at the caller, one internal error tells of it, and the document is as it was.
#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/access/access_support.h"
#include "tests/support/memory_guard.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

constexpr char k_text[] =
    "device d {\n"
    "  a = 5; s = word; b = true; l = {1, \"t\", {2, 3}} [k, m .v];\n"
    "  r <d.a, d.m>; only <d.m.x>;\n"
    "  module m { x = 1; region q { y = 0x10; } }\n"
    "}\n";

constexpr char k_long_name[] = "a_name_that_is_longer_than_any_string_keeps_in_itself";
constexpr auto k_no_unit = SBD_PARA_VALUE::QU_NONE;

// What is handed to the edits, made before memory runs out.
struct ARGUMENTS {
  SBD_PARA_VALUE* list = make_list(
      {make_number(1), make_string("\"text\""), make_list({make_number(2), make_string("word")})});
  SBD_PARA_ATTR* attributes = make_attributes({{"key", nullptr}, {"other", ".value"}});
  SBD_STRING_LIST names = {"d.m.q", "d.a"};
  SBD_STRING_LIST unknown_names = {"d.a", "no"};
  SBD_STRING word = k_long_name;
  SBD_STRING quoted = "\"quoted\"";

  ARGUMENTS() = default;
  ARGUMENTS(const ARGUMENTS&) = delete;
  ARGUMENTS& operator=(const ARGUMENTS&) = delete;
  ~ARGUMENTS() {
    SBD_FILE_PARSER().free_para_val(list);
    while (attributes != nullptr) {
      SBD_PARA_ATTR* const one = attributes;
      attributes = one->next;
      sbd_free_text(one->attr_key);
      sbd_free_text(one->attr_value);
      delete one;
    }
  }
};

struct EDIT_ROW {
  const char* name;
  void (*run)(SBD_FILE_PARSER&, const ARGUMENTS&);
};

// Every edit, successful and refused.
const std::vector<EDIT_ROW>& edits() {
  static const std::vector<EDIT_ROW> rows = {
      {"number", [](auto& d, auto&) { d.set_value("d", "a", 7UL, 16, SBD_PARA_VALUE::QU_KB); }},
      {"number of an odd base", [](auto& d, auto&) { d.set_value("d", "a", 7UL, 3, k_no_unit); }},
      {"new number", [](auto& d, auto&) { d.set_value("d.m", k_long_name, 7UL, 10, k_no_unit); }},
      {"number for a list", [](auto& d, auto&) { d.set_value("d", "l", 7UL, 10, k_no_unit); }},
      {"float", [](auto& d, auto&) { d.set_value("d", "a", 7.5, SBD_PARA_VALUE::QU_MHZ); }},
      {"new float", [](auto& d, auto&) { d.set_value("d", "f", 7.5, k_no_unit); }},
      {"boolean", [](auto& d, auto&) { d.set_value("d", "b", 0); }},
      {"new boolean", [](auto& d, auto&) { d.set_value("d", "c", 1); }},
      {"text", [](auto& d, auto& with) { d.set_value("d", "s", with.word); }},
      {"new text", [](auto& d, auto& with) { d.set_value("d", "t", with.quoted); }},
      {"refused text", [](auto& d, auto& with) { d.set_value("d", "a", with.word); }},
      {"references", [](auto& d, auto& with) { d.set_value("d", "r", with.names); }},
      {"new references", [](auto& d, auto& with) { d.set_value("d.m", "refs", with.names); }},
      {"unknown reference", [](auto& d, auto& with) { d.set_value("d", "r", with.unknown_names); }},
      {"list", [](auto& d, auto& with) { d.set_para_value("d", "l", *with.list); }},
      {"new list", [](auto& d, auto& with) { d.set_para_value("d", "l2", *with.list); }},
      {"list for a number", [](auto& d, auto& with) { d.set_para_value("d", "a", *with.list); }},
      {"attributes", [](auto& d, auto& with) { d.set_attribute("d", "a", with.attributes); }},
      {"no attributes", [](auto& d, auto&) { d.set_attribute("d", "l", nullptr); }},
      {"delete attributes", [](auto& d, auto&) { d.delete_attribute("d", "l"); }},
      {"attributes of nothing", [](auto& d, auto&) { d.delete_attribute("d", "nothing"); }},
      {"delete parameter", [](auto& d, auto&) { d.delete_parameter("d", "s"); }},
      {"delete what is referenced", [](auto& d, auto&) { d.delete_parameter("d", "a"); }},
      {"create block", [](auto& d, auto&) { d.create_block("module", k_long_name, "d"); }},
      {"create device", [](auto& d, auto&) { d.create_block("device", "e", nullptr); }},
      {"create block twice", [](auto& d, auto&) { d.create_block("module", "m", "d"); }},
      {"delete block", [](auto& d, auto&) { d.delete_block("d.m.q"); }},
      {"delete referenced block", [](auto& d, auto&) { d.delete_block("d.m"); }},
      {"rename parameter", [](auto& d, auto&) { d.rename("s", k_long_name, "d"); }},
      {"rename block", [](auto& d, auto&) { d.rename("m", k_long_name, "d"); }},
      {"rename device", [](auto& d, auto&) { d.rename("d", "e", nullptr); }},
      {"rename to a taken name", [](auto& d, auto&) { d.rename("s", "a", "d"); }},
      {"move", [](auto& d, auto&) { d.move_member("d.a", "d.m", true); }},
      {"delete references", [](auto& d, auto&) { d.delete_reference("d.a"); }},
      {"delete the only reference", [](auto& d, auto&) { d.delete_reference("d.m.x"); }},
  };
  return rows;
}

std::string outcome_of(const EDIT_ROW& edit) {
  MESSAGE_RECORDER recorder;
  const ARGUMENTS arguments;
  const auto document = document_of(k_text);
  edit.run(*document, arguments);
  return state_of(*document);
}

class EDIT_EXHAUSTION : public testing::TestWithParam<std::size_t> {
 protected:
  const EDIT_ROW& edit() const { return edits()[GetParam()]; }
  void TearDown() override { sbd_host::fail_allocation("SBD", 0, false); }
};

std::vector<std::size_t> all_edits() {
  std::vector<std::size_t> indices(edits().size());
  for (std::size_t i = 0; i != indices.size(); ++i) indices[i] = i;
  return indices;
}

TEST_P(EDIT_EXHAUSTION, LeavesTheDocumentAsItWas) {
  const ARGUMENTS arguments;
  const std::string before = state_of(*document_of(k_text));
  const std::string after = outcome_of(edit());
  for (const bool and_later : {false, true}) {
    bool is_reached = true;
    for (std::size_t count = 1; is_reached; ++count) {
      SCOPED_TRACE(testing::Message() << edit().name << ", allocation " << count);
      ASSERT_LT(count, 1000U);
      MESSAGE_RECORDER recorder;
      const auto document = document_of(k_text);
      sbd_host::fail_allocation("SBD", count, and_later);
      const std::size_t made = sbd_host::get_memory_account("SBD").total_allocations;
      EXPECT_NO_THROW(edit().run(*document, arguments));
      sbd_host::fail_allocation("SBD", 0, false);
      const std::size_t now_made = sbd_host::get_memory_account("SBD").total_allocations;
      is_reached = !recorder.conditions().empty() || now_made - made >= count;
      EXPECT_EQ(find_inconsistency(*document), "");
      if (recorder.conditions().empty()) {
        EXPECT_EQ(state_of(*document), after);
      } else {
        EXPECT_EQ(state_of(*document), before);
        EXPECT_EQ(recorder.conditions(), std::vector<std::string>{"out of memory"});
      }
    }
  }
}

// Then the edit can be made once more, and comes to the same.
TEST_P(EDIT_EXHAUSTION, CanBeMadeAgain) {
  const ARGUMENTS arguments;
  const std::string after = outcome_of(edit());
  for (std::size_t count = 1; count != 40; ++count) {
    SCOPED_TRACE(testing::Message() << edit().name << ", allocation " << count);
    MESSAGE_RECORDER recorder;
    const auto document = document_of(k_text);
    sbd_host::fail_allocation("SBD", count, false);
    edit().run(*document, arguments);
    sbd_host::fail_allocation("SBD", 0, false);
    if (recorder.conditions().empty()) continue;
    edit().run(*document, arguments);
    EXPECT_EQ(state_of(*document), after);
  }
}

// What a message says is decided before it is posted.
TEST_P(EDIT_EXHAUSTION, HandlerThatThrows) {
  const ARGUMENTS arguments;
  const std::string after = outcome_of(edit());
  const auto document = document_of(k_text);
  sbd_host::set_message_handler(
      [](const sbd_host::MESSAGE&) { throw std::runtime_error("the host's own trouble"); });
  sbd_host::set_internal_error_handler(
      [](const sbd_host::INTERNAL_ERROR&) { throw std::runtime_error("and once more"); });
  EXPECT_NO_THROW(edit().run(*document, arguments)) << edit().name;
  sbd_host::set_message_handler(nullptr);
  sbd_host::set_internal_error_handler(nullptr);
  EXPECT_EQ(state_of(*document), after) << edit().name;
  EXPECT_EQ(find_inconsistency(*document), "");
}

INSTANTIATE_TEST_SUITE_P(Of, EDIT_EXHAUSTION, testing::ValuesIn(all_edits()));

// ---- Records that callers make -----------------------------------------------------------------

TEST(RECORD_EXHAUSTION, EnteringANode) {
  for (std::size_t count = 1; count != 12; ++count) {
    SCOPED_TRACE(count);
    MESSAGE_RECORDER recorder;
    SBD_FILE_PARSER document;
    SBD_NODE* const node = make_block("device", k_long_name);
    SBD_SYMBOL* const symbol = symbol_of(node);
    sbd_host::fail_allocation("SBD", count, false);
    EXPECT_NO_THROW(document.add_symbol(symbol));
    const bool is_entered = recorder.conditions().empty();
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_EQ(count_symbols(document), is_entered ? 1u : 0u);
    if (!is_entered) document.add_symbol(symbol);
    document.add_node(node, nullptr);
    EXPECT_TRUE(document.resolve_symbol(root_of(document), root_of(document)));
    EXPECT_EQ(find_inconsistency(document), "");
  }
}

// ---- Writing -----------------------------------------------------------------------------------

TEST(WRITE_EXHAUSTION, NothingIsThrown) {
  const auto document = document_of(k_text);
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.path_of("written.sbd");
  ASSERT_TRUE(document->write(path.c_str()));
  const std::string whole = file_content(path);
  for (const bool and_later : {false, true}) {
    for (std::size_t count = 1; count != 20; ++count) {
      SCOPED_TRACE(count);
      MESSAGE_RECORDER recorder;
      sbd_host::fail_allocation("SBD", count, and_later);
      bool is_written = false;
      EXPECT_NO_THROW(is_written = document->write(path.c_str()));
      sbd_host::fail_allocation("SBD", 0, false);
      if (recorder.conditions().empty()) {
        EXPECT_TRUE(is_written);
        EXPECT_EQ(file_content(path), whole);
      } else {
        EXPECT_FALSE(is_written);
        EXPECT_EQ(recorder.conditions(), std::vector<std::string>{"out of memory"});
      }
    }
  }
}

}  // namespace
