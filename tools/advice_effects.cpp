#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_veldran_keywords.h"
#include "tools/advice.h"
#include "tools/advice_rules.h"
#include "tools/names.h"

namespace sbd_tool {

namespace {

// A setting that another one makes void, beyond what the rules of the chips say about parameters
// that have to be stated.
struct EFFECT {
  std::string parameter;
  std::string setting;
  std::string_view void_when;  // The value of the setting.
};

std::string join(const char* block, std::string_view parameter) {
  return std::string(block).append(".").append(parameter);
}

const std::vector<EFFECT>& effects() {
  static const std::vector<EFFECT> k_effects = {
      {join(SBD_VEL_EBI, SBD_VEL_TIMEOUT_CLOCK_CYCLES), join(SBD_VEL_EBI, SBD_VEL_TIMEOUT_ENABLE),
       "false"},
      {join(SBD_VEL_PLD, SBD_VEL_GPIO_PORT_WIDTH), join(SBD_VEL_PLD, SBD_VEL_USE_GPIO_PORT),
       "false"},
      {join(SBD_VEL_PLD, SBD_VEL_PLD_TO_STRIPE_INTERRUPT_MODE),
       join(SBD_VEL_PLD, SBD_VEL_USE_PLD_TO_STRIPE_INTERRUPTS), "false"},
      {join(SBD_VEL_DPRAM, SBD_VEL_COMBINED_DATA_WIDTH), join(SBD_VEL_DPRAM, SBD_VEL_COMBINED_MODE),
       "false"},
      {join(SBD_VEL_DPRAM, SBD_VEL_COMBINED_OUTPUTS_REGISTERED),
       join(SBD_VEL_DPRAM, SBD_VEL_COMBINED_MODE), "false"},
      {join(SBD_VEL_DPRAM, SBD_VEL_DATA_WIDTH_0), join(SBD_VEL_DPRAM, SBD_VEL_COMBINED_MODE),
       "true"},
      {join(SBD_VEL_DPRAM, SBD_VEL_DATA_WIDTH_1), join(SBD_VEL_DPRAM, SBD_VEL_COMBINED_MODE),
       "true"},
      {join(SBD_VEL_DPRAM, SBD_VEL_DATA_WIDTH_0), join(SBD_VEL_DPRAM, SBD_VEL_MODE_0),
       SBD_VEL_NO_PORTS},
      {join(SBD_VEL_DPRAM, SBD_VEL_DATA_WIDTH_1), join(SBD_VEL_DPRAM, SBD_VEL_MODE_1),
       SBD_VEL_NO_PORTS},
      {join(SBD_VEL_DPRAM, SBD_VEL_OUTPUTS_REGISTERED_0), join(SBD_VEL_DPRAM, SBD_VEL_MODE_0),
       SBD_VEL_NO_PORTS},
      {join(SBD_VEL_DPRAM, SBD_VEL_OUTPUTS_REGISTERED_1), join(SBD_VEL_DPRAM, SBD_VEL_MODE_1),
       SBD_VEL_NO_PORTS},
  };
  return k_effects;
}

// Settings that the same other setting makes void.
struct VOID_GROUP {
  PARAMETER_VIEW setting;
  std::vector<const STATED_PARAMETER*> parameters;
};

class EFFECT_ADVICE {
 public:
  EFFECT_ADVICE(const SBD_VELDRAN& device, const STRIPE_CONTENTS& contents)
      : m_device(device), m_contents(contents), m_names(names_of_chip(device.get_chip_type())) {}

  void give(std::vector<FINDING>& advice) {
    for (const STATED_PARAMETER& parameter : m_contents.parameters) {
      if (parameter.view.fault != PARAMETER_VIEW::FAULT::NONE) continue;
      const PARAMETER_VIEW cause = find_cause(parameter);
      if (!cause.name.empty()) {
        add_to_group(cause, parameter);
      } else if (is_default(parameter)) {
        advice.push_back(make_default_finding(parameter));
      }
    }
    for (const VOID_GROUP& group : m_groups) advice.push_back(make_void_finding(group));
  }

 private:
  // The setting that makes the parameter void; one without name if there is none.
  PARAMETER_VIEW find_cause(const STATED_PARAMETER& parameter) const {
    PARAMETER_VIEW cause = find_disabling(parameter.view.name);
    if (cause.name.empty()) cause = find_unrequiring(parameter);
    if (cause.name.empty()) cause = find_by_effect(parameter.view.name);
    return cause;
  }

