// The keywords of the device layer: names of blocks and parameters, values, chips.
//
// Use them to name parameters in queries. All are in lower case; texts live as long as the library
// is loaded. Two pointers to one keyword are equal, and so are those that the parameter tables and
// rules hand out.
#ifndef SBD_SBD_VELDRAN_KEYWORDS_H
#define SBD_SBD_VELDRAN_KEYWORDS_H

#include "sbd/sbd_api.h"

// ---- Types of blocks ---------------------------------------------------------------------

extern SBD_API const char* const SBD_DEVICE;  // "device"
extern SBD_API const char* const SBD_MODULE;  // "module"

// The type words of the parameter blocks: "parameters clocks" and so on.
extern SBD_API const char* const SBD_PARAMETERS_CLOCKS;
extern SBD_API const char* const SBD_PARAMETERS_SDRAM;
extern SBD_API const char* const SBD_PARAMETERS_EBI;
extern SBD_API const char* const SBD_PARAMETERS_DPRAM;
extern SBD_API const char* const SBD_PARAMETERS_PLD;
extern SBD_API const char* const SBD_PARAMETERS_TRACE;
extern SBD_API const char* const SBD_PARAMETERS_UART;

// ---- Names and values --------------------------------------------------------------------
//
// SBD_VEL_X stands for the text "x"; where the text is another one it is given here.

