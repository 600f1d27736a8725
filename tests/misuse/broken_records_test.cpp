// Records that callers have broken: parts that are missing, kinds that do not exist. Whatever goes
// over them reports that or passes over it, and stays whole itself.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_parameter_reader.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;

constexpr auto k_unknown_type = static_cast<SBD_NODE::NODE_TYPE>(99);

// Gives a field another value as long as it exists.
template <class T>
class CHANGED {
 public:
  CHANGED(T& field, T value) : m_field(field), m_before(field) { field = value; }
  ~CHANGED() { m_field = m_before; }
  CHANGED(const CHANGED&) = delete;
  CHANGED& operator=(const CHANGED&) = delete;

 private:
  T& m_field;
  const T m_before;
};

SBD_NODE* bare_node(SBD_NODE::NODE_TYPE type) {
  auto* const node = new SBD_NODE;
  node->type = type;
  return node;
}

class BROKEN : public testing::Test {
 protected:
  SBD_NODE* node(const char* name) const { return document->get_ref_object(name, nullptr); }

  MESSAGE_RECORDER recorder;
  std::unique_ptr<SBD_FILE_PARSER> document = document_of(
      "device d {  # c\n"
      "  a = 1 [k .v]; s = word; l = {1, 2}; r <d.a>;  # tail\n"
      "  module m { x = 1; }\n"
      "}\n");
  SBD_STRING text = "before";
  SBD_STRING_LIST names;
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
};

TEST_F(BROKEN, NodesWithoutContentArePassedOver) {
  SBD_NODE* const device = node("d");
  document->add_node(bare_node(SBD_NODE::NT_BLOCK), device);
  document->add_node(bare_node(SBD_NODE::NT_STATEMENT), device);
  document->add_node(bare_node(SBD_NODE::NT_COMMENT), device);
  EXPECT_TRUE(recorder.is_silent());
  document->get_typed_blocks(SBD_BLOCK::BT_MODULE, names, device);
  EXPECT_EQ(names, SBD_STRING_LIST{"d.m"});
  EXPECT_TRUE(document->is_referenced("d.a"));
  document->delete_reference("d.a");
  EXPECT_EQ(node("d.r"), nullptr);
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_TRUE(document->resolve_symbol(root_of(*document), root_of(*document)));
  EXPECT_EQ(recorder.conditions(), (TEXTS{"symbol->node == node", "symbol->node == node"}));
  recorder.forget();
  EXPECT_FALSE(document->check_semantic(root_of(*document)));
  EXPECT_EQ(recorder.conditions(),
            (TEXTS{"block != NULL && block->name != NULL", "statement != NULL"}));
}

TEST_F(BROKEN, NodesAreFreedWithWhatTheyHave) {
  document->free_node(bare_node(SBD_NODE::NT_BLOCK));
  document->free_node(bare_node(SBD_NODE::NT_STATEMENT));
  SBD_NODE* const list = make_assignment("x", make_list({make_number(1), nullptr}));
  document->add_symbol(symbol_of(list));
  document->free_node(list);
  auto* const no_list = new SBD_PARA_VALUE;
  no_list->type = SBD_PARA_VALUE::VT_LIST;
  no_list->list = nullptr;
  document->free_para_val(no_list);
  EXPECT_TRUE(recorder.is_silent());
}

TEST_F(BROKEN, ParentsWithoutABlockTakeNothing) {
  SBD_NODE* const parent = bare_node(SBD_NODE::NT_BLOCK);
  SBD_NODE* const member = make_comment("# c\n");
  document->add_node(member, parent);
  EXPECT_EQ(recorder.conditions(), TEXTS{"parent->block != NULL"});
  recorder.forget();
  document->delete_node(member, parent);
  EXPECT_TRUE(recorder.is_silent());
  document->free_node(member);
  document->free_node(parent);
}

