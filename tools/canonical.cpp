#include "tools/canonical.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include "tools/lookup.h"
#include "tools/names.h"
#include "tools/tree_walk.h"
#include "tools/value_walk.h"

namespace sbd_tool {

namespace {

struct MEMORY_FREER {
  void operator()(char* memory) const { std::free(memory); }
};

// The number as the library writes it, with six decimals.
std::string written_number(double number) {
  return fmt::format("{:f}", number);
}

// A floating number that would be none, or another one, when it is read again; null when there is
// none such.
const VALUE* find_lossy(const VALUE& value) {
  VALUE_WALK walk(value);
  while (walk.next() != VALUE_WALK::STEP::END) {
    const VALUE& one = walk.value();
    if (one.type != VALUE::VT_FLOAT) continue;
    const double read_back = std::strtod(written_number(one.number).c_str(), nullptr);
    if (!std::isfinite(one.number) || read_back != one.number) return &one;
  }
  return nullptr;
}

bool find_loss(const SBD_FILE_PARSER& document, std::string& fault) {
  TREE_WALK walk(document.get_parser_para().root, TREE_WALK::EXTENT::WITH_SIBLINGS);
  while (walk.next() != TREE_WALK::STEP::END) {
    const NODE& node = *walk.node();
    if (node.type != NODE::NT_STATEMENT) continue;
    if (node.statement->type != SBD_FILE_PARSER::SBD_STATEMENT::ST_ASSIGNMENT) continue;
    const VALUE* const lossy = find_lossy(*node.statement->value);
    if (lossy == nullptr) continue;
    fault = fmt::format("{}: the number {} would be written as {}",
                        quote_name(full_name(document, node)), lossy->number,
                        written_number(lossy->number));
    return true;
  }
  return false;
}

}  // namespace

bool make_canonical(const SBD_FILE_PARSER& document, std::string& text, std::string& fault) {
  if (find_loss(document, fault)) return false;
  char* memory = nullptr;
  std::size_t length = 0;
  std::FILE* const stream = open_memstream(&memory, &length);
  if (stream == nullptr) throw std::bad_alloc();
  document.write(stream, document.get_parser_para().root, 0);
  const bool is_written = std::ferror(stream) == 0;
  const bool is_closed = std::fclose(stream) == 0;
  const std::unique_ptr<char, MEMORY_FREER> owner(memory);
  if (!is_written || !is_closed) throw std::bad_alloc();
  text.assign(memory, length);
  return true;
}

}  // namespace sbd_tool
