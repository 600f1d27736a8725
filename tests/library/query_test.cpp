#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;

std::string plain(const SBD_STRING& text) {
  return std::string(text.data(), text.size());
}

TEXTS plain(const SBD_STRING_LIST& list) {
  TEXTS texts;
  for (const SBD_STRING& text : list) texts.push_back(plain(text));
  return texts;
}

void expect_error(const MESSAGE_RECORDER& recorder, const char* condition) {
  ASSERT_EQ(recorder.conditions(), TEXTS{condition});
  EXPECT_EQ(recorder.internal_errors().front().module, "SBD");
  EXPECT_EQ(recorder.internal_errors().front().source, "sbd_file_parser");
  EXPECT_TRUE(recorder.messages().empty());
}

constexpr char TEXT[] =
    "# first\n"
    "device Stripe {\n"
    "  Value = 1;\n"
    "  bus PLL1 {\n"
    "    Clock = 2MHz [unit, source .Value]; # c\n"
    "    region[0] = 3;\n"
    "    slave s[1][2] { Deep = 4; }\n"
    "  }\n"
    "  Link <.Value, Stripe.PLL1>;\n"
    "  flag = true;\n"
    "  text = \"a b\";\n"
    "  list = {1, 2};\n"
    "}\n"
    "device value { x = 1; }\n";

// Queries must be silent and leave the document as it is, whatever a test asks.
class QUERY : public testing::Test {
 protected:
  QUERY() : m_document(document_of(TEXT)), m_before(outline(*m_document)) {}
  void TearDown() override {
    EXPECT_EQ(outline(*m_document), m_before);
    EXPECT_TRUE(m_recorder.messages().empty());
    if (!m_expects_errors) {
      EXPECT_TRUE(m_recorder.internal_errors().empty());
    }
  }

  SBD_NODE* node(const char* name) const { return m_document->get_ref_object(name, nullptr); }

  std::unique_ptr<SBD_FILE_PARSER> m_document;
  std::string m_before;
  MESSAGE_RECORDER m_recorder;
  bool m_expects_errors = false;
};

// ---- get_ref_object ----------------------------------------------------------------------------

TEST_F(QUERY, NameIsFoundByTheChainOfDeclaredNames) {
  SBD_NODE* const stripe = root_of(*m_document)->next;
  EXPECT_EQ(node("Stripe"), stripe);
  EXPECT_EQ(node("Stripe.Value"), stripe->block->members);
  EXPECT_EQ(node("Stripe.PLL1"), stripe->block->members->next);
  EXPECT_EQ(node("Stripe.PLL1.Clock"), stripe->block->members->next->block->members);
  EXPECT_STREQ(symbol_of(node("Stripe.PLL1.s[1][2].Deep"))->name, "Deep");
}

TEST_F(QUERY, NameIsFoundInAnyLetterCase) {
  EXPECT_NE(node("stripe.pll1.clock"), nullptr);
  EXPECT_EQ(node("stripe.pll1.clock"), node("Stripe.PLL1.Clock"));
  EXPECT_EQ(node("STRIPE.pLL1.REGION[0]"), node("Stripe.PLL1.region[0]"));
}

TEST_F(QUERY, NameWithEmptyComponentsIsNotFound) {
  for (const char* const name : {".", "..", ".Stripe", "Stripe.", "Stripe..Value", "Stripe.PLL1.",
                                 "Stripe.Value.", "..Stripe", "Stripe..", ". ", "Stripe .Value"}) {
    EXPECT_EQ(node(name), nullptr) << name;
  }
}

TEST_F(QUERY, NameOfNothingIsNotFound) {
  for (const char* const name : {"x", "Clock", "PLL1", "PLL1.Clock", "Stripe.Clock", "region",
                                 "Stripe.PLL1.region", "Stripe.PLL1.s[1]", "Stripe.PLL1.s",
                                 "Stripe.Value.x", "Stripe.Stripe", "Stripes", "Strip", "unit"}) {
    EXPECT_EQ(node(name), nullptr) << name;
  }
}

TEST_F(QUERY, EmptyNameIsAnInternalErrorAndNotFound) {
  m_expects_errors = true;
  EXPECT_EQ(node(""), nullptr);
  expect_error(m_recorder, "ref[p1] == '.'");
}

TEST_F(QUERY, NullNameIsNotFound) {
  EXPECT_EQ(node(nullptr), nullptr);
}

TEST_F(QUERY, ParameterDoesNotHideATopLevelBlock) {
  EXPECT_EQ(node("value"), root_of(*m_document)->next->next);
  EXPECT_NE(node("stripe.value"), node("value"));
}

TEST_F(QUERY, ScopeIsWhereTheFirstComponentIsDeclared) {
  EXPECT_EQ(m_document->get_ref_object("pll1.clock", node("stripe")), node("stripe.pll1.clock"));
  EXPECT_EQ(m_document->get_ref_object("CLOCK", node("stripe.pll1")), node("stripe.pll1.clock"));
  EXPECT_EQ(m_document->get_ref_object("value", node("stripe")), node("stripe.value"));
}

TEST_F(QUERY, ScopeHidesWhatIsOutsideOfIt) {
  EXPECT_EQ(m_document->get_ref_object("stripe", node("stripe")), nullptr);
  EXPECT_EQ(m_document->get_ref_object("value", node("stripe.pll1")), nullptr);
  EXPECT_EQ(m_document->get_ref_object("deep", node("stripe.pll1")), nullptr);
  EXPECT_EQ(m_document->get_ref_object("stripe.value", node("stripe")), nullptr);
}

TEST_F(QUERY, StatementAsScopeHoldsNothing) {
  EXPECT_EQ(m_document->get_ref_object("value", node("stripe.value")), nullptr);
}

TEST(NAME_LOOKUP, InAnEmptyDocumentFindsNothing) {
  const SBD_FILE_PARSER document;
  EXPECT_EQ(document.get_ref_object("a", nullptr), nullptr);
  EXPECT_EQ(document.get_block("a"), nullptr);
  EXPECT_FALSE(document.is_block_defined("a.b"));
}

TEST(NAME_LOOKUP, GivesTheNewestOfEqualNames) {
  SBD_FILE_PARSER document;
  for (const char* const name : {"d", "D", "d"}) {
    SBD_NODE* const node = enter(document, make_block("device", name), nullptr);
    symbol_of(node)->parent = node;
    EXPECT_EQ(document.get_ref_object("d", nullptr), node);
  }
}

TEST(NAME_LOOKUP, GivesTheNewestWhetherItsParentWasSetBeforeOrAfterItsEntry) {
  SBD_FILE_PARSER document;
  SBD_NODE* const device = enter(document, make_block("device", "d"), nullptr);
  symbol_of(device)->parent = device;
  for (int i = 0; i < 6; i++) {
    SBD_NODE* const node = make_assignment("x", make_number(i));
    const bool is_before = i % 3 == 0;
    if (is_before) symbol_of(node)->parent = device;
    enter(document, node, device);
    if (!is_before) symbol_of(node)->parent = device;
    EXPECT_EQ(document.get_ref_object("d.x", nullptr), node) << i;
  }
}

