// What callers do wrong with a document: null arguments, unknown enumerators, broken records,
// operations in the wrong order. Each is an internal error or a message with the words that belong
// to it, or is passed over in silence; nothing crashes, and nothing changes.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;
using DOCUMENT = SBD_FILE_PARSER;

constexpr char k_text[] =
    "# c\n"
    "device d {\n"
    "  a = 1 [k .v]; # t\n"
    "  l = {1, 2};\n"
    "  r <d.a>;\n"
    "  module m { x = true; s = \"s\"; }\n"
    "}\n";

constexpr const char* k_null = nullptr;
constexpr auto k_no_unit = SBD_PARA_VALUE::QU_NONE;
constexpr auto k_unknown_unit = static_cast<SBD_PARA_VALUE::QUANTITY_UNIT>(99);
constexpr auto k_unknown_block_type = static_cast<SBD_BLOCK::BLOCK_TYPE>(99);
constexpr auto k_unknown_node_type = static_cast<SBD_NODE::NODE_TYPE>(99);
constexpr auto k_unknown_statement_type = static_cast<SBD_STATEMENT::STATEMENT_TYPE>(99);
constexpr auto k_unknown_value_type = static_cast<SBD_PARA_VALUE::VALUE_TYPE>(99);

// One thing done wrong to a document, and what is said about it.
struct MISUSE {
  const char* name;
  std::function<void(DOCUMENT&)> act;
  TEXTS conditions = {};
  TEXTS errors = {};        // Behind "System Build Descriptor File error: " or "... warning: ".
  bool needs_tree = false;  // There is no way to do this to an empty document.
};

void PrintTo(const MISUSE& misuse, std::ostream* stream) {
  *stream << misuse.name;
}

// Whatever the outputs held is still there.
struct OUTPUTS {
  unsigned long whole = 77;
  double number = 7.5;
  int flag = 77;
  SBD_STRING text = "before";
  SBD_STRING_LIST names{"before"};

  void expect_untouched() const {
    EXPECT_EQ(whole, 77U);
    EXPECT_EQ(number, 7.5);
    EXPECT_EQ(flag, 77);
    EXPECT_EQ(text, "before");
    EXPECT_EQ(names, SBD_STRING_LIST{"before"});
  }
};

void ask_for_values(const DOCUMENT& document, const char* block, const char* parameter) {
  OUTPUTS out;
  EXPECT_FALSE(document.get_value(block, parameter, out.whole));
  EXPECT_FALSE(document.get_value(block, parameter, out.number));
  EXPECT_FALSE(document.get_value(block, parameter, out.flag));
  EXPECT_FALSE(document.get_value(block, parameter, out.text));
  EXPECT_FALSE(document.get_value(block, parameter, out.names));
  EXPECT_EQ(document.get_statement(block, parameter), nullptr);
  EXPECT_EQ(document.get_para_value(block, parameter), nullptr);
  EXPECT_EQ(document.get_para_attr(block, parameter), nullptr);
  EXPECT_EQ(document.get_para_ref(block, parameter), nullptr);
  EXPECT_FALSE(document.is_parameter_defined(block, parameter));
  out.expect_untouched();
}

void ask_for_values(const DOCUMENT& document, const char* name) {
  OUTPUTS out;
  EXPECT_FALSE(document.get_value(name, out.whole));
  EXPECT_FALSE(document.get_value(name, out.number));
  EXPECT_FALSE(document.get_value(name, out.flag));
  EXPECT_FALSE(document.get_value(name, out.text));
  EXPECT_FALSE(document.is_parameter_defined(name));
  EXPECT_FALSE(document.is_block_defined(name));
  EXPECT_FALSE(document.is_referenced(name));
  EXPECT_EQ(document.get_block(name), nullptr);
  EXPECT_EQ(document.get_ref_object(name, nullptr), nullptr);
  EXPECT_FALSE(document.get_block_type(name, out.text));
  auto type = SBD_BLOCK::BT_SLAVE;
  EXPECT_FALSE(document.get_block_type(name, type));
  EXPECT_EQ(type, SBD_BLOCK::BT_SLAVE);
  out.expect_untouched();
}

