#include "tools/tree_walk.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/names.h"
#include "tools/value_walk.h"

namespace {

using sbd_tool::NODE;
using sbd_tool::TREE_WALK;
using sbd_tool::VALUE_WALK;

class WALK : public testing::Test {
 protected:
  void SetUp() override {
    const std::string text =
        "device a { x = {1, {2, {3, 4}}, 5}; bus b { y = 1; } z = 1; }\n"
        "# comment\n"
        "device c { w = 1; }\n";
    ASSERT_TRUE(m_document.read_text(text.data(), text.size(), "test"));
  }

  SBD_FILE_PARSER m_document;
};

// The names of what a walk comes across, with its depth, and "/" where a block is left.
std::string describe(TREE_WALK walk) {
  std::string text;
  for (;;) {
    const TREE_WALK::STEP step = walk.next();
    if (step == TREE_WALK::STEP::END) break;
    if (!text.empty()) text += ' ';
    text += step == TREE_WALK::STEP::LEAVE ? "/" : "";
    text.append(sbd_tool::declared_name(*walk.node())).append(std::to_string(walk.depth()));
  }
  // Behind the end there is nothing more.
  EXPECT_EQ(walk.next(), TREE_WALK::STEP::END);
  return text;
}

TEST_F(WALK, GoesThroughTheDocument) {
  const NODE* const root = m_document.get_parser_para().root;
  EXPECT_EQ(describe(TREE_WALK(root, TREE_WALK::EXTENT::WITH_SIBLINGS)),
            "a0 x1 b1 y2 /b1 z1 /a0 0 c0 w1 /c0");
}

TEST_F(WALK, StaysInsideOneNode) {
  const NODE* const b = m_document.get_ref_object("a.b", nullptr);
  EXPECT_EQ(describe(TREE_WALK(b, TREE_WALK::EXTENT::ALONE)), "b0 y1 /b0");
  const NODE* const x = m_document.get_ref_object("a.x", nullptr);
  EXPECT_EQ(describe(TREE_WALK(x, TREE_WALK::EXTENT::ALONE)), "x0");
}

TEST_F(WALK, NothingHasNoSteps) {
  EXPECT_EQ(describe(TREE_WALK(nullptr, TREE_WALK::EXTENT::WITH_SIBLINGS)), "");
}

TEST_F(WALK, KnowsTheBlockAround) {
  const NODE* const root = m_document.get_parser_para().root;
  TREE_WALK walk(root, TREE_WALK::EXTENT::WITH_SIBLINGS);
  walk.next();
  EXPECT_EQ(walk.block(), nullptr);
  walk.next();
  EXPECT_EQ(walk.block(), root);
}

TEST_F(WALK, GoesThroughLists) {
  std::string text;
  VALUE_WALK walk(*m_document.get_para_value("a", "x"));
  for (;;) {
    const VALUE_WALK::STEP step = walk.next();
    if (step == VALUE_WALK::STEP::END) break;
    const bool is_list = walk.value().type == sbd_tool::VALUE::VT_LIST;
    if (step == VALUE_WALK::STEP::ENTER && walk.is_later_element()) text += ',';
    if (is_list) text += step == VALUE_WALK::STEP::ENTER ? "{" : "}";
    if (!is_list) text += std::to_string(static_cast<int>(walk.value().number));
  }
  EXPECT_EQ(text, "{1,{2,{3,4}},5}");
}

}  // namespace
