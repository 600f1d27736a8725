// The rules in English.
#include <array>
#include <charconv>

#include "sbd/device/sbd_decimal.h"
#include "sbd/device/sbd_device_sources.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/sbd_parameter_rules.h"

namespace {

using VALUE = SBD_PARAMETER_RULE::VALUE;
using READER = SBD_VELDRAN_PARAMETER_READER;

constexpr char k_any_value_text[] = "any value";

SBD_STRING number_text(unsigned long number) {
  char digits[k_longest_decimal];
  return SBD_STRING(digits, sbd_write_decimal(digits, number));
}

// The shortest text that reads back as the same number.
SBD_STRING number_text(double number) {
  std::array<char, 32> text{};
  return SBD_STRING(text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr);
}

const char* flag_text(bool flag) {
  return flag ? "true" : "false";
}

SBD_STRING condition_text(const SBD_RULE_CONDITION& condition) {
  SBD_STRING text = condition.reference;
  switch (condition.test) {
    case SBD_RULE_CONDITION::RT_IS_TRUE:
      return text += " is true";
    case SBD_RULE_CONDITION::RT_IS_FALSE:
      return text += " is false";
    case SBD_RULE_CONDITION::RT_IS_TEXT:
      return text.append(" is ").append(condition.text);
    case SBD_RULE_CONDITION::RT_IS_NOT_TEXT:
      return text.append(" is not ").append(condition.text);
    default:
      return text;
  }
}

// The only value, or "one of: " and all of them.
template <class ITEM_TEXT>
SBD_STRING list_text(std::size_t count, const ITEM_TEXT& item_text) {
  SBD_STRING text = count > 1 ? "one of: " : "";
  for (std::size_t i = 0; i != count; ++i) {
    if (i != 0) text += ", ";
    text += item_text(i);
  }
  return text;
}

SBD_STRING values_text(const SBD_VALUE_SET& values) {
  switch (values.kind) {
    case SBD_VALUE_SET::VS_ANY:
      return k_any_value_text;
    case SBD_VALUE_SET::VS_FALSE:
      return flag_text(false);
    case SBD_VALUE_SET::VS_RANGE:
      return number_text(values.low) + " to " + number_text(values.high);
    case SBD_VALUE_SET::VS_NUMBERS:
      return list_text(values.count,
                       [&values](std::size_t i) { return number_text(values.numbers[i]); });
    case SBD_VALUE_SET::VS_TEXTS:
      return list_text(values.count, [&values](std::size_t i) { return values.texts[i]; });
    default:
      return k_any_value_text;
  }
}

SBD_STRING values_text(const SBD_VALUE_RULE& rule) {
  SBD_STRING text = values_text(rule.values);
  for (std::size_t i = 0; i != rule.exception_count; ++i) {
    text += i == 0 ? "; " + values_text(rule.exception_values) + " when " : SBD_STRING(" and ");
    text += condition_text(rule.exceptions[i]);
  }
  return text;
}

const char* type_text(VALUE::VALUE_TYPE type) {
  switch (type) {
    case VALUE::BOOL_VALUE:
      return "true or false";
    case VALUE::DWORD_VALUE:
      return "any whole number";
    case VALUE::DOUBLE_VALUE:
      return "any number";
    case VALUE::STRING_VALUE:
      return "any text";
    default:
      return k_any_value_text;
  }
}

SBD_STRING values_text(const SBD_PARAMETER_RULE& rule) {
  const SBD_VALUE_RULE* const values = rule.value_rule;
  const bool is_any = values == nullptr || (values->values.kind == SBD_VALUE_SET::VS_ANY &&
                                            values->exception_count == 0);
  return is_any ? SBD_STRING(type_text(rule.type)) : values_text(*values);
}

SBD_STRING requirement_text(const SBD_PARAMETER_RULE& rule) {
  switch (rule.requirement) {
    case READER::RQ_ALWAYS:
      return "always required";
    case READER::RQ_BY_RULE:
      if (rule.condition == nullptr) return "required";
      return "required when " + condition_text(*rule.condition);
    case READER::RQ_OPTIONAL:
    default:
      return "optional";
  }
}

SBD_STRING value_text(const VALUE& value) {
  if (!value.m_has_value) return {};
  switch (value.m_value_type) {
    case VALUE::BOOL_VALUE:
      return flag_text(value.m_bool_value);
    case VALUE::DWORD_VALUE:
      return number_text(static_cast<unsigned long>(value.m_dword_value));
    case VALUE::DOUBLE_VALUE:
      return number_text(value.m_double_value);
    case VALUE::STRING_VALUE:
      return value.m_string_value;
    default:
      return {};
  }
}

template <class MAKE>
bool write_text(SBD_STRING& text, const MAKE& make) noexcept {
  return sbd_guarded(k_source_veldran_parameter_reader, false, [&text, &make] {
    SBD_STRING made = make();
    text.swap(made);
    return true;
  });
}

}  // namespace

bool sbd_get_condition_text(const SBD_RULE_CONDITION& condition, SBD_STRING& text) noexcept {
  return write_text(text, [&condition] { return condition_text(condition); });
}

bool sbd_get_values_text(const SBD_VALUE_SET& values, SBD_STRING& text) noexcept {
  return write_text(text, [&values] { return values_text(values); });
}

bool sbd_get_values_text(const SBD_VALUE_RULE& rule, SBD_STRING& text) noexcept {
  return write_text(text, [&rule] { return values_text(rule); });
}

bool sbd_get_values_text(const SBD_PARAMETER_RULE& rule, SBD_STRING& text) noexcept {
  return write_text(text, [&rule] { return values_text(rule); });
}

bool sbd_get_requirement_text(const SBD_PARAMETER_RULE& rule, SBD_STRING& text) noexcept {
  return write_text(text, [&rule] { return requirement_text(rule); });
}

bool sbd_get_value_text(const VALUE& value, SBD_STRING& text) noexcept {
  return write_text(text, [&value] { return value_text(value); });
}
