#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;

std::string declared_twice(const char* name, int line) {
  return declaration_error_text(TEST_FILE, name, line);
}
std::string unresolved(const char* name, int line) {
  return reference_error_text(TEST_FILE, name, line);
}
std::string misplaced(const char* block, int line) {
  return block_error_text(TEST_FILE, block, line);
}

// The faults that reading finds; it fails just when there are some.
TEXTS faults_of(const std::string& text) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  const bool is_read = read_text(document, text);
  EXPECT_EQ(is_read, recorder.messages().empty());
  EXPECT_EQ(root_of(document) == nullptr, !recorder.messages().empty());
  EXPECT_TRUE(recorder.internal_errors().empty());
  return recorder.texts();
}

const TEXTS NONE;

void expect_error(const MESSAGE_RECORDER& recorder, const char* condition) {
  ASSERT_EQ(recorder.conditions(), TEXTS{condition});
  EXPECT_EQ(recorder.internal_errors().front().module, "SBD");
  EXPECT_EQ(recorder.internal_errors().front().source, "sbd_file_parser");
  EXPECT_TRUE(recorder.messages().empty());
}

// ---- Declarations ------------------------------------------------------------------------------

TEST(DECLARATION, OfTwoParametersInABlockClashes) {
  EXPECT_EQ(faults_of("device d {\nx = 1;\nx = 2;\n}"), TEXTS{declared_twice("x", 3)});
}

TEST(DECLARATION, OfTwoBlocksInABlockClashes) {
  EXPECT_EQ(faults_of("device d { bus Cpu { x = 1; }\nbus CPU { x = 2; } }"),
            TEXTS{declared_twice("CPU", 2)});
}

TEST(DECLARATION, OfTwoTopLevelBlocksClashes) {
  EXPECT_EQ(faults_of("device d { x = 1; }\ndevice D { x = 2; }"), TEXTS{declared_twice("D", 2)});
}

TEST(DECLARATION, OfAParameterAndALaterBlockClashes) {
  EXPECT_EQ(faults_of("device d {\nx = 1;\nbus X { y = 1; }\n}"), TEXTS{declared_twice("X", 3)});
}

TEST(DECLARATION, OfABlockAndALaterParameterClashes) {
  EXPECT_EQ(faults_of("device d {\nbus X { y = 1; }\nx = 1;\n}"), TEXTS{declared_twice("x", 3)});
}

TEST(DECLARATION, OfAnAssignmentAndAReferenceClashes) {
  EXPECT_EQ(faults_of("device d {\nx = 1;\nx <d>;\n}"), TEXTS{declared_twice("x", 3)});
}

TEST(DECLARATION, OfIndexedNamesClashesWithTheSameIndices) {
  EXPECT_EQ(faults_of("device d {\nr[0] = 1;\nr[1] = 1;\nR[0] = 1;\nr = 1;\n}"),
            TEXTS{declared_twice("R[0]", 4)});
}

TEST(DECLARATION, InDifferentBlocksDoesNotClash) {
  EXPECT_EQ(faults_of("device d { d = 1; bus b { d = 2; b = 3; bus c { d = 4; } } }\n"
                      "device e { d = 1; bus b { d = 2; } }"),
            NONE);
}

TEST(DECLARATION, IsReportedForEachButTheFirst) {
  EXPECT_EQ(faults_of("device d {\nx = 1;\nX = 2;\nx = 3;\nX = 4;\n}"),
            (TEXTS{declared_twice("X", 3), declared_twice("x", 4), declared_twice("X", 5)}));
}

TEST(DECLARATION, IsReportedForABlockBeforeItsMembers) {
  EXPECT_EQ(faults_of("device d { x = 1; }\n"
                      "device D {\n y = 1;\n y = 2;\n bus b { z = 1; }\n bus b { z = 1; z = 2; }\n"
                      "}\n"
                      "device d { x = 1; }"),
            (TEXTS{declared_twice("D", 2), declared_twice("y", 4), declared_twice("b", 6),
                   declared_twice("z", 6), declared_twice("d", 8)}));
}

TEST(DECLARATION, HasTheLineOfTheName) {
  EXPECT_EQ(faults_of("device d {\nx = 1;\nbus\n\nx\n{ y = 1; }\n}"),
            TEXTS{declared_twice("x", 5)});
}

