// Objects that the host had no memory for from the begin: every operation answers as an empty one
// does, and nothing but the one report is heard of it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_parser.h"
#include "sbd/sbd_source_document.h"
#include "sbd/sbd_veldran.h"
#include "tests/exhaustion/operations.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;

constexpr char k_text[] = "device d { x = 1; r <d.x>; }";
constexpr const char* k_null = nullptr;

// An object that is made while there is no memory; there is some again afterwards.
template <class OBJECT>
class MADE_WITHOUT_MEMORY {
 public:
  template <class... ARGUMENTS>
  explicit MADE_WITHOUT_MEMORY(ARGUMENTS&&... arguments) {
    sbd_host::fail_allocation("SBD", 1, true);
    object.emplace(std::forward<ARGUMENTS>(arguments)...);
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_EQ(recorder.conditions(), TEXTS{"out of memory"});
    recorder.forget();
  }
  OBJECT* operator->() { return &*object; }

  MESSAGE_RECORDER recorder;
  std::optional<OBJECT> object;
};

TEST(NO_MEMORY, DocumentAnswersAsAnEmptyOne) {
  MADE_WITHOUT_MEMORY<SBD_FILE_PARSER> document;
  SBD_STRING text = "before";
  SBD_STRING_LIST names{"before"};
  unsigned long whole = 77;
  double number = 7.5;
  int flag = 7;
  SBD_BLOCK::BLOCK_TYPE type = SBD_BLOCK::BT_BUS;
  EXPECT_FALSE(document->read_text(k_text, sizeof k_text - 1, "f"));
  EXPECT_EQ(document->get_parser_para().root, nullptr);
  EXPECT_EQ(document->get_parser_para().symbol_table, nullptr);
  EXPECT_EQ(document->get_file_name(), nullptr);
  EXPECT_EQ(document->get_source(), "");
  document->clear();
  EXPECT_EQ(document->get_ref_object("d", nullptr), nullptr);
  EXPECT_EQ(document->get_block("d"), nullptr);
  EXPECT_EQ(document->get_statement("d", "x"), nullptr);
  EXPECT_EQ(document->get_para_value("d", "x"), nullptr);
  EXPECT_EQ(document->get_para_attr("d", "x"), nullptr);
  EXPECT_EQ(document->get_para_ref("d", "r"), nullptr);
  EXPECT_FALSE(document->is_parameter_defined("d.x"));
  EXPECT_FALSE(document->is_block_defined("d"));
  EXPECT_FALSE(document->is_referenced("d"));
  EXPECT_FALSE(document->get_block_type("d", text));
  EXPECT_FALSE(document->get_block_type("d", type));
  EXPECT_FALSE(document->get_value("d", "x", whole));
  EXPECT_FALSE(document->get_value("d.x", number));
  EXPECT_FALSE(document->get_value("d", "x", flag));
  EXPECT_FALSE(document->get_value("d", "x", text));
  EXPECT_FALSE(document->get_value("d", "r", names));
  EXPECT_EQ(text, "before");
  EXPECT_EQ(names.size(), 1U);
  document->get_typed_blocks("device", names, k_null);
  EXPECT_TRUE(names.empty());
  EXPECT_TRUE(document.recorder.is_silent());
}

TEST(NO_MEMORY, DocumentTakesNoEdits) {
  MADE_WITHOUT_MEMORY<SBD_FILE_PARSER> document;
  SBD_PARA_ATTR attribute;
  SBD_PARA_VALUE value;
  EXPECT_FALSE(document->set_value("d", "x", 1UL, 10, SBD_PARA_VALUE::QU_NONE));
  EXPECT_FALSE(document->set_value("d", "x", SBD_STRING_LIST{"d"}));
  EXPECT_FALSE(document->set_para_value("d", "x", value));
  EXPECT_FALSE(document->set_attribute("d", "x", &attribute));
  document->delete_attribute("d", "x");
  document->delete_parameter("d", "x");
  EXPECT_FALSE(document->create_block("device", "d", nullptr));
  document->delete_block("d");
  EXPECT_FALSE(document->rename("d", "e", nullptr));
  EXPECT_FALSE(document->move_member("d", "e", true));
  document->delete_reference("d");
  document->delete_reference(nullptr, nullptr);
  EXPECT_TRUE(document.recorder.is_silent());
  EXPECT_EQ(document->get_parser_para().root, nullptr);
}