void ask_for_places(const DOCUMENT& document) {
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range{1, 2, 3, 4};
  const SBD_NODE* const node = nullptr;
  EXPECT_FALSE(document.get_range(node, range));
  EXPECT_FALSE(document.get_name_range(node, range));
  EXPECT_FALSE(document.get_type_range(node, range));
  EXPECT_FALSE(document.get_comment_range(node, range));
  EXPECT_FALSE(document.get_range(static_cast<const SBD_PARA_VALUE*>(nullptr), range));
  EXPECT_FALSE(document.get_range(static_cast<const SBD_PARA_ATTR*>(nullptr), range));
  EXPECT_FALSE(document.get_range(static_cast<const SBD_PARA_REF*>(nullptr), range));
  EXPECT_EQ(range.offset, 1U);
  EXPECT_EQ(range.column, 4U);
}

// What is written is of no interest.
void write_away(const DOCUMENT& document, SBD_NODE* node) {
  std::FILE* const stream = std::fopen("/dev/null", "w");
  EXPECT_TRUE(document.write(stream, node, 0));
  std::fclose(stream);
}

// ---- Null arguments ----------------------------------------------------------------------------

constexpr char k_no_name[] = "Cannot set parameter value. NULL block/parameter name.";

const MISUSE k_nulls[] = {
    {"read", [](DOCUMENT& d) { EXPECT_FALSE(d.read(nullptr)); }, {"path != NULL"}},
    {"read_text",
     [](DOCUMENT& d) { EXPECT_FALSE(d.read_text(nullptr, 0, "f")); },
     {"text != NULL && name != NULL"}},
    {"read_text_name",
     [](DOCUMENT& d) { EXPECT_FALSE(d.read_text("", 0, nullptr)); },
     {"text != NULL && name != NULL"}},
    {"post_message", [](DOCUMENT& d) { d.post_message(nullptr); }},
    {"add_node", [](DOCUMENT& d) { d.add_node(nullptr, nullptr); }, {"node != NULL"}},
    {"delete_node", [](DOCUMENT& d) { d.delete_node(nullptr, nullptr); }},
    {"free_node", [](DOCUMENT& d) { d.free_node(nullptr); }},
    {"free_para_val", [](DOCUMENT& d) { d.free_para_val(nullptr); }},
    {"add_symbol", [](DOCUMENT& d) { d.add_symbol(nullptr); }},
    {"delete_symbol", [](DOCUMENT& d) { d.delete_symbol(nullptr); }},
    {"hash_pjw", [](DOCUMENT& d) { EXPECT_EQ(d.hash_pjw(nullptr, 211), 0U); }, {"name != NULL"}},
    {"hash_pjw_of_no_buckets", [](DOCUMENT& d) { EXPECT_EQ(d.hash_pjw("a", 0), 0U); }},
    {"lookup_block_type",
     [](DOCUMENT& d) { EXPECT_EQ(d.lookup_block_type(nullptr), SBD_BLOCK::BT_UNKNOWN); }},
    {"resolve_symbol", [](DOCUMENT& d) { EXPECT_TRUE(d.resolve_symbol(nullptr, nullptr)); }},
    {"check_declaration",
     [](DOCUMENT& d) { EXPECT_FALSE(d.check_declaration(nullptr)); },
     {"symbol != NULL"}},
    {"check_semantic", [](DOCUMENT& d) { EXPECT_TRUE(d.check_semantic(nullptr)); }},
    {"check_block",
     [](DOCUMENT& d) { EXPECT_FALSE(d.check_block(nullptr)); },
     {"block != NULL && block->name != NULL"}},
    {"resolve_reference",
     [](DOCUMENT& d) { d.resolve_reference(nullptr); },
     {"statement != NULL && statement->name != NULL"}},
    {"queries_by_name", [](DOCUMENT& d) { ask_for_values(d, nullptr); }},
    {"queries_of_a_null_block", [](DOCUMENT& d) { ask_for_values(d, nullptr, "a"); }},
    {"queries_of_a_null_parameter", [](DOCUMENT& d) { ask_for_values(d, "d", nullptr); }},
    {"queries_of_nulls", [](DOCUMENT& d) { ask_for_values(d, nullptr, nullptr); }},
    {"places", [](DOCUMENT& d) { ask_for_places(d); }},
    {"get_ref_name",
     [](DOCUMENT& d) {
       OUTPUTS out;
       EXPECT_FALSE(d.get_ref_name(nullptr, out.text));
       out.expect_untouched();
     }},
    {"is_valid_parameter_name",
     [](DOCUMENT& d) { EXPECT_FALSE(d.is_valid_parameter_name(nullptr)); }},
    {"is_referenced",
     [](DOCUMENT& d) {
       EXPECT_FALSE(d.is_referenced(static_cast<const SBD_NODE*>(nullptr), nullptr));
     }},
    {"get_typed_blocks",
     [](DOCUMENT& d) {
       SBD_STRING_LIST names{"before"};
       d.get_typed_blocks(k_null, names, k_null);
       EXPECT_TRUE(names.empty());
     }},
    {"write_stream",
     [](DOCUMENT& d) { EXPECT_TRUE(d.write(nullptr, root_of(d), 0)); },
     {"stream != NULL"}},
    {"write_no_nodes", [](DOCUMENT& d) { write_away(d, nullptr); }},
    {"write_value",
     [](DOCUMENT& d) { d.write(stderr, nullptr); },
     {"stream != NULL && value != NULL"}},
    {"set_whole_number",
     [](DOCUMENT& d) { EXPECT_FALSE(d.set_value(nullptr, "a", 1UL, 10, k_no_unit)); },
     {},
     {k_no_name}},
    {"set_number",
     [](DOCUMENT& d) { EXPECT_FALSE(d.set_value("d", nullptr, 1.0, k_no_unit)); },
     {},
     {k_no_name}},
    {"set_boolean",
     [](DOCUMENT& d) { EXPECT_FALSE(d.set_value(nullptr, nullptr, 1)); },
     {},
     {k_no_name}},
    {"set_text",
     [](DOCUMENT& d) { EXPECT_FALSE(d.set_value(nullptr, "a", SBD_STRING("t"))); },
     {},
     {k_no_name}},
    {"set_references",
     [](DOCUMENT& d) { EXPECT_FALSE(d.set_value(nullptr, "r", SBD_STRING_LIST{"d.a"})); },
     {},
     {k_no_name}},
    {"set_para_value",
     [](DOCUMENT& d) { EXPECT_FALSE(d.set_para_value(nullptr, nullptr, SBD_PARA_VALUE())); },
     {},
     {k_no_name}},
    {"set_value_check",
     [](DOCUMENT& d) {
       EXPECT_FALSE(d.set_value_check("d", "a", SBD_STATEMENT::ST_ASSIGNMENT, nullptr, nullptr));
     },
     {"block_node != NULL && para_node != NULL"}},
    {"move_member",
     [](DOCUMENT& d) {
       EXPECT_FALSE(d.move_member(nullptr, "d.a", false));
       EXPECT_FALSE(d.move_member("d.a", nullptr, true));
     }},
    {"set_attribute",
     [](DOCUMENT& d) { EXPECT_FALSE(d.set_attribute(nullptr, nullptr, nullptr)); },
     {},
     {"Cannot set the attribute. NULL block/parameter name"}},
    {"delete_attribute",
     [](DOCUMENT& d) { d.delete_attribute(nullptr, nullptr); },
     {},
     {"Cannot delete attributes. NULL block/parameter name"}},
    {"delete_parameter",
     [](DOCUMENT& d) { d.delete_parameter(nullptr, nullptr); },
     {},
     {"Cannot delete parameter. NULL block/parameter name"}},
    {"create_block",
     [](DOCUMENT& d) { EXPECT_FALSE(d.create_block(nullptr, nullptr, nullptr)); },
     {},
     {"Cannot create block. NULL block name or block type name."}},
    {"delete_block", [](DOCUMENT& d) { d.delete_block(nullptr); }, {"block_ref_name != NULL"}},
    {"rename",
     [](DOCUMENT& d) {
       EXPECT_FALSE(d.rename(nullptr, "x", nullptr));
       EXPECT_FALSE(d.rename("d", nullptr, nullptr));
     }},
    {"delete_reference",
     [](DOCUMENT& d) {
       d.delete_reference(nullptr);
       d.delete_reference(static_cast<const SBD_NODE*>(nullptr), nullptr);
     }},
};