TEST_F(BROKEN, TextsThatAreMissingGiveNothing) {
  SBD_PARA_VALUE* const word = document->get_para_value("d", "s");
  SBD_BLOCK* const block = document->get_block("d.m");
  SBD_PARA_REF* const element = document->get_para_ref("d", "r");
  {
    const CHANGED<char*> no_text(word->text, nullptr);
    const CHANGED<char*> no_type(block->type, nullptr);
    const CHANGED<char*> no_element(element->name, nullptr);
    const CHANGED<char*> no_name(block->name->name, nullptr);
    EXPECT_FALSE(document->get_value("d", "s", text));
    EXPECT_FALSE(document->get_ref_name(block->name->node, text));
    EXPECT_EQ(text, "before");
    EXPECT_TRUE(document->get_value("d", "r", names));
    EXPECT_EQ(names, SBD_STRING_LIST{""});
    EXPECT_TRUE(document->check_declaration(block->name));
    EXPECT_FALSE(document->resolve_reference(document->get_statement("d", "r")));
    EXPECT_EQ(recorder.texts(), TEXTS{reference_error_text(TEST_FILE, "", 2)});
    recorder.forget();
    const CHANGED<SBD_BLOCK::BLOCK_TYPE> unknown(block->block_type, SBD_BLOCK::BT_UNKNOWN);
    const CHANGED<SBD_NODE*> no_node(block->name->node, nullptr);
    EXPECT_FALSE(document->check_block(block));
    EXPECT_EQ(recorder.texts(), TEXTS{block_error_text(TEST_FILE, " ", 3)});
  }
  const CHANGED<char*> no_type(block->type, nullptr);
  EXPECT_FALSE(document->get_block_type("d.m", text));
}

TEST_F(BROKEN, ReferencesAreLookedForInReferenceStatementsOnly) {
  EXPECT_TRUE(document->resolve_reference(document->get_statement("d", "a")));
  EXPECT_TRUE(recorder.is_silent());
}

TEST_F(BROKEN, WhatIsMissingHasNoPlace) {
  SBD_NODE* const module = node("d.m");
  SBD_NODE* const reference = node("d.r");
  {
    const CHANGED<SBD_BLOCK*> no_block(module->block, nullptr);
    EXPECT_FALSE(document->get_range(module, range));
    EXPECT_FALSE(document->get_name_range(module, range));
  }
  {
    const CHANGED<std::uint32_t> no_end(module->block->m_end_position, 0);
    EXPECT_FALSE(document->get_range(module, range));
  }
  {
    const CHANGED<SBD_NODE::NODE_TYPE> unknown(module->type, k_unknown_type);
    EXPECT_FALSE(document->get_range(module, range));
  }
  {
    const CHANGED<SBD_STATEMENT*> no_statement(reference->statement, nullptr);
    EXPECT_FALSE(document->get_comment_range(reference, range));
  }
  char comment[] = "# of a caller's\n";
  const CHANGED<char*> other_comment(reference->statement->comment, comment);
  EXPECT_FALSE(document->get_comment_range(reference, range));
}

TEST_F(BROKEN, EditsOfBrokenNodesAreRefused) {
  SBD_NODE* const statement = node("d.a");
  SBD_NODE* const module = node("d.m");
  const std::string before = outline(*document);
  {
    const CHANGED<SBD_PARA_VALUE*> no_value(statement->statement->value, nullptr);
    EXPECT_FALSE(document->set_value("d", "a", 5UL, 10, SBD_PARA_VALUE::QU_NONE));
    EXPECT_EQ(recorder.conditions(), TEXTS{"value != NULL"});
  }
  recorder.forget();
  {
    const CHANGED<SBD_NODE::NODE_TYPE> unknown(module->type, k_unknown_type);
    EXPECT_FALSE(document->rename("m", "n", "d"));
    EXPECT_EQ(recorder.conditions(), TEXTS{"Try to rename an un-named object"});
  }
  recorder.forget();
  {
    const CHANGED<SBD_SYMBOL*> no_name(module->block->name, nullptr);
    EXPECT_FALSE(document->rename("m", "n", "d"));
    EXPECT_FALSE(document->move_member("d.m", "d.a", true));
    EXPECT_FALSE(document->move_member("d.a", "d.m", true));
  }
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_EQ(outline(*document), before);
}

// Its name is known, but it stands nowhere.
TEST_F(BROKEN, NodesThatAreNotInTheTreeCantBeMoved) {
  SBD_NODE* const lost = make_assignment("lost", make_number(1));
  symbol_of(lost)->parent = node("d");
  document->add_symbol(symbol_of(lost));
  const std::string before = outline(*document);
  ASSERT_EQ(node("d.lost"), lost);
  EXPECT_FALSE(document->move_member("d.lost", "d.a", false));
  EXPECT_EQ(outline(*document), before);
  document->free_node(lost);
}

