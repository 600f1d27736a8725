// Queries, places, checks and writing of a document.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/exhaustion/operations.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

// Names so long that joining them takes memory.
const std::string k_block(200, 'b');
const std::string k_device = "d" + std::string(200, 'd');
const std::string k_inner = k_device + "." + k_block;
const std::string k_text =
    "device " + k_device + " {\n  module " + k_block + " { x = 5K; f = 1.5; b = true; s = \"" +
    std::string(100, 't') + "\"; a = 1 [key .v]; l = {1, {2, 3}}; r <.x, " + k_inner +
    ".s>;  # tail\n  }\n  module other { y = 1; r <" + k_inner + ">; # c\n  }\n}\n";

const char* const k_name = k_inner.c_str();
const std::string k_x_name = k_inner + ".x";
const char* const k_x = k_x_name.c_str();
const std::string k_b_name = k_inner + ".b";
const char* const k_b = k_b_name.c_str();

struct READ_DOCUMENT {
  READ_DOCUMENT() {
    if (!read_text(document, k_text)) ADD_FAILURE() << "not read";
    block = document.get_ref_object(k_name, nullptr);
    x = document.get_ref_object("x", block);
    r = document.get_ref_object("r", block);
    list = document.get_para_value(k_name, "l");
    attribute = document.get_para_attr(k_name, "a");
    element = document.get_para_ref(k_name, "r");
  }
  std::string state() const { return outline(document) + find_inconsistency(document); }
  std::string told_range(bool is_there) const {
    return told(is_there) + std::to_string(range.offset) + "+" + std::to_string(range.length);
  }

  SBD_FILE_PARSER document;
  SBD_NODE* block = nullptr;
  SBD_NODE* x = nullptr;
  SBD_NODE* r = nullptr;
  SBD_PARA_VALUE* list = nullptr;
  SBD_PARA_ATTR* attribute = nullptr;
  SBD_PARA_REF* element = nullptr;
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  SBD_STRING text;
  SBD_STRING_LIST names;
  SBD_STRING_LIST targets{SBD_STRING(k_x), SBD_STRING(k_b)};
};

std::string told_names(const SBD_STRING_LIST& names) {
  std::string text = "[ ";
  for (const SBD_STRING& name : names) text += std::string(name.data(), name.size()) + " ";
  return text + "]";
}

std::string told_text(bool is_there, const SBD_STRING& text) {
  return told(is_there) + std::string(text.data(), text.size());
}

template <class ACTION>
std::string written_by(const ACTION& write) {
  char* memory = nullptr;
  std::size_t size = 0;
  std::FILE* const stream = open_memstream(&memory, &size);
  const std::string answer = write(stream);
  (void)std::fclose(stream);
  const std::string text(memory, size);
  std::free(memory);  // NOLINT: open_memstream made it.
  return answer + text;
}

