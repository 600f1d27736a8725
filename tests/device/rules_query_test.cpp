// The rules that the library tells, and the tables and keywords that it shows.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_keywords.h"
#include "sbd/sbd_veldran_parameter_reader.h"
#include "tests/device/descriptor_text.h"
#include "tests/device/device_support.h"
#include "tests/device/expected_model.h"
#include "tests/device/expected_tables.h"
#include "tests/device/value_choices.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"

namespace {

using READER = SBD_VELDRAN_PARAMETER_READER;

SBD_VELDRAN::CHIP_TYPE type_of(CHIP chip) {
  if (chip == CHIP::QMXA1) return SBD_VELDRAN::CT_QMXA1;
  return chip == CHIP::QMXA4 ? SBD_VELDRAN::CT_QMXA4 : SBD_VELDRAN::CT_QMXA10;
}

// ---- Keywords ----------------------------------------------------------------------------------

struct KEYWORD_CASE {
  const char* name;
  const char* constant;
  const char* text;
};

const std::vector<KEYWORD_CASE> KEYWORDS = {
    {"SBD_VEL_MODE_0", SBD_VEL_MODE_0, "mode[0]"},
    {"SBD_VEL_MODE_1", SBD_VEL_MODE_1, "mode[1]"},
    {"SBD_VEL_ADDRESS_RANGE_0", SBD_VEL_ADDRESS_RANGE_0, "address_range[0]"},
    {"SBD_VEL_ADDRESS_RANGE_1", SBD_VEL_ADDRESS_RANGE_1, "address_range[1]"},
    {"SBD_VEL_DATA_WIDTH_0", SBD_VEL_DATA_WIDTH_0, "data_width[0]"},
    {"SBD_VEL_DATA_WIDTH_1", SBD_VEL_DATA_WIDTH_1, "data_width[1]"},
    {"SBD_VEL_OUTPUTS_REGISTERED_0", SBD_VEL_OUTPUTS_REGISTERED_0, "outputs_registered[0]"},
    {"SBD_VEL_OUTPUTS_REGISTERED_1", SBD_VEL_OUTPUTS_REGISTERED_1, "outputs_registered[1]"},
    {"SBD_VEL_LOCK_GRANT_ADDRESS_BASE_0", SBD_VEL_LOCK_GRANT_ADDRESS_BASE_0,
     "lock_grant_address_base[0]"},
    {"SBD_VEL_LOCK_GRANT_ADDRESS_BASE_1", SBD_VEL_LOCK_GRANT_ADDRESS_BASE_1,
     "lock_grant_address_base[1]"},
    {"SBD_VEL_VELDRAN_ARM", SBD_VEL_VELDRAN_ARM, "veldran_arm"},
    {"SBD_VEL_VELDRAN_MIPS", SBD_VEL_VELDRAN_MIPS, "veldran_mips"},
    {"SBD_VEL_QMXA10", SBD_VEL_QMXA10, "qmxa10"},
    {"SBD_VEL_QMXA4", SBD_VEL_QMXA4, "qmxa4"},
    {"SBD_VEL_QMXA1", SBD_VEL_QMXA1, "qmxa1"},
    {"SBD_VEL_QMXM10", SBD_VEL_QMXM10, "qmxm10"},
    {"SBD_VEL_QMXM4", SBD_VEL_QMXM4, "qmxm4"},
    {"SBD_VEL_QMXM1", SBD_VEL_QMXM1, "qmxm1"},
    {"SBD_VEL_FAMILY", SBD_VEL_FAMILY, "family"},
    {"SBD_VEL_VELDRAN_STRIPE", SBD_VEL_VELDRAN_STRIPE, "veldran_stripe"},
    {"SBD_VEL_TYPE", SBD_VEL_TYPE, "type"},
    {"SBD_VEL_ENDIAN", SBD_VEL_ENDIAN, "endian"},
    {"SBD_VEL_BOOT_FROM_FLASH", SBD_VEL_BOOT_FROM_FLASH, "boot_from_flash"},
    {"SBD_VEL_HOLD_PROCESSOR", SBD_VEL_HOLD_PROCESSOR, "hold_processor"},
    {"SBD_VEL_CONFIGURATION_DEVICE", SBD_VEL_CONFIGURATION_DEVICE, "configuration_device"},
    {"SBD_VEL_KVP2", SBD_VEL_KVP2, "kvp2"},
    {"SBD_VEL_KVP4", SBD_VEL_KVP4, "kvp4"},
    {"SBD_VEL_KVP8", SBD_VEL_KVP8, "kvp8"},
    {"SBD_VEL_KVP16", SBD_VEL_KVP16, "kvp16"},
    {"SBD_VEL_DATA_WIDTH", SBD_VEL_DATA_WIDTH, "data_width"},
    {"SBD_VEL_VANTREL_VERSION", SBD_VEL_VANTREL_VERSION, "vantrel_version"},
    {"SBD_VEL_CLOCKS", SBD_VEL_CLOCKS, "clocks"},
    {"SBD_VEL_SDRAM", SBD_VEL_SDRAM, "sdram"},
    {"SBD_VEL_EBI", SBD_VEL_EBI, "ebi"},
    {"SBD_VEL_DPRAM", SBD_VEL_DPRAM, "dpram"},
    {"SBD_VEL_TRACE", SBD_VEL_TRACE, "trace"},
    {"SBD_VEL_UART", SBD_VEL_UART, "uart"},
    {"SBD_VEL_REGISTERS", SBD_VEL_REGISTERS, "registers"},
    {"SBD_VEL_SRAM", SBD_VEL_SRAM, "sram"},
    {"SBD_VEL_SRAM_0", SBD_VEL_SRAM_0, "sram[0]"},
    {"SBD_VEL_SRAM_1", SBD_VEL_SRAM_1, "sram[1]"},
    {"SBD_VEL_PLD", SBD_VEL_PLD, "pld"},
    {"SBD_VEL_PLD_0", SBD_VEL_PLD_0, "pld[0]"},
    {"SBD_VEL_PLD_1", SBD_VEL_PLD_1, "pld[1]"},
    {"SBD_VEL_PLD_2", SBD_VEL_PLD_2, "pld[2]"},
    {"SBD_VEL_PLD_3", SBD_VEL_PLD_3, "pld[3]"},
    {"SBD_VEL_EBI_REGION", SBD_VEL_EBI_REGION, "ebi.region"},
    {"SBD_VEL_EBI_REGION_0", SBD_VEL_EBI_REGION_0, "ebi.region[0]"},
    {"SBD_VEL_EBI_REGION_1", SBD_VEL_EBI_REGION_1, "ebi.region[1]"},
    {"SBD_VEL_EBI_REGION_2", SBD_VEL_EBI_REGION_2, "ebi.region[2]"},
    {"SBD_VEL_EBI_REGION_3", SBD_VEL_EBI_REGION_3, "ebi.region[3]"},
    {"SBD_VEL_SDRAM_REGION", SBD_VEL_SDRAM_REGION, "sdram.region"},
    {"SBD_VEL_SDRAM_REGION_0", SBD_VEL_SDRAM_REGION_0, "sdram.region[0]"},
    {"SBD_VEL_SDRAM_REGION_1", SBD_VEL_SDRAM_REGION_1, "sdram.region[1]"},
    {"SBD_VEL_DPRAM_REGION", SBD_VEL_DPRAM_REGION, "dpram.region"},
    {"SBD_VEL_DPRAM_REGION_0", SBD_VEL_DPRAM_REGION_0, "dpram.region[0]"},
    {"SBD_VEL_DPRAM_REGION_1", SBD_VEL_DPRAM_REGION_1, "dpram.region[1]"},
    {"SBD_VEL_INPUT_CLOCK_FREQUENCY", SBD_VEL_INPUT_CLOCK_FREQUENCY, "input_clock_frequency"},
    {"SBD_VEL_INPUT_CLOCK_UNITS", SBD_VEL_INPUT_CLOCK_UNITS, "input_clock_units"},
    {"SBD_VEL_PROGRAMMING_CLOCK_FREQUENCY", SBD_VEL_PROGRAMMING_CLOCK_FREQUENCY,
     "programming_clock_frequency"},
    {"SBD_VEL_PROGRAMMING_CLOCK_UNITS", SBD_VEL_PROGRAMMING_CLOCK_UNITS, "programming_clock_units"},
    {"SBD_VEL_DESIRED_AHB1_CLOCK_FREQUENCY", SBD_VEL_DESIRED_AHB1_CLOCK_FREQUENCY,
     "desired_ahb1_clock_frequency"},
    {"SBD_VEL_DESIRED_AHB1_CLOCK_UNITS", SBD_VEL_DESIRED_AHB1_CLOCK_UNITS,
     "desired_ahb1_clock_units"},
    {"SBD_VEL_DESIRED_AHB2_CLOCK_FREQUENCY", SBD_VEL_DESIRED_AHB2_CLOCK_FREQUENCY,
     "desired_ahb2_clock_frequency"},
    {"SBD_VEL_DESIRED_AHB2_CLOCK_UNITS", SBD_VEL_DESIRED_AHB2_CLOCK_UNITS,
     "desired_ahb2_clock_units"},
    {"SBD_VEL_DESIRED_SDRAM_CLOCK_FREQUENCY", SBD_VEL_DESIRED_SDRAM_CLOCK_FREQUENCY,
     "desired_sdram_clock_frequency"},
    {"SBD_VEL_DESIRED_SDRAM_CLOCK_UNITS", SBD_VEL_DESIRED_SDRAM_CLOCK_UNITS,
     "desired_sdram_clock_units"},
    {"SBD_VEL_PLL_AHB_BYPASS", SBD_VEL_PLL_AHB_BYPASS, "pll_ahb_bypass"},
    {"SBD_VEL_PLL_SDRAM_BYPASS", SBD_VEL_PLL_SDRAM_BYPASS, "pll_sdram_bypass"},
    {"SBD_VEL_PLL_AHB_M", SBD_VEL_PLL_AHB_M, "pll_ahb_m"},
    {"SBD_VEL_PLL_AHB_N", SBD_VEL_PLL_AHB_N, "pll_ahb_n"},
    {"SBD_VEL_PLL_AHB_K", SBD_VEL_PLL_AHB_K, "pll_ahb_k"},
    {"SBD_VEL_PLL_SDRAM_M", SBD_VEL_PLL_SDRAM_M, "pll_sdram_m"},
    {"SBD_VEL_PLL_SDRAM_N", SBD_VEL_PLL_SDRAM_N, "pll_sdram_n"},
    {"SBD_VEL_PLL_SDRAM_K", SBD_VEL_PLL_SDRAM_K, "pll_sdram_k"},
    {"SBD_VEL_AHB1_DIVIDE", SBD_VEL_AHB1_DIVIDE, "ahb1_divide"},
    {"SBD_VEL_AHB2_DIVIDE", SBD_VEL_AHB2_DIVIDE, "ahb2_divide"},
    {"SBD_VEL_ADDRESS_BASE", SBD_VEL_ADDRESS_BASE, "address_base"},
    {"SBD_VEL_ADDRESS_SIZE", SBD_VEL_ADDRESS_SIZE, "address_size"},
    {"SBD_VEL_PREFETCH", SBD_VEL_PREFETCH, "prefetch"},
    {"SBD_VEL_ENABLED", SBD_VEL_ENABLED, "enabled"},
    {"SBD_VEL_INPUT_PIN_STANDARD", SBD_VEL_INPUT_PIN_STANDARD, "input_pin_standard"},
    {"SBD_VEL_OUTPUT_PIN_STANDARD", SBD_VEL_OUTPUT_PIN_STANDARD, "output_pin_standard"},
    {"SBD_VEL_CLOCK_DIVIDE", SBD_VEL_CLOCK_DIVIDE, "clock_divide"},
    {"SBD_VEL_TIMEOUT_ENABLE", SBD_VEL_TIMEOUT_ENABLE, "timeout_enable"},
    {"SBD_VEL_TIMEOUT_CLOCK_CYCLES", SBD_VEL_TIMEOUT_CLOCK_CYCLES, "timeout_clock_cycles"},
    {"SBD_VEL_EXTERNAL_CLOCK_ENABLE", SBD_VEL_EXTERNAL_CLOCK_ENABLE, "external_clock_enable"},
    {"SBD_VEL_SYNCHRONOUS", SBD_VEL_SYNCHRONOUS, "synchronous"},
    {"SBD_VEL_WAIT_CYCLES", SBD_VEL_WAIT_CYCLES, "wait_cycles"},
    {"SBD_VEL_BYTE_ENABLE", SBD_VEL_BYTE_ENABLE, "byte_enable"},
    {"SBD_VEL_CHIP_SELECT_POLARITY", SBD_VEL_CHIP_SELECT_POLARITY, "chip_select_polarity"},
    {"SBD_VEL_SPLIT_READ", SBD_VEL_SPLIT_READ, "split_read"},
    {"SBD_VEL_BYTE_ENABLE_POLARITY", SBD_VEL_BYTE_ENABLE_POLARITY, "byte_enable_polarity"},
    {"SBD_VEL_OUTPUT_ENABLE_POLARITY", SBD_VEL_OUTPUT_ENABLE_POLARITY, "output_enable_polarity"},
    {"SBD_VEL_WRITE_ENABLE_POLARITY", SBD_VEL_WRITE_ENABLE_POLARITY, "write_enable_polarity"},
    {"SBD_VEL_COMBINED_MODE", SBD_VEL_COMBINED_MODE, "combined_mode"},
    {"SBD_VEL_COMBINED_DATA_WIDTH", SBD_VEL_COMBINED_DATA_WIDTH, "combined_data_width"},
    {"SBD_VEL_COMBINED_ADDRESS_RANGE", SBD_VEL_COMBINED_ADDRESS_RANGE, "combined_address_range"},
    {"SBD_VEL_COMBINED_OUTPUTS_REGISTERED", SBD_VEL_COMBINED_OUTPUTS_REGISTERED,
     "combined_outputs_registered"},
    {"SBD_VEL_MODE", SBD_VEL_MODE, "mode"},
    {"SBD_VEL_ADDRESS_RANGE", SBD_VEL_ADDRESS_RANGE, "address_range"},
    {"SBD_VEL_OUTPUTS_REGISTERED", SBD_VEL_OUTPUTS_REGISTERED, "outputs_registered"},
    {"SBD_VEL_LOCK_GRANT_ADDRESS_BASE", SBD_VEL_LOCK_GRANT_ADDRESS_BASE, "lock_grant_address_base"},
    {"SBD_VEL_NO_PORTS", SBD_VEL_NO_PORTS, "no_ports"},
    {"SBD_VEL_ONE_PORT", SBD_VEL_ONE_PORT, "one_port"},
    {"SBD_VEL_TWO_PORTS", SBD_VEL_TWO_PORTS, "two_ports"},
    {"SBD_VEL_DUAL_PORT", SBD_VEL_DUAL_PORT, "dual_port"},
    {"SBD_VEL_ACTIVE_TO_READ_OR_WRITE_DELAY", SBD_VEL_ACTIVE_TO_READ_OR_WRITE_DELAY,
     "active_to_read_or_write_delay"},
    {"SBD_VEL_ACTIVE_TO_PRECHARGE_COMMAND", SBD_VEL_ACTIVE_TO_PRECHARGE_COMMAND,
     "active_to_precharge_command"},
    {"SBD_VEL_ACTIVE_BANKA_TO_BANKB_COMMAND", SBD_VEL_ACTIVE_BANKA_TO_BANKB_COMMAND,
     "active_banka_to_bankb_command"},
    {"SBD_VEL_PRECHARGE_COMMAND_PERIOD", SBD_VEL_PRECHARGE_COMMAND_PERIOD,
     "precharge_command_period"},
    {"SBD_VEL_WRITE_RECOVERY_TIME", SBD_VEL_WRITE_RECOVERY_TIME, "write_recovery_time"},
    {"SBD_VEL_ACTIVE_TO_ACTIVE_COMMAND_PERIOD", SBD_VEL_ACTIVE_TO_ACTIVE_COMMAND_PERIOD,
     "active_to_active_command_period"},
    {"SBD_VEL_REFRESH_PERIOD", SBD_VEL_REFRESH_PERIOD, "refresh_period"},
    {"SBD_VEL_BURST_LENGTH", SBD_VEL_BURST_LENGTH, "burst_length"},
    {"SBD_VEL_CAS_LATENCY", SBD_VEL_CAS_LATENCY, "cas_latency"},
    {"SBD_VEL_AUTO_REFRESH_COMMAND_PERIOD", SBD_VEL_AUTO_REFRESH_COMMAND_PERIOD,
     "auto_refresh_command_period"},
    {"SBD_VEL_ROW_ADDRESS_BITS", SBD_VEL_ROW_ADDRESS_BITS, "row_address_bits"},
    {"SBD_VEL_COLUMN_ADDRESS_BITS", SBD_VEL_COLUMN_ADDRESS_BITS, "column_address_bits"},
    {"SBD_VEL_BANK_ADDRESS_BITS", SBD_VEL_BANK_ADDRESS_BITS, "bank_address_bits"},
    {"SBD_VEL_DEVICE_NAME", SBD_VEL_DEVICE_NAME, "device_name"},
    {"SBD_VEL_USE_PLD_TO_STRIPE_BRIDGE", SBD_VEL_USE_PLD_TO_STRIPE_BRIDGE,
     "use_pld_to_stripe_bridge"},
    {"SBD_VEL_USE_STRIPE_TO_PLD_BRIDGE", SBD_VEL_USE_STRIPE_TO_PLD_BRIDGE,
     "use_stripe_to_pld_bridge"},
    {"SBD_VEL_USE_PLD_TO_STRIPE_INTERRUPTS", SBD_VEL_USE_PLD_TO_STRIPE_INTERRUPTS,
     "use_pld_to_stripe_interrupts"},
    {"SBD_VEL_USE_STRIPE_TO_PLD_INTERRUPTS", SBD_VEL_USE_STRIPE_TO_PLD_INTERRUPTS,
     "use_stripe_to_pld_interrupts"},
    {"SBD_VEL_PLD_TO_STRIPE_INTERRUPT_MODE", SBD_VEL_PLD_TO_STRIPE_INTERRUPT_MODE,
     "pld_to_stripe_interrupt_mode"},
    {"SBD_VEL_USE_DEBUG_EXTENSIONS", SBD_VEL_USE_DEBUG_EXTENSIONS, "use_debug_extensions"},
    {"SBD_VEL_USE_TRACE_EXTENSIONS", SBD_VEL_USE_TRACE_EXTENSIONS, "use_trace_extensions"},
    {"SBD_VEL_USE_GPIO_PORT", SBD_VEL_USE_GPIO_PORT, "use_gpio_port"},
    {"SBD_VEL_GPIO_PORT_WIDTH", SBD_VEL_GPIO_PORT_WIDTH, "gpio_port_width"},
    {"SBD_VEL_LITTLE", SBD_VEL_LITTLE, "little"},
    {"SBD_VEL_BIG", SBD_VEL_BIG, "big"},
    {"SBD_VEL_LVTTL_1V8", SBD_VEL_LVTTL_1V8, "lvttl_1v8"},
    {"SBD_VEL_LVTTL_2V5", SBD_VEL_LVTTL_2V5, "lvttl_2v5"},
    {"SBD_VEL_LVTTL_3V3", SBD_VEL_LVTTL_3V3, "lvttl_3v3"},
    {"SBD_VEL_SSTL_2", SBD_VEL_SSTL_2, "sstl_2"},
    {"SBD_VEL_SSTL_3", SBD_VEL_SSTL_3, "sstl_3"},
    {"SBD_VEL_GTL_PLUS", SBD_VEL_GTL_PLUS, "gtl_plus"},
    {"SBD_VEL_SLOW_SLEW", SBD_VEL_SLOW_SLEW, "slow_slew"},
    {"SBD_VEL_FAST_SLEW", SBD_VEL_FAST_SLEW, "fast_slew"},
    {"SBD_VEL_PCI_DIODE", SBD_VEL_PCI_DIODE, "pci_diode"},
    {"SBD_VEL_OPEN_DRAIN", SBD_VEL_OPEN_DRAIN, "open_drain"},
    {"SBD_VEL_LOW", SBD_VEL_LOW, "low"},
    {"SBD_VEL_HIGH", SBD_VEL_HIGH, "high"},
    {"SBD_VEL_DDR", SBD_VEL_DDR, "ddr"},
    {"SBD_VEL_SDR", SBD_VEL_SDR, "sdr"},
    {"SBD_VEL_SIX_INDIVIDUAL_REQUESTS", SBD_VEL_SIX_INDIVIDUAL_REQUESTS, "six_individual_requests"},
    {"SBD_VEL_FIVE_BIT_PRIORITY_CODE_AND_1_INDIVIDUAL",
     SBD_VEL_FIVE_BIT_PRIORITY_CODE_AND_1_INDIVIDUAL, "five_bit_priority_code_and_1_individual"},
    {"SBD_VEL_SIX_BIT_PRIORITY_CODE", SBD_VEL_SIX_BIT_PRIORITY_CODE, "six_bit_priority_code"},
};

TEST(KEYWORD_CONSTANTS, HaveTheirTexts) {
  EXPECT_EQ(KEYWORDS.size(), 149u);
  for (const KEYWORD_CASE& keyword_case : KEYWORDS) {
    EXPECT_STREQ(keyword_case.constant, keyword_case.text) << keyword_case.name;
  }
}

TEST(KEYWORD_CONSTANTS, BlockTypes) {
  EXPECT_STREQ(SBD_DEVICE, "device");
  EXPECT_STREQ(SBD_MODULE, "module");
  EXPECT_STREQ(SBD_PARAMETERS_CLOCKS, "parameters clocks");
  EXPECT_STREQ(SBD_PARAMETERS_SDRAM, "parameters sdram");
  EXPECT_STREQ(SBD_PARAMETERS_EBI, "parameters ebi");
  EXPECT_STREQ(SBD_PARAMETERS_DPRAM, "parameters dpram");
  EXPECT_STREQ(SBD_PARAMETERS_PLD, "parameters pld");
  EXPECT_STREQ(SBD_PARAMETERS_TRACE, "parameters trace");
  EXPECT_STREQ(SBD_PARAMETERS_UART, "parameters uart");
}

// True for null and for a pointer that one of the constants is.
bool is_keyword(const char* text) {
  if (!text) return true;
  return std::any_of(KEYWORDS.begin(), KEYWORDS.end(),
                     [text](const KEYWORD_CASE& each) { return each.constant == text; });
}

// ---- Tables ------------------------------------------------------------------------------------

std::string plain(const char* text) {
  return text ? text : "(none)";
}

// What all four kinds of rows have.
template <class ROW>
std::string told(const ROW& row) {
  return plain(row.block_name) + " " + plain(row.parameter_name) + " " +
         std::to_string(row.device_mask) + (row.has_default ? " default" : "") +
         (row.validate_value ? " checked " : " ") + std::to_string(row.requirement);
}

std::string told(const PARAMETER_ROW& row) {
  return plain(row.block) + " " + row.name + " " + std::to_string(row.chips) +
         (row.defaults.are_given ? " default" : "") + (row.is_value_checked ? " checked " : " ") +
         std::to_string(static_cast<unsigned>(row.requirement));
}

std::string told_default(bool value) {
  return value ? "1" : "0";
}
std::string told_default(unsigned long value) {
  return std::to_string(value);
}
std::string told_default(double value) {
  return value == 0 ? std::string("0") : std::to_string(value);
}
std::string told_default(const char* value) {
  return plain(value);
}

std::string told_defaults(const PARAMETER_ROW& row) {
  const DEFAULTS& defaults = row.defaults;
  if (row.kind == KIND::STRING) {
    return plain(defaults.first_text) + " / " + plain(defaults.second_text);
  }
  return std::to_string(defaults.first_number) + " / " + std::to_string(defaults.second_number);
}

template <class ROW>
void expect_table(const ROW* row, KIND kind) {
  for (const PARAMETER_ROW& expected : parameter_rows()) {
    if (expected.kind != kind) continue;
    ASSERT_NE(row->parameter_name, nullptr);
    EXPECT_EQ(told(*row), told(expected));
    EXPECT_EQ(told_default(row->default_value) + " / " + told_default(row->absent_block_value),
              told_defaults(expected))
        << expected.reference();
    EXPECT_TRUE(is_keyword(row->block_name)) << expected.reference();
    EXPECT_TRUE(is_keyword(row->parameter_name)) << expected.reference();
    ++row;
  }
  EXPECT_EQ(told(*row), "(none) (none) 0 0");
  EXPECT_EQ(told_default(row->default_value), told_default(decltype(row->default_value)()));
  EXPECT_EQ(told_default(row->absent_block_value), told_default(decltype(row->default_value)()));
}

TEST(PARAMETER_TABLES, AreAsTheyShouldBe) {
  expect_table(READER::sbd_veldran_bool_parameters, KIND::BOOL);
  expect_table(READER::sbd_veldran_dword_parameters, KIND::DWORD);
  expect_table(READER::sbd_veldran_double_parameters, KIND::DOUBLE);
  expect_table(READER::sbd_veldran_string_parameters, KIND::STRING);
  for (const READER::STRING_ROW& row : READER::sbd_veldran_string_parameters) {
    EXPECT_TRUE(is_keyword(row.default_value)) << plain(row.default_value);
    EXPECT_TRUE(is_keyword(row.absent_block_value)) << plain(row.absent_block_value);
  }
}

// ---- Rules as data -----------------------------------------------------------------------------

std::string told(const SBD_RULE_CONDITION& condition) {
  const char* const tests[] = {" is true", " is false", " is ", " is not "};
  return plain(condition.reference) + tests[condition.test] +
         (condition.text ? condition.text : "");
}

std::string told(const REQUIREMENT_RULE& rule) {
  switch (rule.condition) {
    case REQUIREMENT_RULE::IS_TRUE:
      return rule.condition_parameter + " is true";
    case REQUIREMENT_RULE::IS_FALSE:
      return rule.condition_parameter + " is false";
    case REQUIREMENT_RULE::IS_PORT_USED:
      break;
  }
  return rule.condition_parameter + " is not no_ports";
}

bool allows(const SBD_VALUE_SET& set, const EXPECTED_VALUE& value) {
  switch (set.kind) {
    case SBD_VALUE_SET::VS_ANY:
      return true;
    case SBD_VALUE_SET::VS_FALSE:
      return !value.flag;
    case SBD_VALUE_SET::VS_RANGE:
      return set.low <= value.dword && value.dword <= set.high;
    case SBD_VALUE_SET::VS_NUMBERS:
      return std::count(set.numbers, set.numbers + set.count, value.dword) != 0;
    case SBD_VALUE_SET::VS_TEXTS:
      return std::any_of(set.texts, set.texts + set.count,
                         [&](const char* text) { return value.text == text; });
  }
  return false;
}

bool holds(const SBD_RULE_CONDITION& condition, const EXPECTED_DEVICE& device) {
  const EXPECTED_VALUE& value = device.value(condition.reference);
  const bool is_true = value.has_value && value.flag;
  switch (condition.test) {
    case SBD_RULE_CONDITION::RT_IS_TRUE:
      return is_true;
    case SBD_RULE_CONDITION::RT_IS_FALSE:
      return !is_true;
    case SBD_RULE_CONDITION::RT_IS_TEXT:
      return value.text == condition.text;
    case SBD_RULE_CONDITION::RT_IS_NOT_TEXT:
      break;
  }
  return value.text != condition.text;
}

// Whether the told rule accepts the parameter's value in `device`.
bool accepts(const SBD_VALUE_RULE* rule, const EXPECTED_VALUE& value,
             const EXPECTED_DEVICE& device) {
  if (!rule) return true;
  bool is_exception = rule->exception_count > 0;
  for (std::size_t index = 0; index < rule->exception_count; ++index) {
    is_exception = is_exception && holds(rule->exceptions[index], device);
  }
  return allows(is_exception ? rule->exception_values : rule->values, value);
}

std::string told(const SBD_PARAMETER_READER::SBD_PARAMETER_VALUE& value) {
  if (!value.m_has_value) return "none";
  switch (value.m_value_type) {
    case SBD_PARAMETER_READER::SBD_PARAMETER_VALUE::BOOL_VALUE:
      return value.m_bool_value ? "true" : "false";
    case SBD_PARAMETER_READER::SBD_PARAMETER_VALUE::DWORD_VALUE:
      return std::to_string(value.m_dword_value);
    case SBD_PARAMETER_READER::SBD_PARAMETER_VALUE::DOUBLE_VALUE:
      return std::to_string(value.m_double_value);
    case SBD_PARAMETER_READER::SBD_PARAMETER_VALUE::STRING_VALUE:
      break;
  }
  return ::plain(value.m_string_value);
}

std::string told(const EXPECTED_VALUE& value) {
  if (!value.has_value) return "none";
  switch (value.kind) {
    case KIND::BOOL:
      return value.flag ? "true" : "false";
    case KIND::DWORD:
      return std::to_string(value.dword);
    case KIND::DOUBLE:
      return std::to_string(value.number);
    case KIND::STRING:
      break;
  }
  return value.text;
}

std::string told_default(const PARAMETER_ROW& row, bool is_first) {
  const DEFAULTS& defaults = row.defaults;
  const char* const text = is_first ? defaults.first_text : defaults.second_text;
  const unsigned long number = is_first ? defaults.first_number : defaults.second_number;
  if (!defaults.are_given) return "none";
  if (row.kind == KIND::STRING) return text ? text : "none";
  if (row.kind == KIND::BOOL) return number == 1 ? "true" : "false";
  return std::to_string(number);
}

class TOLD_RULES : public testing::TestWithParam<CHIP> {
 protected:
  CHIP chip() const { return GetParam(); }