// ---- Unknown enumerators -----------------------------------------------------------------------

// Frees a node that no document knows, and its name.
void drop(DOCUMENT& document, SBD_NODE* node) {
  SBD_SYMBOL* const symbol = symbol_of(node);
  document.free_node(node);
  if (symbol != nullptr) free_symbol(symbol);
}

// What the writer makes of the node alone, which is freed.
std::string write_and_free(DOCUMENT& document, SBD_NODE* node) {
  char* text = nullptr;
  std::size_t length = 0;
  std::FILE* const stream = open_memstream(&text, &length);
  EXPECT_TRUE(document.write(stream, node, 0));
  std::fclose(stream);
  std::string result(text, length);
  std::free(text);
  drop(document, node);
  return result;
}

const MISUSE k_enumerators[] = {
    {"unit_value", [](DOCUMENT& d) { EXPECT_EQ(d.get_unit_value(k_unknown_unit), 1U); }},
    {"typed_blocks",
     [](DOCUMENT& d) {
       SBD_STRING_LIST names{"before"};
       d.get_typed_blocks(k_unknown_block_type, names, k_null);
       EXPECT_TRUE(names.empty());
     }},
    {"keyword", [](DOCUMENT& d) { EXPECT_EQ(d.lookup_block_type("x"), SBD_BLOCK::BT_UNKNOWN); }},
    {"written_unit",
     [](DOCUMENT& d) {
       SBD_NODE* const node = make_assignment("x", make_number(5, k_unknown_unit));
       EXPECT_EQ(write_and_free(d, node), "x = 5; \n");
     },
     {"Trying to write value with unknown unit type"}},
    {"written_value_type",
     [](DOCUMENT& d) {
       SBD_NODE* const node = make_assignment("x", make_number(5, k_no_unit, k_unknown_value_type));
       EXPECT_EQ(write_and_free(d, node), "x = ; \n");
     },
     {"Trying to write unknown parameter value type"}},
    {"written_statement_type",
     [](DOCUMENT& d) {
       SBD_NODE* const node = make_assignment("x", make_number(5));
       node->statement->type = k_unknown_statement_type;
       SBD_NODE* const next = make_comment("# next\n");
       node->next = next;
       char* text = nullptr;
       std::size_t length = 0;
       std::FILE* const stream = open_memstream(&text, &length);
       EXPECT_TRUE(d.write(stream, node, 0));
       std::fclose(stream);
       EXPECT_EQ(std::string(text, length), "\n# next\n");
       std::free(text);
       node->next = nullptr;
       node->statement->type = SBD_STATEMENT::ST_ASSIGNMENT;
       drop(d, node);
       drop(d, next);
     },
     {"Invalid statement type"}},
    {"named_statement_type",
     [](DOCUMENT& d) {
       OUTPUTS out;
       SBD_NODE* const node = make_assignment("x", make_number(5));
       node->statement->type = k_unknown_statement_type;
       EXPECT_FALSE(d.get_ref_name(node, out.text));
       node->statement->type = SBD_STATEMENT::ST_ASSIGNMENT;
       drop(d, node);
       out.expect_untouched();
     },
     {"Invalid statement type"}},
    {"named_node_type",
     [](DOCUMENT& d) {
       OUTPUTS out;
       SBD_NODE* const node = make_comment("# c\n");
       node->type = k_unknown_node_type;
       EXPECT_FALSE(d.get_ref_name(node, out.text));
       node->type = SBD_NODE::NT_COMMENT;
       drop(d, node);
       out.expect_untouched();
     },
     {"Invalid statement type"}},
    {"checked_node_type",
     [](DOCUMENT& d) {
       SBD_NODE* const node = make_comment("# c\n");
       node->type = k_unknown_node_type;
       d.resolve_symbol(nullptr, node);
       d.check_semantic(node);
       node->type = SBD_NODE::NT_COMMENT;
       drop(d, node);
     },
     {"Invalid SBD_FILE_PARSER node type", "Invalid SBD_FILE_PARSER node type"}},
    {"checked_block_type",
     [](DOCUMENT& d) {
       SBD_NODE* const node = make_block("device", "x");
       node->block->block_type = k_unknown_block_type;
       EXPECT_FALSE(d.check_block(node->block));
       drop(d, node);
     },
     {"Invalid block type id"}},
    {"written_node_type",
     [](DOCUMENT& d) {
       SBD_NODE* const node = make_comment("# c\n");
       node->type = k_unknown_node_type;
       write_away(d, node);
       node->type = SBD_NODE::NT_COMMENT;
       drop(d, node);
     },
     {"Invalid node type"}},
    {"set_unit",
     [](DOCUMENT& d) {
       SBD_PARA_VALUE value;
       value.unit = k_unknown_unit;
       EXPECT_TRUE(d.set_para_value("d", "a", value));
       value.unit = k_no_unit;
       value.number = 1;
       EXPECT_TRUE(d.set_para_value("d", "a", value));
     },
     {},
     {},
     true},
};