TEST_F(BROKEN, SymbolsOfTheReadersAreEnteredOnce) {
  document->add_symbol(symbol_of(node("d.a")));
  EXPECT_EQ(recorder.conditions(), TEXTS{"symbol is not entered"});
  EXPECT_EQ(find_inconsistency(*document), "");
}

TEST_F(BROKEN, ListsWithoutElementsAreWrittenAsTheyAre) {
  SBD_PARA_VALUE* const list = document->get_para_value("d", "l");
  const CHANGED<SBD_VALUE_LIST*> no_list(list->list, nullptr);
  char* written = nullptr;
  std::size_t length = 0;
  std::FILE* const stream = open_memstream(&written, &length);
  document->write(stream, list);
  (void)std::fclose(stream);
  EXPECT_EQ(std::string(written, length).find_first_of("123"), std::string::npos);
  std::free(written);  // NOLINT: open_memstream made it.
}

TEST_F(BROKEN, ListsWithMissingElementsAreWrittenWithoutThem) {
  SBD_PARA_VALUE* const list = make_list({make_number(1), nullptr, make_number(3)});
  char* written = nullptr;
  std::size_t length = 0;
  std::FILE* const stream = open_memstream(&written, &length);
  document->write(stream, list);
  (void)std::fclose(stream);
  const std::string text_written(written, length);
  EXPECT_NE(text_written.find('1'), std::string::npos);
  EXPECT_NE(text_written.find('3'), std::string::npos);
  EXPECT_EQ(recorder.conditions(), TEXTS{"value != NULL"});
  std::free(written);  // NOLINT: open_memstream made it.
  document->free_para_val(list);
}

TEST_F(BROKEN, ReferencesAtTopLevelAreDeleted) {
  for (const bool has_name : {true, false}) {
    SBD_NODE* const reference = make_reference("top", {"d.a"});
    reference->statement->reference->target = node("d.a");
    SBD_SYMBOL* const symbol = symbol_of(reference);
    symbol->parent = reference;
    if (has_name) document->add_symbol(symbol);
    if (!has_name) {
      free_symbol(symbol);
      reference->statement->name = nullptr;
    }
    document->add_node(reference, nullptr);
    document->delete_reference("d.a");
    EXPECT_EQ(root_of(*document)->next, nullptr);
  }
  EXPECT_TRUE(recorder.is_silent());
}

TEST_F(BROKEN, TextsTooLongForPositionsAreRefused) {
  EXPECT_FALSE(document->read_text("x", 0xFFFFFFFFU, "long.sbd"));
  EXPECT_EQ(recorder.texts(), TEXTS{file_error_text("long.sbd")});
  EXPECT_NE(node("d.a"), nullptr);
}

// Whatever a caller does to the parents of symbols that it has entered, names are found where their
// parents say.
TEST_F(BROKEN, SymbolsWhoseParentsChangeAreFoundInTheirScope) {
  SBD_NODE* const device = node("d");
  SBD_NODE* const module = node("d.m");
  SBD_NODE* const first = make_assignment("n", make_number(1));
  SBD_NODE* const second = make_assignment("N", make_number(2));
  document->add_symbol(symbol_of(first));
  EXPECT_TRUE(document->check_declaration(symbol_of(first)));
  symbol_of(second)->parent = device;
  document->add_symbol(symbol_of(second));
  EXPECT_TRUE(document->check_declaration(symbol_of(second)));
  EXPECT_EQ(node("d.n"), second);
  symbol_of(first)->parent = module;
  EXPECT_EQ(node("d.m.n"), first);
  EXPECT_TRUE(document->check_declaration(symbol_of(first)));
  symbol_of(second)->parent = module;
  EXPECT_EQ(node("d.n"), nullptr);
  // The check of declarations puts them right.
  document->add_node(first, module);
  document->add_node(second, device);
  EXPECT_TRUE(document->resolve_symbol(root_of(*document), root_of(*document)));
  EXPECT_EQ(node("d.n"), second);
  EXPECT_EQ(node("d.m.n"), first);
  EXPECT_EQ(find_inconsistency(*document), "");
  EXPECT_TRUE(recorder.is_silent());
}