// What a caller hands over stays the caller's.
TEST(NO_MEMORY, DocumentTakesNoRecords) {
  SBD_FILE_PARSER owner;
  SBD_NODE* const node = make_block("device", "d");
  SBD_NODE* const member = make_assignment("x", make_number(1));
  {
    MADE_WITHOUT_MEMORY<SBD_FILE_PARSER> document;
    document->add_symbol(symbol_of(node));
    document->add_node(node, nullptr);
    document->delete_node(node, nullptr);
    document->free_node(node);
    document->delete_symbol(symbol_of(node));
    document->free_para_val(member->statement->value);
    EXPECT_TRUE(document->resolve_symbol(node, node));
    EXPECT_TRUE(document->check_declaration(symbol_of(node)));
    EXPECT_TRUE(document->check_semantic(node));
    EXPECT_TRUE(document.recorder.is_silent());
    EXPECT_EQ(document->get_parser_para().root, nullptr);
  }
  enter(owner, node, nullptr);
  enter(owner, member, node);
  EXPECT_EQ(outline(owner), "device d @0\n  x = 1 @0\n");
}

// A check that has something to say needs no memory of the document's.
TEST(NO_MEMORY, DocumentStillChecksWhatItIsGiven) {
  SBD_FILE_PARSER owner;
  SBD_NODE* const bus = enter(owner, make_block("bus", "b"), nullptr);
  symbol_of(bus)->parent = bus;
  SBD_NODE* const reference = enter(owner, make_reference("r", {".x", "b"}), bus);
  MADE_WITHOUT_MEMORY<SBD_FILE_PARSER> document;
  EXPECT_FALSE(document->check_block(bus->block));
  EXPECT_FALSE(document->resolve_reference(reference->statement));
  EXPECT_EQ(document.recorder.numbers(), (std::vector<int>{5, 4, 4}));
  EXPECT_TRUE(document.recorder.conditions().empty());
}

TEST(NO_MEMORY, DocumentHasNoPlaces) {
  const auto other = document_of("device d { x = 1 [k]; r <d.x>; # c\n }");
  const SBD_NODE* const node = other->get_ref_object("d.x", nullptr);
  MADE_WITHOUT_MEMORY<SBD_FILE_PARSER> document;
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  range.offset = 77;
  EXPECT_FALSE(document->get_range(node, range));
  EXPECT_FALSE(document->get_name_range(node, range));
  EXPECT_FALSE(document->get_type_range(other->get_ref_object("d", nullptr), range));
  EXPECT_FALSE(document->get_comment_range(other->get_ref_object("d.r", nullptr), range));
  EXPECT_FALSE(document->get_range(other->get_para_value("d", "x"), range));
  EXPECT_FALSE(document->get_range(other->get_para_attr("d", "x"), range));
  EXPECT_FALSE(document->get_range(other->get_para_ref("d", "r"), range));
  EXPECT_FALSE(document->get_fault_range(range));
  EXPECT_EQ(range.offset, 77U);
}

TEST(NO_MEMORY, DocumentParsesNothing) {
  MADE_WITHOUT_MEMORY<SBD_FILE_PARSER> document;
  sbd_yyFlexLexer scanner(k_text, sizeof k_text - 1);
  EXPECT_EQ(sbd_yyparse(&scanner, &document->get_parser_para()), 1);
  EXPECT_EQ(document.recorder.conditions(), TEXTS{"symbol_table != NULL"});
  sbd_yyerror(&scanner, &document->get_parser_para());
  EXPECT_EQ(document.recorder.numbers(), std::vector<int>{2});
}

TEST(NO_MEMORY, DeviceHasNoBlock) {
  MADE_WITHOUT_MEMORY<SBD_VELDRAN> device("d");
  EXPECT_FALSE(device->check_device());
  EXPECT_EQ(device.recorder.numbers(), std::vector<int>{6});
  EXPECT_EQ(device->get_parameter_reader(), nullptr);
}

TEST(NO_MEMORY, FileErrorIsStillPosted) {
  MADE_WITHOUT_MEMORY<SBD_FILE_PARSER> document;
  EXPECT_FALSE(document->read("/no/such/file"));
  EXPECT_EQ(document.recorder.numbers(), std::vector<int>{1});
}

TEST(NO_MEMORY, SourceDocumentAnswersAsAnEmptyOne) {
  MADE_WITHOUT_MEMORY<SBD_SOURCE_DOCUMENT> source;
  SBD_PARA_ATTR attribute;
  SBD_STRING why = "before";
  EXPECT_FALSE(source->read("/no/such/file"));
  EXPECT_FALSE(source->read_text(k_text, sizeof k_text - 1, "f"));
  EXPECT_EQ(source->text(), "");
  EXPECT_FALSE(source->set_value("d.x", "2"));
  EXPECT_FALSE(source->set_value(nullptr, "2"));
  EXPECT_FALSE(source->add_value("d.y", "2"));
  EXPECT_FALSE(source->set_references("d.r", {"d"}));
  EXPECT_FALSE(source->set_attributes("d.x", &attribute));
  EXPECT_FALSE(source->remove_attributes("d.x"));
  EXPECT_FALSE(source->remove_parameter("d.x"));
  EXPECT_FALSE(source->add_block("bus", "b", "d"));
  EXPECT_FALSE(source->remove_block("d"));
  EXPECT_FALSE(source->remove_references("d.x"));
  EXPECT_FALSE(source->rename("d.x", "y", true));
  EXPECT_FALSE(source->begin());
  EXPECT_FALSE(source->commit());
  EXPECT_FALSE(source->roll_back());
  EXPECT_FALSE(source->verify(why));
  EXPECT_FALSE(source->save("f"));
  EXPECT_FALSE(source->save_canonical("f"));
  EXPECT_EQ(why, "before");
  EXPECT_TRUE(source.recorder.is_silent());
}

