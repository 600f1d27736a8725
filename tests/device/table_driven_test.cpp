// Every parameter of every chip: absent, at and past its limits, of the wrong kind, required or
// not.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/device/descriptor_text.h"
#include "tests/device/device_support.h"
#include "tests/device/expected_model.h"
#include "tests/device/expected_tables.h"
#include "tests/device/value_choices.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"

namespace {

// ---- What is tried -----------------------------------------------------------------------------

// The settings in `base` with `parameter` being each that matters where rules look at it.
std::vector<SETTINGS> with_each_condition(const SETTINGS& base, const std::string& parameter,
                                          bool is_mode) {
  std::vector<SETTINGS> all;
  std::vector<WRITTEN> values = {flag(true), flag(false), whole(1), reference()};
  if (is_mode) {
    values = {keyword("no_ports"), keyword("NO_PORTS"),     keyword("one_port"),
              keyword("unknown"),  keyword("\"no_ports\""), whole(1)};
  }
  for (const WRITTEN& value : values) all.push_back(SETTINGS(base).set(parameter, value));
  all.push_back(SETTINGS(base).remove(parameter));
  return all;
}

// The surroundings in which a parameter is tried.
std::vector<SETTINGS> surroundings(const SETTINGS& base, const PARAMETER_ROW& row, CHIP chip) {
  std::vector<SETTINGS> all = {base};
  const std::string name = row.reference();
  const VALUE_RULE* const value_rule = find_value_rule(name, chip);
  if (row.requirement == REQUIREMENT::BY_RULE) {
    const REQUIREMENT_RULE* const rule = find_requirement_rule(name);
    all = with_each_condition(base, rule->condition_parameter,
                              rule->condition == REQUIREMENT_RULE::IS_PORT_USED);
  } else if (value_rule && !value_rule->freeing_mode.empty()) {
    all = with_each_condition(base, value_rule->freeing_mode, true);
  } else if (value_rule && value_rule->low_when_bypassed != 0) {
    all.clear();
    for (const SETTINGS& settings : with_each_condition(base, "clocks.pll_ahb_bypass", false)) {
      for (const SETTINGS& each : with_each_condition(settings, "clocks.pll_sdram_bypass", false)) {
        all.push_back(each);
      }
    }
  }
  return all;
}

class TABLE_DRIVEN : public testing::TestWithParam<CHIP> {
 protected:
  CHIP chip() const { return GetParam(); }

  // Every fourth descriptor is written in mixed case and order. Returns false after a failure, so
  // that one fault does not fill the log. Given a row, also asks for its parameter and for what
  // follows from the clocks and ports.
  bool try_out(const SETTINGS& settings, const PARAMETER_ROW* row = nullptr) {
    STYLE style;
    if (++m_count % 4 == 0) style.variety = &m_random;
    SBD_VELDRAN device(style.device.c_str());
    const EXPECTED_DEVICE expected(settings, chip());
    expect_findings(settings, chip(), expected, device, style);
    if (row) {
      MESSAGE_RECORDER recorder;
      expect_value(device, row->reference(), expected.value(row->reference()), recorder);
      const std::string block = row->block ? row->block : "";
      if (block == "clocks" || block == "dpram") {
        expect_clocks_and_widths(device, expected, recorder);
      }
    }
    return !HasFailure();
  }