TEST_F(BROKEN, TwoSymbolsWithoutParentsAreNoTwins) {
  SBD_NODE* const first = make_assignment("n", make_number(1));
  SBD_NODE* const second = make_assignment("n", make_number(2));
  document->add_symbol(symbol_of(first));
  document->add_symbol(symbol_of(second));
  symbol_of(second)->parent = node("d");
  EXPECT_TRUE(document->check_declaration(symbol_of(second)));
  symbol_of(first)->parent = node("d.m");
  EXPECT_TRUE(document->check_declaration(symbol_of(second)));
  symbol_of(first)->parent = node("d");
  EXPECT_FALSE(document->check_declaration(symbol_of(second)));
  document->free_node(first);
  document->free_node(second);
}

TEST_F(BROKEN, SymbolsEnteredForAnotherBlockAreFoundWhereTheirNodeIs) {
  SBD_NODE* const added = make_assignment("n", make_number(1));
  symbol_of(added)->parent = node("d");
  document->add_symbol(symbol_of(added));
  document->add_node(added, node("d.m"));
  EXPECT_TRUE(document->resolve_symbol(root_of(*document), root_of(*document)));
  EXPECT_EQ(node("d.n"), nullptr);
  EXPECT_EQ(node("d.m.n"), added);
  EXPECT_EQ(find_inconsistency(*document), "");
  EXPECT_TRUE(recorder.is_silent());
}

TEST_F(BROKEN, SymbolsThatAreNotInTheirScopeHaveNoTwinThere) {
  SBD_SYMBOL* const read = symbol_of(node("d.a"));
  {
    const CHANGED<SBD_NODE*> moved(read->parent, node("d.m"));
    EXPECT_TRUE(document->check_declaration(read));
  }
  SBD_NODE* const added = make_assignment("a", make_number(2));
  SBD_SYMBOL* const symbol = symbol_of(added);
  symbol->parent = node("d");
  EXPECT_TRUE(document->check_declaration(symbol));
  document->add_symbol(symbol);
  EXPECT_FALSE(document->check_declaration(symbol));
  document->free_node(added);
}

// In a program of its own, since standard output is closed afterwards.
TEST_F(BROKEN, StandardOutputIsWrittenToWithoutAPath) {
  const std::string path = testing::TempDir() + "/standard_output.sbd";
  const auto write = [this, &path] {
    if (std::freopen(path.c_str(), "w", stdout) == nullptr) return false;
    if (!document->write(nullptr)) return false;
    SBD_FILE_PARSER again;
    return again.read(path.c_str()) && again.get_ref_object("d.m.x", nullptr) != nullptr;
  };
  EXPECT_EXIT(std::exit(write() ? 0 : 1), testing::ExitedWithCode(0), "");
  (void)std::remove(path.c_str());
}

// ---- Devices -----------------------------------------------------------------------------------