TEST(NAME_LOOKUP, IgnoresSymbolsWithoutParent) {
  SBD_FILE_PARSER document;
  enter(document, make_block("device", "d"), nullptr);
  EXPECT_EQ(document.get_ref_object("d", nullptr), nullptr);
  ASSERT_TRUE(document.resolve_symbol(root_of(document), root_of(document)));
  EXPECT_EQ(document.get_ref_object("d", nullptr), root_of(document));
}

TEST(NAME_LOOKUP, FollowsAddedAndDeletedNodes) {
  auto document = document_of("device d { a = 1; bus b { c = 1; } }");
  SBD_NODE* const device = root_of(*document);
  SBD_NODE* const bus = document->get_ref_object("d.b", nullptr);
  SBD_NODE* const x = enter(*document, make_assignment("X", make_number(1)), bus);
  symbol_of(x)->parent = bus;
  EXPECT_EQ(document->get_ref_object("d.b.x", nullptr), x);
  document->delete_node(device->block->members, device);
  EXPECT_EQ(document->get_ref_object("d.a", nullptr), nullptr);
  document->delete_node(bus, device);
  EXPECT_EQ(document->get_ref_object("d.b.c", nullptr), nullptr);
  EXPECT_EQ(document->get_ref_object("d", nullptr), device);
}

TEST(NAME_LOOKUP, FindsAllOfManyNamesInOneBlock) {
  std::string text = "device d {\n";
  for (int i = 0; i < 3000; i++)
    text += "Name_" + std::to_string(i) + " = " + std::to_string(i) + ";\n";
  const auto document = document_of(text + "}");
  for (int i = 0; i < 3000; i++) {
    unsigned long value = 0;
    ASSERT_TRUE(document->get_value("d", ("nAME_" + std::to_string(i)).c_str(), value));
    ASSERT_EQ(value, static_cast<unsigned long>(i));
  }
  EXPECT_FALSE(document->is_parameter_defined("d.name_3000"));
  EXPECT_FALSE(document->is_parameter_defined("name_1"));
}

// Small and large blocks are looked through in different ways.
TEST(NAME_LOOKUP, FollowsEditsOfBlocksOfEverySize) {
  for (int size = 1; size <= 40; size++) {
    std::string text = "device d {\n# c\n";
    for (int i = 0; i < size; i++) text += "Name" + std::to_string(i) + " = 1; ";
    auto document = document_of(text + "}");
    SBD_NODE* const device = root_of(*document);
    for (int i = 0; i < size; i++) {
      const std::string name = "d.NAME" + std::to_string(i);
      SBD_NODE* const node = document->get_ref_object(name.c_str(), nullptr);
      ASSERT_NE(node, nullptr) << name << " of " << size;
      document->delete_node(node, device);
      ASSERT_EQ(document->get_ref_object(name.c_str(), nullptr), nullptr) << name << " of " << size;
    }
    EXPECT_EQ(document->get_ref_object("d.name", nullptr), nullptr);
    EXPECT_EQ(count_symbols(*document), 1U);
  }
}

TEST(NAME_LOOKUP, PrefersWhatWasAddedToWhatWasRead) {
  auto document = document_of("device d { x = 1; }");
  SBD_NODE* const device = root_of(*document);
  SBD_NODE* const read = device->block->members;
  SBD_NODE* const added = enter(*document, make_assignment("X", make_number(2)), device);
  symbol_of(added)->parent = device;
  EXPECT_EQ(document->get_ref_object("d.x", nullptr), added);
  document->delete_node(added, device);
  EXPECT_EQ(document->get_ref_object("d.x", nullptr), read);
}

TEST(NAME_LOOKUP, FollowsEditsOfALargeBlock) {
  std::string text = "device d {\n";
  for (int i = 0; i < 1000; i++) text += "n" + std::to_string(i) + " = 1;\n";
  auto document = document_of(text + "}");
  SBD_NODE* const device = root_of(*document);
  for (int i = 0; i < 1000; i += 2) {
    const std::string name = "d.n" + std::to_string(i);
    document->delete_node(document->get_ref_object(name.c_str(), nullptr), device);
    EXPECT_FALSE(document->is_parameter_defined(name.c_str())) << name;
  }
  for (int i = 0; i < 1000; i += 4) {
    const std::string name = "N" + std::to_string(i);
    SBD_NODE* const node = enter(*document, make_assignment(name.c_str(), make_number(2)), device);
    symbol_of(node)->parent = device;
  }
  for (int i = 0; i < 1000; i++) {
    unsigned long value = 0;
    const bool is_there = document->get_value("d", ("n" + std::to_string(i)).c_str(), value);
    EXPECT_EQ(is_there, i % 4 == 0 || i % 2 == 1) << i;
    EXPECT_EQ(value, i % 4 == 0 ? 2U : i % 2 == 1 ? 1U : 0U) << i;
  }
}

// ---- get_ref_name ------------------------------------------------------------------------------

TEST_F(QUERY, FullNameHasTheDeclaredSpelling) {
  for (const char* const name :
       {"Stripe", "Stripe.Value", "Stripe.PLL1", "Stripe.PLL1.Clock", "Stripe.PLL1.region[0]",
        "Stripe.PLL1.s[1][2].Deep", "Stripe.Link", "value.x"}) {
    SBD_STRING full = "before";
    EXPECT_TRUE(m_document->get_ref_name(node(name), full));
    EXPECT_EQ(plain(full), name);
  }
}

TEST_F(QUERY, FullNameOfNothingOrACommentIsNone) {
  SBD_STRING name = "before";
  EXPECT_FALSE(m_document->get_ref_name(nullptr, name));
  EXPECT_FALSE(m_document->get_ref_name(root_of(*m_document), name));
  EXPECT_EQ(plain(name), "before");
}

TEST(FULL_NAME, OfAnUnresolvedSymbolIsNone) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  SBD_NODE* const device = enter(document, make_block("device", "d"), nullptr);
  SBD_NODE* const bus = enter(document, make_block("bus", "b"), device);
  symbol_of(bus)->parent = device;
  SBD_STRING name = "before";
  EXPECT_FALSE(document.get_ref_name(device, name));
  EXPECT_FALSE(document.get_ref_name(bus, name));
  EXPECT_EQ(plain(name), "before");
  EXPECT_TRUE(recorder.is_silent());
}

