#include "tools/tree_walk.h"

namespace sbd_tool {

TREE_WALK::STEP TREE_WALK::next() {
  if (m_node == nullptr) return STEP::END;
  const STEP step = m_has_begun ? step_on() : STEP::ENTER;
  m_has_begun = true;
  m_is_inside = step == STEP::ENTER && m_node->type == NODE::NT_BLOCK;
  return step;
}

TREE_WALK::STEP TREE_WALK::step_on() {
  if (m_is_inside) {
    const NODE* const members = m_node->block->members;
    if (members == nullptr) return STEP::LEAVE;
    m_blocks.push_back(m_node);
    m_node = members;
    return STEP::ENTER;
  }
  const bool may_go_on = !m_blocks.empty() || m_extent == EXTENT::WITH_SIBLINGS;
  const NODE* const sibling = may_go_on ? m_node->next : nullptr;
  if (sibling != nullptr) {
    m_node = sibling;
    return STEP::ENTER;
  }
  if (m_blocks.empty()) {
    m_node = nullptr;
    return STEP::END;
  }
  m_node = m_blocks.back();
  m_blocks.pop_back();
  return STEP::LEAVE;
}

}  // namespace sbd_tool