  std::mt19937_64 m_random{20240301};
  unsigned m_count = 0;
};

INSTANTIATE_TEST_SUITE_P(CHIPS, TABLE_DRIVEN, testing::ValuesIn(ALL_CHIPS),
                         [](const auto& parameter) { return name_of(parameter.param); });

// ---- The tables themselves ---------------------------------------------------------------------

TEST(EXPECTED_TABLES, HaveTheRightSize) {
  std::vector<int> counts(4);
  for (const PARAMETER_ROW& row : parameter_rows()) ++counts[static_cast<std::size_t>(row.kind)];
  EXPECT_EQ(counts, (std::vector<int>{59, 64, 10, 20}));
}

TEST(EXPECTED_TABLES, EveryNameIsThereOnceOnEveryChipButTheOneThatIsListedTwice) {
  for (const CHIP chip : ALL_CHIPS) {
    std::multiset<std::string> names;
    for (const PARAMETER_ROW& row : rows_of(chip)) names.insert(row.reference());
    EXPECT_EQ(names.size(), 149u);
    for (const std::string& name : names) {
      EXPECT_EQ(names.count(name), name == "sdram.active_to_read_or_write_delay" ? 2u : 1u) << name;
    }
  }
}

TEST(EXPECTED_TABLES, EveryRowHasTheRulesThatItNeeds) {
  for (const CHIP chip : ALL_CHIPS) {
    for (const PARAMETER_ROW& row : rows_of(chip)) {
      const std::string name = row.reference();
      EXPECT_EQ(find_requirement_rule(name) != nullptr, row.requirement == REQUIREMENT::BY_RULE)
          << name;
      if (row.is_value_checked) {
        EXPECT_NE(find_value_rule(name, chip), nullptr) << name_of(chip) << " " << name;
      }
    }
  }
}

TEST_P(TABLE_DRIVEN, GoodSettingsAreGood) {
  EXPECT_TRUE(EXPECTED_DEVICE(minimal_settings(), chip()).is_good());
  EXPECT_EQ(EXPECTED_DEVICE(full_settings(chip()), chip()).texts(), TEXTS{});
  try_out(minimal_settings());
  try_out(full_settings(chip()));
}

// ---- Values ------------------------------------------------------------------------------------

TEST_P(TABLE_DRIVEN, EveryValueOfEveryParameterInEverySurrounding) {
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    const std::vector<WRITTEN> values = values_to_try(row, chip());
    for (const SETTINGS& settings : surroundings(minimal_settings(), row, chip())) {
      for (const WRITTEN& value : values) {
        if (!try_out(SETTINGS(settings).set(row.reference(), value), &row)) return;
      }
    }
  }
}

TEST_P(TABLE_DRIVEN, EveryValueAmongAllOtherParameters) {
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    for (const WRITTEN& value : values_to_try(row, chip())) {
      if (!try_out(full_settings(chip()).set(row.reference(), value))) return;
    }
  }
}

TEST_P(TABLE_DRIVEN, AbsentParametersAndBlocks) {
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    for (const SETTINGS& base : {minimal_settings(), full_settings(chip())}) {
      for (const SETTINGS& settings : surroundings(base, row, chip())) {
        if (!try_out(SETTINGS(settings).remove(row.reference()), &row)) return;
        if (row.block && !try_out(SETTINGS(settings).remove_block(row.block), &row)) return;
      }
    }
  }
}

TEST_P(TABLE_DRIVEN, NothingAtAll) {
  SETTINGS settings;
  EXPECT_FALSE(EXPECTED_DEVICE(settings, chip()).is_good());
  try_out(settings);
  for (const char* const block :
       {"clocks", "ebi", "dpram", "sdram", "uart", "trace", "pld", "registers", "sram[0]",
        "sram[1]", "pld[0]", "pld[3]", "ebi.region[2]", "sdram.region[1]", "dpram.region[1]"}) {
    try_out(settings.add_block(block));
  }
}

TEST_P(TABLE_DRIVEN, EveryParameterOfTheWrongKind) {
  SETTINGS settings;
  for (const PARAMETER_ROW& row : rows_of(chip())) settings.set(row.reference(), list());
  try_out(settings);
  for (const PARAMETER_ROW& row : rows_of(chip())) settings.set(row.reference(), reference());
  try_out(settings);
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    settings.set(row.reference(), row.kind == KIND::BOOL ? whole(1) : flag(true));
  }
  try_out(settings);
}

