#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sbd/sbd_veldran_keywords.h"
#include "tools/advice.h"
#include "tools/advice_rules.h"
#include "tools/names.h"
#include "tools/notation.h"

namespace sbd_tool {

namespace {

constexpr double k_address_end = 4294967296.0;  // Addresses have 32 bits.

// A part of the address space that a device answers.
struct WINDOW {
  std::string name;
  double base = 0;  // As stated, which may be more than fits.
  double size = 0;
  std::optional<SOURCE_RANGE> place;  // Of the statement of its base.

  double end() const { return base + size; }
};

std::string in_block(const std::string& block, const char* parameter) {
  return block + "." + parameter;
}

bool is_false(const SBD_VELDRAN& device, const std::string& name) {
  const PARAMETER_VIEW view = view_parameter(device, name);
  return view.text == "false";
}

// True when neither the window nor what it belongs to is disabled.
bool is_enabled(const SBD_VELDRAN& device, const std::string& window) {
  for (std::string_view block = window; !block.empty(); block = block_of(block)) {
    const std::string name = in_block(std::string(block), SBD_VEL_ENABLED);
    const bool has_switch = names_of_chip(device.get_chip_type()).parameters.count(name) != 0;
    if (has_switch && is_false(device, name)) return false;
  }
  return true;
}

// The number that a statement gives, before it is cut to the bits of a parameter.
std::optional<double> get_stated_number(const SBD_VELDRAN& device, const std::string& name) {
  SBD_PARAMETER_STATE state;
  if (!sbd_get_parameter_state(device, name.c_str(), state)) return std::nullopt;
  if (state.statement == nullptr || !state.value.m_has_value) return std::nullopt;
  const VALUE& value = *state.statement->statement->value;
  constexpr double k_most_exact = 4503599627370496.0;
  double number = 0;
  const bool is_stated = device.get_value(full_name(device, *state.statement).c_str(), number);
  if (!is_stated || !is_number(value) || !(number >= 0 && number < k_most_exact)) {
    return std::nullopt;
  }
  return number;
}

std::vector<WINDOW> list_windows(const SBD_VELDRAN& device) {
  std::vector<WINDOW> windows;
  const CHIP_NAMES& names = names_of_chip(device.get_chip_type());
  for (const std::string& block : names.blocks) {
    const std::string base_name = in_block(block, SBD_VEL_ADDRESS_BASE);
    if (names.parameters.count(base_name) == 0 || !is_enabled(device, block)) continue;
    const auto base = get_stated_number(device, base_name);
    const auto size = get_stated_number(device, in_block(block, SBD_VEL_ADDRESS_SIZE));
    if (!base || !size || *size < 1) continue;
    windows.push_back({block, *base, *size, view_parameter(device, base_name).place});
  }
  return windows;
}

std::string describe(const WINDOW& window) {
  return fmt::format("\"{}\" is 0x{:08X} to 0x{:08X}", window.name,
                     static_cast<std::uint64_t>(window.base),
                     static_cast<std::uint64_t>(window.end() - 1));
}

FINDING make_finding(const WINDOW& window, const char* key, std::string text) {
  FINDING finding;
  finding.severity = SEVERITY::WARNING;
  finding.key = key;
  finding.text = std::move(text);
  finding.place = window.place;
  return finding;
}

FINDING make_overlap(const WINDOW& a, const WINDOW& b) {
  const bool is_a_first = a.place && b.place && a.place->offset < b.place->offset;
  const WINDOW& first = is_a_first ? a : b;
  const WINDOW& second = is_a_first ? b : a;
  FINDING finding = make_finding(
      second, k_windows_overlap_key,
      fmt::format("Memory window {} and overlaps \"{}\"", describe(second), first.name));
  finding.note = describe(first);
  finding.note_place = first.place;
  return finding;
}

}  // namespace

void advise_windows(const SBD_VELDRAN& device, std::vector<FINDING>& advice) {
  const std::vector<WINDOW> windows = list_windows(device);
  for (std::size_t i = 0; i != windows.size(); ++i) {
    const WINDOW& window = windows[i];
    for (std::size_t j = i + 1; j != windows.size(); ++j) {
      const WINDOW& other = windows[j];
      const bool do_overlap = window.base < other.end() && other.base < window.end();
      if (do_overlap) advice.push_back(make_overlap(window, other));
    }
    if (window.end() <= k_address_end) continue;
    advice.push_back(make_finding(
        window, k_window_end_key,
        fmt::format("Memory window {}, beyond the last address 0xFFFFFFFF", describe(window))));
  }
}

}  // namespace sbd_tool
