// Steps through a tree in file order, in and out of its blocks.
#ifndef TOOLS_TREE_WALK_H
#define TOOLS_TREE_WALK_H

#include <cstddef>
#include <vector>

#include "sbd/sbd_file_parser.h"

namespace sbd_tool {

using NODE = SBD_FILE_PARSER::SBD_NODE;

// Uses no more of the stack however deep the blocks nest.
class TREE_WALK {
 public:
  // A block is entered before its members and left behind them; other nodes are entered only.
  enum class STEP { ENTER, LEAVE, END };
  // Whether the siblings behind the first node are walked, too.
  enum class EXTENT { WITH_SIBLINGS, ALONE };

  TREE_WALK(const NODE* first, EXTENT extent) : m_node(first), m_extent(extent) {}

  STEP next();

  // The node of the last step, and how many blocks around it were entered.
  const NODE* node() const { return m_node; }
  std::size_t depth() const { return m_blocks.size(); }
  // The innermost of these blocks; null when there is none.
  const NODE* block() const { return m_blocks.empty() ? nullptr : m_blocks.back(); }

 private:
  STEP step_on();

  const NODE* m_node;
  EXTENT m_extent;
  bool m_has_begun = false;
  bool m_is_inside = false;  // The last step entered a block.
  std::vector<const NODE*> m_blocks;
};

}  // namespace sbd_tool

#endif