const OPERATION<READ_DOCUMENT> k_queries[] = {
    {"node", [](auto& d) { return told(d.document.get_ref_object(k_x, nullptr)); }, "null"},
    {"node in a scope", [](auto& d) { return told(d.document.get_ref_object("x", d.block)); }, ""},
    {"full name", [](auto& d) { return told_text(d.document.get_ref_name(d.x, d.text), d.text); },
     "false"},
    {"block", [](auto& d) { return told(d.document.get_block(k_name)); }, "null"},
    {"statement", [](auto& d) { return told(d.document.get_statement(k_name, "x")); }, "null"},
    {"value", [](auto& d) { return told(d.document.get_para_value(k_name, "x")); }, "null"},
    {"attribute", [](auto& d) { return told(d.document.get_para_attr(k_name, "a")); }, "null"},
    {"element", [](auto& d) { return told(d.document.get_para_ref(k_name, "r")); }, "null"},
    {"parameter of a block is defined",
     [](auto& d) { return told(d.document.is_parameter_defined(k_name, "x")); }, "false"},
    {"parameter is defined", [](auto& d) { return told(d.document.is_parameter_defined(k_x)); },
     "false"},
    {"block is defined", [](auto& d) { return told(d.document.is_block_defined(k_name)); },
     "false"},
    {"name is well formed",
     [](auto& d) { return told(d.document.is_valid_parameter_name(k_block.c_str())); }, ""},
    {"is referenced", [](auto& d) { return told(d.document.is_referenced(k_name)); }, "false"},
    {"is referenced from here",
     [](auto& d) { return told(d.document.is_referenced(d.block, root_of(d.document))); }, ""},
    {"type of a block",
     [](auto& d) {
       SBD_BLOCK::BLOCK_TYPE type = SBD_BLOCK::BT_UNKNOWN;
       return told(d.document.get_block_type(k_name, type)) + std::to_string(type);
     },
     "false7"},
    {"type of a block as a text",
     [](auto& d) { return told_text(d.document.get_block_type(k_name, d.text), d.text); }, "false"},
    {"blocks of a type",
     [](auto& d) {
       d.document.get_typed_blocks("module", d.names, static_cast<const char*>(nullptr));
       return told_names(d.names);
     },
     "[ ]"},
    {"blocks of a type in a node",
     [](auto& d) {
       d.document.get_typed_blocks(SBD_BLOCK::BT_MODULE, d.names, root_of(d.document));
       return told_names(d.names);
     },
     "[ ]"},
    {"whole number",
     [](auto& d) {
       unsigned long value = 77;
       return told(d.document.get_value(k_name, "x", value)) + std::to_string(value);
     },
     "false77"},
    {"number",
     [](auto& d) {
       double value = 77;
       return told(d.document.get_value(k_x, value)) + std::to_string(value);
     },
     "false77.000000"},
    {"boolean",
     [](auto& d) {
       int value = 77;
       return told(d.document.get_value(k_name, "b", value)) + std::to_string(value);
     },
     "false77"},
    {"text", [](auto& d) { return told_text(d.document.get_value(k_name, "s", d.text), d.text); },
     "false"},
    {"names",
     [](auto& d) { return told(d.document.get_value(k_name, "r", d.names)) + told_names(d.names); },
     "false[ ]"},
    {"place of a node", [](auto& d) { return d.told_range(d.document.get_range(d.x, d.range)); },
     ""},
    {"place of a name",
     [](auto& d) { return d.told_range(d.document.get_name_range(d.block, d.range)); }, ""},
    {"place of a type",
     [](auto& d) { return d.told_range(d.document.get_type_range(d.block, d.range)); }, ""},
    {"place of a comment",
     [](auto& d) { return d.told_range(d.document.get_comment_range(d.r, d.range)); }, ""},
    {"place of a value",
     [](auto& d) { return d.told_range(d.document.get_range(d.list, d.range)); }, ""},
    {"place of an attribute",
     [](auto& d) { return d.told_range(d.document.get_range(d.attribute, d.range)); }, ""},
    {"place of an element",
     [](auto& d) { return d.told_range(d.document.get_range(d.element, d.range)); }, ""},
    {"whether a value may be set",
     [](auto& d) {
       SBD_NODE* block = nullptr;
       SBD_NODE* statement = nullptr;
       return told(d.document.set_value_check(k_name, "x", SBD_STATEMENT::ST_ASSIGNMENT, &block,
                                              &statement)) +
              told(block) + told(statement);
     },
     "falsenullnull"},
};

TEST(QUERY_EXHAUSTION, AnswersAsIfThereWereNothing) {
  expect_all_to_survive(k_queries);
}

// Where memory ends while an edit looks something up, it must not take that for missing.
const OPERATION<READ_DOCUMENT> k_edits[] = {
    {"rename to a taken name", [](auto& d) { return told(d.document.rename("x", "b", k_name)); },
     "false"},
    {"rename", [](auto& d) { return told(d.document.rename("x", "y", k_name)); }, "false"},
    {"set a value",
     [](auto& d) {
       return told(d.document.set_value(k_name, "x", 7UL, 10, SBD_PARA_VALUE::QU_NONE));
     },
     "false"},
    {"set references", [](auto& d) { return told(d.document.set_value(k_name, "r", d.targets)); },
     "false"},
    {"set attributes",
     [](auto& d) { return told(d.document.set_attribute(k_name, "x", d.attribute)); }, "false"},
    {"create a block twice",
     [](auto& d) {
       return told(d.document.create_block("module", k_block.c_str(), k_device.c_str()));
     },
     "false"},
    {"move", [](auto& d) { return told(d.document.move_member(k_x, k_b, true)); }, "false"},
    {"delete what is referenced",
     [](auto& d) {
       d.document.delete_parameter(k_name, "s");
       return told(d.block);
     },
     "something"},
    {"delete a referenced block",
     [](auto& d) {
       d.document.delete_block(k_name);
       return told(d.block);
     },
     "something"},
    {"delete attributes",
     [](auto& d) {
       d.document.delete_attribute(k_name, "a");
       return told(d.block);
     },
     "something"},
    {"delete references",
     [](auto& d) {
       d.document.delete_reference(k_name);
       return told(d.block);
     },
     "something"},
};

