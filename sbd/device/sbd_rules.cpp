// Interprets the rules.
#include "sbd/device/sbd_rules.h"

#include <algorithm>
#include <string_view>

namespace {

bool look_up_flag(const SBD_PARAMETER_READER& reader, const char* reference) {
  bool is_defined = false;
  bool has_value = false;
  return reader.lookup_bool_parameter(reference, is_defined, has_value, false);
}

unsigned long look_up_number(const SBD_PARAMETER_READER& reader, const char* reference) {
  bool is_defined = false;
  bool has_value = false;
  return reader.lookup_dword_parameter(reference, is_defined, has_value, false);
}

// The reader's own text; a copy would take memory.
std::string_view look_up_text(const SBD_PARAMETER_READER& reader, const char* reference) {
  const auto* const record = reader.find_parameter(reference);
  if (record != nullptr) return record->m_string_value;
  bool is_defined = false;
  bool has_value = false;
  (void)reader.lookup_string_parameter(reference, is_defined, has_value, false);  // Reports that.
  return {};
}

bool is_in(const SBD_VALUE_SET& values, const SBD_PARAMETER_READER& reader, const char* reference) {
  switch (values.kind) {
    case SBD_VALUE_SET::VS_ANY:
      return true;
    case SBD_VALUE_SET::VS_FALSE:
      return !look_up_flag(reader, reference);
    case SBD_VALUE_SET::VS_RANGE: {
      const unsigned long number = look_up_number(reader, reference);
      return number >= values.low && number <= values.high;
    }
    case SBD_VALUE_SET::VS_NUMBERS: {
      const unsigned long number = look_up_number(reader, reference);
      const unsigned long* const end = values.numbers + values.count;
      return std::find(values.numbers, end, number) != end;
    }
    case SBD_VALUE_SET::VS_TEXTS: {
      const std::string_view text = look_up_text(reader, reference);
      const char* const* const end = values.texts + values.count;
      return std::find(values.texts, end, text) != end;
    }
    default:
      return true;
  }
}

}  // namespace

bool sbd_holds(const SBD_RULE_CONDITION& condition, const SBD_PARAMETER_READER& reader) {
  switch (condition.test) {
    case SBD_RULE_CONDITION::RT_IS_TRUE:
      return look_up_flag(reader, condition.reference);
    case SBD_RULE_CONDITION::RT_IS_FALSE:
      return !look_up_flag(reader, condition.reference);
    case SBD_RULE_CONDITION::RT_IS_TEXT:
      return look_up_text(reader, condition.reference) == condition.text;
    case SBD_RULE_CONDITION::RT_IS_NOT_TEXT:
      return look_up_text(reader, condition.reference) != condition.text;
    default:
      return false;
  }
}

const SBD_VALUE_SET& sbd_allowed_values(const SBD_VALUE_RULE& rule,
                                        const SBD_PARAMETER_READER& reader) {
  const SBD_RULE_CONDITION* const end = rule.exceptions + rule.exception_count;
  const bool is_exception =
      rule.exception_count != 0 &&
      std::all_of(rule.exceptions, end, [&reader](const SBD_RULE_CONDITION& condition) {
        return sbd_holds(condition, reader);
      });
  return is_exception ? rule.exception_values : rule.values;
}

bool sbd_is_value_allowed(const SBD_VALUE_RULE& rule, const SBD_PARAMETER_READER& reader) {
  return is_in(sbd_allowed_values(rule, reader), reader, rule.reference);
}
