// Creating, deleting, renaming and moving blocks and statements, and removing references.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/access/access_support.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"

namespace {

using TEXTS = std::vector<std::string>;

constexpr auto k_no_unit = SBD_PARA_VALUE::QU_NONE;

constexpr char k_null_names[] = "Cannot create block. NULL block name or block type name.";
constexpr char k_illegal_name[] = "Cannot create block. Illegal block name.";
constexpr char k_bad_type[] = "Invaid block type.";
constexpr char k_no_parent[] = "Parent block does not exist.";
constexpr char k_bad_hierarchy[] = "Invalid block hierarchy.";
constexpr char k_exists[] = "Block already exists.";
constexpr char k_no_block[] = "Specified block does not exist.";
constexpr char k_in_use[] = "Block is being used (referenced) by other block/parameter";

constexpr char k_source[] = R"(# head
device d {
  a = 1;
  # inside
  module m {
    x = 1 [k .x]; # x
    own < .x, d.m >; # own
    bus b { y = 2; up < d.m.x >; }
  }
  link < d.a, d.m.x >; # link
  r[0] = {1, 2};
}
device e {
  far < d.m.b, d.m.b.y, d >;
}
)";

std::string create_text(const std::string& type, const std::string& name, const char* parent,
                        const std::string& reason) {
  const std::string place = parent == nullptr
                                ? "at top-level. "
                                : "within the parenet block: '" + std::string(parent) + "'. ";
  return "Cannot create a block: '" + name + "' with type: '" + type + "' " + place + reason;
}

std::string delete_text(const std::string& name, const std::string& reason) {
  return "Cannot delete block: '" + name + "'. " + reason;
}

class EDIT_BLOCK : public testing::Test {
 protected:
  std::unique_ptr<SBD_FILE_PARSER> m_document = document_of(k_source);
  MESSAGE_RECORDER m_recorder;

  void refuse_creation(const std::string& text, const char* type, const char* name,
                       const char* parent) {
    expect_refusal(*m_document, m_recorder, k_error, text,
                   [&] { return m_document->create_block(type, name, parent); });
  }

  void refuse_deletion(const char* name, const char* reason, int number) {
    expect_refusal(*m_document, m_recorder, number, delete_text(name, reason), [&] {
      m_document->delete_block(name);
      return false;
    });
  }

  SBD_NODE* find(const char* name) const { return m_document->get_ref_object(name, nullptr); }

  std::string text() const { return written(*m_document); }

  // The text of the document with `from` replaced by `to`.
  static std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from << " in\n" << text;
    return place == std::string::npos ? text : text.replace(place, from.size(), to);
  }
};

using CREATE_BLOCK = EDIT_BLOCK;
using DELETE_BLOCK = EDIT_BLOCK;
using RENAME = EDIT_BLOCK;
using DELETE_REFERENCE = EDIT_BLOCK;
using LOST_TARGET = EDIT_BLOCK;
using MOVE_MEMBER = EDIT_BLOCK;

// ---- Creating ----------------------------------------------------------------------------------

TEST_F(CREATE_BLOCK, RefusesNullNames) {
  refuse_creation(k_null_names, nullptr, "n", nullptr);
  refuse_creation(k_null_names, "bus", nullptr, "d");
  refuse_creation(k_null_names, nullptr, nullptr, nullptr);
  refuse_creation(k_null_names, nullptr, "9x", "no");
}

TEST_F(CREATE_BLOCK, RefusesIllegalNamesFirst) {
  for (const char* const name :
       {"", "a.b", "9x", "_x", "a-b", "a b", "r[0", "r]", "r[a]", "r[0]x", "\xc3\xa4", "."}) {
    refuse_creation(k_illegal_name, "no type", name, "no");
    refuse_creation(k_illegal_name, "bus", name, "d");
    refuse_creation(k_illegal_name, "device", name, nullptr);
  }
}

TEST_F(CREATE_BLOCK, RefusesUnknownTypesBeforeItLooksAtTheParent) {
  for (const char* const type : {"", "modul", "modules", " bus", "bus ", "unknown", "7"}) {
    for (const char* const parent : {"d", "no", static_cast<const char*>(nullptr)}) {
      refuse_creation(create_text(type, "n", parent, k_bad_type), type, "n", parent);
    }
  }
  // Before a block of that name is found as well.
  refuse_creation(create_text("no", "m", "d", k_bad_type), "no", "m", "d");
}

TEST_F(CREATE_BLOCK, RefusesParentsThatAreNoBlocks) {
  for (const char* const parent :
       {"no", "d.no", "m", "", ".", ".d", "d.", "d..m", "d.a", "d.link", "d.a.x"}) {
    refuse_creation(create_text("bus", "n", parent, k_no_parent), "bus", "n", parent);
    refuse_creation(create_text("device", "n", parent, k_no_parent), "device", "n", parent);
  }
}