  SBD_PARAMETER_RULE rule_of(const std::string& name) const {
    SBD_PARAMETER_RULE rule;
    EXPECT_TRUE(sbd_get_parameter_rule(type_of(chip()), name.c_str(), rule)) << name;
    return rule;
  }

  void TearDown() override { EXPECT_TRUE(m_recorder.is_silent()); }

  MESSAGE_RECORDER m_recorder;
};

INSTANTIATE_TEST_SUITE_P(CHIPS, TOLD_RULES, testing::ValuesIn(ALL_CHIPS),
                         [](const auto& parameter) { return name_of(parameter.param); });

TEST_P(TOLD_RULES, NamesAreThoseOfTheChipInOrder) {
  TEXTS expected;
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    if (std::count(expected.begin(), expected.end(), row.reference()) == 0) {
      expected.push_back(row.reference());
    }
  }
  SBD_STRING_LIST names(1, "before");
  EXPECT_TRUE(sbd_get_parameter_names(type_of(chip()), names));
  TEXTS actual;
  for (const SBD_STRING& name : names) actual.push_back(::plain(name));
  EXPECT_EQ(actual, expected);
  EXPECT_EQ(actual.size(), 148u);
}

TEST_P(TOLD_RULES, ParametersAreAsInTheTables) {
  std::mt19937_64 random(5);
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    const std::string name = row.reference();
    for (const std::string& spelling : {name, mixed_case(name, random)}) {
      const SBD_PARAMETER_RULE rule = rule_of(spelling);
      EXPECT_EQ(::plain(rule.reference), name);
      EXPECT_EQ(plain(rule.block_name), plain(row.block)) << name;
      EXPECT_EQ(plain(rule.parameter_name), plain(row.name)) << name;
      EXPECT_EQ(static_cast<int>(rule.type), static_cast<int>(row.kind)) << name;
      EXPECT_EQ(static_cast<unsigned>(rule.requirement), static_cast<unsigned>(row.requirement))
          << name;
      EXPECT_EQ(told(rule.present_block_default), told_default(row, true)) << name;
      EXPECT_EQ(told(rule.absent_block_default), told_default(row, false)) << name;
      EXPECT_EQ(rule.present_block_default.m_value_type, rule.type) << name;
      EXPECT_FALSE(rule.present_block_default.m_is_defined) << name;
      EXPECT_FALSE(rule.absent_block_default.m_is_defined) << name;
      EXPECT_EQ(rule.absent_block_default.m_value_type, rule.type) << name;
      const REQUIREMENT_RULE* const requirement = find_requirement_rule(name);
      EXPECT_EQ(rule.condition ? told(*rule.condition) : "", requirement ? told(*requirement) : "")
          << name;
      EXPECT_TRUE(row.is_value_checked || !rule.value_rule) << name;
      EXPECT_EQ(rule.value_rule ? plain(rule.value_rule->reference) : name, name);
    }
  }
}

