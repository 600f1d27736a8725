#include "tools/clock_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "sbd/sbd_veldran_keywords.h"

namespace sbd_tool {

namespace {

constexpr double k_kilo = 1e3;
constexpr double k_mega = 1e6;
constexpr char k_no_value[] = "?";

std::string in_block(const char* block, const std::string& parameter) {
  return std::string(block) + "." + parameter;
}

bool is_true(const PARAMETER_VIEW& setting) {
  return !setting.text.empty() && setting.value.m_bool_value;
}

std::string value_of(const PARAMETER_VIEW& setting) {
  return setting.text.empty() ? k_no_value : setting.text;
}

std::string find_missing_value(const std::vector<PARAMETER_VIEW>& settings) {
  for (const PARAMETER_VIEW& setting : settings) {
    if (setting.text.empty()) return fmt::format("{} has no value", setting.name);
  }
  return "a setting has no value";
}

// ---- Clocks ------------------------------------------------------------------------------------

bool is_sdram_enabled(const SBD_VELDRAN& device) {
  return is_true(view_parameter(device, in_block(SBD_VEL_SDRAM, SBD_VEL_ENABLED)));
}

class CLOCK_DERIVATION {
 public:
  CLOCK_DERIVATION(const SBD_VELDRAN& device, const CLOCK_PATH& clock)
      : m_device(device), m_clock(clock) {}

  DERIVED_VIEW derive() {
    m_view.name = m_clock.name;
    m_view.title = m_clock.title;
    const PARAMETER_VIEW input = use(SBD_VEL_INPUT_CLOCK_FREQUENCY);
    const bool is_bypassed = is_true(use(m_clock.bypass));
    m_view.formula = SBD_VEL_INPUT_CLOCK_FREQUENCY;
    m_view.calculation =
        input.text.empty() ? k_no_value : format_frequency(input.value.m_dword_value);
    if (!is_bypassed) add_pll();
    add_divider();
    if (m_clock.ahb_n == 0) note_idle_sdram();
    take_value();
    return std::move(m_view);
  }

 private:
  PARAMETER_VIEW use(const char* parameter) {
    m_view.settings.push_back(view_parameter(m_device, in_block(SBD_VEL_CLOCKS, parameter)));
    return m_view.settings.back();
  }

  void add_pll() {
    const PARAMETER_VIEW m = use(m_clock.m);
    const PARAMETER_VIEW n = use(m_clock.n);
    const PARAMETER_VIEW k = use(m_clock.k);
    m_view.formula += fmt::format(" x {} / ({} x {})", m_clock.m, m_clock.n, m_clock.k);
    m_view.calculation += fmt::format(" x {} / ({} x {})", value_of(m), value_of(n), value_of(k));
    const std::uint64_t product = std::uint64_t{n.value.m_dword_value} * k.value.m_dword_value;
    if (product > std::numeric_limits<std::uint32_t>::max()) {
      m_view.remark = fmt::format("of {} x {} the low 32 bits count: {}", m_clock.n, m_clock.k,
                                  static_cast<std::uint32_t>(product));
    }
  }

  void add_divider() {
    if (m_clock.divider == nullptr) {
      m_view.formula += " / 2";
      m_view.calculation += " / 2";
      return;
    }
    m_view.formula += fmt::format(" / {}", m_clock.divider);
    m_view.calculation += fmt::format(" / {}", value_of(use(m_clock.divider)));
  }

  void note_idle_sdram() {
    const std::string name = in_block(SBD_VEL_SDRAM, SBD_VEL_ENABLED);
    const PARAMETER_VIEW enabled = view_parameter(m_device, name);
    if (is_true(enabled) || !m_view.remark.empty()) return;
    m_view.remark = fmt::format("not in use: {} is false", name);
    m_view.settings.push_back(enabled);
  }

  void take_value() {
    double frequency = 0.0;
    const bool has_value = m_clock.ahb_n != 0
                               ? m_device.get_ahb_clock_frequency(m_clock.ahb_n, frequency)
                               : m_device.get_sdram_clock_frequency(frequency);
    if (!has_value) {
      m_view.problem = find_missing_value(m_view.settings);
    } else if (!std::isfinite(frequency)) {
      m_view.problem = "division by 0";
    } else {
      m_view.value = frequency;
    }
  }

  const SBD_VELDRAN& m_device;
  const CLOCK_PATH& m_clock;
  DERIVED_VIEW m_view;
};

// ---- The tree of clocks ------------------------------------------------------------------------

class CLOCK_TREE {
 public:
  using TREE_NODE = CLOCK_TREE_NODE;
  using KIND = CLOCK_TREE_NODE::KIND;

