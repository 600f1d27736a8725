// What follows from the settings of a device, and how: frequencies and port widths.
#ifndef TOOLS_CLOCK_VIEW_H
#define TOOLS_CLOCK_VIEW_H

#include <optional>
#include <string>
#include <vector>

#include "sbd/sbd_veldran.h"
#include "tools/device_view.h"

namespace sbd_tool {

// How a clock is made: the input clock, multiplied and divided by a PLL, divided once more. Names
// are those of parameters of the block "clocks".
struct CLOCK_PATH {
  const char* name;       // "ahb1", "ahb2", "sdram".
  const char* title;      // The same for people.
  int ahb_n;              // 0: the SDRAM.
  const char* pll_title;  // "AHB PLL"; clocks with the same one share that PLL.
  const char* bypass;
  const char* m;
  const char* n;
  const char* k;
  const char* divider;  // Null: half.
};
const std::vector<CLOCK_PATH>& clock_paths();

// "clocks.NAME".
std::string in_clocks(const std::string& name);

// What a PLL makes of its input clock. Of the divisors' product, the low 32 bits count.
double pll_output(double input, unsigned long m, unsigned long n, unsigned long k);

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

// The input clock, below it the PLLs, below each its clocks.
struct CLOCK_TREE_NODE {
  enum class KIND { INPUT, PLL, CLOCK };

  KIND kind;
  std::string title;
  std::string step;                      // What is done to the clock above: "x 8 / (1 x 2)".
  std::optional<double> frequency;       // None where it can't be told.
  bool is_idle = false;                  // Nothing uses the clock.
  std::vector<PARAMETER_VIEW> settings;  // Those of the step.
};
std::vector<CLOCK_TREE_NODE> make_clock_tree(const SBD_VELDRAN& device);

// The data width of each DPRAM port that the chip has.
std::vector<DERIVED_VIEW> derive_widths(const SBD_VELDRAN& device);

// The settings of all of them, each once.
std::vector<PARAMETER_VIEW> collect_settings(const std::vector<DERIVED_VIEW>& clocks,
                                             const std::vector<DERIVED_VIEW>& widths);

// "33.333333 MHz", "32.768 kHz", "50 Hz".
std::string format_frequency(double hertz);

}  // namespace sbd_tool

#endif
