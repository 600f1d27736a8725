// Devices, readers of parameters and the query of rules.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>

#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_parameter_reader.h"
#include "tests/exhaustion/operations.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;

std::string told_text(bool is_there, const SBD_STRING& text) {
  return told(is_there) + ":" + std::string(text.data(), text.size());
}

// The device and its stripe have names so long that joining them takes memory.
const std::string k_device_name = "board" + std::string(150, 'x');

const std::string& long_descriptor() {
  static const std::string text = [] {
    std::ifstream file(SBD_EXAMPLES "/qmxa10_full.sbd");
    std::ostringstream content;
    content << file.rdbuf();
    const std::string renamed =
        std::regex_replace(content.str(), std::regex("\\bboard\\b"), k_device_name);
    return std::regex_replace(renamed, std::regex("\\bstripe\\b"),
                              "stripe" + std::string(150, 'x'));
  }();
  return text;
}

struct DEVICE {
  DEVICE() = default;
  explicit DEVICE(bool is_read) {
    if (is_read) {
      EXPECT_TRUE(read());
    }
  }
  bool read() {
    return device.read_text(long_descriptor().data(), long_descriptor().size(), "long.sbd");
  }
  // Only what is there to see, since a failed read may have come as far as the parameters.
  std::string state() const { return find_inconsistency(device); }

  SBD_VELDRAN device{k_device_name.c_str()};
  SBD_STRING text;
};

struct READ_DEVICE : DEVICE {
  READ_DEVICE() : DEVICE(true) {}
  const std::string longer_name = std::string(500, 'x');
  std::string state() const { return outline(device); }
};

const OPERATION<DEVICE> k_readings[] = {
    {"text", [](auto& d) { return told(d.read()); }, "false"},
    {"file", [](auto& d) { return told(d.device.read(SBD_EXAMPLES "/faulty_device.sbd")); },
     "false"},
    {"no file", [](auto& d) { return told(d.device.read("/no/such/file")); }, "false"},
};

TEST(DEVICE_EXHAUSTION, ReadingAnswersFalse) {
  // The names were made long where it matters.
  DEVICE device(true);
  SBD_STRING name;
  ASSERT_TRUE(device.device.get_module_ref_name(name));
  ASSERT_GT(name.size(), 300U);
  expect_all_to_survive(k_readings);
}

const OPERATION<READ_DEVICE> k_queries[] = {
    {"another device", [](auto& d) { return told(d.device.select_device(k_device_name.c_str())); },
     "false"},
    {"a device of a longer name",
     [](auto& d) { return told(d.device.select_device(d.longer_name.c_str())); }, "false"},
    {"no such device",
     [](auto& d) { return told(d.device.select_device("a_device_that_is_not_in_the_file")); },
     "false"},
    {"check", [](auto& d) { return told(d.device.check_device()); }, "false"},
    {"name of the module",
     [](auto& d) { return told_text(d.device.get_module_ref_name(d.text), d.text); }, "false:"},
    {"name of the chip",
     [](auto& d) { return told_text(d.device.get_chip_type_name(d.text), d.text); }, "false:"},
    {"boolean",
     [](auto& d) {
       bool value = true;
       return told(d.device.get_parameter("sdram.enabled", value)) + told(value);
     },
     ""},
    {"unknown parameter",
     [](auto& d) {
       double value = 7;
       // An internal error names it.
       MESSAGE_RECORDER recorder;
       return told(d.device.get_parameter("sdram", "nothing_of_that_name_is_in_any_table", value)) +
              std::to_string(value);
     },
     ""},
    {"text", [](auto& d) { return told_text(d.device.get_parameter("endian", d.text), d.text); },
     ""},
    {"number",
     [](auto& d) {
       unsigned long value = 7;
       return told(d.device.get_parameter("sdram", "data_width", value)) + std::to_string(value);
     },
     ""},
    {"clocks",
     [](auto& d) {
       double ahb = 0;
       double sdram = 0;
       unsigned long width = 0;
       return told(d.device.get_ahb_clock_frequency(1, ahb)) +
              told(d.device.get_sdram_clock_frequency(sdram)) +
              told(d.device.get_dpram_data_width(0, width)) + std::to_string(ahb);
     },
     ""},
};

TEST(DEVICE_EXHAUSTION, QueriesAnswerNothing) {
  expect_all_to_survive(k_queries);
}