TEST_P(TOLD_RULES, ValueRulesAllowWhatIsGood) {
  const char* const modes[] = {"no_ports", "one_port", "other"};
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    const std::string name = row.reference();
    const SBD_PARAMETER_RULE rule = rule_of(name);
    for (const WRITTEN& value : values_to_try(row, chip())) {
      for (unsigned mask = 0; mask < 12; ++mask) {
        SETTINGS settings;
        settings.set("clocks.pll_ahb_bypass", flag((mask & 1) != 0))
            .set("clocks.pll_sdram_bypass", flag((mask & 2) != 0))
            .set("dpram.mode[0]", keyword(modes[mask / 4]))
            .set(name, value);
        const EXPECTED_DEVICE device(settings, chip());
        if (!device.value(name).has_value) break;
        ASSERT_EQ(accepts(rule.value_rule, device.value(name), device),
                  !row.is_value_checked || device.is_accepted(name))
            << name << " = " << value.text;
        // Nothing else matters to the other parameters.
        if (name.find("clocks") == std::string::npos && name.find("dpram") == std::string::npos) {
          break;
        }
      }
    }
  }
}

TEST_P(TOLD_RULES, KeywordsAndNumbersAreComplete) {
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    if (!row.is_value_checked) continue;
    const std::string name = row.reference();
    const VALUE_RULE* const expected = find_value_rule(name, chip());
    const SBD_PARAMETER_RULE rule = rule_of(name);
    if (expected->check == VALUE_RULE::ANYTHING) {
      EXPECT_TRUE(!rule.value_rule || rule.value_rule->values.kind == SBD_VALUE_SET::VS_ANY)
          << name;
      continue;
    }
    ASSERT_NE(rule.value_rule, nullptr) << name;
    const SBD_VALUE_SET& values = rule.value_rule->values;
    switch (expected->check) {
      case VALUE_RULE::ANYTHING:
        break;
      case VALUE_RULE::ONLY_FALSE:
        EXPECT_EQ(values.kind, SBD_VALUE_SET::VS_FALSE) << name;
        break;
      case VALUE_RULE::RANGE:
        EXPECT_EQ(values.kind, SBD_VALUE_SET::VS_RANGE) << name;
        EXPECT_EQ(values.low, expected->numbers.front()) << name;
        EXPECT_EQ(values.high, expected->numbers.back()) << name;
        break;
      case VALUE_RULE::ONE_OF: {
        ASSERT_EQ(values.kind, SBD_VALUE_SET::VS_NUMBERS) << name;
        std::vector<unsigned long> numbers(values.numbers, values.numbers + values.count);
        EXPECT_EQ(numbers, expected->numbers) << name;
        break;
      }
      case VALUE_RULE::KEYWORD: {
        ASSERT_EQ(values.kind, SBD_VALUE_SET::VS_TEXTS) << name;
        const std::multiset<std::string> texts(values.texts, values.texts + values.count);
        EXPECT_EQ(texts,
                  std::multiset<std::string>(expected->keywords.begin(), expected->keywords.end()))
            << name;
        for (std::size_t index = 0; index < values.count; ++index) {
          EXPECT_TRUE(is_keyword(values.texts[index])) << values.texts[index];
        }
        break;
      }
    }
    EXPECT_EQ(rule.value_rule->exception_count != 0,
              expected->low_when_bypassed != 0 || !expected->freeing_mode.empty())
        << name;
  }
}