// ---- Broken records ----------------------------------------------------------------------------

const MISUSE k_records[] = {
    {"parent_that_is_a_statement",
     [](DOCUMENT& d) {
       SBD_NODE* const parent = make_assignment("x", make_number(5));
       SBD_NODE* const node = make_comment("# c\n");
       d.add_node(node, parent);
       EXPECT_EQ(node->next, nullptr);
       d.delete_node(node, parent);
       drop(d, node);
       drop(d, parent);
     },
     {"parent->type == SBD_FILE_PARSER::SBD_NODE::NT_BLOCK"}},
    {"node_that_is_not_there",
     [](DOCUMENT& d) {
       SBD_NODE* const node = make_comment("# c\n");
       d.delete_node(node, nullptr);
       if (root_of(d) != nullptr) d.delete_node(node, root_of(d)->next);
       drop(d, node);
     }},
    {"symbol_without_name",
     [](DOCUMENT& d) {
       SBD_SYMBOL symbol;
       d.add_symbol(&symbol);
       d.check_declaration(&symbol);
     },
     {"name != NULL"}},
    {"symbol_that_is_entered",
     [](DOCUMENT& d) { d.add_symbol(d.get_block("d")->name); },
     {"symbol is not entered"},
     {},
     true},
    {"block_without_name",
     [](DOCUMENT& d) {
       SBD_NODE node;
       SBD_BLOCK block;
       node.type = SBD_NODE::NT_BLOCK;
       node.block = &block;
       OUTPUTS out;
       EXPECT_FALSE(d.get_ref_name(&node, out.text));
       write_away(d, &node);
       EXPECT_FALSE(d.check_block(&block));
       out.expect_untouched();
     },
     {"bptr != NULL && bptr->type != NULL && bptr->name != NULL",
      "block != NULL && block->name != NULL"}},
    {"block_without_record",
     [](DOCUMENT& d) {
       SBD_NODE node;
       node.type = SBD_NODE::NT_BLOCK;
       OUTPUTS out;
       EXPECT_FALSE(d.get_ref_name(&node, out.text));
       write_away(d, &node);
       EXPECT_EQ(d.get_ref_object("a", &node), nullptr);
       EXPECT_FALSE(d.is_referenced(&node, &node));
       out.expect_untouched();
     },
     {"bptr != NULL && bptr->type != NULL && bptr->name != NULL"}},
    {"statement_without_record",
     [](DOCUMENT& d) {
       SBD_NODE node;
       node.type = SBD_NODE::NT_STATEMENT;
       OUTPUTS out;
       EXPECT_FALSE(d.get_ref_name(&node, out.text));
       write_away(d, &node);
       EXPECT_EQ(d.get_ref_object("a", &node), nullptr);
       EXPECT_FALSE(d.is_referenced(&node, &node));
       out.expect_untouched();
     },
     {"sptr != NULL"}},
    {"comment_without_text",
     [](DOCUMENT& d) {
       SBD_NODE node;
       write_away(d, &node);
     },
     {"nptr->comment != NULL"}},
    {"attribute_without_key",
     [](DOCUMENT& d) {
       SBD_PARA_ATTR attribute;
       EXPECT_FALSE(d.set_attribute("d", "a", &attribute));
     },
     {"attr_key != NULL"},
     {},
     true},
    {"scope_that_is_a_comment",
     [](DOCUMENT& d) {
       SBD_NODE comment;
       EXPECT_EQ(d.get_ref_object("a", &comment), nullptr);
       SBD_STRING_LIST names{"before"};
       d.get_typed_blocks(SBD_BLOCK::BT_MODULE, names, &comment);
       EXPECT_EQ(names, SBD_STRING_LIST{"before"});
     }},
    {"empty_name",
     [](DOCUMENT& d) { EXPECT_EQ(d.get_ref_object("", nullptr), nullptr); },
     {"ref[p1] == '.'"}},
};

