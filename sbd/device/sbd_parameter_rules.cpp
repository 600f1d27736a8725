// Answers what the rules of a parameter are and how they stand.
#include "sbd/sbd_parameter_rules.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "sbd/device/sbd_device_sources.h"
#include "sbd/device/sbd_parameter_place.h"
#include "sbd/device/sbd_row_names.h"
#include "sbd/device/sbd_rules.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_joined_name.h"

namespace {

using READER = SBD_VELDRAN_PARAMETER_READER;
using VALUE = SBD_PARAMETER_RULE::VALUE;

// ---- Table rows ----------------------------------------------------------------------------

// Calls `visit` with each row of all tables that is for the chip, until it returns true.
template <class VISIT>
bool visit_table(const SBD_CHIP& chip, const VISIT& visit) {
  const auto visit_rows = [&chip, &visit](const auto* row) {
    for (; row->parameter_name != nullptr; ++row) {
      if ((row->device_mask & chip.device_mask) != 0 && visit(*row)) return true;
    }
    return false;
  };
  return visit_rows(READER::sbd_veldran_bool_parameters) ||
         visit_rows(READER::sbd_veldran_dword_parameters) ||
         visit_rows(READER::sbd_veldran_double_parameters) ||
         visit_rows(READER::sbd_veldran_string_parameters);
}

// Calls `visit` with a row by its number through all tables, if it is for the chip.
template <class VISIT>
bool visit_row(const SBD_CHIP& chip, std::size_t number, const VISIT& visit) {
  const auto visit_one = [&chip, &visit](const auto& row) {
    return (row.device_mask & chip.device_mask) != 0 && visit(row);
  };
  if (number < READER::k_bool_rows) return visit_one(READER::sbd_veldran_bool_parameters[number]);
  number -= READER::k_bool_rows;
  if (number < READER::k_dword_rows) return visit_one(READER::sbd_veldran_dword_parameters[number]);
  number -= READER::k_dword_rows;
  if (number < READER::k_double_rows) {
    return visit_one(READER::sbd_veldran_double_parameters[number]);
  }
  return visit_one(READER::sbd_veldran_string_parameters[number - READER::k_double_rows]);
}

template <class NUMBER>
VALUE make_default(NUMBER number, bool has_default) {
  return {number, false, has_default};
}

VALUE make_default(const char* text, bool has_default) {
  const bool has_text = has_default && text != nullptr;
  VALUE value(SBD_STRING(), false, has_text);
  if (has_text) value.m_string_value = text;
  return value;
}

const SBD_VALUE_RULE* find_value_rule(const SBD_CHIP& chip, std::string_view reference) {
  if (const SBD_VALUE_RULE* const rule = sbd_driver_value_rule(reference)) return rule;
  if (const SBD_VALUE_RULE* const rule = sbd_family_value_rule(reference)) return rule;
  return chip.value_rule(reference);
}

const SBD_RULE_CONDITION* find_condition(std::string_view reference) {
  const SBD_REQUIREMENT_RULE* rule = sbd_driver_requirement(reference);
  if (rule == nullptr) rule = sbd_family_requirement(reference);
  return rule != nullptr ? &rule->condition : nullptr;
}

template <class ROW>
void describe(const SBD_CHIP& chip, const ROW& row, SBD_PARAMETER_RULE& rule) {
  rule.reference = SBD_JOINED_NAME(row.block_name, row.parameter_name).view();
  rule.block_name = row.block_name;
  rule.parameter_name = row.parameter_name;
  rule.present_block_default = make_default(row.default_value, row.has_default);
  rule.absent_block_default = make_default(row.absent_block_value, row.has_default);
  rule.type = rule.present_block_default.m_value_type;
  rule.requirement = static_cast<READER::REQUIRED>(row.requirement);
  const bool is_by_rule = rule.requirement == READER::RQ_BY_RULE;
  rule.condition = is_by_rule ? find_condition(rule.reference) : nullptr;
  rule.value_rule = row.validate_value ? find_value_rule(chip, rule.reference) : nullptr;
}

bool find_rule(SBD_VELDRAN::CHIP_TYPE type, const char* reference, SBD_PARAMETER_RULE& rule) {
  const SBD_CHIP* const chip = sbd_chip(type);
  if (chip == nullptr || reference == nullptr) return false;
  SBD_STRING lower = reference;
  sbd_lower(lower);
  const auto take = [chip, &rule](const auto& row) {
    SBD_PARAMETER_RULE found;
    describe(*chip, row, found);
    rule = std::move(found);
    return true;
  };
  return SBD_ROW_NAMES::get().visit_rows_of(
      lower, [chip, &take](std::size_t row) { return visit_row(*chip, row, take); });
}

// ---- Settings ------------------------------------------------------------------------------

SBD_RULE_SETTING make_setting(const SBD_VELDRAN& device, const SBD_PARAMETER_READER& reader,
                              const SBD_RULE_CONDITION& condition) {
  SBD_RULE_SETTING setting;
  setting.reference = condition.reference;
  const VALUE* const value = reader.find_parameter(condition.reference);
  if (value != nullptr) setting.value = *value;
  setting.origin = reader.get_parameter_origin(condition.reference);
  setting.statement =
      sbd_find_place(device, reader.get_module_name(), condition.reference).statement;
  return setting;
}

SBD_PARAMETER_STATE make_state(const SBD_VELDRAN& device, const SBD_PARAMETER_READER& reader,
                               const SBD_PARAMETER_RULE& rule, const VALUE& value) {
  SBD_PARAMETER_STATE state;
  state.value = value;
  state.origin = reader.get_parameter_origin(rule.reference.c_str());
  const SBD_PARAMETER_PLACE place =
      sbd_find_place(device, reader.get_module_name(), rule.reference);
  state.statement = place.statement;
  state.block = place.block;

  state.is_required = rule.requirement == READER::RQ_ALWAYS;
  if (rule.condition != nullptr) {
    state.is_required = sbd_holds(*rule.condition, reader);
    state.requirement_settings.push_back(make_setting(device, reader, *rule.condition));
  }
  if (rule.value_rule == nullptr) return state;
  state.allowed_values = &sbd_allowed_values(*rule.value_rule, reader);
  for (std::size_t i = 0; i != rule.value_rule->exception_count; ++i) {
    state.value_settings.push_back(make_setting(device, reader, rule.value_rule->exceptions[i]));
  }
  return state;
}

}  // namespace

