// What two descriptors say differently.
#ifndef TOOLS_DESCRIPTOR_DIFF_H
#define TOOLS_DESCRIPTOR_DIFF_H

#include <optional>
#include <string>
#include <vector>

#include "tools/descriptor.h"
#include "tools/device_snapshot.h"

namespace sbd_tool {

struct DIFFERENCE {
  enum class KIND { ADDED, REMOVED, CHANGED, RENAMED };
  enum class WHAT { BLOCK, PARAMETER, TYPE, VALUE, ATTRIBUTES, NAME, SPELLING, COMMENT, ORDER };

  KIND kind;
  WHAT what;
  std::string name;      // Full name in the new descriptor; of what was removed, in the old one.
  std::string old_text;  // Empty where there is nothing.
  std::string new_text;
  std::optional<SOURCE_RANGE> old_place;
  std::optional<SOURCE_RANGE> new_place;
};

// What changed for a device beyond the statements that are told as differences.
struct DEVICE_DIFFERENCE {
  std::string name;  // Of the new device block.
  std::vector<EFFECT> effects;
};

struct DESCRIPTOR_DIFF {
  std::vector<DIFFERENCE> differences;
  std::vector<DEVICE_DIFFERENCE> devices;  // Those with effects, in file order.

  bool empty() const { return differences.empty() && devices.empty(); }
};

// Both have to be without faults of format. Unless `is_strict`, order, comments, the spelling of
// names and values, and statements of what counts anyway at a device make no difference. The
// layout of the text never does.
DESCRIPTOR_DIFF compare_descriptors(DESCRIPTOR& old_descriptor, DESCRIPTOR& new_descriptor,
                                    bool is_strict);

// "added", "removed", "changed", "renamed".
std::string_view name_of(DIFFERENCE::KIND kind);
// "block", "parameter", "type", "value", "attributes", "name", "spelling", "comment", "order".
std::string_view name_of(DIFFERENCE::WHAT what);

}  // namespace sbd_tool

#endif