  explicit CLOCK_TREE(const SBD_VELDRAN& device) : m_device(device) {}

  std::vector<TREE_NODE> make() {
    TREE_NODE input = {KIND::INPUT, SBD_VEL_INPUT_CLOCK_FREQUENCY, "", {}, false, {}};
    const PARAMETER_VIEW& setting = use(input, SBD_VEL_INPUT_CLOCK_FREQUENCY);
    if (!setting.text.empty()) input.frequency = setting.value.m_dword_value;
    m_input = input.frequency;
    m_nodes.push_back(std::move(input));
    std::string pll;
    for (const DERIVED_VIEW& clock : derive_clocks(m_device)) {
      const CLOCK_PATH& path = clock_paths()[m_clock_count++];
      if (pll != path.pll_title) add_pll(path);
      pll = path.pll_title;
      add_clock(path, clock);
    }
    return std::move(m_nodes);
  }

 private:
  const PARAMETER_VIEW& use(TREE_NODE& node, const char* parameter) {
    node.settings.push_back(view_parameter(m_device, in_block(SBD_VEL_CLOCKS, parameter)));
    return node.settings.back();
  }

  void add_pll(const CLOCK_PATH& path) {
    TREE_NODE pll = {KIND::PLL, path.pll_title, "bypassed", m_input, false, {}};
    if (!is_true(use(pll, path.bypass))) {
      const PARAMETER_VIEW m = use(pll, path.m);
      const PARAMETER_VIEW n = use(pll, path.n);
      const PARAMETER_VIEW k = use(pll, path.k);
      pll.step = fmt::format("x {} / ({} x {})", value_of(m), value_of(n), value_of(k));
      pll.frequency = find_output(m, n, k);
    }
    m_nodes.push_back(std::move(pll));
  }

  std::optional<double> find_output(const PARAMETER_VIEW& m, const PARAMETER_VIEW& n,
                                    const PARAMETER_VIEW& k) const {
    if (!m_input || m.text.empty() || n.text.empty() || k.text.empty()) return std::nullopt;
    const double output =
        pll_output(*m_input, m.value.m_dword_value, n.value.m_dword_value, k.value.m_dword_value);
    if (!std::isfinite(output)) return std::nullopt;
    return output;
  }

  void add_clock(const CLOCK_PATH& path, const DERIVED_VIEW& clock) {
    TREE_NODE node = {KIND::CLOCK, path.title, "/ 2", clock.value, false, {}};
    if (path.divider != nullptr) node.step = fmt::format("/ {}", value_of(use(node, path.divider)));
    node.is_idle = path.ahb_n == 0 && !is_sdram_enabled(m_device);
    m_nodes.push_back(std::move(node));
  }

  const SBD_VELDRAN& m_device;
  std::optional<double> m_input;
  std::size_t m_clock_count = 0;
  std::vector<TREE_NODE> m_nodes;
};

// ---- Widths ------------------------------------------------------------------------------------

class WIDTH_DERIVATION {
 public:
  WIDTH_DERIVATION(const SBD_VELDRAN& device, int port, bool can_combine)
      : m_device(device), m_port(port), m_can_combine(can_combine) {}

  DERIVED_VIEW derive() {
    m_view.name = indexed(SBD_VEL_DPRAM);
    m_view.title = fmt::format("DPRAM port {}", m_port);
    if (m_can_combine && is_true(use(SBD_VEL_COMBINED_MODE))) {
      derive_from(SBD_VEL_COMBINED_DATA_WIDTH);
    } else if (use(indexed(SBD_VEL_MODE)).text == SBD_VEL_NO_PORTS) {
      m_view.remark = fmt::format("not in use: {} is {}",
                                  in_block(SBD_VEL_DPRAM, indexed(SBD_VEL_MODE)), SBD_VEL_NO_PORTS);
    } else {
      derive_from(indexed(SBD_VEL_DATA_WIDTH));
    }
    take_value();
    return std::move(m_view);
  }

 private:
  std::string indexed(const char* keyword) const { return fmt::format("{}[{}]", keyword, m_port); }

  PARAMETER_VIEW use(const std::string& parameter) {
    m_view.settings.push_back(view_parameter(m_device, in_block(SBD_VEL_DPRAM, parameter)));
    return m_view.settings.back();
  }

  void derive_from(const std::string& parameter) {
    m_view.formula = parameter;
    m_stated = use(parameter).text;
  }

