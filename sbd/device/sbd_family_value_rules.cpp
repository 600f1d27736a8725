// The values that parameters may have on every chip: rows of data.
#include "sbd/device/sbd_reference.h"
#include "sbd/device/sbd_rule_table.h"
#include "sbd/device/sbd_rules.h"
#include "sbd/device/sbd_value_sets.h"
#include "sbd/device/sbd_veldran_keyword_texts.h"

using namespace SBD_KEYWORD;  // Nearly every word below is a keyword.

namespace {

constexpr unsigned long k_highest_programming_clock = 100000000;

constexpr unsigned long k_register_sizes[] = {16384};
constexpr unsigned long k_dividers[] = {2, 4, 8};
constexpr unsigned long k_burst_lengths[] = {1, 2, 4, 8};
constexpr unsigned long k_bank_address_bits[] = {2};
constexpr unsigned long k_combined_widths[] = {8, 16, 32, 64};
constexpr unsigned long k_port_widths[] = {8, 16, 32};
constexpr unsigned long k_bus_widths[] = {8, 16};

constexpr const char* k_byte_orders[] = {LITTLE, BIG};
constexpr const char* k_input_pin_standards[] = {LVTTL_1V8, LVTTL_2V5, LVTTL_3V3,
                                                 SSTL_2,    SSTL_3,    GTL_PLUS};
constexpr const char* k_output_pin_standards[] = {SLOW_SLEW, FAST_SLEW, PCI_DIODE, OPEN_DRAIN};
constexpr const char* k_polarities[] = {LOW, HIGH};
constexpr const char* k_sdram_types[] = {SDR, DDR};
constexpr const char* k_configuration_devices[] = {KVP2, KVP4, KVP8, KVP16};
constexpr const char* k_interrupt_modes[] = {
    SIX_BIT_PRIORITY_CODE, FIVE_BIT_PRIORITY_CODE_AND_1_INDIVIDUAL, SIX_INDIVIDUAL_REQUESTS};

constexpr SBD_RULE_CONDITION k_port_0_is_unused[] = {
    sbd_is_text(k_reference<DPRAM, MODE_0>, NO_PORTS)};

// What the driver checks by itself.
constexpr SBD_VALUE_RULE k_driver_rows[] = {
    sbd_rule(PROGRAMMING_CLOCK_FREQUENCY, sbd_range(1, k_highest_programming_clock)),
    sbd_rule(k_reference<REGISTERS, ADDRESS_SIZE>, sbd_one_of(k_register_sizes)),
    sbd_rule(ENDIAN, sbd_one_of(k_byte_orders)),
};

constexpr SBD_VALUE_RULE k_family_rows[] = {
    sbd_rule(k_reference<EBI_REGION_0, ENABLED>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_1, ENABLED>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_2, ENABLED>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_3, ENABLED>, k_any_value),
    sbd_rule(k_reference<SDRAM_REGION_0, ENABLED>, k_any_value),
    sbd_rule(k_reference<SDRAM_REGION_1, ENABLED>, k_any_value),
    sbd_rule(k_reference<CLOCKS, AHB1_DIVIDE>, sbd_one_of(k_dividers)),
    sbd_rule(k_reference<CLOCKS, AHB2_DIVIDE>, sbd_one_of(k_dividers)),
    sbd_rule(k_reference<EBI, CLOCK_DIVIDE>, sbd_range(1, 16)),
    sbd_rule(k_reference<EBI, TIMEOUT_CLOCK_CYCLES>, sbd_range(0, 255)),
    sbd_rule(k_reference<SDRAM, BURST_LENGTH>, sbd_one_of(k_burst_lengths)),
    sbd_rule(k_reference<SDRAM, ROW_ADDRESS_BITS>, sbd_range(9, 13)),
    sbd_rule(k_reference<SDRAM, COLUMN_ADDRESS_BITS>, sbd_range(8, 12)),
    sbd_rule(k_reference<SDRAM, BANK_ADDRESS_BITS>, sbd_one_of(k_bank_address_bits)),
    sbd_rule(k_reference<DPRAM, COMBINED_DATA_WIDTH>, sbd_one_of(k_combined_widths)),
    sbd_rule(k_reference<DPRAM, DATA_WIDTH_0>, sbd_one_of(k_port_widths), k_port_0_is_unused,
             k_any_value),
    sbd_rule(k_reference<DPRAM, COMBINED_ADDRESS_RANGE>, k_any_value),
    sbd_rule(k_reference<DPRAM, ADDRESS_RANGE_0>, k_any_value),
    sbd_rule(k_reference<DPRAM, ADDRESS_RANGE_1>, k_any_value),
    sbd_rule(k_reference<DPRAM, LOCK_GRANT_ADDRESS_BASE_0>, k_any_value),
    sbd_rule(k_reference<DPRAM, LOCK_GRANT_ADDRESS_BASE_1>, k_any_value),
    sbd_rule(k_reference<REGISTERS, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<SRAM_0, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<SRAM_1, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<DPRAM_REGION_0, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<DPRAM_REGION_1, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<SDRAM_REGION_0, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<SDRAM_REGION_1, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_0, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_1, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_2, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_3, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<PLD_0, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<PLD_1, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<PLD_2, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<PLD_3, ADDRESS_BASE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_2, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_3, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<PLD_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<PLD_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<PLD_2, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<PLD_3, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<SDRAM_REGION_0, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<SDRAM_REGION_1, ADDRESS_SIZE>, k_any_value),
    sbd_rule(k_reference<EBI_REGION_0, WAIT_CYCLES>, sbd_range(0, 15)),
    sbd_rule(k_reference<EBI_REGION_1, WAIT_CYCLES>, sbd_range(0, 15)),
    sbd_rule(k_reference<EBI_REGION_2, WAIT_CYCLES>, sbd_range(0, 15)),
    sbd_rule(k_reference<EBI_REGION_3, WAIT_CYCLES>, sbd_range(0, 15)),
    sbd_rule(k_reference<EBI_REGION_0, DATA_WIDTH>, sbd_one_of(k_bus_widths)),
    sbd_rule(k_reference<EBI_REGION_1, DATA_WIDTH>, sbd_one_of(k_bus_widths)),
    sbd_rule(k_reference<EBI_REGION_2, DATA_WIDTH>, sbd_one_of(k_bus_widths)),
    sbd_rule(k_reference<EBI_REGION_3, DATA_WIDTH>, sbd_one_of(k_bus_widths)),
    sbd_rule(k_reference<SDRAM, CAS_LATENCY>, k_any_value),
    sbd_rule(k_reference<EBI, INPUT_PIN_STANDARD>, sbd_one_of(k_input_pin_standards)),
    sbd_rule(k_reference<SDRAM, INPUT_PIN_STANDARD>, sbd_one_of(k_input_pin_standards)),
    sbd_rule(k_reference<UART, INPUT_PIN_STANDARD>, sbd_one_of(k_input_pin_standards)),
    sbd_rule(k_reference<EBI, OUTPUT_PIN_STANDARD>, sbd_one_of(k_output_pin_standards)),
    sbd_rule(k_reference<SDRAM, OUTPUT_PIN_STANDARD>, sbd_one_of(k_output_pin_standards)),
    sbd_rule(k_reference<UART, OUTPUT_PIN_STANDARD>, sbd_one_of(k_output_pin_standards)),
    sbd_rule(k_reference<TRACE, OUTPUT_PIN_STANDARD>, sbd_one_of(k_output_pin_standards)),
    sbd_rule(k_reference<EBI, BYTE_ENABLE_POLARITY>, sbd_one_of(k_polarities)),
    sbd_rule(k_reference<EBI, OUTPUT_ENABLE_POLARITY>, sbd_one_of(k_polarities)),
    sbd_rule(k_reference<EBI, WRITE_ENABLE_POLARITY>, sbd_one_of(k_polarities)),
    sbd_rule(k_reference<EBI_REGION_0, CHIP_SELECT_POLARITY>, sbd_one_of(k_polarities)),
    sbd_rule(k_reference<EBI_REGION_1, CHIP_SELECT_POLARITY>, sbd_one_of(k_polarities)),
    sbd_rule(k_reference<EBI_REGION_2, CHIP_SELECT_POLARITY>, sbd_one_of(k_polarities)),
    sbd_rule(k_reference<EBI_REGION_3, CHIP_SELECT_POLARITY>, sbd_one_of(k_polarities)),
    sbd_rule(k_reference<SDRAM, TYPE>, sbd_one_of(k_sdram_types)),
    sbd_rule(k_reference<DPRAM, MODE_0>, sbd_one_of(k_port_modes)),
    sbd_rule(CONFIGURATION_DEVICE, sbd_one_of(k_configuration_devices)),
    sbd_rule(k_reference<PLD, PLD_TO_STRIPE_INTERRUPT_MODE>, sbd_one_of(k_interrupt_modes)),
};

constexpr SBD_RULE_TABLE k_driver_rules(k_driver_rows);
constexpr SBD_RULE_TABLE k_family_rules(k_family_rows);

}  // namespace

const SBD_VALUE_RULE* sbd_driver_value_rule(std::string_view reference) {
  return k_driver_rules.find(reference);
}

const SBD_VALUE_RULE* sbd_family_value_rule(std::string_view reference) {
  return k_family_rules.find(reference);
}
