// Reading any bytes: a fault is told and leaves nothing behind; a good text gives a document in
// which everything belongs together and has its place in the text.
#include "fuzz/fuzz_support.h"

namespace {

std::string_view text_at(const SBD_FILE_PARSER& document, const RANGE& range) {
  const std::string_view source = document.get_source();
  FUZZ_EXPECT(range.offset <= source.size() && range.length <= source.size() - range.offset, "");
  return source.substr(range.offset, range.length);
}

void check_places(const SBD_FILE_PARSER& document, const OBJECT& object) {
  RANGE whole;
  RANGE part;
  FUZZ_EXPECT(document.get_range(object.node, whole), object.name);
  const std::string_view text = text_at(document, whole);
  FUZZ_EXPECT(text.back() == (object.is_block() ? '}' : ';'), object.name);
  FUZZ_EXPECT(document.get_name_range(object.node, part), object.name);
  const std::string_view written_name = text_at(document, part);
  FUZZ_EXPECT(written_name == object.own_name(), object.name);
  if (object.is_block()) {
    FUZZ_EXPECT(document.get_type_range(object.node, part), object.name);
    FUZZ_EXPECT(text_at(document, part) == object.node->block->type, object.name);
  }
  if (object.is_assignment()) {
    FUZZ_EXPECT(document.get_range(object.node->statement->value, part), object.name);
    FUZZ_EXPECT(
        part.offset > whole.offset && part.offset + part.length < whole.offset + whole.length,
        object.name);
    for (const auto* one = object.node->statement->attributes; one != nullptr; one = one->next) {
      FUZZ_EXPECT(document.get_range(one, part), object.name);
      FUZZ_EXPECT(text_at(document, part).substr(0, std::string_view(one->attr_key).size()) ==
                      one->attr_key,
                  object.name);
    }
  }
  if (!object.is_reference()) return;
  for (const auto* one = object.node->statement->reference; one != nullptr; one = one->next) {
    FUZZ_EXPECT(document.get_range(one, part), object.name);
    FUZZ_EXPECT(text_at(document, part) == one->name, object.name);
    FUZZ_EXPECT(one->target != nullptr, object.name);
  }
}

// Every typed query, of which only that for the kind of the value says yes.
void check_queries(const SBD_FILE_PARSER& document, const OBJECT& object) {
  const char* const name = object.name.c_str();
  const std::string own = object.own_name();
  const std::string scope = object.scope();
  unsigned long whole = 0;
  double number = 0;
  int flag = 0;
  SBD_STRING text;
  SBD_STRING_LIST names;
  const bool is_assignment = object.is_assignment();
  const auto kind = is_assignment ? object.node->statement->value->type : VALUE::VT_LIST;
  const bool is_number = is_assignment && kind <= VALUE::VT_FLOAT;
  FUZZ_EXPECT(document.get_value(name, whole) == is_number, object.name);
  FUZZ_EXPECT(document.get_value(name, number) == is_number, object.name);
  FUZZ_EXPECT(document.get_value(name, flag) == (is_assignment && kind == VALUE::VT_BOOL),
              object.name);
  FUZZ_EXPECT(document.get_value(name, text) == (is_assignment && kind == VALUE::VT_STRING),
              object.name);
  FUZZ_EXPECT(document.get_value(scope.c_str(), own.c_str(), names) == object.is_reference(),
              object.name);
  FUZZ_EXPECT(document.is_block_defined(name) == object.is_block(), object.name);
  FUZZ_EXPECT(document.is_parameter_defined(name) != object.is_block(), object.name);
  document.is_referenced(name);
  BLOCK::BLOCK_TYPE type = BLOCK::BT_UNKNOWN;
  FUZZ_EXPECT(document.get_block_type(name, type) == object.is_block(), object.name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const FUZZ_RUN run;
  SBD_FILE_PARSER document;
  if (!read_text(document, view(data, size))) {
    FUZZ_EXPECT(!run.posted().empty(), "refused in silence");
    FUZZ_EXPECT(document.get_parser_para().root == nullptr, "a tree is left behind");
    FUZZ_EXPECT(document.get_source().empty(), "a text is left behind");
    expect_consistent(document);
    return 0;
  }
  FUZZ_EXPECT(run.posted().empty(), run.posted().front().text);
  FUZZ_EXPECT(document.get_source() == view(data, size), "the source is another text");
  expect_consistent(document);
  for (const OBJECT& object : objects_of(document)) {
    check_places(document, object);
    check_queries(document, object);
  }
  SBD_STRING_LIST names;
  document.get_typed_blocks("device", names, static_cast<const char*>(nullptr));
  return 0;
}