// Only then does the name of a port need memory.
TEST(DEVICE_EXHAUSTION, PortsOfLongNumbersHaveNoWidth) {
  const READ_DEVICE device;
  const MESSAGE_RECORDER recorder;
  unsigned long width = 7;
  sbd_host::fail_allocation("SBD", 1, true);
  const bool has_width = device.device.get_dpram_data_width(-1234567890, width);
  sbd_host::fail_allocation("SBD", 0, false);
  EXPECT_FALSE(has_width);
  EXPECT_EQ(width, 0U);
  EXPECT_EQ(recorder.conditions(), std::vector<std::string>{"out of memory"});
}

// ---- Rules -----------------------------------------------------------------------------------

struct RULES : READ_DEVICE {
  RULES() {
    (void)sbd_get_parameter_rule(SBD_VELDRAN::CT_QMXA10, k_reference, rule);
    (void)sbd_get_parameter_rule(SBD_VELDRAN::CT_QMXA10, "dpram.data_width[0]", width_rule);
  }
  static constexpr char k_reference[] = "sdram.active_to_read_or_write_delay";

  SBD_PARAMETER_RULE rule;
  SBD_PARAMETER_RULE width_rule;
  SBD_PARAMETER_RULE found;
  SBD_PARAMETER_STATE parameter;
  SBD_STRING_LIST names;
  SBD_STRING long_text = SBD_STRING(100, 't');
  VALUE long_value{long_text, true, true};
};

std::string told_rule(bool is_there, const SBD_PARAMETER_RULE& rule) {
  return told_text(is_there, rule.reference);
}

const OPERATION<RULES> k_rules[] = {
    {"rule",
     [](auto& d) {
       return told_rule(sbd_get_parameter_rule(SBD_VELDRAN::CT_QMXA10, d.k_reference, d.found),
                        d.found);
     },
     "false:"},
    {"rule of a text",
     [](auto& d) {
       const bool is_there =
           sbd_get_parameter_rule(SBD_VELDRAN::CT_QMXA10, "configuration_device", d.found);
       return told_rule(is_there, d.found);
     },
     "false:"},
    {"all names",
     [](auto& d) {
       return told(sbd_get_parameter_names(SBD_VELDRAN::CT_QMXA10, d.names)) +
              std::to_string(d.names.size());
     },
     "false0"},
    {"state",
     [](auto& d) {
       return told(sbd_get_parameter_state(d.device, d.k_reference, d.parameter)) +
              std::to_string(d.parameter.origin) + told(d.parameter.statement) +
              std::to_string(d.parameter.requirement_settings.size());
     },
     "false0null0"},
    {"state with settings",
     [](auto& d) {
       return told(sbd_get_parameter_state(d.device, "dpram.data_width[0]", d.parameter)) +
              told(d.parameter.statement) +
              std::to_string(d.parameter.requirement_settings.size()) +
              std::to_string(d.parameter.value_settings.size());
     },
     "falsenull00"},
    {"condition",
     [](auto& d) { return told_text(sbd_get_condition_text(*d.rule.condition, d.text), d.text); },
     "false:"},
    {"set of values",
     [](auto& d) {
       return told_text(sbd_get_values_text(d.width_rule.value_rule->values, d.text), d.text);
     },
     "false:"},
    {"rule of values",
     [](auto& d) {
       return told_text(sbd_get_values_text(*d.width_rule.value_rule, d.text), d.text);
     },
     "false:"},
    {"values", [](auto& d) { return told_text(sbd_get_values_text(d.width_rule, d.text), d.text); },
     "false:"},
    {"requirement",
     [](auto& d) { return told_text(sbd_get_requirement_text(d.rule, d.text), d.text); }, "false:"},
    {"value", [](auto& d) { return told_text(sbd_get_value_text(d.long_value, d.text), d.text); },
     "false:"},
};

TEST(RULES_EXHAUSTION, NothingIsWritten) {
  expect_all_to_survive(k_rules);
}

// The tables of a device are read up to where its memory ran out, the texts last.
TEST(RULES_EXHAUSTION, ParametersThatCouldNotBeReadHaveNoState) {
  bool is_none_read = false;
  bool is_no_text_read = false;
  for (std::size_t count = 1; !is_none_read || !is_no_text_read; ++count) {
    ASSERT_LT(count, 5000U);
    MESSAGE_RECORDER recorder;
    DEVICE device;
    sbd_host::fail_allocation("SBD", count, true);
    (void)device.read();
    sbd_host::fail_allocation("SBD", 0, false);
    const SBD_PARAMETER_READER* const reader = device.device.get_parameter_reader();
    if (reader == nullptr) continue;
    SBD_PARAMETER_STATE state;
    if (reader->find_parameter("dpram.mode[0]") != nullptr) continue;
    EXPECT_FALSE(sbd_get_parameter_state(device.device, "dpram.mode[0]", state));
    // Whether that is required depends on the mode, which is taken for another one than none.
    if (sbd_get_parameter_state(device.device, "dpram.address_range[0]", state)) {
      EXPECT_TRUE(state.is_required);
      ASSERT_EQ(state.requirement_settings.size(), 1U);
      EXPECT_FALSE(state.requirement_settings[0].value.m_has_value);
      is_no_text_read = true;
    } else {
      is_none_read = true;
    }
  }
}