TEST_P(TOLD_RULES, OtherNamesAndChipsHaveNoRules) {
  SBD_PARAMETER_RULE rule = rule_of("endian");
  const char* const none = nullptr;
  for (const char* const name : {none, "", ".", "type", "sdram", "ebi.region[4].enabled", "endian ",
                                 "stripe.endian", "enabled", "sdram.", ".endian", "sdram..type"}) {
    EXPECT_FALSE(sbd_get_parameter_rule(type_of(chip()), name, rule)) << plain(name);
    EXPECT_EQ(::plain(rule.reference), "endian");
  }
  for (const SBD_VELDRAN::CHIP_TYPE other :
       {SBD_VELDRAN::CT_QMXM10, SBD_VELDRAN::CT_QMXM4, SBD_VELDRAN::CT_QMXM1,
        SBD_VELDRAN::CT_UNKNOWN, static_cast<SBD_VELDRAN::CHIP_TYPE>(7)}) {
    EXPECT_FALSE(sbd_get_parameter_rule(other, "endian", rule));
    SBD_STRING_LIST names(3, "before");
    EXPECT_FALSE(sbd_get_parameter_names(other, names));
    EXPECT_TRUE(names.empty());
  }
}

// ---- Parameters of a descriptor ----------------------------------------------------------------