TEST(LONG_NAME_EXHAUSTION, EditsLeaveTheDocumentAsItWas) {
  expect_all_to_survive(k_edits);
}

const OPERATION<READ_DOCUMENT> k_writing[] = {
    {"siblings",
     [](auto& d) {
       return written_by([&d](std::FILE* stream) {
         return told(d.document.write(stream, root_of(d.document), 1));
       });
     },
     ""},
    {"value",
     [](auto& d) {
       return written_by([&d](std::FILE* stream) {
         d.document.write(stream, d.list);
         return std::string();
       });
     },
     ""},
};

TEST(WRITING_EXHAUSTION, NothingIsThrown) {
  expect_all_to_survive(k_writing);
}

// ---- Documents with faults ---------------------------------------------------------------------

// Records of a caller's that no check is content with.
struct FAULTY_DOCUMENT {
  FAULTY_DOCUMENT() {
    SBD_NODE* const device = enter(document, make_block("device", k_device.c_str()), nullptr);
    enter(document, make_assignment("x", make_number(1)), device);
    twin = enter(document, make_assignment("X", make_number(2)), device);
    reference = enter(document, make_reference("r", {".none", "no.such"}), device);
    block = enter(document, make_block("device", "inner"), device);
    // What the check of declarations does first.
    for (SBD_NODE* const node : {twin, reference, block}) symbol_of(node)->parent = device;
    symbol_of(device)->parent = device;
    symbol_of(members_of(document, device).front())->parent = device;
  }
  std::string state() const { return outline(document) + find_inconsistency(document); }
  SBD_NODE* root() const { return root_of(document); }

  SBD_FILE_PARSER document;
  SBD_NODE* twin = nullptr;
  SBD_NODE* reference = nullptr;
  SBD_NODE* block = nullptr;
};

const OPERATION<FAULTY_DOCUMENT> k_checks[] = {
    {"declarations", [](auto& d) { return told(d.document.resolve_symbol(d.root(), d.root())); },
     "false"},
    {"declaration",
     [](auto& d) { return told(d.document.check_declaration(d.twin->statement->name)); }, "false"},
    {"blocks and references", [](auto& d) { return told(d.document.check_semantic(d.root())); },
     "false"},
    {"block", [](auto& d) { return told(d.document.check_block(d.block->block)); }, "false"},
    {"references",
     [](auto& d) { return told(d.document.resolve_reference(d.reference->statement)); }, "false"},
};

TEST(CHECK_EXHAUSTION, AnswersFalse) {
  expect_all_to_survive(k_checks);
}

// ---- Reading and writing files
// -------------------------------------------------------------------

struct EMPTY_DOCUMENT {
  std::string state() const { return outline(document) + find_inconsistency(document); }
  bool read(const std::string& content) {
    return document.read_text(content.data(), content.size(), TEST_FILE);
  }

  SBD_FILE_PARSER document;
};