// ---- A reader of one's own
// -----------------------------------------------------------------------

const std::string k_module = "m" + std::string(160, 'm');
const std::string k_text = "device d { module " + k_module +
                           " { flag = true; number = 5; f = 1.5; word = " + std::string(80, 'w') +
                           "; parameters p { q = 1; } } }";

class OWN_READER : public SBD_PARAMETER_READER {
 public:
  using SBD_PARAMETER_READER::m_parameters;
  using SBD_PARAMETER_READER::m_report_unread;
  using SBD_PARAMETER_READER::SBD_PARAMETER_READER;
  bool read_all_parameters() override {
    return read_bool_parameter(nullptr, "flag", nullptr, nullptr) &&
           read_dword_parameter(nullptr, "number", nullptr, nullptr);
  }
  bool validate_all_parameters() override {
    mark_parameter_as_validated("flag");
    return true;
  }
};

struct READING {
  READING() {
    if (!read_text(document, k_text)) ADD_FAILURE() << "not read";
  }
  std::string state() const {
    std::string names;
    for (const auto& parameter : reader.m_parameters) names += parameter.first.c_str();
    return names;
  }

  SBD_FILE_PARSER document;
  SBD_STRING module = SBD_STRING(("d." + k_module).c_str());
  OWN_READER reader{document, module};
  SBD_STRING text = SBD_STRING(100, 't');
  VALUE value{text, true, true};
  VALUE number{5UL, true, true};
};

const OPERATION<READING> k_parameters[] = {
    {"boolean",
     [](auto& r) { return told(r.reader.read_bool_parameter(nullptr, "flag", nullptr, nullptr)); },
     "false"},
    {"number",
     [](auto& r) { return told(r.reader.read_dword_parameter("p", "q", nullptr, nullptr)); },
     "false"},
    {"float",
     [](auto& r) { return told(r.reader.read_double_parameter(nullptr, "f", nullptr, nullptr)); },
     "false"},
    {"text",
     [](auto& r) {
       return told(r.reader.read_string_parameter(nullptr, "word", nullptr, nullptr));
     },
     "false"},
    {"text of a default",
     [](auto& r) {
       return told(r.reader.read_string_parameter(nullptr, "none", k_module.c_str(), nullptr));
     },
     "false"},
    {"full name", [](auto& r) { return std::string(r.reader.to_full_reference_name("q").c_str()); },
     ""},
    {"joined name",
     [](auto&) {
       return std::string(OWN_READER::join_block_and_parameter_name(k_module.c_str(), "x").c_str());
     },
     ""},
    {"copy of a value",
     [](auto& r) {
       const VALUE copy(r.value);
       return std::to_string(copy.m_string_value.size());
     },
     "0"},
    {"value of a text",
     [](auto& r) {
       const VALUE made(r.text, true, true);
       return std::to_string(made.m_string_value.size());
     },
     "0"},
    {"value assigned",
     [](auto& r) {
       r.number = r.value;
       return std::to_string(r.number.m_string_value.size());
     },
     "0"},
};

TEST(READER_EXHAUSTION, AnswersFalseAndKeepsNothing) {
  for (const auto& operation : k_parameters) {
    // Names that could not be made are empty, as an answer that never fails would be.
    if (std::string(operation.name).find("name") != std::string::npos) continue;
    expect_survival(operation);
    expect_handlers_may_throw(operation);
  }
}

TEST(READER_EXHAUSTION, NamesAreEmpty) {
  READING reading;
  MESSAGE_RECORDER recorder;
  for (const std::size_t count : {1U, 2U}) {
    recorder.forget();
    sbd_host::fail_allocation("SBD", count, true);
    const SBD_STRING full = reading.reader.to_full_reference_name("q");
    sbd_host::fail_allocation("SBD", count, true);
    const SBD_STRING joined =
        OWN_READER::join_block_and_parameter_name(k_module.c_str(), k_module.c_str());
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_EQ(full, "");
    EXPECT_EQ(joined, "");
    EXPECT_EQ(recorder.conditions(), std::vector<std::string>(2, "out of memory"));
  }
}

