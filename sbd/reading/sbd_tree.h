// Small steps through the records of a tree.
#ifndef SBD_READING_SBD_TREE_H
#define SBD_READING_SBD_TREE_H

#include "sbd/reading/sbd_scratch.h"
#include "sbd/sbd_file_parser.h"

// The symbol that a node declares; null for comments and for records without one.
inline SBD_FILE_PARSER::SBD_SYMBOL* sbd_symbol_of(const SBD_FILE_PARSER::SBD_NODE* node) {
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
  if (node->type == SBD_NODE::NT_STATEMENT && node->statement != nullptr) {
    return node->statement->name;
  }
  if (node->type == SBD_NODE::NT_BLOCK && node->block != nullptr) return node->block->name;
  return nullptr;
}

// The first member of a block; null for what is no block.
inline SBD_FILE_PARSER::SBD_NODE* sbd_members_of(const SBD_FILE_PARSER::SBD_NODE* node) {
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;
  if (node->type != SBD_NODE::NT_BLOCK || node->block == nullptr) return nullptr;
  return node->block->members;
}

// Walks a sibling chain and everything below it in file order, a block before its members, in a
// fixed amount of stack however deep the blocks nest.
class SBD_TREE_WALK {
 public:
  using SBD_NODE = SBD_FILE_PARSER::SBD_NODE;

  explicit SBD_TREE_WALK(SBD_NODE* first) : m_next(first) {}

  // The next node; null behind the last one. The node before must still be linked.
  SBD_NODE* next() {
    if (m_current != nullptr) m_next = step();
    m_current = m_next;
    m_skips_members = false;
    return m_current;
  }

  // Leaves out what is below the current node.
  void skip_members() { m_skips_members = true; }

  // The block whose members are being walked; null in the chain where the walk began.
  SBD_NODE* parent() { return m_parents.empty() ? nullptr : m_parents.back(); }

 private:
  SBD_NODE* step() {
    SBD_NODE* const members = m_skips_members ? nullptr : sbd_members_of(m_current);
    if (members != nullptr) {
      m_parents.push_back(m_current);
      return members;
    }
    SBD_NODE* next = m_current->next;
    while (next == nullptr && !m_parents.empty()) {
      next = m_parents.back()->next;
      m_parents.pop_back();
    }
    return next;
  }

  SBD_NODE* m_next;
  SBD_NODE* m_current = nullptr;
  bool m_skips_members = false;
  SBD_SCRATCH<SBD_NODE*, 32> m_parents;
};

#endif