// Whatever is good for one parameter is tried in all others.
TEST_P(TABLE_DRIVEN, OneNumberInAllParameters) {
  std::set<std::uint64_t> numbers;
  for (std::uint64_t number = 0; number <= 300; ++number) numbers.insert(number);
  for (std::uint64_t power = 512; power <= 4294967296; power *= 2) {
    numbers.insert({power - 1, power % 4294967296, (power + 1) % 4294967296});
  }
  for (std::uint64_t power = 1000; power <= 4294967295; power *= 10) numbers.insert(power);
  for (const std::uint64_t number : numbers) {
    SETTINGS settings = full_settings(chip());
    for (const PARAMETER_ROW& row : rows_of(chip())) {
      if (row.kind == KIND::DWORD) settings.set(row.reference(), whole(number));
    }
    if (!try_out(settings)) return;
  }
}

TEST_P(TABLE_DRIVEN, OneKeywordInAllParameters) {
  std::set<std::string> keywords = {"kvp1",        "kvp32",  "sstl_18", "lvttl_5v0", "none", "ddr2",
                                    "three_ports", "medium", "on",      "a",         "_"};
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    const VALUE_RULE* const rule = find_value_rule(row.reference(), chip());
    if (rule) keywords.insert(rule->keywords.begin(), rule->keywords.end());
  }
  EXPECT_GT(keywords.size(), 30u);
  for (const std::string& text : keywords) {
    SETTINGS settings = full_settings(chip());
    for (const PARAMETER_ROW& row : rows_of(chip())) {
      if (row.kind == KIND::STRING) settings.set(row.reference(), keyword(text));
    }
    if (!try_out(settings)) return;
  }
}

// ---- Requirements ------------------------------------------------------------------------------

// All parameters that hang on one setting, absent, wrong or of the wrong kind at once.
TEST_P(TABLE_DRIVEN, SettingsSwitchRequirementsOnAndOff) {
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    if (row.requirement != REQUIREMENT::BY_RULE) continue;
    const REQUIREMENT_RULE* const rule = find_requirement_rule(row.reference());
    if (rule->parameters.front() != row.reference()) continue;
    for (const SETTINGS& base : {minimal_settings(), full_settings(chip())}) {
      for (const SETTINGS& settings : surroundings(base, row, chip())) {
        SETTINGS absent = settings, wrong = settings, other_kind = settings;
        for (const std::string& name : rule->parameters) {
          absent.remove(name);
          wrong.set(name, name.find("standard") != std::string::npos || name == "sdram.type"
                              ? keyword("wrong")
                              : whole(0));
          other_kind.set(name, flag(true));
        }
        try_out(absent);
        try_out(wrong);
        try_out(other_kind);
      }
    }
  }
}

// Functions on and off in all combinations, while nothing that they need is stated.
TEST_P(TABLE_DRIVEN, AllCombinationsOfSwitches) {
  const std::vector<std::string> switches = {
      "boot_from_flash", "clocks.pll_ahb_bypass", "clocks.pll_sdram_bypass", "sdram.enabled",
      "ebi.enabled",     "uart.enabled",          "trace.enabled",           "dpram.combined_mode"};
  for (unsigned mask = 0; mask < 1u << switches.size(); ++mask) {
    SETTINGS settings = minimal_settings();
    for (std::size_t index = 0; index < switches.size(); ++index) {
      settings.set(switches[index], flag((mask >> index & 1) != 0));
    }
    if (!try_out(settings)) return;
  }
}

TEST_P(TABLE_DRIVEN, AllCombinationsOfPortSettings) {
  const std::vector<WRITTEN> modes = {keyword("no_ports"),  keyword("One_Port"),
                                      keyword("two_ports"), keyword("dual_port"),
                                      keyword("other"),     whole(2)};
  for (const WRITTEN& first : modes) {
    for (const WRITTEN& second : modes) {
      for (const WRITTEN& combined : {flag(true), flag(false), whole(1)}) {
        for (const unsigned long width : {8ul, 16ul, 32ul, 64ul, 7ul}) {
          SETTINGS settings = minimal_settings();
          settings.set("dpram.mode[0]", first)
              .set("dpram.mode[1]", second)
              .set("dpram.combined_mode", combined)
              .set("dpram.data_width[0]", whole(width))
              .set("dpram.data_width[1]", whole(width))
              .set("dpram.combined_data_width", whole(width));
          for (const PARAMETER_ROW& row : rows_of(chip())) {
            if (row.reference() == "dpram.mode[0]" && !try_out(settings, &row)) return;
          }
        }
      }
    }
  }
}

