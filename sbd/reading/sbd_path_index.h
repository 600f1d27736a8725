// Finds an object by its whole dotted name at once: for documents that are asked for many names.
//
// It is made from a document as it was read, and is of no use once names come, go or move.
#ifndef SBD_READING_SBD_PATH_INDEX_H
#define SBD_READING_SBD_PATH_INDEX_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/sbd_file_parser.h"

class SBD_PATH_INDEX {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

  // Of all objects below the top-level nodes from `root` on. Throws what the host throws when it
  // has no memory.
  explicit SBD_PATH_INDEX(SBD_NODE* root);

  static void* operator new(std::size_t size) { return SBD_RECORD::operator new(size); }
  static void operator delete(void* index) noexcept { SBD_RECORD::operator delete(index); }

  // The object of that name, letter case aside. Null tells nothing: names without a dot are not
  // here, nor are very long ones. Behind the name a step of NUL bytes stands.
  SBD_NODE* find(std::string_view name) const;

 private:
  // An object below a block.
  struct ENTRY {
    SBD_NODE* node;      // Null for an empty slot.
    const char* name;    // Its own, as its symbol has it: to be fetched beside the node.
    std::uint32_t hash;  // The half of the hash that its slot does not tell of.
    std::uint32_t path;  // Where in the texts the path of the block is.
  };

  // A block whose members are being entered.
  struct OPEN_BLOCK {
    const SBD_NODE* node;
    std::uint32_t path;
  };

  OPEN_BLOCK open(const SBD_NODE* block, const OPEN_BLOCK* enclosing);
  void enter(SBD_NODE* node, std::uint64_t hash, std::uint32_t path);
  bool is_name_of(const ENTRY& entry, std::string_view name) const;
  std::string_view path_at(std::uint32_t place) const;
  std::size_t slot_of(std::uint64_t hash) const;

  SBD_VECTOR<ENTRY> m_slots;  // A third of them stays empty.
  SBD_VECTOR<char> m_texts;   // Each path behind its length; behind the last, a step.
};

#endif
