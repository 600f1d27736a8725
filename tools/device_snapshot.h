// All that a device comes to, kept while another one is looked at. It takes some 50 KB, so nobody
// keeps those of many devices.
#ifndef TOOLS_DEVICE_SNAPSHOT_H
#define TOOLS_DEVICE_SNAPSHOT_H

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/clock_view.h"
#include "tools/descriptor.h"
#include "tools/device_view.h"
#include "tools/memory_map.h"

namespace sbd_tool {

struct DEVICE_SNAPSHOT {
  std::string name;
  std::string title;  // See device_title.
  const NODE* block = nullptr;
  bool has_parameters = false;
  std::size_t error_count = 0;
  std::vector<PARAMETER_VIEW> parameters;
  std::vector<DERIVED_VIEW> clocks;
  std::vector<CLOCK_TREE_NODE> tree;
  std::vector<DERIVED_VIEW> widths;
  MEMORY_MAP map;
  // Which parameter a statement states.
  std::unordered_map<const NODE*, std::string> stated;
};

// Of the device block of that name. What is wrong with it is not added to the findings of the
// descriptor.
DEVICE_SNAPSHOT take_snapshot(DESCRIPTOR& descriptor, const std::string& name);

// Null for a name that the chip does not have.
const PARAMETER_VIEW* find_parameter(const DEVICE_SNAPSHOT& device, const std::string& name);

// What is different about two devices.
struct EFFECT {
  std::string name;  // "clocks.pll_ahb_m", "ahb1 clock", "dpram[0] width", "sram[0] overlaps".
  std::string old_text;
  std::string new_text;
  bool is_parameter = false;  // Of what follows from the parameters, otherwise.
};

// Parameters that have another value or fault; those that one of the chips does not have count as
// being without value. None unless both have parameters.
std::vector<EFFECT> compare_parameters(const DEVICE_SNAPSHOT& old_device,
                                       const DEVICE_SNAPSHOT& new_device);

// What follows from them: clocks, widths, overlaps, the number of faults.
std::vector<EFFECT> compare_derived(const DEVICE_SNAPSHOT& old_device,
                                    const DEVICE_SNAPSHOT& new_device);

}  // namespace sbd_tool

#endif