// What validated and was read before, asked for and reported.
struct READ_READER : READING {
  READ_READER() {
    EXPECT_TRUE(reader.read_and_validate_parameters());
    reader.m_report_unread = false;
    EXPECT_TRUE(reader.read_string_parameter(nullptr, "word", nullptr, nullptr));
    reader.mark_parameter_as_validated("word");
  }
  SBD_STRING out = "before";
  bool is_defined = false;
  bool has_value = false;
};

const OPERATION<READ_READER> k_lookups[] = {
    {"boolean",
     [](auto& r) {
       return told(r.reader.lookup_bool_parameter("flag", r.is_defined, r.has_value, true)) +
              told(r.has_value);
     },
     ""},
    {"number",
     [](auto& r) {
       return std::to_string(
           r.reader.lookup_dword_parameter("number", r.is_defined, r.has_value, false));
     },
     ""},
    {"float of nothing",
     [](auto& r) {
       return std::to_string(
           r.reader.lookup_double_parameter("nothing", r.is_defined, r.has_value, false));
     },
     ""},
    {"text",
     [](auto& r) {
       const SBD_STRING word =
           r.reader.lookup_string_parameter("word", r.is_defined, r.has_value, true);
       return told(r.has_value) + std::to_string(word.size());
     },
     "false0"},
    {"text of a parameter",
     [](auto& r) { return told_text(r.reader.get_parameter("word", r.out), r.out); }, "false:"},
    {"two names",
     [](auto& r) {
       bool value = true;
       std::string answer = told(r.reader.get_parameter(k_module.c_str(), "none", value));
       return answer + told(value);
     },
     "falsefalse"},
    {"record",
     [](auto& r) {
       return told(r.reader.find_parameter("FLAG")) +
              std::to_string(r.reader.get_parameter_origin("flag")) +
              std::to_string(r.reader.get_faults().size());
     },
     ""},
};

TEST(READER_EXHAUSTION, LookupsAnswerNothing) {
  expect_all_to_survive(k_lookups);
}

// ---- The reader of a chip
// ------------------------------------------------------------------------

struct CHIP : READ_DEVICE {
  CHIP() {
    EXPECT_TRUE(device.get_module_ref_name(text));
    reader = std::make_unique<SBD_QMXA10_PARAMETER_READER>(device, text);
  }
  void read() { EXPECT_TRUE(reader->read_all_parameters()); }

  std::unique_ptr<SBD_QMXA10_PARAMETER_READER> reader;
};

struct READ_CHIP : CHIP {
  READ_CHIP() { read(); }
  SBD_STRING delay = "sdram.active_to_read_or_write_delay";
  SBD_STRING width = "sdram.data_width";
};

const OPERATION<CHIP> k_chip_reading[] = {
    {"all parameters", [](auto& c) { return told(c.reader->read_all_parameters()); }, "false"},
    {"reading and validating",
     [](auto& c) { return told(c.reader->read_and_validate_parameters()); }, "false"},
};

const OPERATION<READ_CHIP> k_chip[] = {
    {"validating", [](auto& c) { return told(c.reader->validate_all_parameters()); }, "false"},
    {"missing",
     [](auto& c) {
       return told(c.reader->validate_parameter(c.delay, false, false, c.reader->RQ_ALWAYS, true));
     },
     "false"},
    {"requirement", [](auto& c) { return told(c.reader->is_parameter_required(c.delay)); }, ""},
    {"value", [](auto& c) { return told(c.reader->is_parameter_value_valid(c.width)); }, ""},
};

TEST(CHIP_EXHAUSTION, AnswersFalse) {
  expect_all_to_survive(k_chip_reading);
  expect_all_to_survive(k_chip);
}

TEST(CHIP_EXHAUSTION, WhatHasNoRuleIsRequiredAndNotValid) {
  READ_CHIP chip;
  const SBD_STRING name(200, 'n');
  const MESSAGE_RECORDER recorder;
  sbd_host::fail_allocation("SBD", 1, true);
  const bool is_required = chip.reader->is_parameter_required(name);
  const bool is_valid = chip.reader->is_parameter_value_valid(name);
  sbd_host::fail_allocation("SBD", 0, false);
  EXPECT_TRUE(is_required);
  EXPECT_FALSE(is_valid);
  EXPECT_EQ(recorder.conditions(), std::vector<std::string>(2, "out of memory"));
}

}  // namespace
