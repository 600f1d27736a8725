// How the rows of the rule tables are written.
#ifndef SBD_DEVICE_SBD_VALUE_SETS_H
#define SBD_DEVICE_SBD_VALUE_SETS_H

#include <cstddef>

#include "sbd/device/sbd_veldran_keyword_texts.h"
#include "sbd/sbd_parameter_rules.h"

inline constexpr SBD_VALUE_SET k_any_value = {SBD_VALUE_SET::VS_ANY, 0, 0, nullptr, nullptr, 0};
inline constexpr SBD_VALUE_SET k_false_only = {SBD_VALUE_SET::VS_FALSE, 0, 0, nullptr, nullptr, 0};

constexpr SBD_VALUE_SET sbd_range(unsigned long low, unsigned long high) {
  return {SBD_VALUE_SET::VS_RANGE, low, high, nullptr, nullptr, 0};
}

template <std::size_t COUNT>
constexpr SBD_VALUE_SET sbd_one_of(const unsigned long (&numbers)[COUNT]) {
  return {SBD_VALUE_SET::VS_NUMBERS, 0, 0, numbers, nullptr, COUNT};
}

template <std::size_t COUNT>
constexpr SBD_VALUE_SET sbd_one_of(const char* const (&texts)[COUNT]) {
  return {SBD_VALUE_SET::VS_TEXTS, 0, 0, nullptr, texts, COUNT};
}

// A rule without exceptions.
constexpr SBD_VALUE_RULE sbd_rule(const char* reference, const SBD_VALUE_SET& values) {
  return {reference, values, nullptr, 0, k_any_value};
}

// A rule with other values for when all `exceptions` hold.
template <std::size_t COUNT>
constexpr SBD_VALUE_RULE sbd_rule(const char* reference, const SBD_VALUE_SET& values,
                                  const SBD_RULE_CONDITION (&exceptions)[COUNT],
                                  const SBD_VALUE_SET& exception_values) {
  return {reference, values, exceptions, COUNT, exception_values};
}

constexpr SBD_RULE_CONDITION sbd_is_true(const char* reference) {
  return {reference, SBD_RULE_CONDITION::RT_IS_TRUE, nullptr};
}
constexpr SBD_RULE_CONDITION sbd_is_false(const char* reference) {
  return {reference, SBD_RULE_CONDITION::RT_IS_FALSE, nullptr};
}
constexpr SBD_RULE_CONDITION sbd_is_text(const char* reference, const char* text) {
  return {reference, SBD_RULE_CONDITION::RT_IS_TEXT, text};
}
constexpr SBD_RULE_CONDITION sbd_is_not_text(const char* reference, const char* text) {
  return {reference, SBD_RULE_CONDITION::RT_IS_NOT_TEXT, text};
}

// How a port of the DPRAM can be used.
inline constexpr const char* k_port_modes[] = {SBD_KEYWORD::NO_PORTS, SBD_KEYWORD::ONE_PORT,
                                               SBD_KEYWORD::TWO_PORTS, SBD_KEYWORD::DUAL_PORT};

#endif