TEST(FULL_NAME, OfAnUnknownStatementIsAnInternalError) {
  MESSAGE_RECORDER recorder;
  const auto document = document_of("device d { a = 1; }");
  SBD_STATEMENT* const statement = document->get_statement("d", "a");
  statement->type = static_cast<SBD_STATEMENT::STATEMENT_TYPE>(2);
  SBD_STRING name;
  EXPECT_FALSE(document->get_ref_name(root_of(*document)->block->members, name));
  expect_error(recorder, "Invalid statement type");
  statement->type = SBD_STATEMENT::ST_ASSIGNMENT;
}

TEST(FULL_NAME, OfAnUnknownNodeIsAnInternalErrorOfTheSameText) {
  MESSAGE_RECORDER recorder;
  SBD_NODE node;
  node.type = static_cast<SBD_NODE::NODE_TYPE>(3);
  SBD_STRING name;
  EXPECT_FALSE(SBD_FILE_PARSER().get_ref_name(&node, name));
  expect_error(recorder, "Invalid statement type");
}

// ---- Lookups that hand out records -------------------------------------------------------------

TEST_F(QUERY, BlockIsThatOfABlockNode) {
  EXPECT_EQ(m_document->get_block("stripe.pll1"), node("stripe.pll1")->block);
  EXPECT_EQ(m_document->get_block("stripe.value"), nullptr);
  EXPECT_EQ(m_document->get_block("stripe.none"), nullptr);
  EXPECT_EQ(m_document->get_block(nullptr), nullptr);
}

TEST_F(QUERY, StatementIsThatOfEitherType) {
  EXPECT_EQ(m_document->get_statement("stripe.pll1", "clock"),
            node("stripe.pll1.clock")->statement);
  EXPECT_EQ(m_document->get_statement("stripe", "link"), node("stripe.link")->statement);
  EXPECT_EQ(m_document->get_statement("stripe", "pll1"), nullptr);
  EXPECT_EQ(m_document->get_statement("stripe", "none"), nullptr);
}

TEST_F(QUERY, ValueIsThatOfAnAssignment) {
  const SBD_PARA_VALUE* const value = m_document->get_para_value("stripe.pll1", "clock");
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(outline(*value), "2 MHz");
  EXPECT_EQ(m_document->get_para_value("stripe", "link"), nullptr);
  EXPECT_EQ(m_document->get_para_value("stripe", "pll1"), nullptr);
  EXPECT_EQ(m_document->get_para_value("stripe", "none"), nullptr);
}

TEST_F(QUERY, AttributeIsTheFirstOfAnAssignment) {
  const SBD_PARA_ATTR* const attribute = m_document->get_para_attr("stripe.pll1", "clock");
  ASSERT_NE(attribute, nullptr);
  EXPECT_STREQ(attribute->attr_key, "unit");
  EXPECT_STREQ(attribute->next->attr_value, ".Value");
  EXPECT_EQ(m_document->get_para_attr("stripe", "value"), nullptr);
  EXPECT_EQ(m_document->get_para_attr("stripe", "link"), nullptr);
  EXPECT_EQ(m_document->get_para_attr("stripe", "pll1"), nullptr);
  EXPECT_EQ(m_document->get_para_attr("stripe", "none"), nullptr);
}

TEST_F(QUERY, ReferenceIsTheFirstOfAReferenceStatement) {
  const SBD_PARA_REF* const reference = m_document->get_para_ref("stripe", "link");
  ASSERT_NE(reference, nullptr);
  EXPECT_STREQ(reference->name, ".Value");
  EXPECT_EQ(reference->target, node("stripe.value"));
  EXPECT_EQ(m_document->get_para_ref("stripe", "value"), nullptr);
  EXPECT_EQ(m_document->get_para_ref("stripe", "pll1"), nullptr);
  EXPECT_EQ(m_document->get_para_ref("stripe", "none"), nullptr);
}

TEST_F(QUERY, TwoNamesAreOneJoinedByAPoint) {
  EXPECT_EQ(m_document->get_statement("stripe", "pll1.clock"),
            node("stripe.pll1.clock")->statement);
  EXPECT_TRUE(m_document->is_parameter_defined("stripe.pll1.s[1][2]", "deep"));
  EXPECT_FALSE(m_document->is_parameter_defined("", "stripe.value"));
  EXPECT_FALSE(m_document->is_parameter_defined("stripe.value", ""));
  EXPECT_FALSE(m_document->is_parameter_defined("stripe.", "value"));
}

TEST_F(QUERY, TwoNamesWithANullFindNothing) {
  const std::vector<std::pair<const char*, const char*>> names = {
      {nullptr, "value"}, {"stripe", nullptr}, {nullptr, nullptr}};
  for (const auto& [block, parameter] : names) {
    EXPECT_EQ(m_document->get_statement(block, parameter), nullptr);
    EXPECT_EQ(m_document->get_para_value(block, parameter), nullptr);
    EXPECT_EQ(m_document->get_para_attr(block, parameter), nullptr);
    EXPECT_EQ(m_document->get_para_ref(block, parameter), nullptr);
    EXPECT_FALSE(m_document->is_parameter_defined(block, parameter));
  }
}

// ---- Yes or no ---------------------------------------------------------------------------------

TEST_F(QUERY, ParameterIsDefinedByEitherStatement) {
  EXPECT_TRUE(m_document->is_parameter_defined("stripe", "value"));
  EXPECT_TRUE(m_document->is_parameter_defined("stripe", "link"));
  EXPECT_TRUE(m_document->is_parameter_defined("STRIPE.PLL1.REGION[0]"));
  EXPECT_FALSE(m_document->is_parameter_defined("stripe", "pll1"));
  EXPECT_FALSE(m_document->is_parameter_defined("stripe"));
  EXPECT_FALSE(m_document->is_parameter_defined("stripe.none"));
  EXPECT_FALSE(m_document->is_parameter_defined(nullptr));
}

TEST_F(QUERY, BlockIsDefinedByABlockOnly) {
  EXPECT_TRUE(m_document->is_block_defined("stripe"));
  EXPECT_TRUE(m_document->is_block_defined("Stripe.Pll1.S[1][2]"));
  EXPECT_FALSE(m_document->is_block_defined("stripe.value"));
  EXPECT_FALSE(m_document->is_block_defined("pll1"));
  EXPECT_FALSE(m_document->is_block_defined(nullptr));
}

// ---- is_valid_parameter_name -------------------------------------------------------------------

TEST(PARAMETER_NAME, OfTheseIsValid) {
  const SBD_FILE_PARSER document;
  for (const char* const name :
       {"a", "Z", "clock_1", "a_", "region[0]", "map[1][2]", "region[]", "a1b2[123][][4]"}) {
    EXPECT_TRUE(document.is_valid_parameter_name(name)) << name;
  }
}

