// Where the rules are found, and what they say about the settings of a reader.
//
// Each rule is a row of a constant table (types in sbd/sbd_parameter_rules.h). Validation and the
// query for rules go by the same rows.
#ifndef SBD_DEVICE_SBD_RULES_H
#define SBD_DEVICE_SBD_RULES_H

#include <string_view>

#include "sbd/sbd_parameter_rules.h"

// ---- Requirements; null where there is no rule ---------------------------------------------

// What the driver decides by itself, and what the family's rules decide.
const SBD_REQUIREMENT_RULE* sbd_driver_requirement(std::string_view reference);
const SBD_REQUIREMENT_RULE* sbd_family_requirement(std::string_view reference);

// ---- Values; null where there is no rule -----------------------------------------------------

const SBD_VALUE_RULE* sbd_driver_value_rule(std::string_view reference);
const SBD_VALUE_RULE* sbd_family_value_rule(std::string_view reference);

// What is known about a chip.
struct SBD_CHIP {
  unsigned long device_mask;  // Its bit in the parameter tables.
  const SBD_VALUE_RULE* (*value_rule)(std::string_view reference);
};

// The chip of that type; null for a chip without rules.
const SBD_CHIP* sbd_chip(SBD_VELDRAN::CHIP_TYPE type);

// ---- What the rules say ----------------------------------------------------------------------

// Whether a setting is as the condition wants it.
bool sbd_holds(const SBD_RULE_CONDITION& condition, const SBD_PARAMETER_READER& reader);

// The values that the rule allows as the settings are.
const SBD_VALUE_SET& sbd_allowed_values(const SBD_VALUE_RULE& rule,
                                        const SBD_PARAMETER_READER& reader);

// Whether the value of the rule's parameter is one of those.
bool sbd_is_value_allowed(const SBD_VALUE_RULE& rule, const SBD_PARAMETER_READER& reader);

#endif