void expect_state(const SBD_VELDRAN& device, const EXPECTED_DEVICE& expected,
                  const SETTINGS& settings, const PARAMETER_ROW& row, CHIP chip) {
  const std::string name = row.reference();
  SCOPED_TRACE(name);
  SBD_PARAMETER_STATE state;
  ASSERT_TRUE(sbd_get_parameter_state(device, name.c_str(), state));
  const EXPECTED_VALUE& value = expected.value(name);
  EXPECT_EQ(told(state.value), told(value));
  EXPECT_EQ(state.value.m_is_defined, value.is_defined);
  EXPECT_TRUE(state.value.m_is_validated);
  EXPECT_EQ(state.is_required, expected.is_required(row));

  const bool is_block_there = !row.block || settings.has_block(row.block);
  SBD_PARAMETER_ORIGIN origin = PO_NONE;
  if (settings.find(name)) {
    origin = PO_STATEMENT;
  } else if (told_default(row, is_block_there) != "none") {
    origin = is_block_there ? PO_PRESENT_BLOCK_DEFAULT : PO_ABSENT_BLOCK_DEFAULT;
  }
  EXPECT_EQ(state.origin, origin);
  EXPECT_EQ(state.statement != nullptr, settings.find(name) != nullptr);
  EXPECT_EQ(state.statement, device.get_ref_object(("board.stripe." + name).c_str(), nullptr));
  EXPECT_EQ(state.block != nullptr, is_block_there);

  // The values that are allowed now.
  const VALUE_RULE* const rule = find_value_rule(name, chip);
  if (!row.is_value_checked) {
    EXPECT_EQ(state.allowed_values, nullptr);
  } else if (rule->check != VALUE_RULE::ANYTHING) {
    ASSERT_NE(state.allowed_values, nullptr);
  }
  if (state.allowed_values && value.has_value) {
    EXPECT_EQ(allows(*state.allowed_values, value), expected.is_accepted(name));
  }

  // The settings that decide.
  std::multiset<std::string> told_settings, wanted;
  for (const SBD_RULE_SETTING& setting : state.requirement_settings) {
    const std::string reference = ::plain(setting.reference);
    told_settings.insert(reference);
    EXPECT_EQ(told(setting.value), told(expected.value(reference)));
    EXPECT_EQ(setting.statement != nullptr, settings.find(reference) != nullptr);
    EXPECT_EQ(setting.origin == PO_STATEMENT, settings.find(reference) != nullptr);
  }
  if (row.requirement == REQUIREMENT::BY_RULE) {
    wanted.insert(find_requirement_rule(name)->condition_parameter);
  }
  EXPECT_EQ(told_settings, wanted);
  told_settings.clear();
  wanted.clear();
  for (const SBD_RULE_SETTING& setting : state.value_settings) {
    const std::string reference = ::plain(setting.reference);
    told_settings.insert(reference);
    EXPECT_EQ(told(setting.value), told(expected.value(reference)));
  }
  if (rule && rule->low_when_bypassed != 0) {
    wanted = {"clocks.pll_ahb_bypass", "clocks.pll_sdram_bypass"};
  }
  if (rule && !rule->freeing_mode.empty()) wanted = {rule->freeing_mode};
  EXPECT_EQ(told_settings, wanted);
}

