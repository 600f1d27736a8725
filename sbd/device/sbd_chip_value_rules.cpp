// The limits of each chip: rows of data.
#include "sbd/device/sbd_reference.h"
#include "sbd/device/sbd_rule_table.h"
#include "sbd/device/sbd_rules.h"
#include "sbd/device/sbd_value_sets.h"
#include "sbd/device/sbd_veldran_keyword_texts.h"

using namespace SBD_KEYWORD;  // Nearly every word below is a keyword.

namespace {

constexpr unsigned long k_highest_clock = 66000000;

// The PLLs need a clock that is not too slow; without them any will do.
constexpr SBD_VALUE_SET k_slow_clock = sbd_range(1000000, k_highest_clock);
constexpr SBD_VALUE_SET k_fast_clock = sbd_range(10000000, k_highest_clock);
constexpr SBD_VALUE_SET k_bypassed_clock = sbd_range(1, k_highest_clock);
constexpr SBD_RULE_CONDITION k_both_plls_are_bypassed[] = {
    sbd_is_true(k_reference<CLOCKS, PLL_AHB_BYPASS>),
    sbd_is_true(k_reference<CLOCKS, PLL_SDRAM_BYPASS>)};

constexpr unsigned long k_sdram_widths[] = {16, 32};
constexpr unsigned long k_wide_sdram_only[] = {32};
constexpr unsigned long k_gpio_widths[] = {4, 8};
constexpr unsigned long k_narrow_gpio_only[] = {4};

constexpr SBD_VALUE_RULE k_qmxa1_rows[] = {
    sbd_rule(k_reference<DPRAM, COMBINED_MODE>, k_false_only),
    sbd_rule(k_reference<TRACE, ENABLED>, k_false_only),
    sbd_rule(k_reference<DPRAM_REGION_1, ENABLED>, k_false_only),
    sbd_rule(k_reference<CLOCKS, INPUT_CLOCK_FREQUENCY>, k_slow_clock, k_both_plls_are_bypassed,
             k_bypassed_clock),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_M>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_N>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_K>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_M>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_N>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_K>, sbd_range(1, 255)),
    sbd_rule(k_reference<SDRAM, DATA_WIDTH>, sbd_one_of(k_sdram_widths)),
    sbd_rule(k_reference<DPRAM, DATA_WIDTH_1>, k_any_value),
    sbd_rule(k_reference<PLD, GPIO_PORT_WIDTH>, sbd_one_of(k_narrow_gpio_only)),
    sbd_rule(k_reference<SRAM_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<SRAM_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM_REGION_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM_REGION_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM, MODE_1>, k_any_value),
};

constexpr SBD_VALUE_RULE k_qmxa4_rows[] = {
    sbd_rule(k_reference<CLOCKS, INPUT_CLOCK_FREQUENCY>, k_slow_clock, k_both_plls_are_bypassed,
             k_bypassed_clock),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_M>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_N>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_K>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_M>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_N>, sbd_range(1, 255)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_K>, sbd_range(1, 255)),
    sbd_rule(k_reference<SDRAM, DATA_WIDTH>, sbd_one_of(k_sdram_widths)),
    sbd_rule(k_reference<DPRAM, DATA_WIDTH_1>, k_any_value),
    sbd_rule(k_reference<PLD, GPIO_PORT_WIDTH>, sbd_one_of(k_gpio_widths)),
    sbd_rule(k_reference<SRAM_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<SRAM_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM_REGION_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM_REGION_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM, MODE_1>, sbd_one_of(k_port_modes)),
};

constexpr SBD_VALUE_RULE k_qmxa10_rows[] = {
    sbd_rule(k_reference<CLOCKS, INPUT_CLOCK_FREQUENCY>, k_fast_clock, k_both_plls_are_bypassed,
             k_bypassed_clock),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_M>, sbd_range(1, 15)),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_N>, sbd_range(1, 15)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_M>, sbd_range(1, 15)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_N>, sbd_range(1, 15)),
    sbd_rule(k_reference<CLOCKS, PLL_AHB_K>, sbd_range(1, 7)),
    sbd_rule(k_reference<CLOCKS, PLL_SDRAM_K>, sbd_range(1, 7)),
    sbd_rule(k_reference<SDRAM, DATA_WIDTH>, sbd_one_of(k_wide_sdram_only)),
    sbd_rule(k_reference<DPRAM, DATA_WIDTH_1>, k_any_value),
    sbd_rule(k_reference<PLD, USE_GPIO_PORT>, k_false_only),
    sbd_rule(k_reference<PLD, GPIO_PORT_WIDTH>, k_any_value),
    sbd_rule(k_reference<SRAM_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<SRAM_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM_REGION_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM_REGION_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<DPRAM, MODE_1>, sbd_one_of(k_port_modes)),
};

constexpr SBD_RULE_TABLE k_qmxa1_rules(k_qmxa1_rows);
constexpr SBD_RULE_TABLE k_qmxa4_rules(k_qmxa4_rows);
constexpr SBD_RULE_TABLE k_qmxa10_rules(k_qmxa10_rows);

constexpr SBD_CHIP k_qmxa1 = {1, [](std::string_view name) { return k_qmxa1_rules.find(name); }};
constexpr SBD_CHIP k_qmxa4 = {2, [](std::string_view name) { return k_qmxa4_rules.find(name); }};
constexpr SBD_CHIP k_qmxa10 = {4, [](std::string_view name) { return k_qmxa10_rules.find(name); }};

}  // namespace

const SBD_CHIP* sbd_chip(SBD_VELDRAN::CHIP_TYPE type) {
  switch (type) {
    case SBD_VELDRAN::CT_QMXA1:
      return &k_qmxa1;
    case SBD_VELDRAN::CT_QMXA4:
      return &k_qmxa4;
    case SBD_VELDRAN::CT_QMXA10:
      return &k_qmxa10;
    default:
      return nullptr;
  }
}
