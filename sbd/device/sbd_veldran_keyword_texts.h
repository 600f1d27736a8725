// The text of every keyword of the device layer, once.
//
// The tables and rules take their texts from here while they are compiled; callers see the same
// storage through the pointers of sbd/sbd_veldran_keywords.h.
#ifndef SBD_DEVICE_SBD_VELDRAN_KEYWORD_TEXTS_H
#define SBD_DEVICE_SBD_VELDRAN_KEYWORD_TEXTS_H

namespace SBD_KEYWORD {

// Types of blocks.
inline constexpr char DEVICE_BLOCK[] = "device";
inline constexpr char MODULE_BLOCK[] = "module";
inline constexpr char PARAMETERS_CLOCKS[] = "parameters clocks";
inline constexpr char PARAMETERS_SDRAM[] = "parameters sdram";
inline constexpr char PARAMETERS_EBI[] = "parameters ebi";
inline constexpr char PARAMETERS_DPRAM[] = "parameters dpram";
inline constexpr char PARAMETERS_PLD[] = "parameters pld";
inline constexpr char PARAMETERS_TRACE[] = "parameters trace";
inline constexpr char PARAMETERS_UART[] = "parameters uart";

// Names and values.
inline constexpr char MODE_0[] = "mode[0]";
inline constexpr char MODE_1[] = "mode[1]";
inline constexpr char ADDRESS_RANGE_0[] = "address_range[0]";
inline constexpr char ADDRESS_RANGE_1[] = "address_range[1]";
inline constexpr char DATA_WIDTH_0[] = "data_width[0]";
inline constexpr char DATA_WIDTH_1[] = "data_width[1]";
inline constexpr char OUTPUTS_REGISTERED_0[] = "outputs_registered[0]";
inline constexpr char OUTPUTS_REGISTERED_1[] = "outputs_registered[1]";
inline constexpr char LOCK_GRANT_ADDRESS_BASE_0[] = "lock_grant_address_base[0]";
inline constexpr char LOCK_GRANT_ADDRESS_BASE_1[] = "lock_grant_address_base[1]";
inline constexpr char VELDRAN_ARM[] = "veldran_arm";
inline constexpr char VELDRAN_MIPS[] = "veldran_mips";
inline constexpr char QMXA10[] = "qmxa10";
inline constexpr char QMXA4[] = "qmxa4";
inline constexpr char QMXA1[] = "qmxa1";
inline constexpr char QMXM10[] = "qmxm10";
inline constexpr char QMXM4[] = "qmxm4";
inline constexpr char QMXM1[] = "qmxm1";
inline constexpr char FAMILY[] = "family";
inline constexpr char VELDRAN_STRIPE[] = "veldran_stripe";
inline constexpr char TYPE[] = "type";
inline constexpr char ENDIAN[] = "endian";
inline constexpr char BOOT_FROM_FLASH[] = "boot_from_flash";
inline constexpr char HOLD_PROCESSOR[] = "hold_processor";
inline constexpr char CONFIGURATION_DEVICE[] = "configuration_device";
inline constexpr char KVP2[] = "kvp2";
inline constexpr char KVP4[] = "kvp4";
inline constexpr char KVP8[] = "kvp8";
inline constexpr char KVP16[] = "kvp16";
inline constexpr char DATA_WIDTH[] = "data_width";
inline constexpr char VANTREL_VERSION[] = "vantrel_version";
inline constexpr char CLOCKS[] = "clocks";
inline constexpr char SDRAM[] = "sdram";
inline constexpr char EBI[] = "ebi";
inline constexpr char DPRAM[] = "dpram";
inline constexpr char TRACE[] = "trace";
inline constexpr char UART[] = "uart";
inline constexpr char REGISTERS[] = "registers";
inline constexpr char SRAM[] = "sram";
inline constexpr char SRAM_0[] = "sram[0]";
inline constexpr char SRAM_1[] = "sram[1]";
inline constexpr char PLD[] = "pld";
inline constexpr char PLD_0[] = "pld[0]";
inline constexpr char PLD_1[] = "pld[1]";
inline constexpr char PLD_2[] = "pld[2]";
inline constexpr char PLD_3[] = "pld[3]";
inline constexpr char EBI_REGION[] = "ebi.region";
inline constexpr char EBI_REGION_0[] = "ebi.region[0]";
inline constexpr char EBI_REGION_1[] = "ebi.region[1]";
inline constexpr char EBI_REGION_2[] = "ebi.region[2]";
inline constexpr char EBI_REGION_3[] = "ebi.region[3]";
inline constexpr char SDRAM_REGION[] = "sdram.region";
inline constexpr char SDRAM_REGION_0[] = "sdram.region[0]";
inline constexpr char SDRAM_REGION_1[] = "sdram.region[1]";
inline constexpr char DPRAM_REGION[] = "dpram.region";
inline constexpr char DPRAM_REGION_0[] = "dpram.region[0]";
inline constexpr char DPRAM_REGION_1[] = "dpram.region[1]";
inline constexpr char INPUT_CLOCK_FREQUENCY[] = "input_clock_frequency";
inline constexpr char INPUT_CLOCK_UNITS[] = "input_clock_units";
inline constexpr char PROGRAMMING_CLOCK_FREQUENCY[] = "programming_clock_frequency";
inline constexpr char PROGRAMMING_CLOCK_UNITS[] = "programming_clock_units";
inline constexpr char DESIRED_AHB1_CLOCK_FREQUENCY[] = "desired_ahb1_clock_frequency";
inline constexpr char DESIRED_AHB1_CLOCK_UNITS[] = "desired_ahb1_clock_units";
inline constexpr char DESIRED_AHB2_CLOCK_FREQUENCY[] = "desired_ahb2_clock_frequency";
inline constexpr char DESIRED_AHB2_CLOCK_UNITS[] = "desired_ahb2_clock_units";
inline constexpr char DESIRED_SDRAM_CLOCK_FREQUENCY[] = "desired_sdram_clock_frequency";
inline constexpr char DESIRED_SDRAM_CLOCK_UNITS[] = "desired_sdram_clock_units";
inline constexpr char PLL_AHB_BYPASS[] = "pll_ahb_bypass";
inline constexpr char PLL_SDRAM_BYPASS[] = "pll_sdram_bypass";
inline constexpr char PLL_AHB_M[] = "pll_ahb_m";
inline constexpr char PLL_AHB_N[] = "pll_ahb_n";
inline constexpr char PLL_AHB_K[] = "pll_ahb_k";
inline constexpr char PLL_SDRAM_M[] = "pll_sdram_m";
inline constexpr char PLL_SDRAM_N[] = "pll_sdram_n";
inline constexpr char PLL_SDRAM_K[] = "pll_sdram_k";
inline constexpr char AHB1_DIVIDE[] = "ahb1_divide";
inline constexpr char AHB2_DIVIDE[] = "ahb2_divide";
inline constexpr char ADDRESS_BASE[] = "address_base";
inline constexpr char ADDRESS_SIZE[] = "address_size";
inline constexpr char PREFETCH[] = "prefetch";
inline constexpr char ENABLED[] = "enabled";
inline constexpr char INPUT_PIN_STANDARD[] = "input_pin_standard";
inline constexpr char OUTPUT_PIN_STANDARD[] = "output_pin_standard";
inline constexpr char CLOCK_DIVIDE[] = "clock_divide";
inline constexpr char TIMEOUT_ENABLE[] = "timeout_enable";
inline constexpr char TIMEOUT_CLOCK_CYCLES[] = "timeout_clock_cycles";
inline constexpr char EXTERNAL_CLOCK_ENABLE[] = "external_clock_enable";
inline constexpr char SYNCHRONOUS[] = "synchronous";
inline constexpr char WAIT_CYCLES[] = "wait_cycles";
inline constexpr char BYTE_ENABLE[] = "byte_enable";
inline constexpr char CHIP_SELECT_POLARITY[] = "chip_select_polarity";
inline constexpr char SPLIT_READ[] = "split_read";
inline constexpr char BYTE_ENABLE_POLARITY[] = "byte_enable_polarity";
inline constexpr char OUTPUT_ENABLE_POLARITY[] = "output_enable_polarity";
inline constexpr char WRITE_ENABLE_POLARITY[] = "write_enable_polarity";
inline constexpr char COMBINED_MODE[] = "combined_mode";
inline constexpr char COMBINED_DATA_WIDTH[] = "combined_data_width";
inline constexpr char COMBINED_ADDRESS_RANGE[] = "combined_address_range";
inline constexpr char COMBINED_OUTPUTS_REGISTERED[] = "combined_outputs_registered";
inline constexpr char MODE[] = "mode";
inline constexpr char ADDRESS_RANGE[] = "address_range";
inline constexpr char OUTPUTS_REGISTERED[] = "outputs_registered";
inline constexpr char LOCK_GRANT_ADDRESS_BASE[] = "lock_grant_address_base";
inline constexpr char NO_PORTS[] = "no_ports";
inline constexpr char ONE_PORT[] = "one_port";
inline constexpr char TWO_PORTS[] = "two_ports";
inline constexpr char DUAL_PORT[] = "dual_port";
inline constexpr char ACTIVE_TO_READ_OR_WRITE_DELAY[] = "active_to_read_or_write_delay";
inline constexpr char ACTIVE_TO_PRECHARGE_COMMAND[] = "active_to_precharge_command";
inline constexpr char ACTIVE_BANKA_TO_BANKB_COMMAND[] = "active_banka_to_bankb_command";
inline constexpr char PRECHARGE_COMMAND_PERIOD[] = "precharge_command_period";
inline constexpr char WRITE_RECOVERY_TIME[] = "write_recovery_time";
inline constexpr char ACTIVE_TO_ACTIVE_COMMAND_PERIOD[] = "active_to_active_command_period";
inline constexpr char REFRESH_PERIOD[] = "refresh_period";
inline constexpr char BURST_LENGTH[] = "burst_length";
inline constexpr char CAS_LATENCY[] = "cas_latency";
inline constexpr char AUTO_REFRESH_COMMAND_PERIOD[] = "auto_refresh_command_period";
inline constexpr char ROW_ADDRESS_BITS[] = "row_address_bits";
inline constexpr char COLUMN_ADDRESS_BITS[] = "column_address_bits";
inline constexpr char BANK_ADDRESS_BITS[] = "bank_address_bits";
inline constexpr char DEVICE_NAME[] = "device_name";
inline constexpr char USE_PLD_TO_STRIPE_BRIDGE[] = "use_pld_to_stripe_bridge";
inline constexpr char USE_STRIPE_TO_PLD_BRIDGE[] = "use_stripe_to_pld_bridge";
inline constexpr char USE_PLD_TO_STRIPE_INTERRUPTS[] = "use_pld_to_stripe_interrupts";
inline constexpr char USE_STRIPE_TO_PLD_INTERRUPTS[] = "use_stripe_to_pld_interrupts";
inline constexpr char PLD_TO_STRIPE_INTERRUPT_MODE[] = "pld_to_stripe_interrupt_mode";
inline constexpr char USE_DEBUG_EXTENSIONS[] = "use_debug_extensions";
inline constexpr char USE_TRACE_EXTENSIONS[] = "use_trace_extensions";
inline constexpr char USE_GPIO_PORT[] = "use_gpio_port";
inline constexpr char GPIO_PORT_WIDTH[] = "gpio_port_width";
inline constexpr char LITTLE[] = "little";
inline constexpr char BIG[] = "big";
inline constexpr char LVTTL_1V8[] = "lvttl_1v8";
inline constexpr char LVTTL_2V5[] = "lvttl_2v5";
inline constexpr char LVTTL_3V3[] = "lvttl_3v3";
inline constexpr char SSTL_2[] = "sstl_2";
inline constexpr char SSTL_3[] = "sstl_3";
inline constexpr char GTL_PLUS[] = "gtl_plus";
inline constexpr char SLOW_SLEW[] = "slow_slew";
inline constexpr char FAST_SLEW[] = "fast_slew";
inline constexpr char PCI_DIODE[] = "pci_diode";
inline constexpr char OPEN_DRAIN[] = "open_drain";
inline constexpr char LOW[] = "low";
inline constexpr char HIGH[] = "high";
inline constexpr char DDR[] = "ddr";
inline constexpr char SDR[] = "sdr";
inline constexpr char SIX_INDIVIDUAL_REQUESTS[] = "six_individual_requests";
inline constexpr char FIVE_BIT_PRIORITY_CODE_AND_1_INDIVIDUAL[] =
    "five_bit_priority_code_and_1_individual";
inline constexpr char SIX_BIT_PRIORITY_CODE[] = "six_bit_priority_code";

}  // namespace SBD_KEYWORD

#endif
