// A device seen as if it had another chip.
#ifndef TOOLS_CHIP_CHANGE_H
#define TOOLS_CHIP_CHANGE_H

#include <string>
#include <vector>

#include "tools/descriptor.h"
#include "tools/device_view.h"
#include "tools/findings.h"

namespace sbd_tool {

// Makes the device block of that name state this chip, in memory only. What it states in another
// way than a device block should is left as it is, to be found when the device is opened.
void assume_chip(SBD_VELDRAN& document, const std::string& device, const std::string& chip);

// What changes with the chip although nothing breaks: parameters whose default is another one on
// the chip that is assumed now. `before` is list_parameters of the file's own chip.
std::vector<FINDING> list_changes(const SBD_VELDRAN& device,
                                  const std::vector<PARAMETER_VIEW>& before,
                                  const std::string& chip_before);

// How a device fares on all chips that there are rules for.
struct CHIP_MATRIX {
  using FAULT = PARAMETER_VIEW::FAULT;
  struct ROW {
    std::string parameter;
    std::vector<FAULT> faults;  // For each chip.
  };

  std::string device;
  std::string own_chip;
  std::vector<std::string> chips;
  std::vector<std::size_t> fault_counts;  // For each chip.
  std::vector<ROW> rows;                  // Parameters with a fault on any chip.

  bool fits_all() const { return rows.empty(); }
};

// Opens the device with each chip in turn. Null, with findings, when it has no parameters, whatever
// the chip; see open_device.
std::unique_ptr<CHIP_MATRIX> make_chip_matrix(DESCRIPTOR& descriptor, const std::string& device,
                                              std::size_t finding_limit);

}  // namespace sbd_tool

#endif