// ---- Running the tables ------------------------------------------------------------------------

TEXTS said(const MESSAGE_RECORDER& recorder) {
  TEXTS result;
  for (const std::string& text : recorder.texts())
    result.push_back(text.substr(text.find(": ") + 2));
  return result;
}

void expect_said(const MISUSE& misuse, DOCUMENT& document, const std::string& tree) {
  if (misuse.needs_tree && tree.empty()) return;
  MESSAGE_RECORDER recorder;
  misuse.act(document);
  EXPECT_EQ(recorder.conditions(), misuse.conditions);
  EXPECT_EQ(said(recorder), misuse.errors);
  for (const RECORDED_ERROR& error : recorder.internal_errors()) EXPECT_EQ(error.module, "SBD");
  EXPECT_EQ(outline(document), tree);
  EXPECT_EQ(find_inconsistency(document), "");
}

class MISUSED : public testing::TestWithParam<MISUSE> {};

TEST_P(MISUSED, DocumentStaysAsItIs) {
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, k_text));
  expect_said(GetParam(), document, outline(*document_of(k_text)));
}

TEST_P(MISUSED, EmptyDocumentStaysEmpty) {
  SBD_FILE_PARSER document;
  expect_said(GetParam(), document, "");
}

TEST_P(MISUSED, DocumentOfAFailedReadStaysEmpty) {
  SBD_FILE_PARSER document;
  {
    const MESSAGE_RECORDER recorder;
    EXPECT_FALSE(read_text(document, "device d { x 5; }"));
  }
  expect_said(GetParam(), document, "");
}