TEST(PARAMETER_NAME, OfTheseIsInvalid) {
  const SBD_FILE_PARSER document;
  for (const char* const name :
       {"",         "1st", "_a",     "[0]",   "region[0]x", "region[a]", "a.b",
        "region[0", "a]",  "a[[0]]", "a[0]]", "a[0]1",      "a[0]_",     "a[_]",
        "a b",      "a-b", "a ",     " a",    "a\n",        "\xc4",      "a\xe4"}) {
    EXPECT_FALSE(document.is_valid_parameter_name(name)) << name;
  }
  EXPECT_FALSE(document.is_valid_parameter_name(nullptr));
}

// The rule put the other way round: a word that starts with a letter, then groups of digits.
bool is_word_with_indices(const std::string& name) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::string digits = "0123456789";
  if (name.empty() || letters.find(name[0]) == std::string::npos) return false;
  std::size_t end = name.find_first_not_of(letters + digits + "_");
  while (end != std::string::npos && end < name.size()) {
    if (name[end] != '[') return false;
    end = name.find_first_not_of(digits, end + 1);
    if (end == std::string::npos || name[end] != ']') return false;
    end++;
  }
  return true;
}

TEST(PARAMETER_NAME, IsValidAsAWordWithIndices) {
  const SBD_FILE_PARSER document;
  const std::string letters = "aZ_1[].";
  std::vector<std::string> names = {""};
  for (std::size_t i = 0; i < names.size() && names[i].size() < 6; i++) {
    for (const char letter : letters) names.push_back(names[i] + letter);
  }
  for (const std::string& name : names) {
    ASSERT_EQ(document.is_valid_parameter_name(name.c_str()), is_word_with_indices(name)) << name;
  }
}

// ---- is_referenced -----------------------------------------------------------------------------

TEST(REFERENCED, IsWhatSomeStatementRefersTo) {
  const auto document = document_of(
      "device d { a = 1; b = 1; bus s { deep = 1; r <d.a, .deep, d.t>; } bus t { x = 1; } }\n"
      "device e { r <d.s>; }");
  EXPECT_TRUE(document->is_referenced("d.a"));
  EXPECT_TRUE(document->is_referenced("D.S.DEEP"));
  EXPECT_TRUE(document->is_referenced("d.s"));
  EXPECT_TRUE(document->is_referenced("d.t"));
  EXPECT_FALSE(document->is_referenced("d.b"));
  EXPECT_FALSE(document->is_referenced("d"));
  EXPECT_FALSE(document->is_referenced("d.t.x"));
  EXPECT_FALSE(document->is_referenced("e.r"));
}

TEST(REFERENCED, IsNotABlockThatRefersToItselfFromInside) {
  const auto document = document_of("device d { r <d>; bus b { slave s { r <d.b, d>; } } }");
  EXPECT_FALSE(document->is_referenced("d"));
  EXPECT_FALSE(document->is_referenced("d.b"));
}

TEST(REFERENCED, IsNotAStatementThatRefersToItself) {
  const auto document = document_of("device d { r <.r>; }");
  EXPECT_FALSE(document->is_referenced("d.r"));
}

TEST(REFERENCED, IsNothingUnknown) {
  MESSAGE_RECORDER recorder;
  const auto document = document_of("device d { r <d>; }");
  EXPECT_FALSE(document->is_referenced("none"));
  EXPECT_FALSE(document->is_referenced(static_cast<const char*>(nullptr)));
  EXPECT_FALSE(document->is_referenced(nullptr, root_of(*document)));
  EXPECT_FALSE(document->is_referenced(root_of(*document), nullptr));
  EXPECT_FALSE(SBD_FILE_PARSER().is_referenced("d"));
  EXPECT_TRUE(recorder.is_silent());
}

TEST(REFERENCED, FromANodeOnLooksAtItsSiblingsAndBelow) {
  const auto document =
      document_of("device d { r <.a>; a = 1; bus b { s <.c>; c = 1; } bus e { t <d.b>; } }");
  const auto node = [&](const char* name) { return document->get_ref_object(name, nullptr); };
  EXPECT_TRUE(document->is_referenced(node("d.a"), node("d.r")));
  EXPECT_FALSE(document->is_referenced(node("d.a"), node("d.a")));
  EXPECT_TRUE(document->is_referenced(node("d.b.c"), node("d.a")));
  EXPECT_FALSE(document->is_referenced(node("d.b.c"), node("d.e")));
  EXPECT_TRUE(document->is_referenced(node("d.b"), node("d.e.t")));
  EXPECT_FALSE(document->is_referenced(node("d.b"), node("d.b.s")));
}

TEST(REFERENCED, FromANodeOnSkipsTheTargetAndItsInside) {
  const auto document = document_of("device d { a = 1; r <.r>; bus b { slave s { t <d.b>; } } }");
  const auto node = [&](const char* name) { return document->get_ref_object(name, nullptr); };
  EXPECT_FALSE(document->is_referenced(node("d.r"), node("d.a")));
  EXPECT_FALSE(document->is_referenced(node("d.b"), node("d.a")));
  EXPECT_TRUE(document->is_referenced(node("d.b"), node("d.b.s")));
}

TEST(REFERENCED, ComparesNodesAndNotNames) {
  auto document = document_of("device d { a = 1; }\ndevice e { a = 1; }");
  SBD_NODE* const reference = make_reference("r", {"d.a"});
  reference->statement->reference->target = document->get_ref_object("e.a", nullptr);
  enter(*document, reference, root_of(*document));
  EXPECT_FALSE(document->is_referenced("d.a"));
  EXPECT_TRUE(document->is_referenced("e.a"));
}

// A document built by hand: device d { x = 1; r <.x>; s <d.x>; t <d.x, .x>; }
class REFERENCED_BY_HAND : public testing::Test {
 protected:
  REFERENCED_BY_HAND() {
    m_device = enter(m_document, make_block("device", "d"), nullptr);
    m_x = enter(m_document, make_assignment("x", make_number(1)), m_device);
    m_r = enter(m_document, make_reference("r", {".x"}), m_device);
    m_s = enter(m_document, make_reference("s", {"d.x"}), m_device);
    m_t = enter(m_document, make_reference("t", {"d.x", ".x"}), m_device);
    EXPECT_TRUE(m_document.resolve_symbol(m_device, m_device));
    EXPECT_TRUE(m_document.check_semantic(m_device));
  }

  SBD_FILE_PARSER m_document;
  SBD_NODE* m_device;
  SBD_NODE* m_x;
  SBD_NODE* m_r;
  SBD_NODE* m_s;
  SBD_NODE* m_t;
};

TEST_F(REFERENCED_BY_HAND, IsTrueWhileAReferenceIsLeft) {
  for (SBD_NODE* const node : {m_r, m_s, m_t}) {
    EXPECT_TRUE(m_document.is_referenced("d.x"));
    m_document.delete_node(node, m_device);
  }
  EXPECT_FALSE(m_document.is_referenced("d.x"));
}

