// What the fuzz targets share.
//
// Each target is one file that defines LLVMFuzzerTestOneInput. Linked with libFuzzer it looks for
// inputs that break a promise; linked with replay.cpp it goes through inputs that are there
// already.
#ifndef FUZZ_FUZZ_SUPPORT_H
#define FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_source_document.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

using NODE = SBD_FILE_PARSER::SBD_NODE;
using BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;
using VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using RANGE = SBD_FILE_PARSER::SBD_SOURCE_RANGE;

// The file name that texts are read under.
inline constexpr char k_file_name[] = "f.sbd";

// Tells what does not hold, and ends the program as libFuzzer wants it.
[[noreturn]] void fuzz_fail(const char* what, int line, std::string_view detail);

#define FUZZ_EXPECT(condition, detail) \
  ((condition) ? void() : fuzz_fail(#condition, __LINE__, (detail)))

inline std::string_view view(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// The bytes of an input, which decide step by step what a target does. Behind the end come zeros.
class FUZZ_BYTES {
 public:
  FUZZ_BYTES(const std::uint8_t* data, std::size_t size) : m_rest(view(data, size)) {}

  bool empty() const { return m_rest.empty(); }
  std::uint8_t byte();
  std::uint32_t word();
  // A number below `count`; 0 when that is 0.
  std::size_t pick(std::size_t count);
  // True for one byte out of `count`.
  bool chance(std::size_t count) { return pick(count) == count - 1; }
  // Up to `most` of the bytes, as many as the first of them says.
  std::string text(std::size_t most);
  // A descriptor: one of the given ones, or one that the bytes spell.
  std::string descriptor();
  std::string_view rest() const { return m_rest; }

  template <class T, std::size_t N>
  const T& pick_of(T const (&values)[N]) {
    return values[pick(N)];
  }

 private:
  std::string_view m_rest;
};

struct POSTED {
  int number;
  std::string text;
};

// For the time of one input: takes what is posted, fails on internal errors, and at the end on
// memory of the library that is left behind. Make it the first object of an input.
class FUZZ_RUN {
 public:
  // Looking up an empty name is an internal error, which a target may allow.
  enum class EMPTY_NAMES { ARE_NOT_ASKED_FOR, ARE_ALLOWED };

  explicit FUZZ_RUN(EMPTY_NAMES empty_names = EMPTY_NAMES::ARE_NOT_ASKED_FOR);
  ~FUZZ_RUN();
  FUZZ_RUN(const FUZZ_RUN&) = delete;
  FUZZ_RUN& operator=(const FUZZ_RUN&) = delete;

  const std::vector<POSTED>& posted() const { return m_posted; }
  std::vector<POSTED> take_posted();

 private:
  std::vector<POSTED> m_posted;
  std::size_t m_blocks_before;
};

// A named node with its full name and the block it stands in, which is null at top level.
struct OBJECT {
  std::string name;
  NODE* node;
  NODE* block;

  std::string own_name() const { return name.substr(name.rfind('.') + 1); }
  std::string scope() const;
  bool is_block() const { return node->type == NODE::NT_BLOCK; }
  bool is_assignment() const;
  bool is_reference() const;
};

// All of them, a block before what is in it.
std::vector<OBJECT> objects_of(const SBD_FILE_PARSER& document);

// Fails unless names, symbols, parents and nodes of the document belong together.
void expect_consistent(const SBD_FILE_PARSER& document);

// The document in the library's own layout.
std::string written(const SBD_FILE_PARSER& document);

bool read_text(SBD_FILE_PARSER& document, std::string_view text);

#endif
