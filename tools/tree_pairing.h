// Which blocks and statements of two descriptors belong together.
#ifndef TOOLS_TREE_PAIRING_H
#define TOOLS_TREE_PAIRING_H

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "tools/tree_walk.h"

namespace sbd_tool {

// A node with its counterpart; one of them is null where it has none.
struct NODE_PAIR {
  const NODE* old_node;
  const NODE* new_node;
};

// Nodes belong together when they have the same name, and when those that they stand in belong
// together. Blocks of one type may also have different names, if most of what they say is the same.
class TREE_PAIRING {
 public:
  TREE_PAIRING(const NODE* old_root, const NODE* new_root);

  // All blocks and statements: a block before what is in it; what there is in the new tree only
  // behind the rest of its block.
  const std::vector<NODE_PAIR>& pairs() const { return m_pairs; }

  // The counterpart of a node of the old tree; null when it has none.
  const NODE* counterpart(const NODE* old_node) const;

 private:
  void pair_members(const NODE* old_first, const NODE* new_first);
  void pair_renamed(std::vector<NODE_PAIR>& pairs);
  // The one that has most in common with the block, if any has enough.
  std::vector<NODE_PAIR*>::iterator find_most_alike(const NODE* old_block,
                                                    std::vector<NODE_PAIR*>& candidates);
  double compare(const NODE* old_block, const NODE* new_block);

  std::vector<NODE_PAIR> m_pairs;
  std::unordered_map<const NODE*, const NODE*> m_counterparts;
  std::vector<NODE_PAIR> m_open;  // Pairs that are to be gone through, the next one at the end.
  std::size_t m_effort = 0;       // Nodes that were looked at to recognise renamed blocks.
};

}  // namespace sbd_tool

#endif