TEST_F(REFERENCED_BY_HAND, TargetMayBeDeletedBeforeItsReferences) {
  m_document.delete_node(m_x, m_device);
  m_document.delete_node(m_s, m_device);
  EXPECT_EQ(outline(m_document), "device d @0\n  r < .x > @0\n  t < d.x, .x > @0\n");
}

TEST_F(REFERENCED_BY_HAND, TargetMayBeReplacedByAnother) {
  m_document.delete_node(m_x, m_device);
  SBD_NODE* const x = enter(m_document, make_assignment("X", make_number(2)), m_device);
  ASSERT_TRUE(m_document.resolve_symbol(m_device, m_device));
  ASSERT_TRUE(m_document.check_semantic(m_device));
  EXPECT_EQ(m_t->statement->reference->next->target, x);
  EXPECT_TRUE(m_document.is_referenced("d.x"));
}

TEST_F(REFERENCED_BY_HAND, IsTheSameAfterRepeatedChecks) {
  for (int i = 0; i < 3; i++) EXPECT_TRUE(m_document.check_semantic(m_device));
  for (SBD_NODE* const node : {m_r, m_s, m_t}) m_document.delete_node(node, m_device);
  EXPECT_FALSE(m_document.is_referenced("d.x"));
}

TEST(REFERENCED, FollowsDeletedReferences) {
  auto document = document_of("device d { a = 1; r <.a>; bus b { s <d.a, d.a>; } }");
  SBD_NODE* const device = root_of(*document);
  document->delete_node(device->block->members->next, device);
  EXPECT_TRUE(document->is_referenced("d.a"));
  document->delete_node(device->block->members->next, device);
  EXPECT_FALSE(document->is_referenced("d.a"));
}

// ---- Block types -------------------------------------------------------------------------------

TEST(BLOCK_TYPE_QUERY, GivesTextAsWrittenAndValue) {
  const auto document = document_of("Device d { PARAMETERS p { x = 1; } }");
  SBD_STRING text = "before";
  SBD_BLOCK::BLOCK_TYPE type = SBD_BLOCK::BT_UNKNOWN;
  EXPECT_TRUE(document->get_block_type("d", text));
  EXPECT_EQ(plain(text), "Device");
  EXPECT_TRUE(document->get_block_type("D.P", text));
  EXPECT_EQ(plain(text), "PARAMETERS");
  EXPECT_TRUE(document->get_block_type("d", type));
  EXPECT_EQ(type, SBD_BLOCK::BT_DEVICE);
  EXPECT_TRUE(document->get_block_type("d.p", type));
  EXPECT_EQ(type, SBD_BLOCK::BT_PARAMETERS);
}

TEST(BLOCK_TYPE_QUERY, OfAnythingElseLeavesTheOutput) {
  MESSAGE_RECORDER recorder;
  const auto document = document_of("device d { x = 1; }");
  SBD_STRING text = "before";
  SBD_BLOCK::BLOCK_TYPE type = SBD_BLOCK::BT_BUS;
  for (const char* const name : {"d.x", "none", ".", static_cast<const char*>(nullptr)}) {
    EXPECT_FALSE(document->get_block_type(name, text));
    EXPECT_FALSE(document->get_block_type(name, type));
  }
  EXPECT_EQ(plain(text), "before");
  EXPECT_EQ(type, SBD_BLOCK::BT_BUS);
  EXPECT_TRUE(recorder.is_silent());
}

class TYPED_BLOCKS : public testing::Test {
 protected:
  TYPED_BLOCKS()
      : m_document(document_of("device D {\n"
                               "  bus A { BUS Inner { x = 1; } slave S { bus Deep { x = 1; } } }\n"
                               "  slave T { x = 1; }\n"
                               "  # c\n"
                               "  bus B { x = 1; }\n"
                               "}\n"
                               "device E { Bus C { x = 1; } }")),
        m_names({SBD_STRING("before")}) {}

  TEXTS typed(const char* type, const char* scope) {
    m_document->get_typed_blocks(type, m_names, scope);
    return plain(m_names);
  }
  TEXTS typed(SBD_BLOCK::BLOCK_TYPE type, const char* scope) {
    m_document->get_typed_blocks(type, m_names, scope);
    return plain(m_names);
  }
  TEXTS typed_in_node(SBD_BLOCK::BLOCK_TYPE type, const char* scope) {
    const SBD_NODE* const node = scope ? m_document->get_ref_object(scope, nullptr) : nullptr;
    m_document->get_typed_blocks(type, m_names, node);
    return plain(m_names);
  }

  std::unique_ptr<SBD_FILE_PARSER> m_document;
  SBD_STRING_LIST m_names;
  MESSAGE_RECORDER m_recorder;
};

const TEXTS ALL_BUSES = {"D.A", "D.A.Inner", "D.A.S.Deep", "D.B", "E.C"};

TEST_F(TYPED_BLOCKS, OfTheDocumentAreInPreOrder) {
  EXPECT_EQ(typed("bus", nullptr), ALL_BUSES);
  EXPECT_EQ(typed(SBD_BLOCK::BT_BUS, static_cast<const char*>(nullptr)), ALL_BUSES);
  EXPECT_EQ(typed("DEVICE", nullptr), (TEXTS{"D", "E"}));
  EXPECT_EQ(typed(SBD_BLOCK::BT_SLAVE, static_cast<const char*>(nullptr)), (TEXTS{"D.A.S", "D.T"}));
  EXPECT_EQ(typed(SBD_BLOCK::BT_MODULE, static_cast<const char*>(nullptr)), TEXTS());
}

TEST_F(TYPED_BLOCKS, OfAScopeAreBelowIt) {
  EXPECT_EQ(typed("bus", "d"), (TEXTS{"D.A", "D.A.Inner", "D.A.S.Deep", "D.B"}));
  EXPECT_EQ(typed(SBD_BLOCK::BT_BUS, "D.a"), (TEXTS{"D.A.Inner", "D.A.S.Deep"}));
  EXPECT_EQ(typed("device", "d"), TEXTS());
}

TEST_F(TYPED_BLOCKS, OfAnUnknownTypeAreNone) {
  for (const char* const type : {"", "unknown", "busses", static_cast<const char*>(nullptr)}) {
    m_names = {SBD_STRING("before")};
    EXPECT_EQ(typed(type, nullptr), TEXTS());
  }
  m_names = {SBD_STRING("before")};
  EXPECT_EQ(typed(SBD_BLOCK::BT_UNKNOWN, static_cast<const char*>(nullptr)), TEXTS());
}

TEST_F(TYPED_BLOCKS, OfAnUnknownTypeAreNoneEvenWhereThereAreSuchBlocks) {
  SBD_NODE* const node = enter(*m_document, make_block("strange", "s"), nullptr);
  symbol_of(node)->parent = node;
  EXPECT_EQ(typed("strange", nullptr), TEXTS());
  EXPECT_EQ(typed(SBD_BLOCK::BT_UNKNOWN, static_cast<const char*>(nullptr)), TEXTS());
}