const OPERATION<EMPTY_DOCUMENT> k_readings[] = {
    {"good text", [](auto& d) { return told(d.read(k_text)); }, "false"},
    {"no file", [](auto& d) { return told(d.document.read("/no/such/file")); }, "false"},
    {"no folder", [](auto& d) { return told(d.document.write("/no/such/file")); }, "false"},
    {"syntax errors", [](auto& d) { return told(d.read("device d { x 5; y = @; z = $ }")); },
     "false"},
    {"declarations", [](auto& d) { return told(d.read("device d { x = 1; X = 2; x = 3; }")); },
     "false"},
    {"references", [](auto& d) { return told(d.read("device d { r <.no, no>; s <d.no>; }")); },
     "false"},
    {"blocks", [](auto& d) { return told(d.read("module m { device d { x = 1; } }")); }, "false"},
    {"an edit that is refused",
     [](auto& d) { return told(d.document.create_block("x", "y", "z")); }, "false"},
    {"an edit that warns",
     [](auto& d) {
       d.document.delete_attribute("a", "b");
       return told(root_of(d.document));
     },
     "null"},
};

TEST(READ_EXHAUSTION, LeavesADocumentEmpty) {
  expect_all_to_survive(k_readings);
}

// ---- What is only slower without memory
// ----------------------------------------------------------

std::string name_of(std::size_t number) {
  return "x" + std::to_string(number);
}

// Finding what stands before a node is helped by links, as far as there is memory for them.
TEST(LINK_EXHAUSTION, LongListsAreEditedAllTheSame) {
  constexpr std::size_t k_count = 400;
  std::string text = "device d { ";
  for (std::size_t i = 0; i != k_count; ++i) text += name_of(i) + " = 1; ";
  text += "}";
  for (std::size_t count = 0; count < 400; ++count) {
    MESSAGE_RECORDER recorder;
    const auto document = document_of(text);
    const std::vector<SBD_NODE*> nodes = members_of(*document, root_of(*document));
    const auto remove = [&document, &nodes](std::size_t number) {
      document->delete_node(nodes[number], root_of(*document));
    };
    for (std::size_t i = 0; i != 6; ++i) remove(300 + 2 * i);
    sbd_host::fail_allocation("SBD", count, true);
    for (std::size_t i = 6; i != 24; ++i) remove(300 + 2 * i);
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_TRUE(recorder.is_silent()) << count;
    EXPECT_TRUE(document->move_member("d.x1", "d.x399", true));
    EXPECT_TRUE(document->move_member("d.x398", "d.x5", false));
    document->add_node(make_comment("# c\n"), root_of(*document));
    remove(1);
    remove(398);
    EXPECT_EQ(find_inconsistency(*document), "");
    ASSERT_EQ(members_of(*document, root_of(*document)).size(), k_count - 26 + 1) << count;
    if (count > 20) count += 30;
  }
}

// Counting references is, too.
TEST(LINK_EXHAUSTION, DeepBlocksAreDeletedAllTheSame) {
  constexpr int k_depth = 500;
  std::string text = "device d { a = 1; b = 2; q <d.b>; ";
  for (int i = 0; i != k_depth; ++i) text += "module m { ";
  text += "r <d.a>;";
  for (int i = 0; i != k_depth; ++i) text += " }";
  text += " }";
  MESSAGE_RECORDER recorder;
  const auto document = document_of(text);
  SBD_NODE* const module = document->get_ref_object("d.m", nullptr);
  sbd_host::fail_allocation("SBD", 1, true);
  document->delete_node(module, root_of(*document));
  sbd_host::fail_allocation("SBD", 0, false);
  EXPECT_TRUE(recorder.is_silent());
  EXPECT_EQ(document->get_ref_object("d.m", nullptr), nullptr);
  EXPECT_FALSE(document->is_referenced("d.a"));
  EXPECT_TRUE(document->is_referenced("d.b"));
}

// More references to one object than are counted.
TEST(MANY_REFERENCES, AreAllFoundAndRemoved) {
  std::string text = "device d { a = 1; r <d.a";
  for (int i = 0; i != 70000; ++i) text += ", d.a";
  text += ">; s <d.a>; }";
  const auto document = document_of(text);
  EXPECT_TRUE(document->is_referenced("d.a"));
  EXPECT_TRUE(document->set_value("d", "r", SBD_STRING_LIST{"d"}));
  EXPECT_TRUE(document->is_referenced("d.a"));
  document->delete_reference("d.a");
  EXPECT_FALSE(document->is_referenced("d.a"));
  EXPECT_EQ(document->get_ref_object("d.s", nullptr), nullptr);
}

}  // namespace
