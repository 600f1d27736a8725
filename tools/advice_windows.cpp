#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tools/advice.h"
#include "tools/advice_rules.h"
#include "tools/memory_map.h"

namespace sbd_tool {

namespace {

std::string describe(const MEMORY_WINDOW& window) {
  return fmt::format("\"{}\" is {} to {}", window.name, format_address(window.first),
                     format_address(window.end - 1));
}

FINDING make_finding(const std::optional<SOURCE_RANGE>& place, const char* key, std::string text) {
  FINDING finding;
  finding.severity = SEVERITY::WARNING;
  finding.key = key;
  finding.text = std::move(text);
  finding.place = place;
  return finding;
}

FINDING make_overlap(const MEMORY_WINDOW& a, const MEMORY_WINDOW& b) {
  const auto& a_place = a.base.place;
  const auto& b_place = b.base.place;
  const bool is_a_first = a_place && b_place && a_place->offset < b_place->offset;
  const MEMORY_WINDOW& first = is_a_first ? a : b;
  const MEMORY_WINDOW& second = is_a_first ? b : a;
  FINDING finding = make_finding(
      second.base.place, k_windows_overlap_key,
      fmt::format("Memory window {} and overlaps \"{}\"", describe(second), first.name));
  finding.note = describe(first);
  finding.note_place = first.base.place;
  return finding;
}

bool do_overlap(const MEMORY_WINDOW& a, const MEMORY_WINDOW& b) {
  return std::find(a.overlaps.begin(), a.overlaps.end(), b.name) != a.overlaps.end();
}

void advise_misfits(const std::vector<MEMORY_WINDOW>& windows, std::vector<FINDING>& advice) {
  for (const MEMORY_WINDOW& window : windows) {
    if (!window.is_in_use) continue;
    for (const MEMORY_WINDOW::MISFIT& misfit : window.misfits) {
      advice.push_back(make_finding(
          misfit.place, k_window_end_key,
          fmt::format("Memory window \"{}\" is not as stated: {}", window.name, misfit.text)));
    }
  }
}

}  // namespace

void advise_windows(const SBD_VELDRAN& device, std::vector<FINDING>& advice) {
  const MEMORY_MAP map = make_memory_map(device);
  advise_misfits(map.placed, advice);
  advise_misfits(map.others, advice);
  for (std::size_t i = 0; i != map.placed.size(); ++i) {
    const MEMORY_WINDOW& window = map.placed[i];
    for (std::size_t j = i + 1; j != map.placed.size(); ++j) {
      if (do_overlap(window, map.placed[j])) {
        advice.push_back(make_overlap(window, map.placed[j]));
      }
    }
    if (window.end <= k_address_space) continue;
    advice.push_back(
        make_finding(window.base.place, k_window_end_key,
                     fmt::format("Memory window {}, beyond the last address {}", describe(window),
                                 format_address(k_address_space - 1))));
  }
}

}  // namespace sbd_tool