TEST_P(TOLD_RULES, StatesOfParameters) {
  SETTINGS odd;
  std::mt19937_64 random(99);
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    const std::vector<WRITTEN> values = values_to_try(row, chip());
    if (random() % 2 == 0)
      odd.set(row.reference(), values[static_cast<std::size_t>(random() % values.size())]);
  }
  for (const SETTINGS& settings :
       {SETTINGS(), minimal_settings(), full_settings(chip()), odd,
        SETTINGS(odd).set("dpram.mode[0]", keyword("no_ports")).remove_block("ebi")}) {
    SBD_VELDRAN device("board");
    read_text(device, descriptor_text(settings, chip()));
    ASSERT_TRUE(m_recorder.conditions().empty());
    m_recorder.forget();
    const EXPECTED_DEVICE expected(settings, chip());
    for (const PARAMETER_ROW& row : rows_of(chip())) {
      expect_state(device, expected, settings, row, chip());
      if (HasFailure()) return;
    }
  }
}

void expect_only_what_is_used(const SBD_VALUE_SET& set, const std::string& name) {
  const bool is_range = set.kind == SBD_VALUE_SET::VS_RANGE;
  const bool has_numbers = set.kind == SBD_VALUE_SET::VS_NUMBERS;
  const bool has_texts = set.kind == SBD_VALUE_SET::VS_TEXTS;
  EXPECT_TRUE(is_range || (set.low == 0 && set.high == 0)) << name;
  EXPECT_EQ(set.numbers != nullptr, has_numbers) << name;
  EXPECT_EQ(set.texts != nullptr, has_texts) << name;
  EXPECT_EQ(set.count != 0, has_numbers || has_texts) << name;
}

