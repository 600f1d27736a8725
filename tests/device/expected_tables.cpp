#include "tests/device/expected_tables.h"

#include <map>
#include <unordered_map>

namespace {

constexpr DEFAULTS NO_DEFAULTS = {};

constexpr DEFAULTS numbers(unsigned long first, unsigned long second) {
  return {true, first, second, nullptr, nullptr};
}

constexpr DEFAULTS flags(bool first, bool second) {
  return numbers(first ? 1 : 0, second ? 1 : 0);
}

constexpr DEFAULTS texts(const char* first, const char* second) {
  return {true, 0, 0, first, second};
}

// Kind, block, name, chips, required, value checked, defaults.
const std::vector<PARAMETER_ROW> ROWS = {
    // Flags
    {KIND::BOOL, nullptr, "boot_from_flash", ALL, REQUIREMENT::OPTIONAL, false, flags(true, true)},
    {KIND::BOOL, nullptr, "hold_processor", ALL, REQUIREMENT::OPTIONAL, false, flags(false, false)},
    {KIND::BOOL, "clocks", "pll_ahb_bypass", ALL, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "clocks", "pll_sdram_bypass", ALL, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "ebi", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "ebi", "timeout_enable", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "ebi", "external_clock_enable", ALL, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "ebi", "split_read", ALL, REQUIREMENT::OPTIONAL, false, flags(true, true)},
    {KIND::BOOL, "dpram", "combined_mode", A4_A10, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "dpram", "combined_mode", A1, REQUIREMENT::OPTIONAL, true, flags(false, false)},
    {KIND::BOOL, "dpram", "combined_outputs_registered", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, true)},
    {KIND::BOOL, "dpram", "outputs_registered[0]", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, true)},
    {KIND::BOOL, "dpram", "outputs_registered[1]", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, true)},
    {KIND::BOOL, "uart", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "trace", "enabled", A4_A10, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "trace", "enabled", A1, REQUIREMENT::OPTIONAL, true, flags(false, false)},
    {KIND::BOOL, "sdram", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld", "use_gpio_port", A1_A4, REQUIREMENT::OPTIONAL, false, flags(false, false)},
    {KIND::BOOL, "pld", "use_gpio_port", A10, REQUIREMENT::OPTIONAL, true, flags(false, false)},
    {KIND::BOOL, "pld", "use_pld_to_stripe_interrupts", ALL, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "registers", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "registers", "prefetch", ALL, REQUIREMENT::OPTIONAL, false, flags(false, false)},
    {KIND::BOOL, "sram[0]", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "sram[0]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "sram[1]", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "sram[1]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld[0]", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld[0]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld[1]", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld[1]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld[2]", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld[2]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld[3]", "enabled", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "pld[3]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false, flags(true, false)},
    {KIND::BOOL, "ebi.region[0]", "enabled", ALL, REQUIREMENT::OPTIONAL, true, flags(true, false)},
    {KIND::BOOL, "ebi.region[0]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "ebi.region[0]", "synchronous", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "ebi.region[0]", "byte_enable", ALL, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "ebi.region[1]", "enabled", ALL, REQUIREMENT::OPTIONAL, true, flags(true, false)},
    {KIND::BOOL, "ebi.region[1]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "ebi.region[1]", "synchronous", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "ebi.region[1]", "byte_enable", ALL, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "ebi.region[2]", "enabled", ALL, REQUIREMENT::OPTIONAL, true, flags(true, false)},
    {KIND::BOOL, "ebi.region[2]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "ebi.region[2]", "synchronous", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "ebi.region[2]", "byte_enable", ALL, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "ebi.region[3]", "enabled", ALL, REQUIREMENT::OPTIONAL, true, flags(true, false)},
    {KIND::BOOL, "ebi.region[3]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "ebi.region[3]", "synchronous", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "ebi.region[3]", "byte_enable", ALL, REQUIREMENT::OPTIONAL, false,
     flags(false, false)},
    {KIND::BOOL, "sdram.region[0]", "enabled", ALL, REQUIREMENT::OPTIONAL, true,
     flags(true, false)},
    {KIND::BOOL, "sdram.region[0]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "sdram.region[1]", "enabled", ALL, REQUIREMENT::OPTIONAL, true,
     flags(true, false)},
    {KIND::BOOL, "sdram.region[1]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "dpram.region[0]", "enabled", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "dpram.region[0]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "dpram.region[1]", "enabled", A4_A10, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    {KIND::BOOL, "dpram.region[1]", "enabled", A1, REQUIREMENT::OPTIONAL, true,
     flags(false, false)},
    {KIND::BOOL, "dpram.region[1]", "prefetch", ALL, REQUIREMENT::OPTIONAL, false,
     flags(true, false)},
    // Whole numbers
    {KIND::DWORD, nullptr, "programming_clock_frequency", ALL, REQUIREMENT::BY_RULE, true,
     NO_DEFAULTS},
    {KIND::DWORD, "clocks", "input_clock_frequency", ALL, REQUIREMENT::ALWAYS, true, NO_DEFAULTS},
    {KIND::DWORD, "clocks", "pll_ahb_m", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "clocks", "pll_ahb_n", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "clocks", "pll_ahb_k", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "clocks", "pll_sdram_m", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "clocks", "pll_sdram_n", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "clocks", "pll_sdram_k", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "clocks", "ahb1_divide", ALL, REQUIREMENT::OPTIONAL, true, numbers(2, 2)},
    {KIND::DWORD, "clocks", "ahb2_divide", ALL, REQUIREMENT::OPTIONAL, true, numbers(4, 4)},
    {KIND::DWORD, "ebi", "clock_divide", ALL, REQUIREMENT::OPTIONAL, true, numbers(16, 16)},
    {KIND::DWORD, "ebi", "timeout_clock_cycles", ALL, REQUIREMENT::OPTIONAL, true,
     numbers(255, 255)},
    {KIND::DWORD, "sdram", "data_width", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sdram", "burst_length", ALL, REQUIREMENT::OPTIONAL, true, numbers(8, 8)},
    {KIND::DWORD, "sdram", "row_address_bits", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sdram", "column_address_bits", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sdram", "bank_address_bits", ALL, REQUIREMENT::OPTIONAL, true, numbers(2, 2)},
    {KIND::DWORD, "dpram", "combined_data_width", ALL, REQUIREMENT::OPTIONAL, true,
     numbers(32, 32)},
    {KIND::DWORD, "dpram", "combined_address_range", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "dpram", "data_width[0]", ALL, REQUIREMENT::OPTIONAL, true, numbers(32, 32)},
    {KIND::DWORD, "dpram", "data_width[1]", ALL, REQUIREMENT::OPTIONAL, true, numbers(32, 32)},
    {KIND::DWORD, "dpram", "address_range[0]", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "dpram", "address_range[1]", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "dpram", "lock_grant_address_base[0]", ALL, REQUIREMENT::OPTIONAL, true,
     numbers(0, 0)},
    {KIND::DWORD, "dpram", "lock_grant_address_base[1]", ALL, REQUIREMENT::OPTIONAL, true,
     numbers(0, 0)},
    {KIND::DWORD, "pld", "gpio_port_width", ALL, REQUIREMENT::OPTIONAL, true, numbers(4, 0)},
    {KIND::DWORD, "registers", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "registers", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sram[0]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sram[0]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sram[1]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sram[1]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "pld[0]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "pld[0]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "pld[1]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "pld[1]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "pld[2]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "pld[2]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "pld[3]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "pld[3]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[0]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[0]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[0]", "wait_cycles", ALL, REQUIREMENT::OPTIONAL, true, numbers(0, 0)},
    {KIND::DWORD, "ebi.region[0]", "data_width", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[1]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[1]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[1]", "wait_cycles", ALL, REQUIREMENT::OPTIONAL, true, numbers(0, 0)},
    {KIND::DWORD, "ebi.region[1]", "data_width", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[2]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[2]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[2]", "wait_cycles", ALL, REQUIREMENT::OPTIONAL, true, numbers(0, 0)},
    {KIND::DWORD, "ebi.region[2]", "data_width", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[3]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[3]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "ebi.region[3]", "wait_cycles", ALL, REQUIREMENT::OPTIONAL, true, numbers(0, 0)},
    {KIND::DWORD, "ebi.region[3]", "data_width", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sdram.region[0]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sdram.region[0]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sdram.region[1]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "sdram.region[1]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "dpram.region[0]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "dpram.region[0]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "dpram.region[1]", "address_base", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::DWORD, "dpram.region[1]", "address_size", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    // Numbers
    {KIND::DOUBLE, "sdram", "active_to_read_or_write_delay", ALL, REQUIREMENT::BY_RULE, false,
     NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "active_to_precharge_command", ALL, REQUIREMENT::BY_RULE, false,
     NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "active_banka_to_bankb_command", ALL, REQUIREMENT::BY_RULE, false,
     NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "precharge_command_period", ALL, REQUIREMENT::BY_RULE, false,
     NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "write_recovery_time", ALL, REQUIREMENT::BY_RULE, false, NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "active_to_active_command_period", ALL, REQUIREMENT::BY_RULE, false,
     NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "refresh_period", ALL, REQUIREMENT::BY_RULE, false, NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "active_to_read_or_write_delay", ALL, REQUIREMENT::BY_RULE, false,
     NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "auto_refresh_command_period", ALL, REQUIREMENT::BY_RULE, false,
     NO_DEFAULTS},
    {KIND::DOUBLE, "sdram", "cas_latency", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    // Texts
    {KIND::STRING, nullptr, "endian", ALL, REQUIREMENT::OPTIONAL, true, texts("little", nullptr)},
    {KIND::STRING, nullptr, "configuration_device", ALL, REQUIREMENT::OPTIONAL, true,
     texts("kvp2", nullptr)},
    {KIND::STRING, "ebi", "input_pin_standard", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::STRING, "ebi", "output_pin_standard", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::STRING, "ebi", "byte_enable_polarity", ALL, REQUIREMENT::OPTIONAL, true,
     texts("low", nullptr)},
    {KIND::STRING, "ebi", "output_enable_polarity", ALL, REQUIREMENT::OPTIONAL, true,
     texts("low", nullptr)},
    {KIND::STRING, "ebi", "write_enable_polarity", ALL, REQUIREMENT::OPTIONAL, true,
     texts("low", nullptr)},
    {KIND::STRING, "sdram", "input_pin_standard", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::STRING, "sdram", "output_pin_standard", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::STRING, "sdram", "type", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::STRING, "dpram", "mode[0]", ALL, REQUIREMENT::OPTIONAL, true,
     texts("no_ports", nullptr)},
    {KIND::STRING, "dpram", "mode[1]", ALL, REQUIREMENT::OPTIONAL, true,
     texts("no_ports", nullptr)},
    {KIND::STRING, "uart", "input_pin_standard", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::STRING, "uart", "output_pin_standard", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::STRING, "trace", "output_pin_standard", ALL, REQUIREMENT::BY_RULE, true, NO_DEFAULTS},
    {KIND::STRING, "pld", "pld_to_stripe_interrupt_mode", ALL, REQUIREMENT::OPTIONAL, true,
     texts("six_individual_requests", "six_individual_requests")},
    {KIND::STRING, "ebi.region[0]", "chip_select_polarity", ALL, REQUIREMENT::OPTIONAL, true,
     texts("low", "low")},
    {KIND::STRING, "ebi.region[1]", "chip_select_polarity", ALL, REQUIREMENT::OPTIONAL, true,
     texts("low", "low")},
    {KIND::STRING, "ebi.region[2]", "chip_select_polarity", ALL, REQUIREMENT::OPTIONAL, true,
     texts("low", "low")},
    {KIND::STRING, "ebi.region[3]", "chip_select_polarity", ALL, REQUIREMENT::OPTIONAL, true,
     texts("low", "low")},
};

using REQUIRED = REQUIREMENT_RULE;

const std::vector<REQUIREMENT_RULE> REQUIREMENT_RULES = {
    {{"programming_clock_frequency"}, LEVEL::DRIVER, REQUIRED::IS_FALSE, "boot_from_flash"},

    {{"clocks.pll_ahb_m", "clocks.pll_ahb_n", "clocks.pll_ahb_k"},
     LEVEL::FAMILY,
     REQUIRED::IS_FALSE,
     "clocks.pll_ahb_bypass"},
    {{"clocks.pll_sdram_m", "clocks.pll_sdram_n", "clocks.pll_sdram_k"},
     LEVEL::FAMILY,
     REQUIRED::IS_FALSE,
     "clocks.pll_sdram_bypass"},

    {{"sdram.data_width", "sdram.row_address_bits", "sdram.column_address_bits",
      "sdram.active_to_read_or_write_delay", "sdram.active_to_precharge_command",
      "sdram.active_banka_to_bankb_command", "sdram.precharge_command_period",
      "sdram.write_recovery_time", "sdram.active_to_active_command_period", "sdram.refresh_period",
      "sdram.auto_refresh_command_period", "sdram.cas_latency", "sdram.input_pin_standard",
      "sdram.output_pin_standard", "sdram.type"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "sdram.enabled"},
    {{"sdram.region[0].address_base", "sdram.region[0].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "sdram.region[0].enabled"},
    {{"sdram.region[1].address_base", "sdram.region[1].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "sdram.region[1].enabled"},

    {{"dpram.combined_address_range"}, LEVEL::FAMILY, REQUIRED::IS_TRUE, "dpram.combined_mode"},
    {{"dpram.address_range[0]"}, LEVEL::FAMILY, REQUIRED::IS_PORT_USED, "dpram.mode[0]"},
    {{"dpram.address_range[1]"}, LEVEL::FAMILY, REQUIRED::IS_PORT_USED, "dpram.mode[1]"},
    {{"dpram.region[0].address_base", "dpram.region[0].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "dpram.region[0].enabled"},
    {{"dpram.region[1].address_base", "dpram.region[1].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "dpram.region[1].enabled"},

    {{"registers.address_base", "registers.address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "registers.enabled"},
    {{"sram[0].address_base", "sram[0].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "sram[0].enabled"},
    {{"sram[1].address_base", "sram[1].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "sram[1].enabled"},
    {{"pld[0].address_base", "pld[0].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "pld[0].enabled"},
    {{"pld[1].address_base", "pld[1].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "pld[1].enabled"},
    {{"pld[2].address_base", "pld[2].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "pld[2].enabled"},
    {{"pld[3].address_base", "pld[3].address_size"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "pld[3].enabled"},

    {{"ebi.region[0].address_base", "ebi.region[0].address_size", "ebi.region[0].data_width"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "ebi.region[0].enabled"},
    {{"ebi.region[1].address_base", "ebi.region[1].address_size", "ebi.region[1].data_width"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "ebi.region[1].enabled"},
    {{"ebi.region[2].address_base", "ebi.region[2].address_size", "ebi.region[2].data_width"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "ebi.region[2].enabled"},
    {{"ebi.region[3].address_base", "ebi.region[3].address_size", "ebi.region[3].data_width"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "ebi.region[3].enabled"},

    {{"ebi.input_pin_standard", "ebi.output_pin_standard"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "ebi.enabled"},
    {{"uart.input_pin_standard", "uart.output_pin_standard"},
     LEVEL::FAMILY,
     REQUIRED::IS_TRUE,
     "uart.enabled"},
    {{"trace.output_pin_standard"}, LEVEL::FAMILY, REQUIRED::IS_TRUE, "trace.enabled"},
};

// ---- Rules for values ----------------------------------------------------------------------

using NAMES = std::vector<std::string>;
using NUMBERS = std::vector<unsigned long>;

VALUE_RULE anything(const NAMES& parameters, unsigned chips, LEVEL level) {
  return {parameters, chips, level, VALUE_RULE::ANYTHING};
}

VALUE_RULE only_false(const NAMES& parameters, unsigned chips, LEVEL level) {
  return {parameters, chips, level, VALUE_RULE::ONLY_FALSE};
}

VALUE_RULE range(const NAMES& parameters, unsigned chips, LEVEL level, unsigned long low,
                 unsigned long high) {
  return {parameters, chips, level, VALUE_RULE::RANGE, {low, high}};
}

VALUE_RULE one_of(const NAMES& parameters, unsigned chips, LEVEL level, const NUMBERS& values) {
  return {parameters, chips, level, VALUE_RULE::ONE_OF, values};
}

VALUE_RULE keyword(const NAMES& parameters, unsigned chips, LEVEL level, const NAMES& keywords) {
  return {parameters, chips, level, VALUE_RULE::KEYWORD, {}, keywords};
}

// The lower limit counts only while a PLL is in use.
VALUE_RULE clock(const NAMES& parameters, unsigned chips, unsigned long low, unsigned long high) {
  VALUE_RULE rule = range(parameters, chips, LEVEL::CHIP_READER, low, high);
  rule.low_when_bypassed = 1;
  return rule;
}

VALUE_RULE port_width(const std::string& parameter, const NUMBERS& values,
                      const std::string& mode) {
  VALUE_RULE rule = one_of({parameter}, ALL, LEVEL::FAMILY, values);
  rule.freeing_mode = mode;
  return rule;
}

const NAMES INPUT_STANDARDS = {"lvttl_1v8", "lvttl_2v5", "lvttl_3v3",
                               "sstl_2",    "sstl_3",    "gtl_plus"};
const NAMES OUTPUT_STANDARDS = {"slow_slew", "fast_slew", "pci_diode", "open_drain"};
const NAMES PORT_MODES = {"no_ports", "one_port", "two_ports", "dual_port"};

const std::vector<VALUE_RULE> VALUE_RULES = {
    // The driver's own.
    range({"programming_clock_frequency"}, ALL, LEVEL::DRIVER, 1, 100000000),
    one_of({"registers.address_size"}, ALL, LEVEL::DRIVER, {16384}),
    keyword({"endian"}, ALL, LEVEL::DRIVER, {"little", "big"}),

    // The same on every chip.
    anything({"ebi.region[0].enabled", "ebi.region[1].enabled", "ebi.region[2].enabled",
              "ebi.region[3].enabled", "sdram.region[0].enabled", "sdram.region[1].enabled"},
             ALL, LEVEL::FAMILY),
    one_of({"clocks.ahb1_divide", "clocks.ahb2_divide"}, ALL, LEVEL::FAMILY, {2, 4, 8}),
    range({"ebi.clock_divide"}, ALL, LEVEL::FAMILY, 1, 16),
    range({"ebi.timeout_clock_cycles"}, ALL, LEVEL::FAMILY, 0, 255),
    one_of({"sdram.burst_length"}, ALL, LEVEL::FAMILY, {1, 2, 4, 8}),
    range({"sdram.row_address_bits"}, ALL, LEVEL::FAMILY, 9, 13),
    range({"sdram.column_address_bits"}, ALL, LEVEL::FAMILY, 8, 12),
    one_of({"sdram.bank_address_bits"}, ALL, LEVEL::FAMILY, {2}),
    one_of({"dpram.combined_data_width"}, ALL, LEVEL::FAMILY, {8, 16, 32, 64}),
    port_width("dpram.data_width[0]", {8, 16, 32}, "dpram.mode[0]"),
    anything({"dpram.combined_address_range", "dpram.address_range[0]", "dpram.address_range[1]",
              "dpram.lock_grant_address_base[0]", "dpram.lock_grant_address_base[1]"},
             ALL, LEVEL::FAMILY),
    anything({"registers.address_base", "sram[0].address_base", "sram[1].address_base",
              "dpram.region[0].address_base", "dpram.region[1].address_base",
              "sdram.region[0].address_base", "sdram.region[1].address_base",
              "ebi.region[0].address_base", "ebi.region[1].address_base",
              "ebi.region[2].address_base", "ebi.region[3].address_base", "pld[0].address_base",
              "pld[1].address_base", "pld[2].address_base", "pld[3].address_base"},
             ALL, LEVEL::FAMILY),
    anything({"ebi.region[0].address_size", "ebi.region[1].address_size",
              "ebi.region[2].address_size", "ebi.region[3].address_size", "pld[0].address_size",
              "pld[1].address_size", "pld[2].address_size", "pld[3].address_size",
              "sdram.region[0].address_size", "sdram.region[1].address_size"},
             ALL, LEVEL::FAMILY),
    range({"ebi.region[0].wait_cycles", "ebi.region[1].wait_cycles", "ebi.region[2].wait_cycles",
           "ebi.region[3].wait_cycles"},
          ALL, LEVEL::FAMILY, 0, 15),
    one_of({"ebi.region[0].data_width", "ebi.region[1].data_width", "ebi.region[2].data_width",
            "ebi.region[3].data_width"},
           ALL, LEVEL::FAMILY, {8, 16}),
    anything({"sdram.cas_latency"}, ALL, LEVEL::FAMILY),
    keyword({"ebi.input_pin_standard", "sdram.input_pin_standard", "uart.input_pin_standard"}, ALL,
            LEVEL::FAMILY, INPUT_STANDARDS),
    keyword({"ebi.output_pin_standard", "sdram.output_pin_standard", "uart.output_pin_standard",
             "trace.output_pin_standard"},
            ALL, LEVEL::FAMILY, OUTPUT_STANDARDS),
    keyword({"ebi.byte_enable_polarity", "ebi.output_enable_polarity", "ebi.write_enable_polarity",
             "ebi.region[0].chip_select_polarity", "ebi.region[1].chip_select_polarity",
             "ebi.region[2].chip_select_polarity", "ebi.region[3].chip_select_polarity"},
            ALL, LEVEL::FAMILY, {"low", "high"}),
    keyword({"sdram.type"}, ALL, LEVEL::FAMILY, {"sdr", "ddr"}),
    keyword({"dpram.mode[0]"}, ALL, LEVEL::FAMILY, PORT_MODES),
    keyword({"configuration_device"}, ALL, LEVEL::FAMILY, {"kvp2", "kvp4", "kvp8", "kvp16"}),
    keyword({"pld.pld_to_stripe_interrupt_mode"}, ALL, LEVEL::FAMILY,
            {"six_bit_priority_code", "five_bit_priority_code_and_1_individual",
             "six_individual_requests"}),

    // Each chip's own.
    only_false({"dpram.combined_mode", "trace.enabled", "dpram.region[1].enabled"}, A1,
               LEVEL::CHIP_READER),
    clock({"clocks.input_clock_frequency"}, A1_A4, 1000000, 66000000),
    clock({"clocks.input_clock_frequency"}, A10, 10000000, 66000000),
    range({"clocks.pll_ahb_m", "clocks.pll_ahb_n", "clocks.pll_sdram_m", "clocks.pll_sdram_n"},
          A1_A4, LEVEL::CHIP_READER, 1, 255),
    range({"clocks.pll_ahb_m", "clocks.pll_ahb_n", "clocks.pll_sdram_m", "clocks.pll_sdram_n"}, A10,
          LEVEL::CHIP_READER, 1, 15),
    range({"clocks.pll_ahb_k", "clocks.pll_sdram_k"}, A1_A4, LEVEL::CHIP_READER, 1, 255),
    range({"clocks.pll_ahb_k", "clocks.pll_sdram_k"}, A10, LEVEL::CHIP_READER, 1, 7),
    one_of({"sdram.data_width"}, A1_A4, LEVEL::CHIP_READER, {16, 32}),
    one_of({"sdram.data_width"}, A10, LEVEL::CHIP_READER, {32}),
    anything({"dpram.data_width[1]"}, ALL, LEVEL::CHIP_READER),
    only_false({"pld.use_gpio_port"}, A10, LEVEL::CHIP_READER),
    one_of({"pld.gpio_port_width"}, A1, LEVEL::CHIP_READER, {4}),
    one_of({"pld.gpio_port_width"}, A4, LEVEL::CHIP_READER, {4, 8}),
    anything({"pld.gpio_port_width"}, A10, LEVEL::CHIP_READER),
    anything({"sram[0].address_size", "sram[1].address_size", "dpram.region[0].address_size",
              "dpram.region[1].address_size"},
             ALL, LEVEL::CHIP_READER),
    anything({"dpram.mode[1]"}, A1, LEVEL::CHIP_READER),
    keyword({"dpram.mode[1]"}, A4_A10, LEVEL::CHIP_READER, PORT_MODES),
};

}  // namespace

const char* name_of(CHIP chip) {
  if (chip == CHIP::QMXA1) return "qmxa1";
  return chip == CHIP::QMXA4 ? "qmxa4" : "qmxa10";
}

const std::vector<PARAMETER_ROW>& parameter_rows() {
  return ROWS;
}

const std::vector<PARAMETER_ROW>& rows_of(CHIP chip) {
  static const auto rows = [] {
    std::map<CHIP, std::vector<PARAMETER_ROW>> result;
    for (const CHIP each : ALL_CHIPS) {
      for (const PARAMETER_ROW& row : ROWS) {
        if (is_in(each, row.chips)) result[each].push_back(row);
      }
    }
    return result;
  }();
  return rows.at(chip);
}

const REQUIREMENT_RULE* find_requirement_rule(const std::string& parameter) {
  static const auto rules = [] {
    std::unordered_map<std::string, const REQUIREMENT_RULE*> result;
    for (const REQUIREMENT_RULE& rule : REQUIREMENT_RULES) {
      for (const std::string& name : rule.parameters) result.emplace(name, &rule);
    }
    return result;
  }();
  const auto found = rules.find(parameter);
  return found == rules.end() ? nullptr : found->second;
}

const VALUE_RULE* find_value_rule(const std::string& parameter, CHIP chip) {
  static const auto rules = [] {
    std::map<CHIP, std::unordered_map<std::string, const VALUE_RULE*>> result;
    for (const CHIP each : ALL_CHIPS) {
      for (const VALUE_RULE& rule : VALUE_RULES) {
        if (!is_in(each, rule.chips)) continue;
        for (const std::string& name : rule.parameters) result[each].emplace(name, &rule);
      }
    }
    return result;
  }();
  const auto found = rules.at(chip).find(parameter);
  return found == rules.at(chip).end() ? nullptr : found->second;
}
