#include "tools/near_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using sbd_tool::edit_distance;
using sbd_tool::WANTED;
using NAMES = std::vector<std::string>;

TEST(EDIT_DISTANCE, CountsChanges) {
  EXPECT_EQ(edit_distance("", ""), 0U);
  EXPECT_EQ(edit_distance("", "abc"), 3U);
  EXPECT_EQ(edit_distance("abc", ""), 3U);
  EXPECT_EQ(edit_distance("clock", "CLOCK"), 0U);
  EXPECT_EQ(edit_distance("clock", "clok"), 1U);
  EXPECT_EQ(edit_distance("clock", "cloock"), 1U);
  EXPECT_EQ(edit_distance("clock", "clack"), 1U);
  EXPECT_EQ(edit_distance("clock", "colck"), 1U);
  EXPECT_EQ(edit_distance("kitten", "sitting"), 3U);
}

class NEAR_NAMES : public testing::Test {
 protected:
  void SetUp() override {
    const std::string text =
        "device Board {\n"
        "  module pll1 { clock = 1; divider = 2; }\n"
        "  module pll2 { clock = 1; }\n"
        "  module sram { size = 1; }\n"
        "  speed = 1;\n"
        "}\n";
    ASSERT_TRUE(m_document.read_text(text.data(), text.size(), "test"));
  }

  NAMES find(const std::string& name, WANTED wanted = WANTED::ANY) {
    return sbd_tool::find_near_names(m_document, name, wanted);
  }

 private:
  SBD_FILE_PARSER m_document;
};

TEST_F(NEAR_NAMES, OneComponentIsMisspelled) {
  EXPECT_EQ(find("board.pll1.clok"), NAMES{"Board.pll1.clock"});
  EXPECT_EQ(find("bord.pll1.clock"), NAMES{"Board.pll1.clock"});
  EXPECT_EQ(find("board.pll3"), (NAMES{"Board.pll1", "Board.pll2"}));
  EXPECT_EQ(find("board.pll3.clock"), (NAMES{"Board.pll1.clock", "Board.pll2.clock"}));
}

TEST_F(NEAR_NAMES, SeveralComponentsAreMisspelled) {
  EXPECT_EQ(find("bord.pll1.clok"), NAMES{"Board.pll1.clock"});
}

TEST_F(NEAR_NAMES, BlocksInFrontAreMissing) {
  EXPECT_EQ(find("size"), NAMES{"Board.sram.size"});
  EXPECT_EQ(find("board.SIZE"), NAMES{"Board.sram.size"});
  EXPECT_EQ(find("Board.sram.clock"), (NAMES{"Board.pll1.clock", "Board.pll2.clock"}));
}

TEST_F(NEAR_NAMES, OnlyWantedOnesAreFound) {
  EXPECT_EQ(find("board.sram.pll1", WANTED::BLOCK), NAMES{"Board.pll1"});
  EXPECT_EQ(find("board.sram.pll1", WANTED::PARAMETER), NAMES{});
  EXPECT_EQ(find("board.sped", WANTED::PARAMETER), NAMES{"Board.speed"});
  EXPECT_EQ(find("board.sped", WANTED::BLOCK), NAMES{});
}

TEST_F(NEAR_NAMES, OddNamesHaveNone) {
  for (const char* const name :
       {"", ".", "..", "board.", "board..", "qqqqqq", "board.speed.x.y.z"}) {
    EXPECT_EQ(find(name), NAMES{}) << name;
  }
  EXPECT_EQ(find(std::string(100000, 'a')), NAMES{});
}

}  // namespace