// ---- Queries -----------------------------------------------------------------------------------

TEST_P(TABLE_DRIVEN, ValuesAreAnsweredInAllFourKinds) {
  SETTINGS odd = minimal_settings();
  odd.add_block("sdram").add_block("ebi.region[1]").add_block("pld").add_block("uart");
  SETTINGS wrong;
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    wrong.set(row.reference(), row.kind == KIND::BOOL ? keyword("on") : flag(true));
  }
  for (const SETTINGS& settings : {SETTINGS(), odd, full_settings(chip()), wrong}) {
    for (const bool has_variety : {false, true}) {
      STYLE style;
      style.module = has_variety ? "StripeModule" : "stripe";
      style.variety = has_variety ? &m_random : nullptr;
      SBD_VELDRAN device(style.device.c_str());
      const EXPECTED_DEVICE expected(settings, chip());
      expect_findings(settings, chip(), expected, device, style);
      MESSAGE_RECORDER recorder;
      for (const auto& [name, value] : expected.values()) {
        expect_value_in_all_kinds(device, name, value, recorder);
        if (HasFailure()) return;
      }
      expect_clocks_and_widths(device, expected, recorder);
    }
  }
}

TEST_P(TABLE_DRIVEN, UnknownNamesAreReported) {
  SBD_VELDRAN device("board");
  EXPECT_TRUE(read_text(device, descriptor_text(full_settings(chip()), chip())));
  MESSAGE_RECORDER recorder;
  TEXTS expected;
  // What the descriptor may well hold, but the tables do not.
  for (const char* const name :
       {"type", "sdram.device_name", "vantrel_version", "board.stripe.endian", "sdram",
        "ebi.region", "ebi.region[4].enabled", "pld[4].enabled", "dpram.mode", "dpram.mode[2]",
        "clocks.input_clock_frequency ", " endian", "sdram..type", ""}) {
    SBD_STRING text = "before";
    EXPECT_FALSE(device.get_parameter(name, text)) << name;
    EXPECT_EQ(plain(text), "");
    expected.push_back("Parameter board.stripe." + std::string(name) +
                       " has not been read from the SBD file");
  }
  EXPECT_EQ(recorder.conditions(), expected);
  for (const RECORDED_ERROR& error : recorder.internal_errors()) {
    EXPECT_EQ(error.module, "SBD");
    EXPECT_EQ(error.source, "sbd_parameter_reader");
  }
}

// ---- Faults and their places -------------------------------------------------------------------

TEST_P(TABLE_DRIVEN, FaultsNameTheirStatementsAndBlocks) {
  SETTINGS settings = full_settings(chip());
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    if (row.kind == KIND::DWORD) settings.set(row.reference(), keyword("wrong"));
    if (row.kind == KIND::DOUBLE) settings.remove(row.reference());
  }
  settings.remove_block("registers").remove_block("pld[2]").remove("ebi.region[1].address_size");
  SBD_VELDRAN device("board");
  expect_findings(settings, chip(), EXPECTED_DEVICE(settings, chip()), device);
  ASSERT_GT(device.get_parameter_faults().size(), 60u);
  for (const SBD_PARAMETER_FAULT& fault : device.get_parameter_faults()) {
    const std::string name = "board.stripe." + plain(fault.reference);
    EXPECT_EQ(fault.statement, device.get_ref_object(name.c_str(), nullptr)) << name;
    EXPECT_EQ(fault.is_missing, fault.statement == nullptr) << name;
    const std::string block = name.substr(0, name.rfind('.'));
    EXPECT_EQ(fault.block, device.get_ref_object(block.c_str(), nullptr)) << name;
    EXPECT_NE(fault.block, nullptr) << name;
  }
}

}  // namespace
