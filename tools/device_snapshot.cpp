#include "tools/device_snapshot.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "tools/names.h"

namespace sbd_tool {

namespace {

constexpr char k_nothing[] = "none";
constexpr char k_unknown[] = "unknown";

DEVICE_SNAPSHOT look_at_device(DESCRIPTOR& descriptor, const std::string& name) {
  DEVICE_SNAPSHOT snapshot;
  const SBD_VELDRAN& device = descriptor.document;
  const std::size_t error_count = descriptor.findings.error_count;
  snapshot.name = name;
  snapshot.has_parameters = open_device(descriptor, name, k_default_finding_limit);
  snapshot.title = device_title(descriptor);
  snapshot.block = find_node(device, name, nullptr);
  snapshot.error_count = descriptor.findings.error_count - error_count;
  if (!snapshot.has_parameters) return snapshot;
  snapshot.parameters = list_parameters(device);
  snapshot.clocks = derive_clocks(device);
  snapshot.tree = make_clock_tree(device);
  snapshot.widths = derive_widths(device);
  snapshot.map = make_memory_map(device);
  for (const PARAMETER_VIEW& parameter : snapshot.parameters) {
    if (parameter.statement != nullptr) snapshot.stated[parameter.statement] = parameter.name;
  }
  return snapshot;
}

// "8", "2 (default)", "none (missing)".
std::string describe(const PARAMETER_VIEW* parameter) {
  if (parameter == nullptr) return k_nothing;
  std::string text = parameter->text.empty() ? k_nothing : parameter->text;
  const bool is_default =
      parameter->origin == PO_PRESENT_BLOCK_DEFAULT || parameter->origin == PO_ABSENT_BLOCK_DEFAULT;
  if (is_default) text += fmt::format(" ({})", name_of(parameter->origin));
  if (parameter->fault != PARAMETER_VIEW::FAULT::NONE) {
    text += fmt::format(" ({})", name_of(parameter->fault));
  }
  return text;
}

bool is_same(const PARAMETER_VIEW* a, const PARAMETER_VIEW* b) {
  const PARAMETER_VIEW none;
  const PARAMETER_VIEW& old_view = a != nullptr ? *a : none;
  const PARAMETER_VIEW& new_view = b != nullptr ? *b : none;
  return old_view.text == new_view.text && old_view.fault == new_view.fault;
}

std::string format_bits(double bits) {
  return fmt::format("{:g} bits", bits);
}

void compare_views(std::vector<EFFECT>& effects, const std::vector<DERIVED_VIEW>& old_views,
                   const std::vector<DERIVED_VIEW>& new_views, const char* what,
                   std::string (*format)(double)) {
  const auto describe = [format](const std::vector<DERIVED_VIEW>& views, const std::string& name) {
    for (const DERIVED_VIEW& view : views) {
      if (view.name == name) return view.value ? format(*view.value) : std::string(k_unknown);
    }
    return std::string(k_nothing);
  };
  std::vector<std::string> names;
  for (const auto* const views : {&old_views, &new_views}) {
    for (const DERIVED_VIEW& view : *views) {
      if (std::find(names.begin(), names.end(), view.name) == names.end()) {
        names.push_back(view.name);
      }
    }
  }
  for (const std::string& name : names) {
    std::string old_text = describe(old_views, name);
    std::string new_text = describe(new_views, name);
    if (old_text == new_text) continue;
    effects.push_back({name + what, std::move(old_text), std::move(new_text), false});
  }
}

std::string list_overlaps(const MEMORY_MAP& map, const std::string& name) {
  std::string text;
  for (const MEMORY_WINDOW& window : map.placed) {
    if (window.name != name) continue;
    for (const std::string& other : window.overlaps) {
      text.append(text.empty() ? "" : ", ").append(other);
    }
  }
  return text.empty() ? k_nothing : text;
}

void compare_overlaps(std::vector<EFFECT>& effects, const MEMORY_MAP& old_map,
                      const MEMORY_MAP& new_map) {
  std::set<std::string> names;
  for (const auto* const map : {&old_map, &new_map}) {
    for (const MEMORY_WINDOW& window : map->placed) names.insert(window.name);
  }
  for (const std::string& name : names) {
    std::string old_text = list_overlaps(old_map, name);
    std::string new_text = list_overlaps(new_map, name);
    if (old_text == new_text) continue;
    effects.push_back({name + " overlaps", std::move(old_text), std::move(new_text), false});
  }
}

}  // namespace

DEVICE_SNAPSHOT take_snapshot(DESCRIPTOR& descriptor, const std::string& name) {
  FINDINGS findings = std::move(descriptor.findings);
  descriptor.findings = {};
  const EXIT_CODE outcome = descriptor.outcome;
  DEVICE_SNAPSHOT snapshot = look_at_device(descriptor, name);
  descriptor.findings = std::move(findings);
  descriptor.outcome = outcome;
  return snapshot;
}

const PARAMETER_VIEW* find_parameter(const DEVICE_SNAPSHOT& device, const std::string& name) {
  const auto has_name = [&name](const PARAMETER_VIEW& view) { return view.name == name; };
  const auto found = std::find_if(device.parameters.begin(), device.parameters.end(), has_name);
  return found == device.parameters.end() ? nullptr : &*found;
}

std::vector<EFFECT> compare_parameters(const DEVICE_SNAPSHOT& old_device,
                                       const DEVICE_SNAPSHOT& new_device) {
  std::vector<EFFECT> effects;
  if (!old_device.has_parameters || !new_device.has_parameters) return effects;
  for (const PARAMETER_VIEW& parameter : old_device.parameters) {
    const PARAMETER_VIEW* const other = find_parameter(new_device, parameter.name);
    if (is_same(&parameter, other)) continue;
    effects.push_back({parameter.name, describe(&parameter), describe(other), true});
  }
  for (const PARAMETER_VIEW& parameter : new_device.parameters) {
    if (find_parameter(old_device, parameter.name) != nullptr) continue;
    if (is_same(nullptr, &parameter)) continue;
    effects.push_back({parameter.name, describe(nullptr), describe(&parameter), true});
  }
  return effects;
}

std::vector<EFFECT> compare_derived(const DEVICE_SNAPSHOT& old_device,
                                    const DEVICE_SNAPSHOT& new_device) {
  std::vector<EFFECT> effects;
  compare_views(effects, old_device.clocks, new_device.clocks, " clock", format_frequency);
  compare_views(effects, old_device.widths, new_device.widths, " width", format_bits);
  compare_overlaps(effects, old_device.map, new_device.map);
  if (old_device.error_count != new_device.error_count) {
    effects.push_back({"errors", std::to_string(old_device.error_count),
                       std::to_string(new_device.error_count), false});
  }
  return effects;
}

}  // namespace sbd_tool
