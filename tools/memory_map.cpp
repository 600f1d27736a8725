#include "tools/memory_map.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <mutex>
#include <utility>

#include "sbd/sbd_veldran_keywords.h"
#include "tools/notation.h"
#include "tools/parameter_kind.h"

namespace sbd_tool {

namespace {

bool has_value(const PARAMETER_VIEW& parameter) {
  return !parameter.text.empty();
}

bool is_true(const PARAMETER_VIEW& parameter) {
  return has_value(parameter) && parameter.value.m_bool_value;
}

std::string in_block(const std::string& block, const char* parameter) {
  return block + "." + parameter;
}

std::vector<std::string> find_window_blocks(SBD_VELDRAN::CHIP_TYPE chip) {
  std::vector<std::string> blocks;
  SBD_STRING_LIST names;
  sbd_get_parameter_names(chip, names);
  for (const SBD_STRING& name : names) {
    SBD_PARAMETER_RULE rule;
    if (!sbd_get_parameter_rule(chip, name.c_str(), rule)) continue;
    const std::string_view parameter = rule.parameter_name;
    if (rule.block_name != nullptr && parameter == SBD_VEL_ADDRESS_BASE) {
      blocks.emplace_back(rule.block_name);
    }
  }
  return blocks;
}

// The blocks of the chip that have an address base, in the order of the rules.
const std::vector<std::string>& list_window_blocks(SBD_VELDRAN::CHIP_TYPE chip) {
  static std::mutex mutex;
  static std::map<SBD_VELDRAN::CHIP_TYPE, std::vector<std::string>> blocks;
  const std::lock_guard<std::mutex> lock(mutex);
  const auto found = blocks.find(chip);
  return found != blocks.end() ? found->second
                               : blocks.emplace(chip, find_window_blocks(chip)).first->second;
}

// Of "ebi.region[0]", "ebi.enabled"; a view without name if the block is in no controller that can
// be disabled.
PARAMETER_VIEW view_controller(const SBD_VELDRAN& device, const std::string& block) {
  const std::size_t dot = block.find('.');
  if (dot == std::string::npos) return {};
  return view_parameter(device, in_block(block.substr(0, dot), SBD_VEL_ENABLED));
}

// A device takes 32 bits of a whole number, which may not be what the file seems to say.
void note_cut_number(const PARAMETER_VIEW& parameter, MEMORY_WINDOW& window) {
  if (!has_value(parameter) || parameter.statement == nullptr) return;
  const STATEMENT& statement = *parameter.statement->statement;
  if (statement.type != STATEMENT::ST_ASSIGNMENT || !is_number(*statement.value)) return;
  const double stated = get_scaled_value(*statement.value);
  if (stated == static_cast<double>(parameter.value.m_dword_value)) return;
  window.remarks.push_back(fmt::format("{} counts as {}, not {}", parameter.name, parameter.text,
                                       get_scaled_number(*statement.value)));
  const bool does_fit = stated >= 0 && stated < static_cast<double>(k_address_space);
  if (!does_fit) window.misfits.push_back({parameter.place, window.remarks.back()});
}

MEMORY_WINDOW view_window(const SBD_VELDRAN& device, const std::string& block) {
  MEMORY_WINDOW window;
  window.name = block;
  window.base = view_parameter(device, in_block(block, SBD_VEL_ADDRESS_BASE));
  window.size = view_parameter(device, in_block(block, SBD_VEL_ADDRESS_SIZE));
  window.enabled = view_parameter(device, in_block(block, SBD_VEL_ENABLED));
  window.prefetch = view_parameter(device, in_block(block, SBD_VEL_PREFETCH));

  note_cut_number(window.base, window);
  note_cut_number(window.size, window);
  const PARAMETER_VIEW controller = view_controller(device, block);
  const bool is_served = controller.name.empty() || is_true(controller);
  window.is_in_use = is_true(window.enabled) && is_served;
  if (is_true(window.enabled) && !is_served) {
    window.remarks.push_back(controller.name + " is false");
  }
  return window;
}

void place(MEMORY_WINDOW& window) {
  if (!window.is_in_use) return;
  if (!has_value(window.base) || !has_value(window.size)) {
    const PARAMETER_VIEW& missing = has_value(window.base) ? window.size : window.base;
    window.remarks.push_back(missing.name + " has no value");
    return;
  }
  window.first = window.base.value.m_dword_value;
  window.end = window.first + window.size.value.m_dword_value;
  window.is_placed = window.end != window.first;
  if (!window.is_placed) window.remarks.push_back("size is 0");
  if (window.end > k_address_space) window.remarks.emplace_back("runs past 4 GiB");
}

// The chip has few windows: each is held against each.
void find_overlaps(std::vector<MEMORY_WINDOW>& windows) {
  for (MEMORY_WINDOW& window : windows) {
    for (const MEMORY_WINDOW& other : windows) {
      const bool is_apart = window.end <= other.first || other.end <= window.first;
      if (&window != &other && !is_apart) window.overlaps.push_back(other.name);
    }
  }
}

std::vector<MEMORY_HOLE> find_holes(const std::vector<MEMORY_WINDOW>& windows) {
  std::vector<MEMORY_HOLE> holes;
  std::uint64_t address = 0;
  for (const MEMORY_WINDOW& window : windows) {
    if (window.first > address) holes.push_back({address, window.first});
    address = std::max(address, window.end);
  }
  if (address < k_address_space) holes.push_back({address, k_address_space});
  return holes;
}

}  // namespace

MEMORY_MAP make_memory_map(const SBD_VELDRAN& device) {
  MEMORY_MAP map;
  for (const std::string& block : list_window_blocks(device.get_chip_type())) {
    MEMORY_WINDOW window = view_window(device, block);
    place(window);
    (window.is_placed ? map.placed : map.others).push_back(std::move(window));
  }
  std::stable_sort(map.placed.begin(), map.placed.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  find_overlaps(map.placed);
  map.holes = find_holes(map.placed);
  return map;
}

std::string format_address(std::uint64_t address) {
  return fmt::format("0x{:08X}", address);
}

std::string format_size(std::uint64_t bytes) {
  struct UNIT {
    std::uint64_t bytes;
    const char* name;
  };
  constexpr std::array<UNIT, 3> k_units = {
      {{std::uint64_t{1} << 30U, "G"}, {std::uint64_t{1} << 20U, "M"}, {1024, "K"}}};
  for (const UNIT& unit : k_units) {
    if (bytes >= unit.bytes && bytes % unit.bytes == 0) {
      return fmt::format("{}{}", bytes / unit.bytes, unit.name);
    }
  }
  return std::to_string(bytes);
}

}  // namespace sbd_tool