TEST_F(TYPED_BLOCKS, OfAnUnknownScopeAreNone) {
  for (const char* const scope : {"none", "d.", ".a", "d.t.x"}) {
    m_names = {SBD_STRING("before")};
    EXPECT_EQ(typed("bus", scope), TEXTS()) << scope;
    m_names = {SBD_STRING("before")};
    EXPECT_EQ(typed(SBD_BLOCK::BT_BUS, scope), TEXTS()) << scope;
  }
}

TEST_F(TYPED_BLOCKS, OfANodeAreAppended) {
  EXPECT_EQ(typed_in_node(SBD_BLOCK::BT_BUS, "d.a"), (TEXTS{"before", "D.A.Inner", "D.A.S.Deep"}));
  EXPECT_EQ(typed_in_node(SBD_BLOCK::BT_SLAVE, "d.a"),
            (TEXTS{"before", "D.A.Inner", "D.A.S.Deep", "D.A.S"}));
}

TEST_F(TYPED_BLOCKS, OfNoNodeAreThoseOfTheDocument) {
  EXPECT_EQ(typed_in_node(SBD_BLOCK::BT_DEVICE, nullptr), (TEXTS{"before", "D", "E"}));
}

TEST_F(TYPED_BLOCKS, OfAStatementOrCommentAreNone) {
  EXPECT_EQ(typed_in_node(SBD_BLOCK::BT_BUS, "d.t.x"), TEXTS{"before"});
  const SBD_NODE* const comment = m_document->get_ref_object("d.t", nullptr)->next;
  ASSERT_EQ(comment->type, SBD_NODE::NT_COMMENT);
  m_document->get_typed_blocks(SBD_BLOCK::BT_BUS, m_names, comment);
  EXPECT_EQ(plain(m_names), TEXTS{"before"});
}

TEST_F(TYPED_BLOCKS, WithoutFullNameAreInternalErrorsAndSkipped) {
  SBD_NODE* const device = m_document->get_ref_object("d", nullptr);
  SBD_NODE* const bus = enter(*m_document, make_block("bus", "lost"), device);
  SBD_NODE* const inner = enter(*m_document, make_block("slave", "inner"), bus);
  symbol_of(inner)->parent = device;
  EXPECT_EQ(typed("bus", nullptr), ALL_BUSES);
  expect_error(m_recorder, "Can not get block ref name from block node");
  EXPECT_EQ(typed("slave", nullptr), (TEXTS{"D.A.S", "D.T", "D.inner"}));
}

// ---- Units -------------------------------------------------------------------------------------

TEST(UNIT_VALUE, IsThatOfTheTable) {
  EXPECT_EQ(SBD_FILE_PARSER::get_unit_value(SBD_PARA_VALUE::QU_NONE), 1U);
  EXPECT_EQ(SBD_FILE_PARSER::get_unit_value(SBD_PARA_VALUE::QU_KB), 1024U);
  EXPECT_EQ(SBD_FILE_PARSER::get_unit_value(SBD_PARA_VALUE::QU_MB), 1048576U);
  EXPECT_EQ(SBD_FILE_PARSER::get_unit_value(SBD_PARA_VALUE::QU_GB), 1073741824U);
  EXPECT_EQ(SBD_FILE_PARSER::get_unit_value(SBD_PARA_VALUE::QU_HZ), 1U);
  EXPECT_EQ(SBD_FILE_PARSER::get_unit_value(SBD_PARA_VALUE::QU_MHZ), 1000000U);
}

TEST(UNIT_VALUE, OfAnotherValueIsOne) {
  for (const unsigned unit : {6U, 7U, 255U, 4294967295U}) {
    const auto value = static_cast<SBD_PARA_VALUE::QUANTITY_UNIT>(unit);
    EXPECT_EQ(SBD_FILE_PARSER::get_unit_value(value), 1U);
  }
}

// ---- get_value ---------------------------------------------------------------------------------

// A document with the one parameter d.x.
class VALUE_QUERY : public testing::Test {
 protected:
  void set(const std::string& value) {
    ASSERT_TRUE(read_text(m_document, "device d { x = " + value + "; }"));
  }
  unsigned long integer(const std::string& value) {
    set(value);
    unsigned long by_two = 77;
    unsigned long by_one = 77;
    EXPECT_TRUE(m_document.get_value("d", "x", by_two)) << value;
    EXPECT_TRUE(m_document.get_value("D.X", by_one)) << value;
    EXPECT_EQ(by_one, by_two);
    return by_two;
  }
  double real(const std::string& value) {
    set(value);
    double by_two = 77;
    double by_one = 77;
    EXPECT_TRUE(m_document.get_value("d", "x", by_two)) << value;
    EXPECT_TRUE(m_document.get_value("D.X", by_one)) << value;
    EXPECT_EQ(by_one, by_two);
    return by_two;
  }

  // Which outputs accept the parameter, by their first letters; the others must be untouched.
  std::string accepting(const char* name) const {
    std::string result;
    const std::string block(name, 1);
    const char* const parameter = name + 2;
    unsigned long integer = 77;
    double real = 77;
    int boolean = 77;
    SBD_STRING text = "before";
    if (m_document.get_value(name, integer)) result += "u";
    if (m_document.get_value(block.c_str(), parameter, integer)) result += "u";
    if (m_document.get_value(name, real)) result += "d";
    if (m_document.get_value(block.c_str(), parameter, real)) result += "d";
    if (m_document.get_value(name, boolean)) result += "i";
    if (m_document.get_value(block.c_str(), parameter, boolean)) result += "i";
    if (m_document.get_value(name, text)) result += "s";
    if (m_document.get_value(block.c_str(), parameter, text)) result += "s";
    SBD_STRING_LIST names = {SBD_STRING("before")};
    if (m_document.get_value(block.c_str(), parameter, names)) result += "l";

    const auto has = [&](char letter) { return result.find(letter) != std::string::npos; };
    if (!has('u')) {
      EXPECT_EQ(integer, 77U);
    }
    if (!has('d')) {
      EXPECT_EQ(real, 77.0);
    }
    if (!has('i')) {
      EXPECT_EQ(boolean, 77);
    }
    if (!has('s')) {
      EXPECT_EQ(plain(text), "before");
    }
    if (!has('l')) {
      EXPECT_EQ(plain(names), TEXTS{"before"});
    }
    return result;
  }

  SBD_FILE_PARSER m_document;
  MESSAGE_RECORDER m_recorder;
};