TEST(BROKEN_DEVICE, ParametersOfBrokenRecordsHaveNoValue) {
  MESSAGE_RECORDER recorder;
  SBD_VELDRAN device("d");
  // So many names in each scope that they have lists: these find symbols without looking at nodes.
  constexpr char k_text[] =
      "device d { family = veldran_arm; type = qmxa1; revision = 2;\n"
      "  module s { type = veldran_stripe; endian = little; boot_from_flash = true; x = 1; y = 2; "
      "}\n"
      "  module other { x = 1; }\n"
      "}\n"
      "device e { x = 1; } device f { x = 1; } device g { x = 1; } device h { x = 1; }\n";
  (void)device.read_text(k_text, sizeof k_text - 1, "f");
  ASSERT_NE(device.get_parameter_reader(), nullptr);
  const auto is_stripe_found = [&device] {
    SBD_STRING name;
    return device.get_module_ref_name(name);
  };
  SBD_STATEMENT* const type = device.get_statement("d.s", "type");
  SBD_NODE* const type_node = device.get_ref_object("d.s.type", nullptr);
  SBD_NODE* const other = device.get_ref_object("d.other", nullptr);
  SBD_NODE* const device_node = device.get_ref_object("d", nullptr);
  EXPECT_TRUE(is_stripe_found());
  {
    const CHANGED<SBD_BLOCK*> no_block(other->block, nullptr);
    EXPECT_TRUE(is_stripe_found());
  }
  {
    const CHANGED<SBD_PARA_VALUE*> no_value(type->value, nullptr);
    EXPECT_FALSE(is_stripe_found());
  }
  {
    const CHANGED<char*> no_text(type->value->text, nullptr);
    EXPECT_FALSE(is_stripe_found());
  }
  {
    const CHANGED<SBD_STATEMENT*> no_statement(type_node->statement, nullptr);
    EXPECT_FALSE(is_stripe_found());
  }
  {
    const CHANGED<SBD_STATEMENT::STATEMENT_TYPE> reference(type->type, SBD_STATEMENT::ST_REFERENCE);
    EXPECT_FALSE(is_stripe_found());
  }
  recorder.forget();
  {
    const CHANGED<SBD_BLOCK*> no_block(device_node->block, nullptr);
    EXPECT_FALSE(device.check_device());
  }
  EXPECT_EQ(recorder.numbers(), std::vector<int>{6});

  // A reader of the same module meets them as well.
  SBD_NODE* const endian = device.get_ref_object("d.s.endian", nullptr);
  SBD_NODE* const boot = device.get_ref_object("d.s.boot_from_flash", nullptr);
  const CHANGED<char*> no_text(endian->statement->value->text, nullptr);
  const CHANGED<SBD_PARA_VALUE*> no_value(boot->statement->value, nullptr);
  SBD_QMXA1_PARAMETER_READER reader(device, SBD_STRING("d.s"));
  EXPECT_TRUE(reader.read_all_parameters());
  bool is_defined = false;
  bool has_value = true;
  EXPECT_EQ(reader.lookup_string_parameter("endian", is_defined, has_value, false), "");
  EXPECT_FALSE(reader.lookup_bool_parameter("boot_from_flash", is_defined, has_value, false));
  EXPECT_TRUE(is_defined);
  EXPECT_FALSE(has_value);

  const CHANGED<SBD_STATEMENT*> no_statement(endian->statement, nullptr);
  SBD_QMXA1_PARAMETER_READER other_reader(device, SBD_STRING("d.s"));
  EXPECT_TRUE(other_reader.read_all_parameters());
  EXPECT_EQ(other_reader.get_parameter_origin("endian"), PO_PRESENT_BLOCK_DEFAULT);
}

// The faults of a module that is not there have no place.
TEST(BROKEN_DEVICE, ModulesThatAreNotThereHaveDefaultsOnly) {
  SBD_VELDRAN device("d");
  constexpr char k_text[] = "device d { family = veldran_arm; type = qmxa1; x = 1; }";
  ASSERT_TRUE(device.read_text(k_text, sizeof k_text - 1, "f"));
  for (const char* const module : {"", "d.none"}) {
    MESSAGE_RECORDER recorder;
    SBD_QMXA1_PARAMETER_READER reader(device, SBD_STRING(module));
    EXPECT_TRUE(reader.read_all_parameters());
    EXPECT_FALSE(reader.validate_all_parameters());
    ASSERT_FALSE(reader.get_faults().empty());
    for (const SBD_PARAMETER_FAULT& fault : reader.get_faults()) {
      EXPECT_EQ(fault.statement, nullptr);
      EXPECT_EQ(fault.block, nullptr);
    }
    EXPECT_TRUE(recorder.conditions().empty());
  }
}

TEST(BROKEN_DEVICE, BlocksOfAParametersNameAreNotItsStatement) {
  MESSAGE_RECORDER recorder;
  SBD_VELDRAN device("d");
  constexpr char k_text[] =
      "device d { family = veldran_arm; type = qmxa1; module s { type = veldran_stripe; "
      "module endian { x = 1; } } }";
  EXPECT_FALSE(device.read_text(k_text, sizeof k_text - 1, "f"));
  SBD_PARAMETER_STATE state;
  ASSERT_TRUE(sbd_get_parameter_state(device, "endian", state));
  EXPECT_EQ(state.statement, nullptr);
  EXPECT_EQ(state.block, device.get_ref_object("d.s", nullptr));
}

}  // namespace
