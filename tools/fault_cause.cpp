#include "tools/fault_cause.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

#include "sbd/sbd_parameter_rules.h"
#include "tools/device_view.h"
#include "tools/notation.h"
#include "tools/parameter_kind.h"

namespace sbd_tool {

namespace {

// Texts of the library come with its own allocator.
template <class THING>
std::string text_of(bool (*get)(const THING&, SBD_STRING&) noexcept, const THING& thing) {
  SBD_STRING text;
  get(thing, text);
  return std::string(text);
}

std::string to_lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::string_view describe_origin(SBD_PARAMETER_ORIGIN origin) {
  switch (origin) {
    case PO_PRESENT_BLOCK_DEFAULT:
      return ", default of a present block";
    case PO_ABSENT_BLOCK_DEFAULT:
      return ", default of an absent block";
    case PO_NONE:
      return ", being not stated and without default";
    case PO_STATEMENT:
      break;
  }
  return "";
}

// What the setting is, as far as the condition does not say it.
std::string describe_setting(const SBD_RULE_CONDITION& condition, const SBD_RULE_SETTING& setting) {
  if (!setting.value.m_has_value) {
    const bool is_stated = setting.origin == PO_STATEMENT;
    return is_stated ? ", as its value is not a Boolean"
                     : std::string(describe_origin(setting.origin));
  }
  const bool is_other_text =
      condition.test == SBD_RULE_CONDITION::RT_IS_NOT_TEXT && setting.origin != PO_NONE;
  const std::string value = text_of(sbd_get_value_text, setting.value);
  return fmt::format("{}{}", is_other_text && !value.empty() ? " but " + value : "",
                     describe_origin(setting.origin));
}

// Why the parameter has to be stated: "required because ...". Empty when it has not.
std::string explain_requirement(const SBD_VELDRAN& device, const SBD_PARAMETER_RULE& rule,
                                const SBD_PARAMETER_STATE& state, FINDING& finding) {
  if (!state.is_required) return {};
  if (rule.condition == nullptr || state.requirement_settings.empty()) return "always required";
  const SBD_RULE_SETTING& setting = state.requirement_settings.front();
  finding.note_place = place_of(device, setting.statement);
  return fmt::format("required because {}{}", text_of(sbd_get_condition_text, *rule.condition),
                     describe_setting(*rule.condition, setting));
}

std::string explain_values(const SBD_VELDRAN& device, const SBD_PARAMETER_RULE& rule) {
  SBD_STRING chip;
  SBD_STRING values;
  device.get_chip_type_name(chip);
  sbd_get_values_text(rule, values);
  return fmt::format("valid on {}: {}", chip.c_str(), values.c_str());
}

// True for a text that would be valid but for the quotes around it.
bool is_only_quoted(const SBD_VALUE_SET* allowed, const VALUE& value) {
  const std::string_view text = get_unquoted(value);
  if (allowed == nullptr || allowed->kind != SBD_VALUE_SET::VS_TEXTS) return false;
  if (text.size() == std::string_view(value.text).size()) return false;
  return std::any_of(allowed->texts, allowed->texts + allowed->count,
                     [&](const char* one) { return to_lower(text) == one; });
}

bool is_of_type(PARAMETER_KIND kind, PARAMETER_VALUE::VALUE_TYPE type) {
  switch (type) {
    case PARAMETER_VALUE::BOOL_VALUE:
      return kind == PARAMETER_KIND::BOOL;
    case PARAMETER_VALUE::STRING_VALUE:
      return kind == PARAMETER_KIND::STRING;
    case PARAMETER_VALUE::DWORD_VALUE:
    case PARAMETER_VALUE::DOUBLE_VALUE:
      break;
  }
  return kind == PARAMETER_KIND::NUMBER;
}

// What is not plain to see in the statement: the wrong kind of value, what a unit makes of a
// number, quotes.
std::string explain_statement(const SBD_VELDRAN& device, const SBD_PARAMETER_RULE& rule,
                              const SBD_PARAMETER_STATE& state) {
  const STATEMENT& statement = *state.statement->statement;
  const PARAMETER_KIND kind = kind_of_parameter(statement);
  if (!is_of_type(kind, rule.type)) return fmt::format("; this is {}", description_of(kind));
  if (kind == PARAMETER_KIND::STRING) {
    return is_only_quoted(state.allowed_values, *statement.value) ? "; without the quotes" : "";
  }
  const std::string written = get_notation(device, *statement.value);
  const std::string value = text_of(sbd_get_value_text, state.value);
  return to_lower(written) == value ? "" : fmt::format("; {} is {}", written, value);
}

std::string explain_value(const SBD_VELDRAN& device, const SBD_PARAMETER_RULE& rule,
                          const SBD_PARAMETER_STATE& state, FINDING& finding) {
  const std::string valid = explain_values(device, rule);
  if (state.statement != nullptr) return valid + explain_statement(device, rule, state);
  // A text that is not stated is an empty one.
  const std::string required = explain_requirement(device, rule, state, finding);
  return fmt::format("not stated{}{}; {}", required.empty() ? "" : ", but ", required, valid);
}

}  // namespace

void explain_fault(const SBD_VELDRAN& device, FINDING& finding) {
  const SBD_PARAMETER_FAULT& fault = device.get_parameter_faults().back();
  SBD_PARAMETER_RULE rule;
  SBD_PARAMETER_STATE state;
  const bool is_known =
      sbd_get_parameter_rule(device.get_chip_type(), fault.reference.c_str(), rule) &&
      sbd_get_parameter_state(device, fault.reference.c_str(), state);
  if (!is_known) return;
  finding.note = fault.is_missing ? explain_requirement(device, rule, state, finding)
                                  : explain_value(device, rule, state, finding);
}

}  // namespace sbd_tool