std::string name_of(const testing::TestParamInfo<MISUSE>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(NULLS, MISUSED, testing::ValuesIn(k_nulls), name_of);
INSTANTIATE_TEST_SUITE_P(ENUMERATORS, MISUSED, testing::ValuesIn(k_enumerators), name_of);
INSTANTIATE_TEST_SUITE_P(RECORDS, MISUSED, testing::ValuesIn(k_records), name_of);

// ---- Empty documents ---------------------------------------------------------------------------

TEST(EMPTY_DOCUMENT, AnswersQueriesWithNo) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  ask_for_values(document, "d.a");
  ask_for_values(document, "d", "a");
  ask_for_places(document);
  EXPECT_EQ(document.get_file_name(), nullptr);
  EXPECT_EQ(document.get_source(), "");
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  EXPECT_FALSE(document.get_fault_range(range));
  document.clear();
  EXPECT_TRUE(recorder.is_silent());
}

TEST(EMPTY_DOCUMENT, RefusesEditsWithTheirWords) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  EXPECT_FALSE(document.set_value("d", "a", 1));
  EXPECT_FALSE(document.create_block("module", "m", "d"));
  document.delete_block("d");
  document.delete_parameter("d", "a");
  document.delete_reference("d.a");
  EXPECT_FALSE(document.rename("d", "e", nullptr));
  EXPECT_FALSE(document.move_member("d.a", "d.b", true));
  EXPECT_EQ(said(recorder),
            (TEXTS{"Cannot set value to the parameter: 'a' in the block: 'd'. Block does not exit.",
                   "Cannot create a block: 'm' with type: 'module' within the parenet block: 'd'. "
                   "Parent block does not exist."}));
  EXPECT_TRUE(recorder.conditions().empty());
}

TEST(EMPTY_DOCUMENT, AfterAFailedReadHasNothingToAskFor) {
  MESSAGE_RECORDER recorder;
  SBD_FILE_PARSER document;
  ASSERT_TRUE(read_text(document, k_text));
  EXPECT_FALSE(read_text(document, "device d { x 5; }"));
  recorder.forget();
  ask_for_values(document, "d.a");
  ask_for_values(document, "d", "a");
  EXPECT_TRUE(recorder.is_silent());
}

}  // namespace
