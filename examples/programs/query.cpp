// Asks a descriptor: typed values by name, all blocks of a type, and all statements of a block.
#include <cstdio>

#include "sbd/sbd_file_parser.h"

namespace {

void print_members(const SBD_FILE_PARSER& document, const char* block_name) {
  const SBD_FILE_PARSER::SBD_BLOCK* const block = document.get_block(block_name);
  if (block == nullptr) return;
  for (const SBD_FILE_PARSER::SBD_NODE* node = block->members; node != nullptr; node = node->next) {
    if (node->type != SBD_FILE_PARSER::SBD_NODE::NT_STATEMENT) continue;
    SBD_FILE_PARSER::SBD_SOURCE_RANGE place;
    document.get_range(node, place);
    std::printf("line %lu: %s\n", place.line, node->statement->name->name);
  }
}

}  // namespace

int main(int argc, char** argv) {
  SBD_FILE_PARSER document;
  if (argc != 2 || !document.read(argv[1])) return 1;

  // The type of the variable says what kind of value is wanted; false when it is another one.
  unsigned long frequency = 0;
  SBD_STRING chip;
  if (!document.get_value("board.stripe.clocks.input_clock_frequency", frequency)) return 1;
  if (!document.get_value("board.type", chip)) return 1;
  std::printf("%s at %lu Hz\n", chip.c_str(), frequency);

  SBD_STRING_LIST names;
  document.get_typed_blocks("parameters", names, "board.stripe");
  for (const SBD_STRING& name : names) std::printf("%s\n", name.c_str());
  print_members(document, "board.stripe.clocks");
  return 0;
}