  void take_value() {
    unsigned long width = 0;
    if (!m_device.get_dpram_data_width(m_port, width)) {
      m_view.problem = find_missing_value(m_view.settings);
      return;
    }
    m_view.value = static_cast<double>(width);
    // A common width of 64 bits is made of 32 at each port.
    if (m_stated.empty() || m_stated == std::to_string(width)) return;
    m_view.remark = fmt::format("{} bits at both ports together", m_stated);
    m_view.formula += " / 2";
    m_view.calculation = m_stated + " / 2";
  }

  const SBD_VELDRAN& m_device;
  int m_port;
  bool m_can_combine;
  std::string m_stated;  // The width that the settings give, if they do.
  DERIVED_VIEW m_view;
};

// A query about a port that the chip does not have leaves the width alone.
bool has_port(const SBD_VELDRAN& device, int port) {
  constexpr unsigned long k_untouched = std::numeric_limits<unsigned long>::max();
  unsigned long width = k_untouched;
  device.get_dpram_data_width(port, width);
  return width != k_untouched;
}

void add_settings(std::vector<PARAMETER_VIEW>& settings, const std::vector<DERIVED_VIEW>& views) {
  for (const DERIVED_VIEW& view : views) {
    for (const PARAMETER_VIEW& setting : view.settings) {
      const auto is_same = [&setting](const auto& other) { return other.name == setting.name; };
      if (std::any_of(settings.begin(), settings.end(), is_same)) continue;
      settings.push_back(setting);
    }
  }
}

}  // namespace

const std::vector<CLOCK_PATH>& clock_paths() {
  static const std::vector<CLOCK_PATH> k_paths = {
      {"ahb1", "AHB1", 1, "AHB PLL", SBD_VEL_PLL_AHB_BYPASS, SBD_VEL_PLL_AHB_M, SBD_VEL_PLL_AHB_N,
       SBD_VEL_PLL_AHB_K, SBD_VEL_AHB1_DIVIDE},
      {"ahb2", "AHB2", 2, "AHB PLL", SBD_VEL_PLL_AHB_BYPASS, SBD_VEL_PLL_AHB_M, SBD_VEL_PLL_AHB_N,
       SBD_VEL_PLL_AHB_K, SBD_VEL_AHB2_DIVIDE},
      {"sdram", "SDRAM", 0, "SDRAM PLL", SBD_VEL_PLL_SDRAM_BYPASS, SBD_VEL_PLL_SDRAM_M,
       SBD_VEL_PLL_SDRAM_N, SBD_VEL_PLL_SDRAM_K, nullptr}};
  return k_paths;
}

std::string in_clocks(const std::string& name) {
  return in_block(SBD_VEL_CLOCKS, name);
}

double pll_output(double input, unsigned long m, unsigned long n, unsigned long k) {
  const auto divisor = static_cast<std::uint32_t>(std::uint64_t{n} * k);
  return input * static_cast<double>(m) / divisor;
}

std::vector<DERIVED_VIEW> derive_clocks(const SBD_VELDRAN& device) {
  std::vector<DERIVED_VIEW> views;
  for (const CLOCK_PATH& clock : clock_paths()) {
    views.push_back(CLOCK_DERIVATION(device, clock).derive());
  }
  return views;
}

std::vector<CLOCK_TREE_NODE> make_clock_tree(const SBD_VELDRAN& device) {
  return CLOCK_TREE(device).make();
}

std::vector<DERIVED_VIEW> derive_widths(const SBD_VELDRAN& device) {
  std::vector<DERIVED_VIEW> views;
  const bool can_combine = has_port(device, 1);
  for (int port = 0; has_port(device, port); ++port) {
    views.push_back(WIDTH_DERIVATION(device, port, can_combine).derive());
  }
  return views;
}

std::vector<PARAMETER_VIEW> collect_settings(const std::vector<DERIVED_VIEW>& clocks,
                                             const std::vector<DERIVED_VIEW>& widths) {
  std::vector<PARAMETER_VIEW> settings;
  add_settings(settings, clocks);
  add_settings(settings, widths);
  return settings;
}

std::string format_frequency(double hertz) {
  // Nine digits: hertz as far as anybody can set or measure them.
  if (hertz >= k_mega) return fmt::format("{:.9g} MHz", hertz / k_mega);
  if (hertz >= k_kilo) return fmt::format("{:.9g} kHz", hertz / k_kilo);
  return fmt::format("{:.9g} Hz", hertz);
}

}  // namespace sbd_tool