extern SBD_API const char* const SBD_VEL_MODE_0;                     // "mode[0]"
extern SBD_API const char* const SBD_VEL_MODE_1;                     // "mode[1]"
extern SBD_API const char* const SBD_VEL_ADDRESS_RANGE_0;            // "address_range[0]"
extern SBD_API const char* const SBD_VEL_ADDRESS_RANGE_1;            // "address_range[1]"
extern SBD_API const char* const SBD_VEL_DATA_WIDTH_0;               // "data_width[0]"
extern SBD_API const char* const SBD_VEL_DATA_WIDTH_1;               // "data_width[1]"
extern SBD_API const char* const SBD_VEL_OUTPUTS_REGISTERED_0;       // "outputs_registered[0]"
extern SBD_API const char* const SBD_VEL_OUTPUTS_REGISTERED_1;       // "outputs_registered[1]"
extern SBD_API const char* const SBD_VEL_LOCK_GRANT_ADDRESS_BASE_0;  // "lock_grant_address_base[0]"
extern SBD_API const char* const SBD_VEL_LOCK_GRANT_ADDRESS_BASE_1;  // "lock_grant_address_base[1]"
extern SBD_API const char* const SBD_VEL_VELDRAN_ARM;
extern SBD_API const char* const SBD_VEL_VELDRAN_MIPS;
extern SBD_API const char* const SBD_VEL_QMXA10;
extern SBD_API const char* const SBD_VEL_QMXA4;
extern SBD_API const char* const SBD_VEL_QMXA1;
extern SBD_API const char* const SBD_VEL_QMXM10;
extern SBD_API const char* const SBD_VEL_QMXM4;
extern SBD_API const char* const SBD_VEL_QMXM1;
extern SBD_API const char* const SBD_VEL_FAMILY;
extern SBD_API const char* const SBD_VEL_VELDRAN_STRIPE;
extern SBD_API const char* const SBD_VEL_TYPE;
extern SBD_API const char* const SBD_VEL_ENDIAN;
extern SBD_API const char* const SBD_VEL_BOOT_FROM_FLASH;
extern SBD_API const char* const SBD_VEL_HOLD_PROCESSOR;
extern SBD_API const char* const SBD_VEL_CONFIGURATION_DEVICE;
extern SBD_API const char* const SBD_VEL_KVP2;
extern SBD_API const char* const SBD_VEL_KVP4;
extern SBD_API const char* const SBD_VEL_KVP8;
extern SBD_API const char* const SBD_VEL_KVP16;
extern SBD_API const char* const SBD_VEL_DATA_WIDTH;
extern SBD_API const char* const SBD_VEL_VANTREL_VERSION;
extern SBD_API const char* const SBD_VEL_CLOCKS;
extern SBD_API const char* const SBD_VEL_SDRAM;
extern SBD_API const char* const SBD_VEL_EBI;
extern SBD_API const char* const SBD_VEL_DPRAM;
extern SBD_API const char* const SBD_VEL_TRACE;
extern SBD_API const char* const SBD_VEL_UART;
extern SBD_API const char* const SBD_VEL_REGISTERS;
extern SBD_API const char* const SBD_VEL_SRAM;
extern SBD_API const char* const SBD_VEL_SRAM_0;  // "sram[0]"
extern SBD_API const char* const SBD_VEL_SRAM_1;  // "sram[1]"
extern SBD_API const char* const SBD_VEL_PLD;
extern SBD_API const char* const SBD_VEL_PLD_0;           // "pld[0]"
extern SBD_API const char* const SBD_VEL_PLD_1;           // "pld[1]"
extern SBD_API const char* const SBD_VEL_PLD_2;           // "pld[2]"
extern SBD_API const char* const SBD_VEL_PLD_3;           // "pld[3]"
extern SBD_API const char* const SBD_VEL_EBI_REGION;      // "ebi.region"
extern SBD_API const char* const SBD_VEL_EBI_REGION_0;    // "ebi.region[0]"
extern SBD_API const char* const SBD_VEL_EBI_REGION_1;    // "ebi.region[1]"
extern SBD_API const char* const SBD_VEL_EBI_REGION_2;    // "ebi.region[2]"
extern SBD_API const char* const SBD_VEL_EBI_REGION_3;    // "ebi.region[3]"
extern SBD_API const char* const SBD_VEL_SDRAM_REGION;    // "sdram.region"
extern SBD_API const char* const SBD_VEL_SDRAM_REGION_0;  // "sdram.region[0]"
extern SBD_API const char* const SBD_VEL_SDRAM_REGION_1;  // "sdram.region[1]"
extern SBD_API const char* const SBD_VEL_DPRAM_REGION;    // "dpram.region"
extern SBD_API const char* const SBD_VEL_DPRAM_REGION_0;  // "dpram.region[0]"
extern SBD_API const char* const SBD_VEL_DPRAM_REGION_1;  // "dpram.region[1]"
extern SBD_API const char* const SBD_VEL_INPUT_CLOCK_FREQUENCY;
extern SBD_API const char* const SBD_VEL_INPUT_CLOCK_UNITS;
extern SBD_API const char* const SBD_VEL_PROGRAMMING_CLOCK_FREQUENCY;
extern SBD_API const char* const SBD_VEL_PROGRAMMING_CLOCK_UNITS;
extern SBD_API const char* const SBD_VEL_DESIRED_AHB1_CLOCK_FREQUENCY;
extern SBD_API const char* const SBD_VEL_DESIRED_AHB1_CLOCK_UNITS;
extern SBD_API const char* const SBD_VEL_DESIRED_AHB2_CLOCK_FREQUENCY;
extern SBD_API const char* const SBD_VEL_DESIRED_AHB2_CLOCK_UNITS;
extern SBD_API const char* const SBD_VEL_DESIRED_SDRAM_CLOCK_FREQUENCY;
extern SBD_API const char* const SBD_VEL_DESIRED_SDRAM_CLOCK_UNITS;
extern SBD_API const char* const SBD_VEL_PLL_AHB_BYPASS;
extern SBD_API const char* const SBD_VEL_PLL_SDRAM_BYPASS;
extern SBD_API const char* const SBD_VEL_PLL_AHB_M;
extern SBD_API const char* const SBD_VEL_PLL_AHB_N;
extern SBD_API const char* const SBD_VEL_PLL_AHB_K;
extern SBD_API const char* const SBD_VEL_PLL_SDRAM_M;
extern SBD_API const char* const SBD_VEL_PLL_SDRAM_N;
extern SBD_API const char* const SBD_VEL_PLL_SDRAM_K;
extern SBD_API const char* const SBD_VEL_AHB1_DIVIDE;
extern SBD_API const char* const SBD_VEL_AHB2_DIVIDE;
extern SBD_API const char* const SBD_VEL_ADDRESS_BASE;
extern SBD_API const char* const SBD_VEL_ADDRESS_SIZE;
extern SBD_API const char* const SBD_VEL_PREFETCH;
extern SBD_API const char* const SBD_VEL_ENABLED;
extern SBD_API const char* const SBD_VEL_INPUT_PIN_STANDARD;
extern SBD_API const char* const SBD_VEL_OUTPUT_PIN_STANDARD;
extern SBD_API const char* const SBD_VEL_CLOCK_DIVIDE;
extern SBD_API const char* const SBD_VEL_TIMEOUT_ENABLE;
extern SBD_API const char* const SBD_VEL_TIMEOUT_CLOCK_CYCLES;
extern SBD_API const char* const SBD_VEL_EXTERNAL_CLOCK_ENABLE;
extern SBD_API const char* const SBD_VEL_SYNCHRONOUS;
extern SBD_API const char* const SBD_VEL_WAIT_CYCLES;
extern SBD_API const char* const SBD_VEL_BYTE_ENABLE;
extern SBD_API const char* const SBD_VEL_CHIP_SELECT_POLARITY;
extern SBD_API const char* const SBD_VEL_SPLIT_READ;
extern SBD_API const char* const SBD_VEL_BYTE_ENABLE_POLARITY;
extern SBD_API const char* const SBD_VEL_OUTPUT_ENABLE_POLARITY;
extern SBD_API const char* const SBD_VEL_WRITE_ENABLE_POLARITY;
extern SBD_API const char* const SBD_VEL_COMBINED_MODE;
extern SBD_API const char* const SBD_VEL_COMBINED_DATA_WIDTH;
extern SBD_API const char* const SBD_VEL_COMBINED_ADDRESS_RANGE;
extern SBD_API const char* const SBD_VEL_COMBINED_OUTPUTS_REGISTERED;
extern SBD_API const char* const SBD_VEL_MODE;
extern SBD_API const char* const SBD_VEL_ADDRESS_RANGE;
extern SBD_API const char* const SBD_VEL_OUTPUTS_REGISTERED;
extern SBD_API const char* const SBD_VEL_LOCK_GRANT_ADDRESS_BASE;
extern SBD_API const char* const SBD_VEL_NO_PORTS;
extern SBD_API const char* const SBD_VEL_ONE_PORT;
extern SBD_API const char* const SBD_VEL_TWO_PORTS;
extern SBD_API const char* const SBD_VEL_DUAL_PORT;
extern SBD_API const char* const SBD_VEL_ACTIVE_TO_READ_OR_WRITE_DELAY;
extern SBD_API const char* const SBD_VEL_ACTIVE_TO_PRECHARGE_COMMAND;
extern SBD_API const char* const SBD_VEL_ACTIVE_BANKA_TO_BANKB_COMMAND;
extern SBD_API const char* const SBD_VEL_PRECHARGE_COMMAND_PERIOD;
extern SBD_API const char* const SBD_VEL_WRITE_RECOVERY_TIME;
extern SBD_API const char* const SBD_VEL_ACTIVE_TO_ACTIVE_COMMAND_PERIOD;
extern SBD_API const char* const SBD_VEL_REFRESH_PERIOD;
extern SBD_API const char* const SBD_VEL_BURST_LENGTH;
extern SBD_API const char* const SBD_VEL_CAS_LATENCY;
extern SBD_API const char* const SBD_VEL_AUTO_REFRESH_COMMAND_PERIOD;
extern SBD_API const char* const SBD_VEL_ROW_ADDRESS_BITS;
extern SBD_API const char* const SBD_VEL_COLUMN_ADDRESS_BITS;
extern SBD_API const char* const SBD_VEL_BANK_ADDRESS_BITS;
extern SBD_API const char* const SBD_VEL_DEVICE_NAME;
extern SBD_API const char* const SBD_VEL_USE_PLD_TO_STRIPE_BRIDGE;
extern SBD_API const char* const SBD_VEL_USE_STRIPE_TO_PLD_BRIDGE;
extern SBD_API const char* const SBD_VEL_USE_PLD_TO_STRIPE_INTERRUPTS;
extern SBD_API const char* const SBD_VEL_USE_STRIPE_TO_PLD_INTERRUPTS;
extern SBD_API const char* const SBD_VEL_PLD_TO_STRIPE_INTERRUPT_MODE;
extern SBD_API const char* const SBD_VEL_USE_DEBUG_EXTENSIONS;
extern SBD_API const char* const SBD_VEL_USE_TRACE_EXTENSIONS;
extern SBD_API const char* const SBD_VEL_USE_GPIO_PORT;
extern SBD_API const char* const SBD_VEL_GPIO_PORT_WIDTH;
extern SBD_API const char* const SBD_VEL_LITTLE;
extern SBD_API const char* const SBD_VEL_BIG;
extern SBD_API const char* const SBD_VEL_LVTTL_1V8;
extern SBD_API const char* const SBD_VEL_LVTTL_2V5;
extern SBD_API const char* const SBD_VEL_LVTTL_3V3;
extern SBD_API const char* const SBD_VEL_SSTL_2;
extern SBD_API const char* const SBD_VEL_SSTL_3;
extern SBD_API const char* const SBD_VEL_GTL_PLUS;
extern SBD_API const char* const SBD_VEL_SLOW_SLEW;
extern SBD_API const char* const SBD_VEL_FAST_SLEW;
extern SBD_API const char* const SBD_VEL_PCI_DIODE;
extern SBD_API const char* const SBD_VEL_OPEN_DRAIN;
extern SBD_API const char* const SBD_VEL_LOW;
extern SBD_API const char* const SBD_VEL_HIGH;
extern SBD_API const char* const SBD_VEL_DDR;
extern SBD_API const char* const SBD_VEL_SDR;
extern SBD_API const char* const SBD_VEL_SIX_INDIVIDUAL_REQUESTS;
extern SBD_API const char* const SBD_VEL_FIVE_BIT_PRIORITY_CODE_AND_1_INDIVIDUAL;
extern SBD_API const char* const SBD_VEL_SIX_BIT_PRIORITY_CODE;

#endif