TEST(DECLARATION, FaultPreventsTheOtherChecks) {
  EXPECT_EQ(faults_of("device d { x = 1; x = 2; r <nowhere>; device e { y = 1; } }"),
            TEXTS{declared_twice("x", 1)});
}

// Small and large blocks are looked through in different ways.
TEST(DECLARATION, IsFoundInBlocksOfEverySize) {
  for (int size = 1; size <= 40; size++) {
    for (int twin = 0; twin < size; twin++) {
      std::string text = "device d {\n# c\n";
      for (int i = 0; i < size; i++) text += "Name" + std::to_string(i) + " = 1;\n";
      const std::string name = "NAME" + std::to_string(twin);
      ASSERT_EQ(faults_of(text + "}"), NONE);
      ASSERT_EQ(faults_of(text + name + " = 1;\n}"), TEXTS{declared_twice(name.c_str(), size + 3)});
    }
  }
}

TEST(DECLARATION, IsComparedWithOnesEnteredBeforeOnly) {
  SBD_FILE_PARSER document;
  SBD_NODE* const device = enter(document, make_block("device", "d"), nullptr);
  SBD_NODE* const first = enter(document, make_assignment("x", make_number(1)), device);
  SBD_NODE* const second = enter(document, make_assignment("X", make_number(1)), device);
  symbol_of(first)->parent = device;
  symbol_of(second)->parent = device;
  MESSAGE_RECORDER recorder;
  EXPECT_TRUE(document.check_declaration(symbol_of(first)));
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_FALSE(document.check_declaration(symbol_of(second)));
  EXPECT_EQ(recorder.numbers(), std::vector<int>{3});
}

TEST(DECLARATION, IsReportedOnceForManyBeforeIt) {
  SBD_FILE_PARSER document;
  SBD_NODE* const device = enter(document, make_block("device", "d"), nullptr);
  SBD_NODE* node = nullptr;
  for (int i = 0; i < 5; i++) {
    node = enter(document, make_assignment("x", make_number(1)), device);
    symbol_of(node)->parent = device;
  }
  MESSAGE_RECORDER recorder;
  EXPECT_FALSE(document.check_declaration(symbol_of(node)));
  EXPECT_EQ(recorder.messages().size(), 1U);
}

TEST(DECLARATION, OfNoSymbolIsAnInternalError) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(document.check_declaration(nullptr));
  expect_error(recorder, "symbol != NULL");
}

TEST(DECLARATION, AddedToWhatWasReadClashes) {
  auto document = document_of("device d { x = 1; bus b { y = 1; } }");
  SBD_NODE* const device = root_of(*document);
  SBD_NODE* const x = enter(*document, make_assignment("X", make_number(2)), device);
  enter(*document, make_assignment("y", make_number(2)), device);
  MESSAGE_RECORDER recorder;
  EXPECT_FALSE(document->resolve_symbol(device, device));
  EXPECT_EQ(recorder.texts(), TEXTS{declared_twice("X", 0)});
  document->delete_node(x, device);
  EXPECT_TRUE(document->resolve_symbol(device, device));
}

TEST(DECLARATION, MayTakeThePlaceOfADeletedOne) {
  auto document = document_of("device d { x = 1; y = 1; }");
  SBD_NODE* const device = root_of(*document);
  document->delete_node(device->block->members, device);
  enter(*document, make_assignment("x", make_number(2)), device);
  MESSAGE_RECORDER recorder;
  EXPECT_TRUE(document->resolve_symbol(device, device));
  EXPECT_TRUE(recorder.is_silent());
}

// ---- Parents of symbols ------------------------------------------------------------------------

TEST(PARENT, IsTheEnclosingBlockOrTheOwnNode) {
  const auto document = document_of("device d { x = 1; bus b { r <d>; } }\ndevice e { y = 1; }");
  SBD_NODE* const d = document->get_ref_object("d", nullptr);
  SBD_NODE* const b = document->get_ref_object("d.b", nullptr);
  SBD_NODE* const e = document->get_ref_object("e", nullptr);
  EXPECT_EQ(symbol_of(d)->parent, d);
  EXPECT_EQ(symbol_of(e)->parent, e);
  EXPECT_EQ(symbol_of(b)->parent, d);
  EXPECT_EQ(document->get_statement("d", "x")->name->parent, d);
  EXPECT_EQ(document->get_statement("d.b", "r")->name->parent, b);
}

