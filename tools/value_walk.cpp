#include "tools/value_walk.h"

namespace sbd_tool {

VALUE_WALK::STEP VALUE_WALK::next() {
  if (!m_has_begun) {
    m_has_begun = true;
    return enter(m_value);
  }
  if (m_is_inside) m_lists.push_back({m_value, 0});
  m_is_inside = false;
  if (m_lists.empty()) return STEP::END;

  OPEN_LIST& innermost = m_lists.back();
  if (innermost.entered < innermost.value->list->size()) {
    return enter((*innermost.value->list)[innermost.entered++]);
  }
  m_value = innermost.value;
  m_lists.pop_back();
  return STEP::LEAVE;
}

VALUE_WALK::STEP VALUE_WALK::enter(const VALUE* value) {
  m_value = value;
  m_is_inside = value->type == VALUE::VT_LIST;
  return STEP::ENTER;
}

}  // namespace sbd_tool