  // The outermost switch that is off.
  PARAMETER_VIEW find_disabling(const std::string& name) const {
    PARAMETER_VIEW cause;
    for (std::string_view block = block_of(name); !block.empty(); block = block_of(block)) {
      const std::string switch_name = std::string(block) + "." + SBD_VEL_ENABLED;
      if (switch_name == name || m_names.parameters.count(switch_name) == 0) continue;
      const PARAMETER_VIEW view = view_parameter(m_device, switch_name);
      if (view.text == "false" && view.fault == PARAMETER_VIEW::FAULT::NONE) cause = view;
    }
    return cause;
  }

  // What has to be stated on a condition counts on that condition only.
  PARAMETER_VIEW find_unrequiring(const STATED_PARAMETER& parameter) const {
    const bool is_void = parameter.rule.condition != nullptr && !parameter.view.is_required;
    if (!is_void) return {};
    PARAMETER_VIEW cause = view_parameter(m_device, parameter.rule.condition->reference);
    return cause.fault == PARAMETER_VIEW::FAULT::NONE ? cause : PARAMETER_VIEW();
  }

  PARAMETER_VIEW find_by_effect(const std::string& name) const {
    for (const EFFECT& effect : effects()) {
      if (effect.parameter != name) continue;
      PARAMETER_VIEW setting = view_parameter(m_device, effect.setting);
      const bool is_good = setting.fault == PARAMETER_VIEW::FAULT::NONE;
      if (is_good && setting.text == effect.void_when) return setting;
    }
    return {};
  }

  void add_to_group(const PARAMETER_VIEW& cause, const STATED_PARAMETER& parameter) {
    auto group = std::find_if(m_groups.begin(), m_groups.end(), [&cause](const VOID_GROUP& one) {
      return one.setting.name == cause.name;
    });
    if (group == m_groups.end()) group = m_groups.insert(group, VOID_GROUP{cause, {}});
    group->parameters.push_back(&parameter);
  }

  FINDING make_void_finding(const VOID_GROUP& group) const {
    FINDING finding;
    finding.severity = SEVERITY::WARNING;
    finding.key = k_no_effect_key;
    const bool is_one = group.parameters.size() == 1;
    finding.text = fmt::format("{} {} no effect", name_parameters(group), is_one ? "has" : "have");
    finding.parameter = group.parameters.front()->view.name;
    finding.place = group.parameters.front()->view.place;
    const bool is_default = group.setting.origin != PO_STATEMENT;
    finding.note = fmt::format("because {} is {}{}", group.setting.name, group.setting.text,
                               is_default ? " by default" : "");
    finding.note_place = group.setting.place;
    return finding;
  }

  static std::string name_parameters(const VOID_GROUP& group) {
    constexpr std::size_t k_most_names = 3;
    const std::size_t count = group.parameters.size();
    const std::size_t shown = count <= k_most_names ? count : 1;
    std::string text = count == 1 ? "Parameter " : "Parameters ";
    for (std::size_t i = 0; i != shown; ++i) {
      const bool is_last = i + 1 == count;
      text += i == 0 ? "" : is_last ? " and " : ", ";
      text += fmt::format("\"{}\"", group.parameters[i]->view.name);
    }
    return shown == count ? text : text + fmt::format(" and {} more", count - shown);
  }

  // Only what need not be stated can be left out.
  static bool is_default(const STATED_PARAMETER& parameter) {
    const auto requirement = parameter.rule.requirement;
    const PARAMETER_VALUE& value = parameter.rule.present_block_default;
    const bool is_optional = requirement == SBD_VELDRAN_PARAMETER_READER::RQ_OPTIONAL;
    if (!is_optional || !value.m_has_value) return false;
    SBD_STRING text;
    sbd_get_value_text(value, text);
    return !text.empty() && std::string_view(parameter.view.text) == std::string_view(text);
  }

  static FINDING make_default_finding(const STATED_PARAMETER& parameter) {
    FINDING finding;
    finding.severity = SEVERITY::INFO;
    finding.key = k_default_key;
    finding.text = fmt::format("Parameter \"{}\" states its default {}", parameter.view.name,
                               parameter.view.text);
    finding.parameter = parameter.view.name;
    finding.place = parameter.view.place;
    return finding;
  }

  const SBD_VELDRAN& m_device;
  const STRIPE_CONTENTS& m_contents;
  const CHIP_NAMES& m_names;
  std::vector<VOID_GROUP> m_groups;
};

}  // namespace

void advise_effects(const SBD_VELDRAN& device, const STRIPE_CONTENTS& contents,
                    std::vector<FINDING>& advice) {
  EFFECT_ADVICE(device, contents).give(advice);
}

}  // namespace sbd_tool
