#include "sbd/reading/sbd_usual_names.h"

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>

#include "sbd/reading/sbd_hash.h"

namespace {

// In the order in which descriptors have them. Nothing here knows of the devices, whose keywords
// they are: a test holds that none of their parameters is missing.
constexpr std::string_view k_names[] = {
    "family",
    "type",
    "vantrel_version",
    "endian",
    "boot_from_flash",
    "hold_processor",
    "configuration_device",
    "programming_clock_frequency",
    "programming_clock_units",
    "clocks",
    "input_clock_frequency",
    "input_clock_units",
    "desired_ahb1_clock_frequency",
    "desired_ahb1_clock_units",
    "desired_ahb2_clock_frequency",
    "desired_ahb2_clock_units",
    "desired_sdram_clock_frequency",
    "desired_sdram_clock_units",
    "pll_ahb_bypass",
    "pll_ahb_m",
    "pll_ahb_n",
    "pll_ahb_k",
    "ahb1_divide",
    "ahb2_divide",
    "pll_sdram_bypass",
    "pll_sdram_m",
    "pll_sdram_n",
    "pll_sdram_k",
    "sdram",
    "enabled",
    "device_name",
    "data_width",
    "burst_length",
    "row_address_bits",
    "column_address_bits",
    "bank_address_bits",
    "active_to_read_or_write_delay",
    "active_to_precharge_command",
    "active_banka_to_bankb_command",
    "precharge_command_period",
    "write_recovery_time",
    "active_to_active_command_period",
    "auto_refresh_command_period",
    "refresh_period",
    "cas_latency",
    "input_pin_standard",
    "output_pin_standard",
    "region[0]",
    "address_base",
    "address_size",
    "prefetch",
    "region[1]",
    "ebi",
    "clock_divide",
    "external_clock_enable",
    "timeout_enable",
    "timeout_clock_cycles",
    "split_read",
    "byte_enable_polarity",
    "output_enable_polarity",
    "write_enable_polarity",
    "wait_cycles",
    "synchronous",
    "byte_enable",
    "chip_select_polarity",
    "region[2]",
    "region[3]",
    "dpram",
    "combined_mode",
    "combined_data_width",
    "combined_address_range",
    "combined_outputs_registered",
    "mode[0]",
    "data_width[0]",
    "address_range[0]",
    "outputs_registered[0]",
    "lock_grant_address_base[0]",
    "mode[1]",
    "data_width[1]",
    "address_range[1]",
    "outputs_registered[1]",
    "lock_grant_address_base[1]",
    "uart",
    "trace",
    "pld",
    "use_pld_to_stripe_bridge",
    "use_stripe_to_pld_bridge",
    "use_pld_to_stripe_interrupts",
    "pld_to_stripe_interrupt_mode",
    "use_stripe_to_pld_interrupts",
    "use_debug_extensions",
    "use_trace_extensions",
    "use_gpio_port",
    "gpio_port_width",
    "registers",
    "sram[0]",
    "sram[1]",
    "pld[0]",
    "pld[1]",
    "pld[2]",
    "pld[3]",
};

constexpr std::size_t measure_texts() {
  std::size_t size = 0;
  for (const std::string_view name : k_names) size += name.size() + 1;
  return size;
}

// Behind the last one a step can be read.
constexpr auto make_texts() {
  std::array<char, measure_texts() + k_hash_step> texts{};
  std::size_t end = 0;
  for (const std::string_view name : k_names) {
    for (const char c : name) texts[end++] = c;
    ++end;
  }
  return texts;
}
constexpr auto k_texts = make_texts();

SBD_KNOWN_NAMES make_known_names() {
  SBD_KNOWN_NAMES known;
  const char* text = k_texts.data();
  for (const std::string_view name : k_names) {
    // Nobody writes into the text of a symbol.
    const auto own_text = [](std::string_view usual) { return const_cast<char*>(usual.data()); };
    known.know({text, name.size()}, own_text);
    text += name.size() + 1;
  }
  return known;
}

}  // namespace

const SBD_KNOWN_NAMES& sbd_known_usual_names() {
  static const SBD_KNOWN_NAMES known = make_known_names();
  return known;
}

std::string_view sbd_usual_name_texts() noexcept {
  return {k_texts.data(), measure_texts()};
}

bool sbd_is_usual_name(const char* text) noexcept {
  const std::less<const char*> before;
  return !before(text, k_texts.data()) && before(text, k_texts.data() + measure_texts());
}