// A document built by hand: device d { x = 1; bus b { # c  y = 2; } }
class RESOLVE_SYMBOL : public testing::Test {
 protected:
  RESOLVE_SYMBOL() {
    m_device = enter(m_document, make_block("device", "d"), nullptr);
    m_x = enter(m_document, make_assignment("x", make_number(1)), m_device);
    m_bus = enter(m_document, make_block("bus", "b"), m_device);
    m_document.add_node(make_comment("# c\n"), m_bus);
    m_y = enter(m_document, make_assignment("y", make_number(2)), m_bus);
  }

  SBD_FILE_PARSER m_document;
  MESSAGE_RECORDER m_recorder;
  SBD_NODE* m_device;
  SBD_NODE* m_x;
  SBD_NODE* m_bus;
  SBD_NODE* m_y;
};

TEST_F(RESOLVE_SYMBOL, GivesEverySymbolItsParent) {
  EXPECT_TRUE(m_document.resolve_symbol(m_device, m_device));
  EXPECT_EQ(find_inconsistency(m_document), "");
  EXPECT_EQ(symbol_of(m_device)->parent, m_device);
  EXPECT_EQ(symbol_of(m_bus)->parent, m_device);
  EXPECT_EQ(symbol_of(m_y)->parent, m_bus);
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(RESOLVE_SYMBOL, MayBeRepeated) {
  EXPECT_TRUE(m_document.resolve_symbol(m_device, m_device));
  EXPECT_TRUE(m_document.resolve_symbol(m_device, m_device));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(RESOLVE_SYMBOL, OfMembersAloneLeavesTheRest) {
  EXPECT_TRUE(m_document.resolve_symbol(m_bus, m_bus->block->members));
  EXPECT_EQ(symbol_of(m_y)->parent, m_bus);
  EXPECT_EQ(symbol_of(m_bus)->parent, nullptr);
}

TEST_F(RESOLVE_SYMBOL, FindsANameThatWasAddedTwice) {
  enter(m_document, make_assignment("Y", make_number(3)), m_bus);
  EXPECT_FALSE(m_document.resolve_symbol(m_device, m_device));
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{3});
}

TEST_F(RESOLVE_SYMBOL, OfNothingSucceeds) {
  EXPECT_TRUE(m_document.resolve_symbol(nullptr, nullptr));
  EXPECT_TRUE(m_document.resolve_symbol(m_device, nullptr));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(RESOLVE_SYMBOL, OfABlockWithAnotherNodesSymbolIsAnInternalError) {
  symbol_of(m_bus)->node = m_device;
  EXPECT_TRUE(m_document.resolve_symbol(m_device, m_device));
  expect_error(m_recorder, "symbol->node == node");
  EXPECT_EQ(symbol_of(m_y)->parent, m_bus);
}

TEST_F(RESOLVE_SYMBOL, OfAStatementWithAnotherNodesSymbolIsAnInternalError) {
  symbol_of(m_y)->node = m_device;
  EXPECT_TRUE(m_document.resolve_symbol(m_device, m_device));
  expect_error(m_recorder, "symbol->node == node");
  EXPECT_EQ(symbol_of(m_y)->parent, m_bus);
}

TEST_F(RESOLVE_SYMBOL, OfAnUnknownStatementIsAnInternalError) {
  m_x->statement->type = static_cast<SBD_STATEMENT::STATEMENT_TYPE>(2);
  m_document.resolve_symbol(m_device, m_device);
  ASSERT_FALSE(m_recorder.internal_errors().empty());
  EXPECT_EQ(m_recorder.conditions().front(), "Invalid statement type");
  EXPECT_EQ(symbol_of(m_y)->parent, m_bus);
  m_x->statement->type = SBD_STATEMENT::ST_ASSIGNMENT;
}

TEST_F(RESOLVE_SYMBOL, OfAnUnknownNodeIsAnInternalError) {
  m_x->type = static_cast<SBD_NODE::NODE_TYPE>(9);
  EXPECT_TRUE(m_document.resolve_symbol(m_device, m_device));
  expect_error(m_recorder, "Invalid SBD_FILE_PARSER node type");
  EXPECT_EQ(symbol_of(m_y)->parent, m_bus);
  m_x->type = SBD_NODE::NT_STATEMENT;
}

TEST_F(RESOLVE_SYMBOL, OfAStatementAtTopLevelIsAnInternalError) {
  SBD_NODE* const z = enter(m_document, make_assignment("z", make_number(3)), nullptr);
  EXPECT_TRUE(m_document.resolve_symbol(m_device, m_device));
  expect_error(m_recorder, "parent != child");
  EXPECT_EQ(symbol_of(z)->parent, m_device);
}

// ---- Places of blocks --------------------------------------------------------------------------

TEST(BLOCK_PLACE, OfADeviceIsTheTopLevel) {
  EXPECT_EQ(faults_of("device d { x = 1; }\nDEVICE e { x = 1; }"), NONE);
  EXPECT_EQ(faults_of("device d {\ndevice e { x = 1; }\n}"), TEXTS{misplaced("device e", 2)});
}

TEST(BLOCK_PLACE, OfTheOthersIsInsideAnyBlock) {
  const TEXTS types = {"bus", "module", "slave", "master", "region", "parameters"};
  for (const std::string& outer : types) {
    for (const std::string& inner : types) {
      EXPECT_EQ(faults_of("device d { " + outer + " o { " + inner + " i { x = 1; } } }"), NONE);
    }
  }
}

TEST(BLOCK_PLACE, OfTheOthersIsNotTheTopLevel) {
  for (const std::string type : {"bus", "module", "slave", "master", "region", "parameters"}) {
    EXPECT_EQ(faults_of("\n" + type + " stripe { x = 1; }"),
              TEXTS{misplaced((type + " stripe").c_str(), 2)});
  }
}

TEST(BLOCK_PLACE, OfAnUnknownTypeIsNowhere) {
  EXPECT_EQ(faults_of("stripe s { x = 1; }"), TEXTS{misplaced("stripe s", 1)});
  EXPECT_EQ(faults_of("device d { bus b { Devices s[1] { x = 1; } } }"),
            TEXTS{misplaced("Devices s[1]", 1)});
}

TEST(BLOCK_PLACE, IsReportedAsWrittenWithTheLineOfTheName) {
  EXPECT_EQ(faults_of("MoDule\n\nStripe\n{ x = 1; }"), TEXTS{misplaced("MoDule Stripe", 3)});
}

TEST(BLOCK_PLACE, IsReportedForABlockBeforeItsMembers) {
  EXPECT_EQ(faults_of("module a {\n device b {\n  what c { r <no>; }\n }\n}\nbus e { x = 1; }"),
            (TEXTS{misplaced("module a", 1), misplaced("device b", 2), misplaced("what c", 3),
                   unresolved("no", 3), misplaced("bus e", 6)}));
}

class CHECK_BLOCK : public testing::Test {
 protected:
  // Checks one block built by hand, at top level or inside a device.
  bool check(const char* type, bool is_top_level) {
    SBD_NODE* const device = enter(m_document, make_block("device", "d"), nullptr);
    SBD_NODE* const node =
        enter(m_document, make_block(type, "b"), is_top_level ? nullptr : device);
    symbol_of(node)->parent = is_top_level ? node : device;
    return m_document.check_block(node->block);
  }

  SBD_FILE_PARSER m_document;
  MESSAGE_RECORDER m_recorder;
};

TEST_F(CHECK_BLOCK, AcceptsADeviceAtTopLevel) {
  EXPECT_TRUE(check("device", true));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(CHECK_BLOCK, AcceptsAnotherInsideABlock) {
  EXPECT_TRUE(check("master", false));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(CHECK_BLOCK, RefusesADeviceInsideABlock) {
  EXPECT_FALSE(check("device", false));
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{5});
}

TEST_F(CHECK_BLOCK, RefusesAnotherAtTopLevel) {
  EXPECT_FALSE(check("master", true));
  EXPECT_EQ(m_recorder.numbers(), std::vector<int>{5});
}

TEST_F(CHECK_BLOCK, OfATypeThatIsNoneIsAnInternalError) {
  SBD_NODE* const node = enter(m_document, make_block("device", "d"), nullptr);
  symbol_of(node)->parent = node;
  node->block->block_type = static_cast<SBD_BLOCK::BLOCK_TYPE>(8);
  EXPECT_FALSE(m_document.check_block(node->block));
  expect_error(m_recorder, "Invalid block type id");
}

// ---- Walk over the tree ------------------------------------------------------------------------

TEST(CHECK_SEMANTIC, OfNothingSucceeds) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_TRUE(document.check_semantic(nullptr));
  EXPECT_TRUE(recorder.is_silent());
}

TEST(CHECK_SEMANTIC, GoesOnBehindFaultsInTextOrder) {
  EXPECT_EQ(faults_of("device d {\n a <no>;\n device e { b <no>; }\n c <no, .no>;\n}\n"
                      "bus f { x = 1; }\ndevice g { h <no>; }"),
            (TEXTS{unresolved("no", 2), misplaced("device e", 3), unresolved("no", 3),
                   unresolved("no", 4), unresolved(".no", 4), misplaced("bus f", 6),
                   unresolved("no", 7)}));
}

TEST(CHECK_SEMANTIC, OfAnUnknownStatementIsAnInternalError) {
  auto document = document_of("device d { x = 1; r <d>; }");
  document->get_statement("d", "x")->type = static_cast<SBD_STATEMENT::STATEMENT_TYPE>(2);
  MESSAGE_RECORDER recorder;
  EXPECT_TRUE(document->check_semantic(root_of(*document)));
  expect_error(recorder, "Invalid statement type");
  root_of(*document)->block->members->statement->type = SBD_STATEMENT::ST_ASSIGNMENT;
}

TEST(CHECK_SEMANTIC, OfAnUnknownNodeIsAnInternalError) {
  auto document = document_of("device d { x = 1; r <d>; }");
  SBD_NODE* const x = root_of(*document)->block->members;
  x->type = static_cast<SBD_NODE::NODE_TYPE>(3);
  MESSAGE_RECORDER recorder;
  EXPECT_TRUE(document->check_semantic(root_of(*document)));
  expect_error(recorder, "Invalid SBD_FILE_PARSER node type");
  x->type = SBD_NODE::NT_STATEMENT;
}

// ---- References --------------------------------------------------------------------------------

// The full name of the first target of a reference statement.
std::string target_of(const SBD_FILE_PARSER& document, const char* block, const char* parameter) {
  const SBD_PARA_REF* const reference = document.get_para_ref(block, parameter);
  SBD_STRING name;
  if (reference == nullptr || !document.get_ref_name(reference->target, name)) return "none";
  return std::string(name.data(), name.size());
}

TEST(REFERENCE, IsLookedUpFromTheTopLevel) {
  const auto document = document_of("device d { bus b { x = 1; } r <d.b.x>; s <d.b>; t <d>; }");
  EXPECT_EQ(target_of(*document, "d", "r"), "d.b.x");
  EXPECT_EQ(target_of(*document, "d", "s"), "d.b");
  EXPECT_EQ(target_of(*document, "d", "t"), "d");
}

TEST(REFERENCE, WithAPointIsLookedUpInItsBlock) {
  const auto document = document_of("device d { clk = 1; bus pll { clk = 2; r <.clk>; } }");
  EXPECT_EQ(target_of(*document, "d.pll", "r"), "d.pll.clk");
}

TEST(REFERENCE, WithAPointReachesIntoItsBlock) {
  const auto document = document_of("device d { r <.b.s[1].x>; bus b { slave s[1] { x = 1; } } }");
  EXPECT_EQ(target_of(*document, "d", "r"), "d.b.s[1].x");
}

TEST(REFERENCE, MayBeInAnyLetterCase) {
  const auto document = document_of("device Dev { Clk = 1; R <dEV.cLK>; S <.CLK>; }");
  EXPECT_EQ(target_of(*document, "dev", "r"), "Dev.Clk");
  EXPECT_EQ(target_of(*document, "dev", "s"), "Dev.Clk");
}

TEST(REFERENCE, MayBeToItself) {
  const auto document = document_of("device d { r <.r>; }");
  EXPECT_EQ(target_of(*document, "d", "r"), "d.r");
}

TEST(REFERENCE, MayBeToWhatFollows) {
  const auto document = document_of("device d { r <e.x>; }\ndevice e { x = 1; }");
  EXPECT_EQ(target_of(*document, "d", "r"), "e.x");
}

TEST(REFERENCE, KeepsTheTargetsOfAllElements) {
  const auto document = document_of("device d { x = 1; r <.x, d, D.X>; }");
  const SBD_PARA_REF* const first = document->get_para_ref("d", "r");
  SBD_NODE* const device = root_of(*document);
  EXPECT_EQ(first->target, device->block->members);
  EXPECT_EQ(first->next->target, device);
  EXPECT_EQ(first->next->next->target, device->block->members);
  EXPECT_EQ(first->next->next->next, nullptr);
}

TEST(REFERENCE, WithoutPointDoesNotSeeItsOwnBlock) {
  EXPECT_EQ(faults_of("device d { x = 1;\nr <x>; }"), TEXTS{unresolved("x", 2)});
}

TEST(REFERENCE, WithAPointDoesNotSeeOuterBlocks) {
  EXPECT_EQ(faults_of("device d { x = 1; bus b {\nr <.x>; } }"), TEXTS{unresolved(".x", 2)});
}

TEST(REFERENCE, WithEmptyComponentsIsUnresolved) {
  EXPECT_EQ(faults_of("device d { x = 1; r <., .., d., .x., d..x, ..x>; }"),
            (TEXTS{unresolved(".", 1), unresolved("..", 1), unresolved("d.", 1),
                   unresolved(".x.", 1), unresolved("d..x", 1), unresolved("..x", 1)}));
}

TEST(REFERENCE, IsReportedForEachElementWithTheLineOfTheStatement) {
  EXPECT_EQ(faults_of("device d {\nr\n<No,\n\nd,\n.no,d.no>;\n}"),
            (TEXTS{unresolved("No", 2), unresolved(".no", 2), unresolved("d.no", 2)}));
}

TEST(REFERENCE, ThroughAParameterIsUnresolved) {
  EXPECT_EQ(faults_of("device d { x = 1; r <d.x.y>; }"), TEXTS{unresolved("d.x.y", 1)});
}

class RESOLVE_REFERENCE : public testing::Test {
 protected:
  RESOLVE_REFERENCE() {
    m_device = enter(m_document, make_block("device", "d"), nullptr);
    m_x = enter(m_document, make_assignment("x", make_number(1)), m_device);
    m_r = enter(m_document, make_reference("r", {"d.x", "no", ".x", ".no"}), m_device);
  }
  const SBD_PARA_REF* element(int index) const {
    const SBD_PARA_REF* reference = m_r->statement->reference;
    for (int i = 0; i < index; i++) reference = reference->next;
    return reference;
  }

  SBD_FILE_PARSER m_document;
  MESSAGE_RECORDER m_recorder;
  SBD_NODE* m_device;
  SBD_NODE* m_x;
  SBD_NODE* m_r;
};

TEST_F(RESOLVE_REFERENCE, ResolvesWhatItCan) {
  ASSERT_TRUE(m_document.resolve_symbol(m_device, m_device));
  EXPECT_FALSE(m_document.resolve_reference(m_r->statement));
  EXPECT_EQ(element(0)->target, m_x);
  EXPECT_EQ(element(1)->target, nullptr);
  EXPECT_EQ(element(2)->target, m_x);
  EXPECT_EQ(element(3)->target, nullptr);
  EXPECT_EQ(m_recorder.numbers(), (std::vector<int>{4, 4}));
}

TEST_F(RESOLVE_REFERENCE, FindsNothingRelativeToAnUnknownBlock) {
  ASSERT_TRUE(m_document.resolve_symbol(m_device, m_device));
  symbol_of(m_r)->parent = nullptr;
  EXPECT_FALSE(m_document.resolve_reference(m_r->statement));
  EXPECT_EQ(element(0)->target, m_x);
  EXPECT_EQ(element(2)->target, nullptr);
  EXPECT_EQ(m_recorder.numbers(), (std::vector<int>{4, 4, 4}));
  EXPECT_TRUE(m_recorder.internal_errors().empty());
}

TEST_F(RESOLVE_REFERENCE, OfAnEmptyListSucceeds) {
  SBD_NODE* const empty = enter(m_document, make_reference("e", {}), m_device);
  ASSERT_TRUE(m_document.resolve_symbol(m_device, m_device));
  EXPECT_TRUE(m_document.resolve_reference(empty->statement));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(RESOLVE_REFERENCE, FollowsTheTreeAsItIsNow) {
  ASSERT_TRUE(m_document.resolve_symbol(m_device, m_device));
  enter(m_document, make_assignment("no", make_number(2)), m_device);
  enter(m_document, make_block("device", "no"), nullptr);
  ASSERT_TRUE(m_document.resolve_symbol(m_device, m_device));
  EXPECT_TRUE(m_document.resolve_reference(m_r->statement));
  EXPECT_TRUE(m_recorder.is_silent());
}

}  // namespace
