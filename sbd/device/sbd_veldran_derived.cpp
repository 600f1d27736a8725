// What follows from the settings: clock frequencies and port widths.
#include <cstdint>
#include <limits>

#include "sbd/device/sbd_decimal.h"
#include "sbd/device/sbd_device_sources.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/reading/sbd_extended.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_keywords.h"

namespace {

// The keywords of one PLL.
struct PLL {
  const char* bypass;
  const char* m;
  const char* n;
  const char* k;
};

// The quotient; by 0 an infinity or no number, without the division that might trap.
long double divide(long double dividend, std::uint32_t divisor) {
  if (divisor != 0) return sbd_extended(dividend / static_cast<long double>(divisor));
  using LIMITS = std::numeric_limits<long double>;
  return dividend > 0 ? LIMITS::infinity() : LIMITS::quiet_NaN();
}

bool get_clock(const SBD_VELDRAN& device, const char* name, std::uint32_t& value) {
  unsigned long number = 0;
  if (!device.get_parameter(SBD_VEL_CLOCKS, name, number)) return false;
  value = static_cast<std::uint32_t>(number);
  return true;
}

// The output of a PLL that is not bypassed.
bool get_pll_output(const SBD_VELDRAN& device, const PLL& pll, std::uint32_t input,
                    long double& output) {
  std::uint32_t m = 0;
  std::uint32_t n = 0;
  std::uint32_t k = 0;
  if (!get_clock(device, pll.m, m) || !get_clock(device, pll.n, n) ||
      !get_clock(device, pll.k, k)) {
    return false;
  }
  // The product of the two dividers is one of 32 bits.
  output = divide(static_cast<long double>(input) * static_cast<long double>(m),
                  static_cast<std::uint32_t>(std::uint64_t{n} * k));
  return true;
}

// A keyword with the number of a port behind it, such as "mode[0]".
class INDEXED_NAME {
 public:
  INDEXED_NAME(const char* keyword, int index) : m_text(keyword) {
    const bool is_negative = index < 0;
    const auto magnitude = static_cast<unsigned long>(is_negative ? -long{index} : long{index});
    char digits[k_longest_decimal];
    m_text += is_negative ? "[-" : "[";
    m_text.append(digits, sbd_write_decimal(digits, magnitude));
    m_text += ']';
  }
  const char* text() const { return m_text.c_str(); }

 private:
  SBD_STRING m_text;
};

// The width of a port by itself; left as it is when the port is not in use.
bool get_port_width(const SBD_VELDRAN& device, int port, unsigned long& width) {
  SBD_STRING mode;
  const bool has_mode =
      device.get_parameter(SBD_VEL_DPRAM, INDEXED_NAME(SBD_VEL_MODE, port).text(), mode);
  if (mode == SBD_VEL_NO_PORTS) return has_mode;
  return device.get_parameter(SBD_VEL_DPRAM, INDEXED_NAME(SBD_VEL_DATA_WIDTH, port).text(), width);
}

}  // namespace

bool SBD_VELDRAN::get_ahb_clock_frequency(int ahb_n, double& frequency) const noexcept {
  SBD_CHECK(ahb_n != 0, "ahb_n != NULL", k_source_veldran);
  if (ahb_n != 1 && ahb_n != 2) return false;
  const PLL pll = {SBD_VEL_PLL_AHB_BYPASS, SBD_VEL_PLL_AHB_M, SBD_VEL_PLL_AHB_N, SBD_VEL_PLL_AHB_K};
  const char* const divider_name = ahb_n == 1 ? SBD_VEL_AHB1_DIVIDE : SBD_VEL_AHB2_DIVIDE;

  std::uint32_t input = 0;
  std::uint32_t divider = 1;
  bool is_bypassed = false;
  if (!get_clock(*this, SBD_VEL_INPUT_CLOCK_FREQUENCY, input) ||
      !get_parameter(SBD_VEL_CLOCKS, pll.bypass, is_bypassed) ||
      !get_clock(*this, divider_name, divider)) {
    return false;
  }
  long double output = input;
  if (!is_bypassed && !get_pll_output(*this, pll, input, output)) return false;
  frequency = static_cast<double>(divide(output, divider));
  return true;
}

bool SBD_VELDRAN::get_sdram_clock_frequency(double& frequency) const noexcept {
  // The SDRAM runs at half the rate, whether the PLL is bypassed or not.
  constexpr long double k_half = 0.5L;
  const PLL pll = {SBD_VEL_PLL_SDRAM_BYPASS, SBD_VEL_PLL_SDRAM_M, SBD_VEL_PLL_SDRAM_N,
                   SBD_VEL_PLL_SDRAM_K};
  std::uint32_t input = 0;
  bool is_bypassed = false;
  if (!get_clock(*this, SBD_VEL_INPUT_CLOCK_FREQUENCY, input) ||
      !get_parameter(SBD_VEL_CLOCKS, pll.bypass, is_bypassed)) {
    return false;
  }
  long double output = input;
  if (!is_bypassed && !get_pll_output(*this, pll, input, output)) return false;
  frequency = static_cast<double>(output * k_half);
  return true;
}

bool SBD_VELDRAN::get_dpram_data_width(int port, unsigned long& width) const noexcept {
  constexpr unsigned long k_unused_width = 32;
  constexpr unsigned long k_double_width = 64;  // Of both ports together.
  const bool has_one_port = m_chip_type == CT_QMXA1 || m_chip_type == CT_QMXM1;
  const int port_count = has_one_port ? 1 : 2;
  if (port >= port_count) return true;

  bool has_width = true;
  bool is_combined = false;
  if (!has_one_port) get_parameter(SBD_VEL_DPRAM, SBD_VEL_COMBINED_MODE, is_combined);
  if (is_combined) {
    has_width = get_parameter(SBD_VEL_DPRAM, SBD_VEL_COMBINED_DATA_WIDTH, width);
    if (width == k_double_width) width = k_unused_width;
  } else {
    width = k_unused_width;
    has_width = sbd_guarded(k_source_veldran, false,
                            [this, port, &width] { return get_port_width(*this, port, width); });
  }
  if (!has_width) width = 0;
  return has_width;
}
