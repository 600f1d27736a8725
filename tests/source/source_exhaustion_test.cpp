// Edits that keep the text, while the host's memory runs out: nothing is thrown, and text and tree
// are either those before the edit or those after it, together.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_source_document.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

constexpr std::string_view k_text =
    "device d {  # board\n"
    "  a = 5; s = word;\n"
    "  l = {1, \"t\", {2, 3}} [k, m .v];   # list\n"
    "  r <d.a, d.m>;\n"
    "  module m { x = 1;\n"
    "    region q { y = 0x10; } }\n"
    "}\n";
constexpr char k_long_name[] = "a_name_that_is_longer_than_any_string_keeps_in_itself";

struct ARGUMENTS {
  SBD_STRING_LIST names = {"d.m.q", "d.a"};
  SBD_FILE_PARSER::SBD_PARA_ATTR attribute;
  char key[4] = "key";
  ARGUMENTS() { attribute.attr_key = key; }
};

struct EDIT_ROW {
  const char* name;
  bool (*run)(SBD_SOURCE_DOCUMENT&, const ARGUMENTS&);
};

const EDIT_ROW k_edits[] = {
    {"set", [](auto& d, auto&) { return d.set_value("d.a", "0x40K"); }},
    {"set a new one", [](auto& d, auto&) { return d.set_value("d.m.new", "{1, {2, \"t\"}}"); }},
    {"set to nonsense", [](auto& d, auto&) { return d.set_value("d.a", "1 2"); }},
    {"add", [](auto& d, auto&) { return d.add_value("d.added", "1MHz", SBD_PLACE::behind("s")); }},
    {"references", [](auto& d, auto& with) { return d.set_references("d.r", with.names); }},
    {"new references", [](auto& d, auto& with) { return d.set_references("d.m.z", with.names); }},
    {"attributes", [](auto& d, auto& with) { return d.set_attributes("d.a", &with.attribute); }},
    {"no attributes", [](auto& d, auto&) { return d.remove_attributes("d.l"); }},
    {"remove", [](auto& d, auto&) { return d.remove_parameter("d.s"); }},
    {"add a block", [](auto& d, auto&) { return d.add_block("module", k_long_name, "d"); }},
    {"remove a block", [](auto& d, auto&) { return d.remove_block("d.m.q"); }},
    {"remove references", [](auto& d, auto&) { return d.remove_references("d.a"); }},
    {"rename", [](auto& d, auto&) { return d.rename("d.m", k_long_name, true); }},
    {"rename alone", [](auto& d, auto&) { return d.rename("d.s", k_long_name, false); }},
    {"roll back",
     [](auto& d, auto&) { return d.begin() && d.set_value("d.a", "6") && d.roll_back(); }},
};

// Text and tree.
std::string state_of(const SBD_SOURCE_DOCUMENT& document) {
  return std::string(document.text()) + "\n" + outline(document.document());
}

void read(SBD_SOURCE_DOCUMENT& document) {
  ASSERT_TRUE(document.read_text(k_text.data(), k_text.size(), "f.sbd"));
}

class SOURCE_EXHAUSTION : public testing::TestWithParam<std::size_t> {
 protected:
  const EDIT_ROW& edit() const { return k_edits[GetParam()]; }
  void TearDown() override { sbd_host::fail_allocation("SBD", 0, false); }

  const ARGUMENTS m_arguments;
};

TEST_P(SOURCE_EXHAUSTION, TextAndTreeStayTogether) {
  std::string before;
  std::string after;
  bool succeeds = false;
  {
    MESSAGE_RECORDER recorder;
    SBD_SOURCE_DOCUMENT document;
    read(document);
    before = state_of(document);
    succeeds = edit().run(document, m_arguments);
    after = state_of(document);
  }
  for (const bool and_later : {false, true}) {
    bool is_reached = true;
    for (std::size_t count = 1; is_reached; ++count) {
      SCOPED_TRACE(testing::Message() << edit().name << ", allocation " << count);
      ASSERT_LT(count, 2000U);
      MESSAGE_RECORDER recorder;
      SBD_SOURCE_DOCUMENT document;
      read(document);
      sbd_host::fail_allocation("SBD", count, and_later);
      const std::size_t made = sbd_host::get_memory_account("SBD").total_allocations;
      bool result = false;
      EXPECT_NO_THROW(result = edit().run(document, m_arguments));
      sbd_host::fail_allocation("SBD", 0, false);
      const std::size_t now_made = sbd_host::get_memory_account("SBD").total_allocations;
      is_reached = !recorder.conditions().empty() || now_made - made >= count;
      if (recorder.conditions().empty()) {
        EXPECT_EQ(result, succeeds);
        EXPECT_EQ(state_of(document), after);
      } else {
        EXPECT_FALSE(result);
        EXPECT_EQ(state_of(document), before);
        for (const std::string& condition : recorder.conditions()) {
          EXPECT_EQ(condition, "out of memory");
        }
      }
      EXPECT_EQ(find_inconsistency(document.document()), "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, SOURCE_EXHAUSTION, testing::Range(std::size_t{0}, std::size(k_edits)));

// Memory is gone for the edit, for its repair and for what is asked next; then it is there again.
TEST_P(SOURCE_EXHAUSTION, NothingIsLostWhileThereIsNoMemory) {
  for (std::size_t count = 1; count != 60; ++count) {
    SCOPED_TRACE(testing::Message() << edit().name << ", allocation " << count);
    MESSAGE_RECORDER recorder;
    SBD_SOURCE_DOCUMENT document;
    read(document);
    const std::string before = state_of(document);
    SBD_STRING why;
    sbd_host::fail_allocation("SBD", count, true);
    const bool is_done = edit().run(document, m_arguments);
    if (recorder.conditions().empty()) break;
    EXPECT_FALSE(is_done);
    EXPECT_NO_THROW({
      (void)document.text();
      (void)document.document();
      EXPECT_FALSE(document.set_value("d.a", "8"));
      EXPECT_FALSE(document.verify(why));
      EXPECT_FALSE(document.save("/no/such/file"));
      if (document.begin()) {
        EXPECT_FALSE(document.set_value("d.a", "9"));
      }
      (void)document.roll_back();
    });
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_EQ(state_of(document), before);
    EXPECT_TRUE(document.verify(why)) << why;
  }
}

// The old file is there as long as the new one is not whole.
TEST(SAVE_EXHAUSTION, OldOrNewFile) {
  const TEMPORARY_DIRECTORY directory;
  const std::string old_text = "device old { x = 1; }\n";
  for (const bool and_later : {false, true}) {
    for (std::size_t count = 1; count != 60; ++count) {
      SCOPED_TRACE(count);
      MESSAGE_RECORDER recorder;
      SBD_SOURCE_DOCUMENT document;
      read(document);
      ASSERT_TRUE(document.set_value("d.a", "77"));
      const std::string new_text(document.text());
      const std::string path = directory.write("f.sbd", old_text);
      sbd_host::fail_allocation("SBD", count, and_later);
      bool is_saved = false;
      EXPECT_NO_THROW(is_saved = document.save(path.c_str()));
      sbd_host::fail_allocation("SBD", 0, false);
      SBD_SOURCE_DOCUMENT saved;
      ASSERT_TRUE(saved.read(path.c_str()));
      EXPECT_EQ(saved.text(), is_saved ? new_text : old_text);
    }
  }
}

}  // namespace