bool sbd_get_parameter_rule(SBD_VELDRAN::CHIP_TYPE chip, const char* reference,
                            SBD_PARAMETER_RULE& rule) noexcept {
  return sbd_guarded(k_source_veldran_parameter_reader, false,
                     [chip, reference, &rule] { return find_rule(chip, reference, rule); });
}

bool sbd_get_parameter_names(SBD_VELDRAN::CHIP_TYPE chip, SBD_STRING_LIST& references) noexcept {
  references.clear();
  const SBD_CHIP* const known_chip = sbd_chip(chip);
  if (known_chip == nullptr) return false;
  return sbd_guarded(k_source_veldran_parameter_reader, false, [known_chip, &references] {
    SBD_STRING_LIST found;
    visit_table(*known_chip, [&found](const auto& row) {
      const SBD_JOINED_NAME name(row.block_name, row.parameter_name);
      for (const SBD_STRING& earlier : found) {
        if (earlier == name.view()) return false;
      }
      found.emplace_back(name.view());
      return false;
    });
    references.swap(found);
    return true;
  });
}

bool sbd_get_parameter_state(const SBD_VELDRAN& device, const char* reference,
                             SBD_PARAMETER_STATE& state) noexcept {
  const SBD_PARAMETER_READER* const reader = device.get_parameter_reader();
  if (reader == nullptr) return false;
  return sbd_guarded(k_source_veldran_parameter_reader, false,
                     [&device, reader, reference, &state] {
                       SBD_PARAMETER_RULE rule;
                       if (!find_rule(device.get_chip_type(), reference, rule)) return false;
                       const VALUE* const value = reader->find_parameter(rule.reference.c_str());
                       if (value == nullptr) return false;
                       state = make_state(device, *reader, rule, *value);
                       return true;
                     });
}