TEST_P(TOLD_RULES, SetsHaveNothingThatTheyDoNotUse) {
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    const std::string name = row.reference();
    const SBD_VALUE_RULE* const rule = rule_of(name).value_rule;
    if (rule == nullptr) continue;
    expect_only_what_is_used(rule->values, name);
    expect_only_what_is_used(rule->exception_values, name);
    EXPECT_EQ(rule->exceptions != nullptr, rule->exception_count != 0) << name;
    if (rule->exception_count == 0) {
      EXPECT_EQ(rule->exception_values.kind, SBD_VALUE_SET::VS_ANY) << name;
    }
  }
}

TEST_P(TOLD_RULES, NoStateWithoutParameters) {
  SBD_VELDRAN device("board");
  SBD_PARAMETER_STATE state;
  state.is_required = true;
  const char* const none = nullptr;
  EXPECT_FALSE(sbd_get_parameter_state(device, "endian", state));
  EXPECT_TRUE(read_text(device, descriptor_text(minimal_settings(), chip())));
  for (const char* const name : {none, "", "type", "sdram", "never"}) {
    EXPECT_FALSE(sbd_get_parameter_state(device, name, state)) << plain(name);
  }
  EXPECT_TRUE(state.is_required);
  EXPECT_TRUE(sbd_get_parameter_state(device, "ENDIAN", state));
  EXPECT_FALSE(state.is_required);
}

TEST_P(TOLD_RULES, StateIsKnownWhileAMessageIsPosted) {
  SBD_VELDRAN device("board");
  std::size_t count = 0;
  m_recorder.on_message = [&](const RECORDED_MESSAGE& message) {
    ASSERT_FALSE(device.get_parameter_faults().empty());
    const SBD_PARAMETER_FAULT& fault = device.get_parameter_faults().back();
    SBD_PARAMETER_STATE state;
    ASSERT_TRUE(sbd_get_parameter_state(device, fault.reference.c_str(), state));
    EXPECT_EQ(message.number == 12, fault.is_missing);
    EXPECT_EQ(state.statement, fault.statement);
    EXPECT_TRUE(state.is_required || !fault.is_missing);
    ++count;
  };
  EXPECT_FALSE(read_text(device, descriptor_text(SETTINGS(), chip())));
  EXPECT_EQ(count, EXPECTED_DEVICE(SETTINGS(), chip()).findings().size());
  m_recorder.forget();
}

// ---- In English --------------------------------------------------------------------------------

// Asks one of the functions that give a text.
template <class FUNCTION, class ARGUMENT>
std::string text_of(FUNCTION function, const ARGUMENT& argument) {
  SBD_STRING text = "before";
  EXPECT_TRUE(function(argument, text));
  return ::plain(text);
}

std::string values_text(const SBD_PARAMETER_RULE& rule) {
  return text_of([](const SBD_PARAMETER_RULE& each,
                    SBD_STRING& text) { return sbd_get_values_text(each, text); },
                 rule);
}

TEST_P(TOLD_RULES, RequirementsInEnglish) {
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    const std::string name = row.reference();
    const SBD_PARAMETER_RULE rule = rule_of(name);
    const REQUIREMENT_RULE* const requirement = find_requirement_rule(name);
    std::string expected = "optional";
    if (row.requirement == REQUIREMENT::ALWAYS) expected = "always required";
    if (requirement) expected = "required when " + told(*requirement);
    EXPECT_EQ(text_of(sbd_get_requirement_text, rule), expected) << name;
    if (rule.condition) {
      EXPECT_EQ(text_of(sbd_get_condition_text, *rule.condition), told(*requirement)) << name;
    }
  }
}