// Some of its parts may have got theirs.
TEST(NO_MEMORY, SourceDocumentWithoutAPartOfItsMemory) {
  for (std::size_t count = 1; count != 12; ++count) {
    SCOPED_TRACE(count);
    MESSAGE_RECORDER recorder;
    sbd_host::fail_allocation("SBD", count, false);
    SBD_SOURCE_DOCUMENT source;
    sbd_host::fail_allocation("SBD", 0, false);
    const bool is_whole = recorder.conditions().empty();
    EXPECT_EQ(source.read_text(k_text, sizeof k_text - 1, "f") &&
                  source.set_value("d.x", "{1, 2}") && source.set_value("d.new", "5"),
              is_whole);
  }
}

// In a process of its own, since that tree stays until the program ends.
TEST(NO_MEMORY, SourceDocumentHasAnEmptyTree) {
  MADE_WITHOUT_MEMORY<SBD_SOURCE_DOCUMENT> source;
  EXPECT_EXIT(std::exit(source->document().get_parser_para().root == nullptr ? 0 : 1),
              testing::ExitedWithCode(0), "");
}

class OWN_READER : public SBD_PARAMETER_READER {
 public:
  using SBD_PARAMETER_READER::add_fault;
  using SBD_PARAMETER_READER::SBD_PARAMETER_READER;
  bool read_all_parameters() override {
    return read_bool_parameter(nullptr, "flag", nullptr, nullptr);
  }
  bool validate_all_parameters() override { return false; }
};

TEST(NO_MEMORY, ReaderHasNoParameters) {
  const auto document = document_of("device d { flag = true; }");
  const SBD_STRING module = "d";
  MADE_WITHOUT_MEMORY<OWN_READER> reader(*document, module);
  bool flag = true;
  bool is_defined = true;
  bool has_value = true;
  EXPECT_FALSE(reader->read_and_validate_parameters());
  EXPECT_FALSE(reader->get_parameter("flag", flag));
  EXPECT_FALSE(flag);
  EXPECT_EQ(reader->lookup_dword_parameter("flag", is_defined, has_value, false), 0U);
  EXPECT_FALSE(is_defined);
  EXPECT_FALSE(has_value);
  EXPECT_EQ(reader->find_parameter("flag"), nullptr);
  EXPECT_EQ(reader->get_parameter_origin("flag"), PO_NONE);
  EXPECT_TRUE(reader->get_faults().empty());
  reader->mark_parameter_as_validated("flag");
  EXPECT_TRUE(reader.recorder.is_silent());
}

TEST(NO_MEMORY, ReaderOfAChipReadsAndValidatesNothing) {
  SBD_VELDRAN device("d");
  const SBD_STRING module = "d.a_module_whose_name_is_longer_than_a_string_keeps_in_itself";
  MADE_WITHOUT_MEMORY<SBD_QMXA1_PARAMETER_READER> reader(device, module);
  EXPECT_FALSE(reader->read_all_parameters());
  EXPECT_FALSE(reader->validate_all_parameters());
  EXPECT_FALSE(reader->read_and_validate_parameters());
  EXPECT_TRUE(reader.recorder.is_silent());
}

// Also one whose name has no place.
TEST(NO_MEMORY, ReaderNeedsItsName) {
  const auto document = document_of("device d { flag = true; }");
  const SBD_STRING module = "a_module_whose_name_is_longer_than_a_string_keeps_in_itself";
  for (std::size_t count = 1; count != 6; ++count) {
    MESSAGE_RECORDER recorder;
    sbd_host::fail_allocation("SBD", count, false);
    OWN_READER reader(*document, module);
    sbd_host::fail_allocation("SBD", 0, false);
    const bool is_whole = recorder.conditions().empty();
    EXPECT_EQ(reader.get_module_name(), is_whole ? module : "");
    recorder.forget();
    (void)reader.read_bool_parameter(nullptr, "flag", nullptr, nullptr);
    EXPECT_EQ(reader.find_parameter("flag") != nullptr, is_whole);
    EXPECT_TRUE(recorder.is_silent());
  }
}

}  // namespace
