// What the device layer knows about its parameters, as data and in English.
//
// sbd_get_parameter_rule tells how a chip treats a parameter; sbd_get_parameter_state tells how the
// parameter stands in a descriptor that was read, and why. Both answer from the very tables that
// validation goes by.
//
// Parameters are named as in sbd/sbd_parameter_reader.h, in any letter case. Pointers in answers
// lead to constant data, unless something else is said. Nothing throws; null names and unknown ones
// give false in silence.
#ifndef SBD_SBD_PARAMETER_RULES_H
#define SBD_SBD_PARAMETER_RULES_H

#include <cstddef>
#include <cstdint>

#include "sbd/sbd_api.h"
#include "sbd/sbd_memory.h"
#include "sbd/sbd_parameter_reader.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_parameter_reader.h"

// ---- Rules as data -----------------------------------------------------------------------------

// A test of one setting. A setting without value counts as false or "".
struct SBD_RULE_CONDITION {
  // What can be tested.
  enum TEST : std::uint32_t { RT_IS_TRUE = 0, RT_IS_FALSE = 1, RT_IS_TEXT = 2, RT_IS_NOT_TEXT = 3 };

  const char* reference;  // The setting.
  TEST test;              // What has to be so.
  const char* text;       // What a text is compared with; null in tests of a Boolean.
};

// The values that a parameter may have.
struct SBD_VALUE_SET {
  // How the values are told.
  enum KIND : std::uint32_t {
    VS_ANY = 0,      // Any value of the parameter's type.
    VS_FALSE = 1,    // false
    VS_RANGE = 2,    // Whole numbers from `low` to `high`, both included.
    VS_NUMBERS = 3,  // One of `numbers`.
    VS_TEXTS = 4     // One of `texts`.
  };

  KIND kind;                     // Which of the members below count.
  unsigned long low;             // VS_RANGE
  unsigned long high;            // VS_RANGE
  const unsigned long* numbers;  // VS_NUMBERS; else null.
  const char* const* texts;      // VS_TEXTS, in lower case; else null.
  std::size_t count;             // Of `numbers` or `texts`.
};

// The values that a parameter may have, as the settings are.
struct SBD_VALUE_RULE {
  const char* reference;  // The parameter, relative to the stripe's module.
  SBD_VALUE_SET values;   // Those that are allowed.
  // When there are exceptions and all of them hold, these values are allowed instead.
  const SBD_RULE_CONDITION* exceptions;
  std::size_t exception_count;     // 0 when there are none.
  SBD_VALUE_SET exception_values;  // Of use only with exceptions.
};

// When a parameter has to be stated.
struct SBD_REQUIREMENT_RULE {
  const char* reference;         // The parameter, relative to the stripe's module.
  SBD_RULE_CONDITION condition;  // It is required when this holds.
};

// ---- A parameter of a chip ---------------------------------------------------------------------

// What is laid down for a parameter.
struct SBD_PARAMETER_RULE {
  using VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;  // With its type.

  SBD_STRING reference;                  // In lower case.
  const char* block_name = nullptr;      // Path below the stripe's module; null: the module itself.
  const char* parameter_name = nullptr;  // Inside that block.
  VALUE::VALUE_TYPE type = VALUE::BOOL_VALUE;  // Of its value and defaults.

  // The defaults; their m_has_value is false where there is none. (A string then reads as "".)
  VALUE present_block_default{false, false, false};  // Its block is there and does not state it.
  VALUE absent_block_default{false, false, false};   // Its block is not there.

  // Whether it has to be stated.
  SBD_VELDRAN_PARAMETER_READER::REQUIRED requirement = SBD_VELDRAN_PARAMETER_READER::RQ_OPTIONAL;
  const SBD_RULE_CONDITION* condition = nullptr;  // RQ_BY_RULE: when it is required; else null.

  // Null when every value of the type is good. The rule applies whenever the parameter is stated,
  // to the default of a string as well, but with RQ_BY_RULE only while the parameter is required. A
  // value of another type is never good.
  const SBD_VALUE_RULE* value_rule = nullptr;
};

