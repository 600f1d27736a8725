// When a parameter has to be stated: rows of data.
#include "sbd/device/sbd_reference.h"
#include "sbd/device/sbd_rule_table.h"
#include "sbd/device/sbd_rules.h"
#include "sbd/device/sbd_value_sets.h"
#include "sbd/device/sbd_veldran_keyword_texts.h"

using namespace SBD_KEYWORD;  // Nearly every word below is a keyword.

namespace {

constexpr SBD_REQUIREMENT_RULE k_driver_rows[] = {
    {PROGRAMMING_CLOCK_FREQUENCY, sbd_is_false(BOOT_FROM_FLASH)},
};

constexpr SBD_REQUIREMENT_RULE k_family_rows[] = {
    {k_reference<CLOCKS, PLL_AHB_M>, sbd_is_false(k_reference<CLOCKS, PLL_AHB_BYPASS>)},
    {k_reference<CLOCKS, PLL_AHB_N>, sbd_is_false(k_reference<CLOCKS, PLL_AHB_BYPASS>)},
    {k_reference<CLOCKS, PLL_AHB_K>, sbd_is_false(k_reference<CLOCKS, PLL_AHB_BYPASS>)},
    {k_reference<CLOCKS, PLL_SDRAM_M>, sbd_is_false(k_reference<CLOCKS, PLL_SDRAM_BYPASS>)},
    {k_reference<CLOCKS, PLL_SDRAM_N>, sbd_is_false(k_reference<CLOCKS, PLL_SDRAM_BYPASS>)},
    {k_reference<CLOCKS, PLL_SDRAM_K>, sbd_is_false(k_reference<CLOCKS, PLL_SDRAM_BYPASS>)},
    {k_reference<SDRAM, DATA_WIDTH>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, ROW_ADDRESS_BITS>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, COLUMN_ADDRESS_BITS>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, ACTIVE_TO_READ_OR_WRITE_DELAY>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, ACTIVE_TO_PRECHARGE_COMMAND>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, ACTIVE_BANKA_TO_BANKB_COMMAND>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, PRECHARGE_COMMAND_PERIOD>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, WRITE_RECOVERY_TIME>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, ACTIVE_TO_ACTIVE_COMMAND_PERIOD>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, REFRESH_PERIOD>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, AUTO_REFRESH_COMMAND_PERIOD>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, CAS_LATENCY>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, INPUT_PIN_STANDARD>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, OUTPUT_PIN_STANDARD>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM, TYPE>, sbd_is_true(k_reference<SDRAM, ENABLED>)},
    {k_reference<SDRAM_REGION_0, ADDRESS_BASE>, sbd_is_true(k_reference<SDRAM_REGION_0, ENABLED>)},
    {k_reference<SDRAM_REGION_0, ADDRESS_SIZE>, sbd_is_true(k_reference<SDRAM_REGION_0, ENABLED>)},
    {k_reference<SDRAM_REGION_1, ADDRESS_BASE>, sbd_is_true(k_reference<SDRAM_REGION_1, ENABLED>)},
    {k_reference<SDRAM_REGION_1, ADDRESS_SIZE>, sbd_is_true(k_reference<SDRAM_REGION_1, ENABLED>)},
    {k_reference<DPRAM, COMBINED_ADDRESS_RANGE>, sbd_is_true(k_reference<DPRAM, COMBINED_MODE>)},
    {k_reference<DPRAM, ADDRESS_RANGE_0>, sbd_is_not_text(k_reference<DPRAM, MODE_0>, NO_PORTS)},
    {k_reference<DPRAM, ADDRESS_RANGE_1>, sbd_is_not_text(k_reference<DPRAM, MODE_1>, NO_PORTS)},
    {k_reference<REGISTERS, ADDRESS_BASE>, sbd_is_true(k_reference<REGISTERS, ENABLED>)},
    {k_reference<REGISTERS, ADDRESS_SIZE>, sbd_is_true(k_reference<REGISTERS, ENABLED>)},
    {k_reference<SRAM_0, ADDRESS_BASE>, sbd_is_true(k_reference<SRAM_0, ENABLED>)},
    {k_reference<SRAM_0, ADDRESS_SIZE>, sbd_is_true(k_reference<SRAM_0, ENABLED>)},
    {k_reference<SRAM_1, ADDRESS_BASE>, sbd_is_true(k_reference<SRAM_1, ENABLED>)},
    {k_reference<SRAM_1, ADDRESS_SIZE>, sbd_is_true(k_reference<SRAM_1, ENABLED>)},
    {k_reference<PLD_0, ADDRESS_BASE>, sbd_is_true(k_reference<PLD_0, ENABLED>)},
    {k_reference<PLD_0, ADDRESS_SIZE>, sbd_is_true(k_reference<PLD_0, ENABLED>)},
    {k_reference<PLD_1, ADDRESS_BASE>, sbd_is_true(k_reference<PLD_1, ENABLED>)},
    {k_reference<PLD_1, ADDRESS_SIZE>, sbd_is_true(k_reference<PLD_1, ENABLED>)},
    {k_reference<PLD_2, ADDRESS_BASE>, sbd_is_true(k_reference<PLD_2, ENABLED>)},
    {k_reference<PLD_2, ADDRESS_SIZE>, sbd_is_true(k_reference<PLD_2, ENABLED>)},
    {k_reference<PLD_3, ADDRESS_BASE>, sbd_is_true(k_reference<PLD_3, ENABLED>)},
    {k_reference<PLD_3, ADDRESS_SIZE>, sbd_is_true(k_reference<PLD_3, ENABLED>)},
    {k_reference<EBI_REGION_0, ADDRESS_BASE>, sbd_is_true(k_reference<EBI_REGION_0, ENABLED>)},
    {k_reference<EBI_REGION_0, ADDRESS_SIZE>, sbd_is_true(k_reference<EBI_REGION_0, ENABLED>)},
    {k_reference<EBI_REGION_0, DATA_WIDTH>, sbd_is_true(k_reference<EBI_REGION_0, ENABLED>)},
    {k_reference<EBI_REGION_1, ADDRESS_BASE>, sbd_is_true(k_reference<EBI_REGION_1, ENABLED>)},
    {k_reference<EBI_REGION_1, ADDRESS_SIZE>, sbd_is_true(k_reference<EBI_REGION_1, ENABLED>)},
    {k_reference<EBI_REGION_1, DATA_WIDTH>, sbd_is_true(k_reference<EBI_REGION_1, ENABLED>)},
    {k_reference<EBI_REGION_2, ADDRESS_BASE>, sbd_is_true(k_reference<EBI_REGION_2, ENABLED>)},
    {k_reference<EBI_REGION_2, ADDRESS_SIZE>, sbd_is_true(k_reference<EBI_REGION_2, ENABLED>)},
    {k_reference<EBI_REGION_2, DATA_WIDTH>, sbd_is_true(k_reference<EBI_REGION_2, ENABLED>)},
    {k_reference<EBI_REGION_3, ADDRESS_BASE>, sbd_is_true(k_reference<EBI_REGION_3, ENABLED>)},
    {k_reference<EBI_REGION_3, ADDRESS_SIZE>, sbd_is_true(k_reference<EBI_REGION_3, ENABLED>)},
    {k_reference<EBI_REGION_3, DATA_WIDTH>, sbd_is_true(k_reference<EBI_REGION_3, ENABLED>)},
    {k_reference<DPRAM_REGION_0, ADDRESS_BASE>, sbd_is_true(k_reference<DPRAM_REGION_0, ENABLED>)},
    {k_reference<DPRAM_REGION_0, ADDRESS_SIZE>, sbd_is_true(k_reference<DPRAM_REGION_0, ENABLED>)},
    {k_reference<DPRAM_REGION_1, ADDRESS_BASE>, sbd_is_true(k_reference<DPRAM_REGION_1, ENABLED>)},
    {k_reference<DPRAM_REGION_1, ADDRESS_SIZE>, sbd_is_true(k_reference<DPRAM_REGION_1, ENABLED>)},
    {k_reference<EBI, INPUT_PIN_STANDARD>, sbd_is_true(k_reference<EBI, ENABLED>)},
    {k_reference<EBI, OUTPUT_PIN_STANDARD>, sbd_is_true(k_reference<EBI, ENABLED>)},
    {k_reference<UART, INPUT_PIN_STANDARD>, sbd_is_true(k_reference<UART, ENABLED>)},
    {k_reference<UART, OUTPUT_PIN_STANDARD>, sbd_is_true(k_reference<UART, ENABLED>)},
    {k_reference<TRACE, OUTPUT_PIN_STANDARD>, sbd_is_true(k_reference<TRACE, ENABLED>)},
};

constexpr SBD_RULE_TABLE k_driver_rules(k_driver_rows);
constexpr SBD_RULE_TABLE k_family_rules(k_family_rows);

}  // namespace

const SBD_REQUIREMENT_RULE* sbd_driver_requirement(std::string_view reference) {
  return k_driver_rules.find(reference);
}

const SBD_REQUIREMENT_RULE* sbd_family_requirement(std::string_view reference) {
  return k_family_rules.find(reference);
}
