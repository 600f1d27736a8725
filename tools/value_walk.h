// Steps through a value and, if it is a list, everything in it.
#ifndef TOOLS_VALUE_WALK_H
#define TOOLS_VALUE_WALK_H

#include <cstddef>
#include <vector>

#include "sbd/sbd_file_parser.h"

namespace sbd_tool {

using VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;

// Lists nest as deep as the file likes: the walk uses no more of the stack for that.
class VALUE_WALK {
 public:
  // A list is entered before its elements and left behind them; other values are entered only.
  enum class STEP { ENTER, LEAVE, END };

  explicit VALUE_WALK(const VALUE& value) : m_value(&value) {}

  STEP next();

  // The value of the last step.
  const VALUE& value() const { return *m_value; }
  // True when the value just entered has an element of its list in front of it.
  bool is_later_element() const { return !m_lists.empty() && m_lists.back().entered > 1; }

 private:
  struct OPEN_LIST {
    const VALUE* value;
    std::size_t entered;  // Elements so far.
  };

  STEP enter(const VALUE* value);

  const VALUE* m_value;
  std::vector<OPEN_LIST> m_lists;  // Around the value.
  bool m_has_begun = false;
  bool m_is_inside = false;  // The last step entered a list.
};

}  // namespace sbd_tool

#endif