// How `chip` treats a parameter. False for one that the chip does not have, and for chips without
// rules (the MIPS-based ones). What `rule` held is lost only when the result is true.
SBD_API bool sbd_get_parameter_rule(SBD_VELDRAN::CHIP_TYPE chip, const char* reference,
                                    SBD_PARAMETER_RULE& rule) noexcept;

// All parameters of the chip, each once, in the order in which they are validated. The list is
// cleared first. False, with an empty list, for chips without rules.
SBD_API bool sbd_get_parameter_names(SBD_VELDRAN::CHIP_TYPE chip,
                                     SBD_STRING_LIST& references) noexcept;

// ---- A parameter of a descriptor that was read -------------------------------------------------

// A setting that a rule looks at, as it is.
struct SBD_RULE_SETTING {
  SBD_STRING reference;  // Relative to the stripe's module.
  // With its default, if it has one and is not stated.
  SBD_PARAMETER_READER::SBD_PARAMETER_VALUE value{false, false, false};
  SBD_PARAMETER_ORIGIN origin = PO_NONE;  // Where that comes from.
  // Its statement in the document, or null; valid as long as the node below.
  const SBD_FILE_PARSER::SBD_NODE* statement = nullptr;
};

// A parameter as the document that was read has it.
struct SBD_PARAMETER_STATE {
  // The value that get_parameter gives.
  SBD_PARAMETER_READER::SBD_PARAMETER_VALUE value{false, false, false};
  SBD_PARAMETER_ORIGIN origin = PO_NONE;  // Where it came from when the document was read.

  // Its statement, and the block where it belongs, as the document is now; null where there is
  // none. They are the document's and valid until it is edited, cleared or read again. get_range of
  // the document tells their places.
  const SBD_FILE_PARSER::SBD_NODE* statement = nullptr;
  const SBD_FILE_PARSER::SBD_NODE* block = nullptr;  // As said above.

  bool is_required = false;                           // It has to be stated, as the settings are.
  SBD_VECTOR<SBD_RULE_SETTING> requirement_settings;  // What made it required, or not.

  // The values that the rule allows as the settings are; null when every value of the type is good.
  // A rule that does not apply at the moment (see SBD_PARAMETER_RULE) is given all the same.
  const SBD_VALUE_SET* allowed_values = nullptr;
  SBD_VECTOR<SBD_RULE_SETTING> value_settings;  // Which of a rule's values are allowed is up to
                                                // these; empty for a rule without exceptions.
};

// How a parameter stands. False, and nothing written, when `device` has no parameters or its chip
// does not have this one. After a fault (SBD_VELDRAN::get_parameter_faults), and already while its
// message is posted, this explains it.
SBD_API bool sbd_get_parameter_state(const SBD_VELDRAN& device, const char* reference,
                                     SBD_PARAMETER_STATE& state) noexcept;

// ---- In English --------------------------------------------------------------------------------
//
// Each replaces `text`; false, and nothing written, when the host has no memory for it.

// "sdram.enabled is true", "clocks.pll_ahb_bypass is false", "dpram.mode[0] is not no_ports".
SBD_API bool sbd_get_condition_text(const SBD_RULE_CONDITION& condition, SBD_STRING& text) noexcept;

// "1 to 15", "one of: little, big", "16384", "false", "any value".
SBD_API bool sbd_get_values_text(const SBD_VALUE_SET& values, SBD_STRING& text) noexcept;

// The values with their exception: "one of: 8, 16, 32; any value when dpram.mode[0] is no_ports".
SBD_API bool sbd_get_values_text(const SBD_VALUE_RULE& rule, SBD_STRING& text) noexcept;

// The values of a parameter, its type if it has no value rule: "true or false", "any whole number",
// "any number", "any text".
SBD_API bool sbd_get_values_text(const SBD_PARAMETER_RULE& rule, SBD_STRING& text) noexcept;

// "optional", "always required", "required when sdram.enabled is true".
SBD_API bool sbd_get_requirement_text(const SBD_PARAMETER_RULE& rule, SBD_STRING& text) noexcept;

// A value as a descriptor would state it: "true", "255", "7.5", "no_ports"; "" when there is none.
SBD_API bool sbd_get_value_text(const SBD_PARAMETER_READER::SBD_PARAMETER_VALUE& value,
                                SBD_STRING& text) noexcept;

#endif