TEST_F(CREATE_BLOCK, MakesOnlyDevicesAtTopLevel) {
  for (const char* const type : {"bus", "Module", "slave", "MASTER", "region", "parameters"}) {
    refuse_creation(create_text(type, "n", nullptr, k_bad_hierarchy), type, "n", nullptr);
    refuse_creation(create_text(type, "d", nullptr, k_bad_hierarchy), type, "d", nullptr);
  }
  for (const char* const type : {"device", "DEVICE", "DeVice"}) {
    const std::string name = std::string("n") + type[2];
    m_document->delete_block(name.c_str());
    EXPECT_TRUE(m_document->create_block(type, name.c_str(), nullptr));
  }
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(CREATE_BLOCK, RefusesNamesOfBlocks) {
  refuse_creation(create_text("bus", "M", "D", k_exists), "bus", "M", "D");
  refuse_creation(create_text("bus", "b", "d.m", k_exists), "bus", "b", "d.m");
  refuse_creation(create_text("device", "D", nullptr, k_exists), "device", "D", nullptr);
  ASSERT_TRUE(m_document->create_block("bus", "n", "d"));
  refuse_creation(create_text("module", "N", "d", k_exists), "module", "N", "d");
}

TEST_F(CREATE_BLOCK, TakesNamesOfStatements) {
  for (const char* const name : {"a", "LINK", "r[0]"}) {
    ASSERT_TRUE(m_document->create_block("bus", name, "d"));
    refuse_creation(create_text("bus", name, "d", k_exists), "bus", name, "d");
  }
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_TRUE(m_document->is_block_defined("d.link"));
  EXPECT_FALSE(m_document->is_parameter_defined("d.link"));
}

TEST_F(CREATE_BLOCK, AddsAnEmptyBlockAtTheEnd) {
  const std::string before = text();
  const char* const types[] = {"device", "bus",    "module",    "slave",
                               "master", "region", "parameters"};
  std::string added;
  for (unsigned i = 0; i < 7; i++) {
    const std::string type = types[i];
    const std::string name = type + "_n[0]";
    ASSERT_TRUE(m_document->create_block(type.c_str(), name.c_str(), "d.M.B"));
    added += "            " + type + " " + name + "\n            {\n            }\n\n";
    SBD_NODE* const node = find(("d.m.b." + name).c_str());
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(static_cast<unsigned>(node->block->block_type), i);
    EXPECT_EQ(node->block->members, nullptr);
    EXPECT_EQ(members_of(*m_document, find("d.m.b")).back(), node);
  }
  const std::string up = "            up < d.m.x >;\n";
  EXPECT_EQ(text(), replaced(before, up, up + added));
  ASSERT_TRUE(m_document->create_block("DeVice", "Top", nullptr));
  EXPECT_EQ(text(), replaced(before, up, up + added) + "DeVice Top\n{\n}\n\n");
  EXPECT_EQ(members_of(*m_document, nullptr).back(), find("top"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(CREATE_BLOCK, EntersTheNameAtTheHeadOfItsBucket) {
  ASSERT_TRUE(m_document->create_block("bus", "New_Block", "d"));
  const SBD_SYMBOL* symbol = chain_of(*m_document, "new_block").front();
  EXPECT_STREQ(symbol->name, "New_Block");
  EXPECT_EQ(symbol->line, 0U);
  EXPECT_EQ(symbol->type, SBD_SYMBOL::SYM_BLOCK);
  EXPECT_EQ(symbol->node, find("d.new_block"));
  EXPECT_EQ(symbol->parent, find("d"));
  EXPECT_EQ(symbol->node->block->name, symbol);

  ASSERT_TRUE(m_document->create_block("device", "NEW_BLOCK", nullptr));
  EXPECT_EQ(chain_of(*m_document, "new_block")[1], symbol);
  symbol = chain_of(*m_document, "new_block").front();
  EXPECT_STREQ(symbol->name, "NEW_BLOCK");
  EXPECT_EQ(symbol->node, find("new_block"));
  EXPECT_EQ(symbol->parent, symbol->node);

  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  EXPECT_FALSE(m_document->get_range(symbol->node, range));
  EXPECT_FALSE(m_document->get_name_range(symbol->node, range));
  EXPECT_FALSE(m_document->get_type_range(symbol->node, range));
}

TEST_F(CREATE_BLOCK, NestsToAnyDepth) {
  std::string parent = "d";
  for (int level = 0; level < 500; level++) {
    const std::string name = "b" + std::to_string(level);
    ASSERT_TRUE(m_document->create_block("bus", name.c_str(), parent.c_str()));
    parent += "." + name;
  }
  ASSERT_TRUE(m_document->set_value(parent.c_str(), "deep", 1));
  int value = 0;
  EXPECT_TRUE(m_document->get_value(parent.c_str(), "deep", value));
  EXPECT_NE(text().find("\n" + std::string(4 * 501, ' ') + "deep = true; \n"), std::string::npos);
  m_document->delete_block("d.b0");
  EXPECT_EQ(text(), written(*document_of(k_source)));
}

// ---- Deleting ----------------------------------------------------------------------------------

TEST_F(DELETE_BLOCK, ReportsANullName) {
  const std::string before = state_of(*m_document);
  m_document->delete_block(nullptr);
  EXPECT_EQ(m_recorder.conditions(), TEXTS{"block_ref_name != NULL"});
  EXPECT_TRUE(m_recorder.messages().empty());
  EXPECT_EQ(state_of(*m_document), before);
}

TEST_F(DELETE_BLOCK, IsSilentWhenThereIsNone) {
  for (const char* const name : {"no", "d.no", "m", ".d", "d.", "d..m", ".", "d.a.x"}) {
    expect_silent_refusal(*m_document, m_recorder, [&] {
      m_document->delete_block(name);
      return false;
    });
  }
}

TEST_F(DELETE_BLOCK, WarnsOfAStatement) {
  // Whether it is referenced or not.
  for (const char* const name : {"d.a", "D.R[0]", "d.link", "d.m.x"}) {
    refuse_deletion(name, k_no_block, k_warning);
  }
}

TEST_F(DELETE_BLOCK, RefusesWhatIsReferencedFromOutside) {
  refuse_deletion("D", k_in_use, k_error);
  refuse_deletion("d.m.B", k_in_use, k_error);
}

TEST_F(DELETE_BLOCK, DoesNotLookAtReferencesToWhatIsInside) {
  // "link" and "far" refer to objects inside of "m" only, "own" to "m" from inside.
  EXPECT_FALSE(m_document->is_referenced("d.m"));
  m_document->delete_block("d.m");
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_EQ(text(),
            "# head\ndevice d\n{\n    a = 1; \n    # inside\n    link < d.a, d.m.x >;\t# link\n"
            "    r[0] = {1,2}; \n}\n\ndevice e\n{\n    far < d.m.b, d.m.b.y, d >;\n}\n\n");
  EXPECT_FALSE(m_document->is_block_defined("d.m"));
  EXPECT_FALSE(m_document->is_parameter_defined("d.m.x"));
}

TEST_F(DELETE_BLOCK, FreesEverythingInside) {
  m_document->delete_reference("d");
  m_document->delete_reference("d.m.b");
  m_document->delete_reference("d.m.b.y");
  EXPECT_FALSE(m_document->is_block_defined("e.far"));
  const std::size_t count = count_symbols(*m_document);
  m_document->delete_block("d.m.b");
  EXPECT_EQ(count_symbols(*m_document), count - 3);
  m_document->delete_block("d");
  EXPECT_EQ(count_symbols(*m_document), 1U);
  m_document->delete_block("e");
  EXPECT_EQ(count_symbols(*m_document), 0U);
  EXPECT_EQ(text(), "# head\n");
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DELETE_BLOCK, ReleasesWhatTheBlockReferredTo) {
  const auto delete_a = [this] { m_document->delete_parameter("d", "a"); };
  ASSERT_TRUE(m_document->set_value("d", "link", string_list({"e"})));
  ASSERT_TRUE(m_document->set_value("e", "far", string_list({"d.a", "d.a"})));
  m_document->delete_reference("e");
  delete_a();
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{k_error});
  m_recorder.forget();
  m_document->delete_block("e");
  delete_a();
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_FALSE(m_document->is_parameter_defined("d.a"));
}

TEST_F(DELETE_BLOCK, LeavesTheNameFree) {
  m_document->delete_reference("d.m.b");
  for (int round = 0; round < 3; round++) {
    m_document->delete_block("d.m.b");
    EXPECT_FALSE(m_document->is_block_defined("d.m.b"));
    ASSERT_TRUE(m_document->create_block("slave", "B", "d.m"));
    ASSERT_TRUE(m_document->set_value("d.m.b", "y", 1));
  }
  EXPECT_NE(text().find("        slave B\n        {\n            y = true; \n        }\n\n"),
            std::string::npos);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DELETE_BLOCK, TakesOutFirstMiddleAndLastAndAppendsBehind) {
  auto document = document_of("device a{x=1;} device b{x=1;} device c{x=1;} device z{x=1;}");
  for (const char* const name : {"z", "b", "a", "c"}) {
    document->delete_block(name);
    ASSERT_TRUE(document->create_block("device", "n", nullptr));
    EXPECT_EQ(members_of(*document, nullptr).back(), document->get_ref_object("n", nullptr));
    document->delete_block("n");
  }
  EXPECT_EQ(written(*document), "");
  ASSERT_TRUE(document->create_block("device", "n", nullptr));
  EXPECT_EQ(written(*document), "device n\n{\n}\n\n");
}

// ---- Targets that are gone ---------------------------------------------------------------------

TEST_F(LOST_TARGET, DoesNoHarmWhenItsReferenceGoes) {
  m_document->delete_block("d.m");
  // New objects may lie where the old ones were; they are referenced by their own references only.
  ASSERT_TRUE(m_document->create_block("module", "m", "d"));
  for (const char* const name : {"x", "y", "z"}) {
    ASSERT_TRUE(m_document->set_value("d.m", name, 1UL, 10, k_no_unit));
  }
  ASSERT_TRUE(m_document->create_block("bus", "b", "d.m"));
  ASSERT_TRUE(
      m_document->set_value("d", "all", string_list({"d.m", "d.m.x", "d.m.y", "d.m.z", "d.m.b"})));
  m_document->delete_parameter("d", "link");
  ASSERT_TRUE(m_document->set_value("e", "far", string_list({"d"})));
  for (const char* const name : {"d.m", "d.m.x", "d.m.y", "d.m.z", "d.m.b"}) {
    EXPECT_TRUE(m_document->is_referenced(name)) << name;
  }
  for (const char* const name : {"x", "y", "z"}) {
    m_document->delete_parameter("d.m", name);
    EXPECT_EQ(m_recorder.numbers(), std::vector<int>{k_error}) << name;
    m_recorder.forget();
  }
  m_document->delete_parameter("d", "all");
  for (const char* const name : {"x", "y", "z"}) m_document->delete_parameter("d.m", name);
  m_document->delete_block("d.m.b");
  m_document->delete_block("d.m");
  EXPECT_TRUE(m_recorder.is_silent()) << testing::PrintToString(m_recorder.texts());
  EXPECT_FALSE(m_document->is_block_defined("d.m"));
}

TEST_F(LOST_TARGET, IsNotTouchedWhenTheDocumentGoes) {
  m_document->delete_block("d.m");
  m_document->clear();
  ASSERT_TRUE(read_text(*m_document, k_source));
  m_document->delete_block("d.m");
  ASSERT_TRUE(read_text(*m_document, k_source));
  m_document->delete_block("d.m");
  m_document->delete_block("e");
  m_document.reset();
}

TEST_F(LOST_TARGET, LeavesOtherReferencesOfTheStatementIntact) {
  m_document->delete_block("d.m");
  EXPECT_TRUE(m_document->is_referenced("d.a"));
  m_document->delete_reference("d.a");
  EXPECT_NE(text().find("    link < d.m.x >;\t# link\n"), std::string::npos);
  EXPECT_FALSE(m_document->is_referenced("d.a"));
  SBD_STRING_LIST names;
  EXPECT_TRUE(m_document->get_value("d", "link", names));
  EXPECT_EQ(names, string_list({"d.m.x"}));
}

TEST_F(LOST_TARGET, ComesAboutWhenAReferencedReferenceIsEmptied) {
  auto document = document_of("device d { x = 1; r < d.x >; s < d.r, d.s >; t < d.s >; }");
  document->delete_reference("d.x");
  EXPECT_EQ(written(*document),
            "device d\n{\n    x = 1; \n    s < d.r, d.s >;\n    t < d.s >;\n}\n\n");
  ASSERT_TRUE(document->set_value("d", "n", string_list({"d.x"})));
  document->delete_parameter("d", "t");
  document->delete_parameter("d", "s");
  EXPECT_TRUE(document->is_referenced("d.x"));
  EXPECT_TRUE(m_recorder.is_silent());
  EXPECT_EQ(written(*document), "device d\n{\n    x = 1; \n    n < d.x >;\n}\n\n");
}

// ---- Renaming ----------------------------------------------------------------------------------

TEST_F(RENAME, SaysNoInSilence) {
  const std::pair<std::pair<const char*, const char*>, const char*> cases[] = {
      {{nullptr, "n"}, "d"}, {{"a", nullptr}, "d"}, {{nullptr, nullptr}, nullptr},
      {{"no", "n"}, "d"},    {{"a", "n"}, "no"},    {{"a", "n"}, nullptr},
      {{"a", "link"}, "d"},  {{"a", "M"}, "d"},     {{"a", "a"}, "d"},
      {{"a", "A"}, "d"},     {{"d", "e"}, nullptr}, {{"d", "D"}, nullptr},
      {{"m", "M"}, "d"},     {{"a", "9x"}, "d"},    {{"a", "b.c"}, "d"},
      {{"a", "_x"}, "d"},    {{"m", "r[0]x"}, "d"}, {{"d", "x y"}, nullptr},
      {{"a", "n"}, "."},     {{"a", "n"}, "d."},    {{".a", "n"}, "d"},
      {{"a.", "n"}, "d"},    {{"x", "b"}, "d.m"},   {{"a", ""}, "d"},
      {{"", "n"}, "d"},      {{"x", "n"}, "d.a"},   {{"a", "m.x"}, "d"}};
  for (const auto& [names, scope] : cases) {
    expect_silent_refusal(*m_document, m_recorder, [&, n = names, s = scope] {
      return m_document->rename(n.first, n.second, s);
    });
  }
}

TEST_F(RENAME, GivesStatementsOfBothTypesANewName) {
  const std::string before = text();
  EXPECT_TRUE(m_document->rename("X", "New_X", "D.m"));
  EXPECT_TRUE(m_document->rename("link", "Chain[0]", "d"));
  EXPECT_EQ(text(), replaced(replaced(before, "x = 1 [k .x]; \t# x", "New_X = 1 [k .x]; \t# x"),
                             "link <", "Chain[0] <"));
  EXPECT_TRUE(m_document->is_parameter_defined("d.m.new_x"));
  EXPECT_FALSE(m_document->is_parameter_defined("d.m.x"));
  EXPECT_NE(m_document->get_para_ref("d", "chain[0]"), nullptr);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(RENAME, GivesBlocksANewNameAndWhatIsInsideFollows) {
  const std::string before = text();
  EXPECT_TRUE(m_document->rename("m", "N", "d"));
  EXPECT_TRUE(m_document->rename("d", "Top", nullptr));
  EXPECT_EQ(text(),
            replaced(replaced(before, "device d\n", "device Top\n"), "module m\n", "module N\n"));
  SBD_STRING name;
  ASSERT_TRUE(m_document->get_ref_name(find("top.n.b.y"), name));
  EXPECT_EQ(name, "Top.N.b.y");
  EXPECT_EQ(find("d.m.b.y"), nullptr);
  EXPECT_TRUE(m_document->set_value("Top.N", "x", 7UL, 10, k_no_unit));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(RENAME, KeepsTargetsAndTextsOfReferences) {
  SBD_NODE* const x = find("d.m.x");
  SBD_NODE* const b = find("d.m.b");
  ASSERT_TRUE(m_document->rename("x", "new_x", "d.m"));
  ASSERT_TRUE(m_document->rename("b", "new_b", "d.m"));
  ASSERT_TRUE(m_document->rename("m", "new_m", "d"));
  EXPECT_EQ(m_document->get_para_ref("d", "link")->next->target, x);
  EXPECT_STREQ(m_document->get_para_ref("d", "link")->next->name, "d.m.x");
  EXPECT_EQ(m_document->get_para_ref("e", "far")->target, b);
  EXPECT_EQ(m_document->get_para_ref("d.new_m", "own")->target, x);
  EXPECT_TRUE(m_document->is_referenced("d.new_m.new_x"));
  m_document->delete_parameter("d.new_m", "new_x");
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{k_error});
  EXPECT_NE(text().find("far < d.m.b, d.m.b.y, d >;"), std::string::npos);
  EXPECT_NE(text().find("own < .x, d.m >;\t# own"), std::string::npos);
}

TEST_F(RENAME, MakesANewSymbolAtTheHeadOfItsBucket) {
  struct {
    const char* name;
    const char* scope;
    const char* new_full_name;
    SBD_SYMBOL::SYMBOL_TYPE type;
  } const cases[] = {{"x", "d.m", "d.m.New_Name", SBD_SYMBOL::SYM_PARAMETER},
                     {"up", "d.m.b", "d.m.b.New_Name", SBD_SYMBOL::SYM_PARAMETER},
                     {"m", "d", "d.New_Name", SBD_SYMBOL::SYM_BLOCK},
                     {"e", nullptr, "New_Name", SBD_SYMBOL::SYM_BLOCK}};
  const std::size_t count = count_symbols(*m_document);
  std::size_t renamed = 0;
  for (const auto& [name, scope, new_full_name, type] : cases) {
    ASSERT_TRUE(m_document->rename(name, "New_Name", scope));
    renamed++;
    const std::vector<SBD_SYMBOL*> chain = chain_of(*m_document, "new_name");
    ASSERT_GE(chain.size(), renamed);
    const SBD_SYMBOL& symbol = *chain.front();
    EXPECT_STREQ(symbol.name, "New_Name");
    EXPECT_EQ(symbol.line, 0U);
    EXPECT_EQ(symbol.type, type);
    EXPECT_EQ(symbol.node, find(new_full_name));
    EXPECT_EQ(symbol_of(symbol.node), &symbol);
    EXPECT_EQ(symbol.parent, scope == nullptr ? symbol.node : find(scope));
    SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
    EXPECT_FALSE(m_document->get_name_range(symbol.node, range));
  }
  EXPECT_EQ(count_symbols(*m_document), count);
}

TEST_F(RENAME, ThereAndBackGivesTheSameText) {
  const std::string before = text();
  for (int round = 0; round < 10; round++) {
    ASSERT_TRUE(m_document->rename("x", "n", "d.m"));
    ASSERT_TRUE(m_document->rename("m", "x", "d"));
    ASSERT_TRUE(m_document->rename("d", "m", nullptr));
    ASSERT_TRUE(m_document->rename("m", "d", nullptr));
    ASSERT_TRUE(m_document->rename("x", "m", "d"));
    ASSERT_TRUE(m_document->rename("n", "x", "d.m"));
    EXPECT_EQ(text(), before);
  }
}

TEST_F(RENAME, ChangesTheCaseOfANameByADetour) {
  EXPECT_FALSE(m_document->rename("m", "M", "d"));
  EXPECT_TRUE(m_document->rename("m", "detour", "d"));
  EXPECT_TRUE(m_document->rename("detour", "M", "d"));
  EXPECT_NE(text().find("module M\n"), std::string::npos);
}

TEST_F(RENAME, FindsTheBlockOfTwoThingsOfOneName) {
  ASSERT_TRUE(m_document->create_block("bus", "a", "d"));
  ASSERT_TRUE(m_document->rename("a", "n", "d"));
  EXPECT_TRUE(m_document->is_block_defined("d.n"));
  EXPECT_TRUE(m_document->is_parameter_defined("d.a"));
  EXPECT_FALSE(m_document->rename("n", "A", "d"));
}

TEST_F(RENAME, TakesADottedOldNameWhoseNewNameIsFreeInTheGivenScope) {
  // The new name is looked for beside the scope's members, not beside the named object.
  ASSERT_TRUE(m_document->rename("m.x", "n", "d"));
  EXPECT_TRUE(m_document->is_parameter_defined("d.m.n"));
  ASSERT_TRUE(m_document->rename("d.m.n", "x", nullptr));
  EXPECT_TRUE(m_document->is_parameter_defined("d.m.x"));
  EXPECT_FALSE(m_document->rename("m.x", "a", "d"));
}

TEST_F(RENAME, LeavesNoTraceOfTheOldName) {
  ASSERT_TRUE(m_document->rename("a", "n", "d"));
  EXPECT_TRUE(m_document->set_value("d", "a", 1));
  EXPECT_TRUE(m_document->create_block("bus", "n2", "d"));
  EXPECT_TRUE(m_document->rename("n2", "n3", "d"));
  EXPECT_TRUE(m_document->create_block("bus", "n2", "d"));
  m_document->delete_block("d.n3");
  m_document->delete_block("d.n2");
  m_document->delete_parameter("d", "a");
  EXPECT_EQ(text(), replaced(written(*document_of(k_source)), "    a = 1; \n", "    n = 1; \n"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST(RENAME_BROKEN, ReportsAnUnknownStatementType) {
  const auto document = document_of("device d { x = 1; }");
  SBD_NODE* const node = document->get_ref_object("d.x", nullptr);
  const std::string before = state_of(*document);
  MESSAGE_RECORDER recorder;
  node->statement->type = static_cast<SBD_STATEMENT::STATEMENT_TYPE>(7);
  document->rename("x", "n", "d");
  EXPECT_EQ(recorder.conditions(), TEXTS{"Unsupported statement type"});
  EXPECT_TRUE(recorder.messages().empty());
  node->statement->type = SBD_STATEMENT::ST_ASSIGNMENT;
  EXPECT_EQ(state_of(*document), before);
}

TEST(RENAME_BROKEN, ReportsASymbolOfAComment) {
  const auto document = document_of("device d { x = 1;\n # c\n}");
  SBD_NODE* const device = document->get_ref_object("d", nullptr);
  SBD_NODE* const comment = members_of(*document, device).back();
  ASSERT_EQ(comment->type, SBD_NODE::NT_COMMENT);
  SBD_SYMBOL* const symbol = make_symbol("odd", SBD_SYMBOL::SYM_PARAMETER, comment);
  symbol->parent = device;
  document->add_symbol(symbol);
  const std::string before = written(*document);
  MESSAGE_RECORDER recorder;
  document->rename("odd", "n", "d");
  EXPECT_EQ(recorder.conditions(), TEXTS{"Try to rename an un-named object"});
  EXPECT_TRUE(recorder.messages().empty());
  EXPECT_EQ(written(*document), before);
  EXPECT_EQ(document->get_ref_object("d.odd", nullptr), comment);
  EXPECT_EQ(document->get_ref_object("d.n", nullptr), nullptr);
}

// ---- Removing references -----------------------------------------------------------------------

TEST_F(DELETE_REFERENCE, DoesNothingForUnknownNames) {
  for (const char* const name : {"no", "d.no", ".d", "d.", static_cast<const char*>(nullptr)}) {
    expect_silent_refusal(*m_document, m_recorder, [&] {
      m_document->delete_reference(name);
      return false;
    });
  }
  expect_silent_refusal(*m_document, m_recorder, [&] {
    m_document->delete_reference(nullptr, root_of(*m_document));
    m_document->delete_reference(find("d.a"), nullptr);
    m_document->delete_reference("d.link");  // Nothing refers to it.
    return false;
  });
}

TEST_F(DELETE_REFERENCE, KeepsTheOtherElementsInOrder) {
  const std::string before = text();
  m_document->delete_reference("D.m.B.y");
  EXPECT_EQ(text(), replaced(before, "far < d.m.b, d.m.b.y, d >", "far < d.m.b, d >"));
  m_document->delete_reference("d.m.b");
  EXPECT_EQ(text(), replaced(before, "far < d.m.b, d.m.b.y, d >", "far < d >"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DELETE_REFERENCE, DeletesStatementsThatBecomeEmpty) {
  const std::string before = text();
  const std::size_t count = count_symbols(*m_document);
  ASSERT_TRUE(m_document->set_value("e", "twice", string_list({"d.m.x", "D.M.X"})));
  m_document->delete_reference("d.m.x");
  EXPECT_EQ(text(), replaced(replaced(replaced(before, "own < .x, d.m >", "own < d.m >"),
                                      "            up < d.m.x >;\n", ""),
                             "link < d.a, d.m.x >", "link < d.a >"));
  EXPECT_EQ(count_symbols(*m_document), count - 1);
  EXPECT_FALSE(m_document->is_parameter_defined("d.m.b.up"));
  EXPECT_FALSE(m_document->is_parameter_defined("e.twice"));
  EXPECT_FALSE(m_document->is_referenced("d.m.x"));
  m_document->delete_parameter("d.m", "x");
  EXPECT_FALSE(m_document->is_parameter_defined("d.m.x"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DELETE_REFERENCE, KeepsReferencesFromInsideTheTarget) {
  ASSERT_TRUE(m_document->set_value("d.m.b", "home", string_list({"d.m", "d"})));
  const std::string before = text();
  m_document->delete_reference("d.m");
  EXPECT_EQ(text(), before);
  m_document->delete_reference("d");
  EXPECT_EQ(text(), replaced(before, "far < d.m.b, d.m.b.y, d >", "far < d.m.b, d.m.b.y >"));
}

TEST_F(DELETE_REFERENCE, KeepsAReferenceOfAStatementToItself) {
  ASSERT_TRUE(m_document->set_value("d", "link", string_list({"d.link", "d.a"})));
  m_document->delete_reference("d.link");
  EXPECT_NE(text().find("link < d.link, d.a >;"), std::string::npos);
}

TEST_F(DELETE_REFERENCE, LeavesStatementsAloneThatWereEmptyBefore) {
  ASSERT_TRUE(m_document->set_value("d", "none", string_list({})));
  m_document->delete_reference("d.m.b");
  m_document->delete_reference("d.a");
  EXPECT_NE(text().find("none <  >;"), std::string::npos);
}

TEST_F(DELETE_REFERENCE, WorksOnAPartOfTheDocument) {
  const std::string before = text();
  m_document->delete_reference(find("d.m.x"), find("e"));  // Nothing there.
  EXPECT_EQ(text(), before);
  m_document->delete_reference(find("d.m.b"), find("e"));
  EXPECT_EQ(text(), replaced(before, "far < d.m.b, d.m.b.y, d >", "far < d.m.b.y, d >"));
  m_document->delete_reference(find("d.m.x"), find("d.link"));
  EXPECT_NE(text().find("    link < d.a >;\t# link"), std::string::npos);
  EXPECT_NE(text().find("own < .x, d.m >"), std::string::npos);
  m_document->delete_reference(find("d.m.x"), find("d.m.x"));  // From inside the module on.
  EXPECT_NE(text().find("own < d.m >"), std::string::npos);
  EXPECT_EQ(text().find("up <"), std::string::npos);
  EXPECT_FALSE(m_document->is_referenced("d.m.x"));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(DELETE_REFERENCE, DeletesTheFirstStatementOfAChain) {
  const auto document =
      document_of("device d { r < d >; s < d.x >; t < d.x >; x = 1; u < d.x >; }");
  document->delete_reference(document->get_ref_object("d.x", nullptr),
                             document->get_ref_object("d.s", nullptr));
  EXPECT_EQ(written(*document), "device d\n{\n    r < d >;\n    x = 1; \n}\n\n");
  ASSERT_TRUE(document->set_value("d", "n", 1));
  EXPECT_EQ(written(*document), "device d\n{\n    r < d >;\n    x = 1; \n    n = true; \n}\n\n");
}

TEST_F(DELETE_REFERENCE, EmptiesABlock) {
  const auto document = document_of("device d { x = 1; bus b { r < d.x >; s < d.x >; } }");
  document->delete_reference("d.x");
  EXPECT_EQ(written(*document), "device d\n{\n    x = 1; \n    bus b\n    {\n    }\n\n}\n\n");
  ASSERT_TRUE(document->set_value("d.b", "r", 1));
  EXPECT_EQ(written(*document),
            "device d\n{\n    x = 1; \n    bus b\n    {\n        r = true; \n    }\n\n}\n\n");
}

TEST_F(DELETE_REFERENCE, MakesDeletionPossible) {
  refuse_deletion("d.m.b", k_in_use, k_error);
  m_document->delete_reference("d.m.b");
  m_document->delete_block("d.m.b");
  EXPECT_FALSE(m_document->is_block_defined("d.m.b"));
  EXPECT_TRUE(m_recorder.is_silent());
}

// ---- Whether something is referenced -----------------------------------------------------------

TEST_F(DELETE_REFERENCE, GoesWithWhatIsReferencedSays) {
  for (const auto& [name, is_referenced] : {std::pair{"d", true},
                                            {"d.a", true},
                                            {"d.m", false},
                                            {"d.m.x", true},
                                            {"d.m.b", true},
                                            {"d.m.b.y", true},
                                            {"d.link", false},
                                            {"e", false},
                                            {"e.far", false}}) {
    EXPECT_EQ(m_document->is_referenced(name), is_referenced) << name;
    m_document->delete_reference(name);
    EXPECT_FALSE(m_document->is_referenced(name)) << name;
  }
}

// ---- Moving ------------------------------------------------------------------------------------

TEST_F(MOVE_MEMBER, SaysNoInSilence) {
  const std::pair<const char*, const char*> cases[] = {
      {nullptr, "d"},  {"d", nullptr},   {nullptr, nullptr}, {"no", "d"},      {"d", "no"},
      {"d.a", "d.no"}, {"d.no", "d.a"},  {"d", "D"},         {"d.a", "D.A"},   {"d", "d.a"},
      {"d.a", "d"},    {"d.m.x", "d.a"}, {"d.m", "d.m.x"},   {"d.a", "e.far"}, {"a", "m"}};
  for (const auto& [name, sibling] : cases) {
    for (const bool is_behind : {false, true}) {
      expect_silent_refusal(*m_document, m_recorder, [&, n = name, s = sibling] {
        return m_document->move_member(n, s, is_behind);
      });
    }
  }
}

TEST_F(MOVE_MEMBER, PutsEachMemberBeforeAndBehindEachOther) {
  const char* const names[] = {"a", "b", "c", "d"};
  for (const std::string name : names) {
    for (const std::string sibling : names) {
      if (name == sibling) continue;
      for (const bool is_behind : {false, true}) {
        const auto document = document_of("device t { a=1; b<t>; bus c { x=1; } d=1; }");
        std::string order = "abcd";
        order.erase(order.find(name), 1);
        order.insert(order.find(sibling) + (is_behind ? 1 : 0), name);
        SBD_NODE* const node = document->get_ref_object(("t." + name).c_str(), nullptr);
        ASSERT_TRUE(
            document->move_member(("T." + name).c_str(), ("t." + sibling).c_str(), is_behind));
        std::string found;
        for (const SBD_NODE* const member :
             members_of(*document, document->get_ref_object("t", nullptr))) {
          found += symbol_of(member)->name;
        }
        EXPECT_EQ(found, order) << name << " " << sibling << " " << is_behind;
        EXPECT_EQ(document->get_ref_object(("t." + name).c_str(), nullptr), node);
        // What is added afterwards still comes last.
        ASSERT_TRUE(document->set_value("t", "e", 1));
        const auto members = members_of(*document, document->get_ref_object("t", nullptr));
        EXPECT_EQ(members.size(), 5U);
        EXPECT_STREQ(symbol_of(members.back())->name, "e");
      }
    }
  }
}

TEST_F(MOVE_MEMBER, MovesBlocksOfTheTopLevel) {
  const std::string before = text();
  const std::string e = before.substr(before.find("device e"));
  ASSERT_TRUE(m_document->move_member("e", "d", false));
  EXPECT_EQ(text(), "# head\n" + e + before.substr(7, before.size() - 7 - e.size()));
  ASSERT_TRUE(m_document->create_block("device", "last", nullptr));
  ASSERT_TRUE(m_document->move_member("e", "last", true));
  m_document->delete_block("last");
  EXPECT_EQ(text(), before);
  ASSERT_TRUE(m_document->move_member("d", "e", false));  // It stands there already.
  ASSERT_TRUE(m_document->move_member("e", "d", true));
  EXPECT_EQ(text(), before);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(MOVE_MEMBER, LeavesCommentsAndSymbolsWhereTheyAre) {
  const std::string before = state_of(*m_document);
  const std::string old_text = text();
  ASSERT_TRUE(m_document->move_member("d.r[0]", "d.a", false));
  EXPECT_EQ(text(), replaced(replaced(old_text, "    r[0] = {1,2}; \n", ""), "    a = 1; \n",
                             "    r[0] = {1,2}; \n    a = 1; \n"));
  EXPECT_EQ(state_of(*m_document).substr(text().size()), before.substr(old_text.size()));
  EXPECT_TRUE(m_document->is_referenced("d.a"));
  ASSERT_TRUE(m_document->move_member("d.r[0]", "d.link", true));
  EXPECT_EQ(state_of(*m_document), before);
}

TEST_F(MOVE_MEMBER, MovesTheBlockOfTwoThingsOfOneName) {
  ASSERT_TRUE(m_document->create_block("bus", "a", "d"));
  ASSERT_TRUE(m_document->move_member("d.a", "d.m", false));
  const auto members = members_of(*m_document, find("d"));
  EXPECT_EQ(members[0]->type, SBD_NODE::NT_STATEMENT);
  EXPECT_EQ(members[1]->type, SBD_NODE::NT_COMMENT);
  EXPECT_EQ(members[2], find("d.a"));
}

// ---- Records that a caller made ----

TEST(HAND_MADE, IsEditedLikeAnythingElse) {
  SBD_FILE_PARSER document;
  SBD_NODE* const device = enter(document, make_block("device", "d"), nullptr);
  SBD_NODE* const x = enter(document, make_assignment("x", make_number(1)), device);
  SBD_NODE* const bus = enter(document, make_block("bus", "b"), device);
  SBD_NODE* const link = enter(document, make_reference("r", {".y", "d.x"}, "# c\n"), device);
  enter(document, make_assignment("y", make_string("s"), make_attributes({{"k", nullptr}})),
        device);
  MESSAGE_RECORDER recorder;
  ASSERT_TRUE(document.resolve_symbol(root_of(document), root_of(document)));
  ASSERT_TRUE(document.check_semantic(root_of(document)));
  EXPECT_TRUE(document.is_referenced("d.x"));
  EXPECT_TRUE(document.is_referenced("d.y"));
  document.delete_parameter("d", "x");
  EXPECT_EQ(recorder.numbers(), std::vector<int>{k_error});
  recorder.forget();
  ASSERT_TRUE(document.set_value("d", "x", 2.5, k_no_unit));
  ASSERT_TRUE(document.set_value("d", "y", SBD_STRING("t")));
  ASSERT_TRUE(document.set_attribute("d", "y", nullptr));
  ASSERT_TRUE(document.rename("x", "z", "d"));
  ASSERT_TRUE(document.rename("b", "c", "d"));
  ASSERT_TRUE(document.set_value("d.c", "own", string_list({"d.z"})));
  ASSERT_TRUE(document.move_member("d.r", "d.z", false));
  EXPECT_EQ(symbol_of(x)->parent, device);
  EXPECT_EQ(document.get_ref_object("d.c", nullptr), bus);
  EXPECT_EQ(members_of(document, device).front(), link);
  EXPECT_EQ(written(document),
            "device d\n{\n    r < .y, d.x >;\t# c\n    z = 2.500000; \n    bus c\n    {\n"
            "        own < d.z >;\n    }\n\n    y = t; \n}\n\n");
  document.delete_reference("d.z");
  document.delete_parameter("d", "z");
  document.delete_block("d.c");
  EXPECT_EQ(written(document), "device d\n{\n    r < .y >;\t# c\n    y = t; \n}\n\n");
  EXPECT_TRUE(recorder.is_silent());
}

TEST(HAND_MADE, ReferencesCountFromTheMomentTheyAreAdded) {
  const auto document = document_of("device d { x = 1; y = 2; bus b { z = 3; } }");
  MESSAGE_RECORDER recorder;
  SBD_NODE* const device = document->get_ref_object("d", nullptr);
  SBD_NODE* const link = make_reference("r", {"d.x", "d.b"});
  link->statement->reference->target = document->get_ref_object("d.x", nullptr);
  link->statement->reference->next->target = document->get_ref_object("d.b", nullptr);
  symbol_of(link)->parent = device;
  enter(*document, link, device);
  EXPECT_TRUE(document->is_referenced("d.x"));
  EXPECT_TRUE(document->is_referenced("d.b"));
  EXPECT_FALSE(document->is_referenced("d.y"));
  document->delete_parameter("d", "x");
  document->delete_block("d.b");
  EXPECT_EQ(recorder.numbers(), (std::vector<int>{k_error, k_error}));
  recorder.forget();
  document->delete_reference("d.x");
  document->delete_parameter("d", "x");
  document->delete_parameter("d", "r");
  document->delete_block("d.b");
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_EQ(written(*document), "device d\n{\n    y = 2; \n}\n\n");
}

TEST(HAND_MADE, ReferencesMayBeResolvedOneByOne) {
  const auto document = document_of("device d { x = 1; }");
  MESSAGE_RECORDER recorder;
  SBD_NODE* const device = document->get_ref_object("d", nullptr);
  SBD_NODE* const link = make_reference("r", {".x"});
  symbol_of(link)->parent = device;
  enter(*document, link, device);
  EXPECT_FALSE(document->is_referenced("d.x"));
  ASSERT_TRUE(document->resolve_reference(link->statement));
  EXPECT_TRUE(document->is_referenced("d.x"));
  ASSERT_TRUE(document->resolve_reference(link->statement));  // Counts once only.
  document->delete_parameter("d", "x");
  EXPECT_EQ(recorder.numbers(), std::vector<int>{k_error});
  recorder.forget();
  document->delete_parameter("d", "r");
  EXPECT_FALSE(document->is_referenced("d.x"));
  document->delete_parameter("d", "x");
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_EQ(written(*document), "device d\n{\n}\n\n");
}

TEST(HAND_MADE, ReferencesOfADocumentThatWasReadMayBeResolvedAgain) {
  const auto document = document_of("device d { x = 1; r < .x, d.x >; }");
  const MESSAGE_RECORDER recorder;
  ASSERT_TRUE(document->check_semantic(root_of(*document)));
  ASSERT_TRUE(document->resolve_reference(document->get_statement("d", "r")));
  document->delete_parameter("d", "r");
  EXPECT_FALSE(document->is_referenced("d.x"));
  document->delete_parameter("d", "x");
  EXPECT_EQ(written(*document), "device d\n{\n}\n\n");
  EXPECT_TRUE(recorder.is_silent());
}

// ---- Large blocks ------------------------------------------------------------------------------

// Enough members for any index of names, edited while it exists.
TEST(LARGE_BLOCK, KeepsItsNamesThroughEdits) {
  std::string source = "device d { bus b {";
  for (int i = 0; i < 3000; i++) source += "p" + std::to_string(i) + " = 1;";
  const auto document = document_of(source + "} }");
  const MESSAGE_RECORDER recorder;
  for (int i = 0; i < 3000; i += 2) {
    const std::string name = "P" + std::to_string(i);
    ASSERT_TRUE(document->rename(name.c_str(), ("q" + std::to_string(i)).c_str(), "d.b"));
    ASSERT_TRUE(document->create_block("bus", name.c_str(), "d.b"));
    ASSERT_TRUE(document->set_value(("d.b." + name).c_str(), "x", 1));
  }
  for (int i = 1; i < 3000; i += 2) {
    document->delete_parameter("d.b", ("p" + std::to_string(i)).c_str());
  }
  for (int i = 0; i < 3000; i++) {
    const std::string number = std::to_string(i);
    EXPECT_EQ(document->is_parameter_defined(("d.b.Q" + number).c_str()), i % 2 == 0);
    EXPECT_FALSE(document->is_parameter_defined(("d.b.p" + number).c_str()));
    EXPECT_EQ(document->is_block_defined(("d.b.p" + number).c_str()), i % 2 == 0);
    EXPECT_EQ(document->is_parameter_defined(("d.b.p" + number + ".x").c_str()), i % 2 == 0);
  }
  // The names move with the block.
  ASSERT_TRUE(document->rename("b", "c", "d"));
  EXPECT_TRUE(document->is_parameter_defined("d.c.q2998"));
  document->delete_block("d.c");
  EXPECT_EQ(written(*document), "device d\n{\n}\n\n");
  EXPECT_TRUE(recorder.is_silent());
}

}  // namespace