TEST_F(VALUE_QUERY, EachKindHasItsOutputs) {
  ASSERT_TRUE(
      read_text(m_document,
                "device d { dec = 1; oct = 01; hex = 0x1; bin = 0b1; flt = 1.5; yes = true;"
                " str = \"1\"; id = one; list = {1, 2}; ref <d, .dec>; bus b { x = 1; } }"));
  for (const char* const name : {"d.dec", "d.oct", "d.hex", "d.bin", "d.flt"}) {
    EXPECT_EQ(accepting(name), "uudd") << name;
  }
  EXPECT_EQ(accepting("d.yes"), "ii");
  EXPECT_EQ(accepting("d.str"), "ss");
  EXPECT_EQ(accepting("d.id"), "ss");
  EXPECT_EQ(accepting("d.list"), "");
  EXPECT_EQ(accepting("d.ref"), "l");
  EXPECT_EQ(accepting("d.b"), "");
  EXPECT_EQ(accepting("d.none"), "");
  EXPECT_EQ(accepting("d."), "");
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(VALUE_QUERY, NullNamesGiveNothing) {
  set("1");
  const char* const null = nullptr;
  unsigned long integer = 77;
  double real = 77;
  int boolean = 77;
  SBD_STRING text = "before";
  SBD_STRING_LIST names;
  for (const auto& [block, parameter] :
       std::vector<std::pair<const char*, const char*>>{{null, "x"}, {"d", null}, {null, null}}) {
    EXPECT_FALSE(m_document.get_value(block, parameter, integer));
    EXPECT_FALSE(m_document.get_value(block, parameter, real));
    EXPECT_FALSE(m_document.get_value(block, parameter, boolean));
    EXPECT_FALSE(m_document.get_value(block, parameter, text));
    EXPECT_FALSE(m_document.get_value(block, parameter, names));
  }
  EXPECT_FALSE(m_document.get_value(null, integer));
  EXPECT_FALSE(m_document.get_value(null, real));
  EXPECT_FALSE(m_document.get_value(null, boolean));
  EXPECT_FALSE(m_document.get_value(null, text));
  EXPECT_EQ(integer, 77U);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(VALUE_QUERY, IntegersHaveEveryNotation) {
  EXPECT_EQ(integer("10"), 10U);
  EXPECT_EQ(integer("010"), 8U);
  EXPECT_EQ(integer("0x10"), 16U);
  EXPECT_EQ(integer("0b10"), 2U);
  EXPECT_EQ(integer("10.9"), 10U);
  EXPECT_EQ(integer("4294967295"), 4294967295U);
}

TEST_F(VALUE_QUERY, IntegersAreScaledByEveryUnit) {
  EXPECT_EQ(integer("3K"), 3072U);
  EXPECT_EQ(integer("3MB"), 3145728U);
  EXPECT_EQ(integer("3GB"), 3221225472U);
  EXPECT_EQ(integer("3Hz"), 3U);
  EXPECT_EQ(integer("33MHz"), 33000000U);
  EXPECT_EQ(integer("0x40K"), 65536U);
  EXPECT_EQ(integer("010M"), 8388608U);
  EXPECT_EQ(integer("0b11K"), 3072U);
}

TEST_F(VALUE_QUERY, IntegersAreScaledBeforeTheyAreTruncated) {
  EXPECT_EQ(integer("1.5K"), 1536U);
  EXPECT_EQ(integer("0.001K"), 1U);
  EXPECT_EQ(integer("33.3333333MHz"), 33333333U);
}

TEST_F(VALUE_QUERY, IntegersKeepTheirLow32Bits) {
  EXPECT_EQ(integer("4G"), 0U);
  EXPECT_EQ(integer("5G"), 1073741824U);
  EXPECT_EQ(integer("4294967295G"), 3221225472U);
  EXPECT_EQ(integer("4294967295MHz"), 4293967296U);
  EXPECT_EQ(integer("4611686018427388928."), 1024U);
}

TEST_F(VALUE_QUERY, NegativeIntegersAreTwosComplements) {
  EXPECT_EQ(integer("-5"), 4294967291U);
  EXPECT_EQ(integer("-1K"), 4294966272U);
  EXPECT_EQ(integer("-1.9"), 4294967295U);
  EXPECT_EQ(integer("-0.9"), 0U);
  EXPECT_EQ(integer("-0"), 0U);
  EXPECT_EQ(integer("-4G"), 0U);
  EXPECT_EQ(integer("-4294967297"), 4294967295U);
}

TEST_F(VALUE_QUERY, IntegersBeyond64BitsAreZero) {
  const std::string zeros(30, '0');
  EXPECT_EQ(integer("1" + zeros + "."), 0U);
  EXPECT_EQ(integer("-1" + zeros), 0U);
  EXPECT_EQ(integer("36893488147419107329."), 0U);
  EXPECT_EQ(integer(std::string(400, '9') + "."), 0U);
  EXPECT_EQ(integer("-" + std::string(400, '9')), 0U);
  EXPECT_EQ(integer("99999999999999999.G"), 0U);
}

// In double precision 0.000001 times 1000000 is 1; in extended precision it is less.
TEST_F(VALUE_QUERY, IntegersAreComputedInExtendedPrecision) {
  if (std::numeric_limits<long double>::digits < 64) GTEST_SKIP() << "no extended precision";
  EXPECT_EQ(integer("0.000001MHz"), 0U);
  EXPECT_EQ(integer("0.000003MHz"), 3U);
}

TEST_F(VALUE_QUERY, RealsAreScaledByEveryUnit) {
  EXPECT_EQ(real("10"), 10.0);
  EXPECT_EQ(real("-1.5"), -1.5);
  EXPECT_EQ(real("1.5K"), 1536.0);
  EXPECT_EQ(real("0x10M"), 16777216.0);
  EXPECT_EQ(real("4G"), 4294967296.0);
  EXPECT_EQ(real("-2.5Hz"), -2.5);
  EXPECT_EQ(real("33.5MHz"), 33500000.0);
  EXPECT_EQ(real("010"), 8.0);
  EXPECT_EQ(real("0b11"), 3.0);
}

TEST_F(VALUE_QUERY, RealsAreNotRounded) {
  EXPECT_EQ(real("0.3"), 0.3);
  EXPECT_EQ(real("0.00001"), 0.00001);
  EXPECT_EQ(real("4294967295G"), 4294967295.0 * 1073741824.0);
  EXPECT_EQ(real(std::string(400, '9') + ".K"), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::signbit(real("-0")));
}

TEST_F(VALUE_QUERY, BooleansAreOneOrZero) {
  int value = 77;
  set("True");
  EXPECT_TRUE(m_document.get_value("d", "x", value));
  EXPECT_EQ(value, 1);
  set("FALSE");
  EXPECT_TRUE(m_document.get_value("d.x", value));
  EXPECT_EQ(value, 0);
}

TEST_F(VALUE_QUERY, StringsAreAsWritten) {
  SBD_STRING text;
  set("\"a b\"");
  EXPECT_TRUE(m_document.get_value("d", "x", text));
  EXPECT_EQ(plain(text), "\"a b\"");
  set("Ident");
  EXPECT_TRUE(m_document.get_value("d.x", text));
  EXPECT_EQ(plain(text), "Ident");
}

TEST_F(VALUE_QUERY, ReferencesAreAppendedAsWritten) {
  ASSERT_TRUE(read_text(m_document, "device d { r <.R, d, D.r>; }"));
  SBD_STRING_LIST names = {SBD_STRING("before")};
  EXPECT_TRUE(m_document.get_value("d", "r", names));
  EXPECT_EQ(plain(names), (TEXTS{"before", ".R", "d", "D.r"}));
  EXPECT_TRUE(m_document.get_value("D", "R", names));
  EXPECT_EQ(names.size(), 7U);
}

TEST_F(VALUE_QUERY, ReferenceWithoutElementsIsNone) {
  SBD_NODE* const device = enter(m_document, make_block("device", "d"), nullptr);
  enter(m_document, make_reference("r", {}), device);
  ASSERT_TRUE(m_document.resolve_symbol(device, device));
  SBD_STRING_LIST names = {SBD_STRING("before")};
  EXPECT_FALSE(m_document.get_value("d", "r", names));
  EXPECT_EQ(plain(names), TEXTS{"before"});
}

TEST_F(VALUE_QUERY, AssignmentWithoutValueIsNone) {
  SBD_NODE* const device = enter(m_document, make_block("device", "d"), nullptr);
  enter(m_document, make_assignment("x", nullptr), device);
  ASSERT_TRUE(m_document.resolve_symbol(device, device));
  EXPECT_EQ(accepting("d.x"), "");
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(VALUE_QUERY, ValuesBuiltByHandAreReadTheSame) {
  SBD_NODE* const device = enter(m_document, make_block("device", "d"), nullptr);
  enter(m_document,
        make_assignment("n", make_number(1.5, SBD_PARA_VALUE::QU_KB, SBD_PARA_VALUE::VT_FLOAT)),
        device);
  enter(m_document, make_assignment("s", make_string("text")), device);
  enter(m_document, make_assignment("b", make_bool(true)), device);
  enter(m_document, make_reference("r", {"d", ".n"}), device);
  ASSERT_TRUE(m_document.resolve_symbol(device, device));
  unsigned long integer = 0;
  SBD_STRING text;
  int boolean = 0;
  SBD_STRING_LIST names;
  EXPECT_TRUE(m_document.get_value("d", "n", integer));
  EXPECT_EQ(integer, 1536U);
  EXPECT_TRUE(m_document.get_value("d", "s", text));
  EXPECT_EQ(plain(text), "text");
  EXPECT_TRUE(m_document.get_value("d", "b", boolean));
  EXPECT_EQ(boolean, 1);
  EXPECT_TRUE(m_document.get_value("d", "r", names));
  EXPECT_EQ(plain(names), (TEXTS{"d", ".n"}));
}

TEST_F(VALUE_QUERY, RandomNumbersAreScaledAndTruncated) {
  std::mt19937 random(1);
  const std::vector<std::pair<std::string, unsigned long>> units = {
      {"", 1}, {"KB", 1024}, {"M", 1048576}, {"G", 1073741824}, {"hz", 1}, {"MHZ", 1000000}};
  for (int i = 0; i < 5000; i++) {
    const auto& [unit, factor] = units[random() % units.size()];
    std::string number = (random() % 2 == 0 ? "-" : "") + std::to_string(random() % 100000) + "." +
                         std::to_string(random() % 1000000);
    const double stored = std::stod(number);
    const long double product = static_cast<long double>(stored) * static_cast<long double>(factor);
    const auto expected = static_cast<std::uint32_t>(static_cast<std::int64_t>(product));
    EXPECT_EQ(integer(number + unit), expected) << number << unit;
    EXPECT_EQ(real(number + unit), static_cast<double>(product)) << number << unit;
  }
}

// ---- Scopes of every size ----------------------------------------------------------------------

// Names of 1 to 60 characters, comments between them.
std::string member_name(unsigned long index) {
  return "Member_" + std::to_string(index) + std::string(index % 52, 'x');
}

std::string text_of_scope(unsigned long count) {
  std::string text = "device d {\n# one\n# two\n# three\n  bus b {\n";
  for (unsigned long i = 0; i < count; i++) {
    text += "    " + member_name(i) + " = " + std::to_string(i) + ";\n";
    if (i % 3 == 0) text += "    # comment\n";
  }
  return text + "    # last\n  }\n}\n";
}

std::string upper(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

class SCOPE_SIZE : public testing::TestWithParam<unsigned long> {
 protected:
  SCOPE_SIZE() : m_document(document_of(text_of_scope(GetParam()).c_str())) {}

  void expect_member(unsigned long index, bool is_there) const {
    const std::string name = "d.b." + member_name(index);
    for (const std::string& spelling : {name, upper(name)}) {
      unsigned long value = GetParam();
      EXPECT_EQ(m_document->get_value(spelling.c_str(), value), is_there) << spelling;
      EXPECT_EQ(value, is_there ? index : GetParam()) << spelling;
    }
  }

  std::unique_ptr<SBD_FILE_PARSER> m_document;
};

TEST_P(SCOPE_SIZE, FindsEveryMemberAndNoOther) {
  for (unsigned long i = 0; i < GetParam(); i++) expect_member(i, true);
  expect_member(GetParam(), false);
  for (const char* const name : {"d.b.Member", "d.b.Member_0x", "d.b.Member_0.x", "d.b.b"}) {
    EXPECT_EQ(m_document->get_ref_object(name, nullptr), nullptr) << name;
  }
}

TEST_P(SCOPE_SIZE, FindsWhatIsLeftWhenMembersAreDeleted) {
  SBD_NODE* const block = m_document->get_ref_object("d.b", nullptr);
  for (unsigned long i = 0; i < GetParam(); i += 2) {
    const std::string name = "d.b." + member_name(i);
    m_document->delete_node(m_document->get_ref_object(name.c_str(), nullptr), block);
  }
  for (unsigned long i = 0; i < GetParam(); i++) expect_member(i, i % 2 != 0);
}

TEST_P(SCOPE_SIZE, RejectsTheLastNameAgain) {
  std::string text = text_of_scope(GetParam());
  text.insert(text.find("    # last"), upper(member_name(GetParam() - 1)) + " = 1;\n");
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(document.read_text(text.data(), text.size(), "x.sbd"));
  EXPECT_EQ(recorder.messages().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(ALL, SCOPE_SIZE,
                         testing::Values(1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 64, 100, 1000));

TEST(SCOPE, OfCommentsAloneHasNoMembers) {
  const auto document = document_of("device d { # 1\n# 2\n# 3\n# 4\n}\n");
  EXPECT_EQ(document->get_ref_object("d.x", nullptr), nullptr);
  EXPECT_NE(document->get_ref_object("D", nullptr), nullptr);
}

}  // namespace
