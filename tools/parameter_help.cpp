#include "tools/parameter_help.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "sbd/sbd_veldran_keywords.h"
#include "tools/device_view.h"
#include "tools/near_names.h"

namespace sbd_tool {

namespace {

using CHIP_TYPE = SBD_VELDRAN::CHIP_TYPE;

struct CHIP {
  CHIP_TYPE type;
  const char* name;
};

const std::array<CHIP, 3>& chips() {
  static const std::array<CHIP, 3> k_chips = {{{SBD_VELDRAN::CT_QMXA1, SBD_VEL_QMXA1},
                                               {SBD_VELDRAN::CT_QMXA4, SBD_VEL_QMXA4},
                                               {SBD_VELDRAN::CT_QMXA10, SBD_VEL_QMXA10}}};
  return k_chips;
}

std::string value_text(const PARAMETER_VALUE& value) {
  SBD_STRING text;
  sbd_get_value_text(value, text);
  return std::string(text);
}

CHIP_HELP describe(const CHIP& chip, const SBD_PARAMETER_RULE& rule) {
  CHIP_HELP help;
  help.chip = chip.name;
  help.name = rule.reference;
  if (rule.block_name != nullptr) help.block = rule.block_name;
  help.type = name_of(rule.type);
  SBD_STRING text;
  if (sbd_get_requirement_text(rule, text)) help.required = text;
  if (sbd_get_values_text(rule, text)) help.valid = text;
  help.has_default =
      rule.present_block_default.m_has_value || rule.absent_block_default.m_has_value;
  help.present_block_default = value_text(rule.present_block_default);
  help.absent_block_default = value_text(rule.absent_block_default);
  help.is_checked_while_required =
      rule.requirement == SBD_VELDRAN_PARAMETER_READER::RQ_BY_RULE && rule.value_rule != nullptr;
  return help;
}

std::vector<CHIP_HELP> find_exact(const std::string& name, std::string_view chip_name) {
  std::vector<CHIP_HELP> found;
  for (const CHIP& chip : chips()) {
    if (!chip_name.empty() && chip_name != chip.name) continue;
    SBD_PARAMETER_RULE rule;
    if (!sbd_get_parameter_rule(chip.type, name.c_str(), rule)) continue;
    found.push_back(describe(chip, rule));
  }
  return found;
}

std::string to_lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

}  // namespace

std::vector<std::string> list_chips() {
  std::vector<std::string> names;
  for (const CHIP& chip : chips()) names.emplace_back(chip.name);
  return names;
}

SBD_VELDRAN::CHIP_TYPE find_chip_type(std::string_view name) {
  for (const CHIP& chip : chips()) {
    if (name == chip.name) return chip.type;
  }
  return SBD_VELDRAN::CT_UNKNOWN;
}

std::vector<CHIP_HELP> find_parameter_help(std::string_view name, std::string_view chip) {
  for (std::string_view rest = name; !rest.empty();) {
    std::vector<CHIP_HELP> found = find_exact(std::string(rest), chip);
    if (!found.empty()) return found;
    const std::size_t dot = rest.find('.');
    if (dot == std::string_view::npos) break;
    rest.remove_prefix(dot + 1);
  }
  return {};
}

std::vector<std::string> list_all_parameters(std::string_view chip_name) {
  std::vector<std::string> names;
  for (const CHIP& chip : chips()) {
    if (!chip_name.empty() && chip_name != chip.name) continue;
    SBD_STRING_LIST references;
    sbd_get_parameter_names(chip.type, references);
    for (const SBD_STRING& reference : references) names.emplace_back(reference);
  }
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

std::vector<std::string> list_block_parameters(std::string_view block, std::string_view chip) {
  const std::string beginning = to_lower(block) + '.';
  std::vector<std::string> names = list_all_parameters(chip);
  const auto is_outside = [&beginning](const std::string& name) {
    return name.compare(0, beginning.size(), beginning) != 0;
  };
  names.erase(std::remove_if(names.begin(), names.end(), is_outside), names.end());
  return names;
}

std::vector<std::string> list_parameters_of_name(std::string_view name, std::string_view chip) {
  const std::string ending = '.' + to_lower(name);
  std::vector<std::string> names = list_all_parameters(chip);
  const auto has_other_name = [&ending](const std::string& reference) {
    return reference.size() < ending.size() ||
           reference.compare(reference.size() - ending.size(), ending.size(), ending) != 0;
  };
  names.erase(std::remove_if(names.begin(), names.end(), has_other_name), names.end());
  return names;
}

std::vector<std::string> find_near_parameters(std::string_view name) {
  return find_near_texts(list_all_parameters({}), name);
}

}  // namespace sbd_tool
