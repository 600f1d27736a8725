// Settings of PLLs and dividers that make wanted frequencies.
#ifndef TOOLS_CLOCK_SEARCH_H
#define TOOLS_CLOCK_SEARCH_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_veldran.h"
#include "tools/clock_view.h"

namespace sbd_tool {

struct CLOCK_WANT {
  std::string clock;  // "ahb1", "ahb2" or "sdram".
  double frequency = 0;
};

// "ahb1=100MHz"; units are Hz (also when there is none), kHz and MHz. False, with the reason in
// `fault`, when the text says no such thing.
bool parse_want(std::string_view text, CLOCK_WANT& want, std::string& fault);

// A way to set the clocks, every setting of which the rules of the chip allow.
struct CLOCK_CHOICE {
  struct RESULT {
    std::string clock;
    double frequency = 0;
    std::optional<double> ppm;  // How far off it is, in millionths of what is wanted, if it is.
  };
  struct SETTING {
    std::string name;   // "clocks.pll_ahb_m".
    std::string value;  // As a descriptor states it.
    bool is_changed = false;
  };

  std::vector<RESULT> results;    // Of all clocks of the PLLs concerned.
  std::vector<SETTING> settings;  // Of these PLLs and clocks; factors only of PLLs in use.
  double worst_ppm = 0;           // Without sign.
};

// Tries all settings that the chip allows with the input clock that the device has; PLLs and
// dividers that no wanted clock depends on stay as they are. The `limit` choices that come nearest
// are added to `choices`, the best one first: that is the one with the least worst error, then the
// least sum of errors, the fewest changes (to settings, and to clocks that nobody asked about), the
// smallest factors. Of choices with the same
// frequencies, only the best one counts. False, with the reason in `fault`, when there is none.
bool search_clocks(const SBD_VELDRAN& device, const std::vector<CLOCK_WANT>& wants,
                   std::size_t limit, std::vector<CLOCK_CHOICE>& choices, std::string& fault);

}  // namespace sbd_tool

#endif
