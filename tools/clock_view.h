// What follows from the settings of a device, and how: frequencies and port widths.
#ifndef TOOLS_CLOCK_VIEW_H
#define TOOLS_CLOCK_VIEW_H

#include <optional>
#include <string>
#include <vector>

#include "sbd/sbd_veldran.h"
#include "tools/device_view.h"

namespace sbd_tool {

// A value that is derived from settings.
struct DERIVED_VIEW {
  std::string name;                      // "ahb1", "ahb2", "sdram", "dpram[0]", "dpram[1]".
  std::string title;                     // The same for people.
  std::optional<double> value;           // Hertz or bits; none where there is a problem.
  std::string formula;                   // Of parameter names, without their block.
  std::string calculation;               // The formula with values; "?" for what has none.
  std::string problem;                   // Why there is no value.
  std::string remark;                    // What else one has to know to read the value.
  std::vector<PARAMETER_VIEW> settings;  // What went in.
};

// Of the device that is open, which has parameters: AHB1, AHB2 and SDRAM.
std::vector<DERIVED_VIEW> derive_clocks(const SBD_VELDRAN& device);

// The data width of each DPRAM port that the chip has.
std::vector<DERIVED_VIEW> derive_widths(const SBD_VELDRAN& device);

// The settings of all of them, each once.
std::vector<PARAMETER_VIEW> collect_settings(const std::vector<DERIVED_VIEW>& clocks,
                                             const std::vector<DERIVED_VIEW>& widths);

// "33.333333 MHz", "32.768 kHz", "50 Hz".
std::string format_frequency(double hertz);

}  // namespace sbd_tool

#endif