TEST_P(TOLD_RULES, ValuesInEnglish) {
  const char* const types[] = {"true or false", "any whole number", "any number", "any text"};
  for (const PARAMETER_ROW& row : rows_of(chip())) {
    const std::string name = row.reference();
    const SBD_PARAMETER_RULE rule = rule_of(name);
    const VALUE_RULE* const expected = find_value_rule(name, chip());
    const std::string text = values_text(rule);
    if (!row.is_value_checked || expected->check == VALUE_RULE::ANYTHING) {
      EXPECT_EQ(text, types[static_cast<std::size_t>(row.kind)]) << name;
      continue;
    }
    std::string start;
    switch (expected->check) {
      case VALUE_RULE::ANYTHING:
        break;
      case VALUE_RULE::ONLY_FALSE:
        start = "false";
        break;
      case VALUE_RULE::RANGE:
        start = std::to_string(expected->numbers.front()) + " to " +
                std::to_string(expected->numbers.back());
        break;
      case VALUE_RULE::ONE_OF:
        for (const unsigned long number : expected->numbers) {
          start += (start.empty() ? "" : ", ") + std::to_string(number);
        }
        if (expected->numbers.size() > 1) start.insert(0, "one of: ");
        break;
      case VALUE_RULE::KEYWORD:
        start = "one of: ";
        break;
    }
    EXPECT_EQ(text.substr(0, start.size()), start) << name;
    for (const std::string& word : expected->keywords) {
      EXPECT_NE(text.find(word), std::string::npos) << name << ": " << text;
    }
    if (!expected->freeing_mode.empty()) {
      EXPECT_EQ(text, start + "; any value when " + expected->freeing_mode + " is no_ports");
    } else if (expected->low_when_bypassed != 0) {
      EXPECT_EQ(text, start +
                          "; 1 to 66000000 when clocks.pll_ahb_bypass is true and "
                          "clocks.pll_sdram_bypass is true");
    } else if (expected->check != VALUE_RULE::KEYWORD) {
      EXPECT_EQ(text, start) << name;
    }
  }
}

TEST(RULES_IN_ENGLISH, Values) {
  using VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(true, true, true)), "true");
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(false, false, true)), "false");
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(4294967295UL, false, true)), "4294967295");
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(7.5, false, true)), "7.5");
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(-0.25, false, true)), "-0.25");
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(SBD_STRING("no_ports"), false, true)), "no_ports");
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(true, true, false)), "");
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(5UL, true, false)), "");
  EXPECT_EQ(text_of(sbd_get_value_text, VALUE(5.5, true, false)), "");
}

// ---- What the chip's readers answer ------------------------------------------------------------

std::unique_ptr<READER> make_reader(CHIP chip, const SBD_VELDRAN& device) {
  const SBD_STRING module = "board.stripe";
  if (chip == CHIP::QMXA1) return std::make_unique<SBD_QMXA1_PARAMETER_READER>(device, module);
  if (chip == CHIP::QMXA4) return std::make_unique<SBD_QMXA4_PARAMETER_READER>(device, module);
  return std::make_unique<SBD_QMXA10_PARAMETER_READER>(device, module);
}

class CHIP_READER : public testing::TestWithParam<CHIP> {
 protected:
  CHIP chip() const { return GetParam(); }

  void read(const SETTINGS& settings) {
    m_reader.reset();
    read_text(m_device, descriptor_text(settings, chip()));
    m_recorder.forget();
    m_reader = make_reader(chip(), m_device);
    EXPECT_TRUE(m_reader->read_all_parameters());
  }

  void TearDown() override { EXPECT_TRUE(m_recorder.is_silent()); }

  MESSAGE_RECORDER m_recorder;
  SBD_VELDRAN m_device{"board"};
  std::unique_ptr<READER> m_reader;
};

INSTANTIATE_TEST_SUITE_P(CHIPS, CHIP_READER, testing::ValuesIn(ALL_CHIPS),
                         [](const auto& parameter) { return name_of(parameter.param); });

TEST_P(CHIP_READER, OnlyTheOwnBitOfAMaskCounts) {
  read(minimal_settings());
  for (unsigned long mask = 0; mask < 32; ++mask) {
    EXPECT_EQ(m_reader->is_for_this_device(mask), (mask & static_cast<unsigned>(chip())) != 0);
  }
  EXPECT_TRUE(m_reader->is_for_this_device(~0ul));
  EXPECT_FALSE(m_reader->is_for_this_device(~0ul << 3));
}

TEST_P(CHIP_READER, HooksAnswerForTheNamesThatTheyHaveRulesFor) {
  for (const SETTINGS& settings : {minimal_settings(), full_settings(chip()), SETTINGS()}) {
    read(settings);
    const EXPECTED_DEVICE expected(settings, chip());
    for (const PARAMETER_ROW& row : rows_of(chip())) {
      const std::string text = row.reference();
      const SBD_STRING name(text.c_str());
      const REQUIREMENT_RULE* const requirement = find_requirement_rule(text);
      const bool has_requirement = requirement && requirement->level == LEVEL::FAMILY;
      const VALUE_RULE* const value = find_value_rule(text, chip());
      const bool is_chips = value && value->level == LEVEL::CHIP_READER;
      const bool is_familys = is_chips || (value && value->level == LEVEL::FAMILY);
      for (const bool before : {false, true}) {
        bool answer = before;
        EXPECT_EQ(m_reader->is_family_specific_parameter_required(name, answer), has_requirement)
            << text;
        EXPECT_EQ(answer, has_requirement ? expected.is_required(row) : before) << text;
        answer = before;
        EXPECT_FALSE(m_reader->is_device_specific_parameter_required(name, answer)) << text;
        EXPECT_EQ(answer, before) << text;
        answer = before;
        EXPECT_EQ(m_reader->validate_family_specific_parameter(name, answer), is_familys) << text;
        EXPECT_EQ(answer, is_familys ? expected.is_accepted(text) : before) << text;
        answer = before;
        EXPECT_EQ(m_reader->validate_device_specific_parameter(name, answer), is_chips) << text;
        EXPECT_EQ(answer, is_chips ? expected.is_accepted(text) : before) << text;
      }
      if (row.requirement == REQUIREMENT::BY_RULE) {
        EXPECT_EQ(m_reader->is_parameter_required(name), expected.is_required(row)) << text;
      }
      if (row.is_value_checked) {
        EXPECT_EQ(m_reader->is_parameter_value_valid(name), expected.is_accepted(text)) << text;
        EXPECT_TRUE(m_reader->find_parameter(text.c_str())->m_is_validated) << text;
      }
    }
  }
}

TEST_P(CHIP_READER, NamesAreComparedByteByByte) {
  read(minimal_settings());
  for (const char* const name : {"Clocks.pll_ahb_m", "clocks.PLL_AHB_M", "sdram.Data_Width",
                                 "EBI.clock_divide", "sdram.data_width ", "sdram.type.", "", "."}) {
    for (const bool before : {false, true}) {
      bool answer = before;
      EXPECT_FALSE(m_reader->is_family_specific_parameter_required(name, answer)) << name;
      EXPECT_FALSE(m_reader->is_device_specific_parameter_required(name, answer)) << name;
      EXPECT_FALSE(m_reader->validate_family_specific_parameter(name, answer)) << name;
      EXPECT_FALSE(m_reader->validate_device_specific_parameter(name, answer)) << name;
      EXPECT_EQ(answer, before) << name;
    }
  }
}

}  // namespace
