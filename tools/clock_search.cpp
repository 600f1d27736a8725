#include "tools/clock_search.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

#include "sbd/sbd_veldran_keywords.h"

namespace sbd_tool {

namespace {

constexpr double k_million = 1e6;
constexpr unsigned long k_fixed_divider = 2;

using NUMBERS = std::vector<unsigned long>;

// ---- What the rules allow ----------------------------------------------------------------------

bool allows(const SBD_VALUE_SET& values, unsigned long number) {
  switch (values.kind) {
    case SBD_VALUE_SET::VS_ANY:
      return true;
    case SBD_VALUE_SET::VS_RANGE:
      return number >= values.low && number <= values.high;
    case SBD_VALUE_SET::VS_NUMBERS:
      return std::find(values.numbers, values.numbers + values.count, number) !=
             values.numbers + values.count;
    default:
      return false;
  }
}

// All numbers of a set; none if there is no end to them.
NUMBERS list_numbers(const SBD_VALUE_SET& values) {
  NUMBERS numbers;
  if (values.kind == SBD_VALUE_SET::VS_NUMBERS) {
    numbers.assign(values.numbers, values.numbers + values.count);
  } else if (values.kind == SBD_VALUE_SET::VS_RANGE) {
    for (unsigned long number = values.low; number <= values.high; ++number) {
      numbers.push_back(number);
    }
  }
  return numbers;
}

// A parameter of the block "clocks": what it is, and what it may be.
struct FACTOR {
  const char* name = nullptr;  // Null: a number that nothing can change.
  unsigned long present = 0;   // 0: none.
  NUMBERS candidates;

  bool changes_to(unsigned long value) const { return name != nullptr && value != present; }
};

unsigned long present_number(const SBD_VELDRAN& device, const char* name) {
  const PARAMETER_VIEW view = view_parameter(device, in_clocks(name));
  return view.text.empty() ? 0 : view.value.m_dword_value;
}

bool present_flag(const SBD_VELDRAN& device, const char* name) {
  const PARAMETER_VIEW view = view_parameter(device, in_clocks(name));
  return !view.text.empty() && view.value.m_bool_value;
}

// A parameter without a rule stays what it is.
FACTOR make_factor(const SBD_VELDRAN& device, const char* name) {
  FACTOR factor;
  factor.name = name;
  factor.present = present_number(device, name);
  SBD_PARAMETER_RULE rule;
  const std::string reference = in_clocks(name);
  const bool has_rule = sbd_get_parameter_rule(device.get_chip_type(), reference.c_str(), rule) &&
                        rule.value_rule != nullptr;
  if (has_rule) factor.candidates = list_numbers(rule.value_rule->values);
  if (!has_rule && factor.present != 0) factor.candidates = {factor.present};
  return factor;
}

// ---- One PLL and its clocks --------------------------------------------------------------------

struct OUTPUT_CLOCK {
  const CLOCK_PATH* path = nullptr;
  std::optional<double> wanted;
  std::optional<double> present;
  FACTOR divider;
};

struct PLL {
  const CLOCK_PATH* path = nullptr;  // Of its first clock.
  bool is_bypassed = false;
  FACTOR m;
  FACTOR n;
  FACTOR k;
  std::vector<OUTPUT_CLOCK> clocks;
};

// A clock that nobody asks for keeps its divider, if that is allowed.
OUTPUT_CLOCK make_output(const SBD_VELDRAN& device, const CLOCK_PATH& path,
                         const std::vector<CLOCK_WANT>& wants) {
  OUTPUT_CLOCK clock;
  clock.path = &path;
  for (const CLOCK_WANT& want : wants) {
    if (want.clock == path.name) clock.wanted = want.frequency;
  }
  for (const DERIVED_VIEW& view : derive_clocks(device)) {
    if (view.name == path.name) clock.present = view.value;
  }
  if (path.divider == nullptr) {
    clock.divider.candidates = {k_fixed_divider};
    return clock;
  }
  clock.divider = make_factor(device, path.divider);
  NUMBERS& candidates = clock.divider.candidates;
  const bool is_allowed =
      std::find(candidates.begin(), candidates.end(), clock.divider.present) != candidates.end();
  if (!clock.wanted && is_allowed) candidates = {clock.divider.present};
  return clock;
}

// The PLLs that wanted clocks depend on.
std::vector<PLL> make_plls(const SBD_VELDRAN& device, const std::vector<CLOCK_WANT>& wants) {
  std::vector<PLL> plls;
  for (const CLOCK_PATH& path : clock_paths()) {
    if (plls.empty() || std::string_view(plls.back().path->pll_title) != path.pll_title) {
      plls.push_back({&path,
                      present_flag(device, path.bypass),
                      make_factor(device, path.m),
                      make_factor(device, path.n),
                      make_factor(device, path.k),
                      {}});
    }
    plls.back().clocks.push_back(make_output(device, path, wants));
  }
  const auto is_unwanted = [](const PLL& pll) {
    return std::none_of(pll.clocks.begin(), pll.clocks.end(),
                        [](const OUTPUT_CLOCK& clock) { return clock.wanted.has_value(); });
  };
  plls.erase(std::remove_if(plls.begin(), plls.end(), is_unwanted), plls.end());
  return plls;
}

// ---- The search --------------------------------------------------------------------------------

// A way to set one PLL and its dividers.
struct PLL_CHOICE {
  bool is_bypassed = false;
  unsigned long m = 0;
  unsigned long n = 0;
  unsigned long k = 0;
  NUMBERS dividers;
  std::vector<double> frequencies;
  double worst = 0;  // Errors in ppm, without sign.
  double sum = 0;
  int changes = 0;

  auto rank() const { return std::tie(worst, sum, changes, m, n, k, dividers); }
};

double error_of(double frequency, double wanted) {
  return (frequency - wanted) / wanted * k_million;
}

bool is_near(double frequency, const std::optional<double>& present) {
  constexpr double k_rounding = 1e-12;
  return present && std::abs(frequency - *present) <= k_rounding * *present;
}

// The best choices so far.
class BEST_CHOICES {
 public:
  explicit BEST_CHOICES(std::size_t limit) : m_limit(limit) {}

  bool is_hopeless(double worst) const {
    return m_choices.size() == m_limit && worst > m_choices.back().worst;
  }

  void add(const PLL_CHOICE& choice) {
    const auto is_same = [&choice](const PLL_CHOICE& other) {
      return other.frequencies == choice.frequencies;
    };
    const auto same = std::find_if(m_choices.begin(), m_choices.end(), is_same);
    if (same != m_choices.end()) {
      if (same->rank() <= choice.rank()) return;
      m_choices.erase(same);
    }
    const auto is_before = [](const PLL_CHOICE& a, const PLL_CHOICE& b) {
      return a.rank() < b.rank();
    };
    m_choices.insert(std::upper_bound(m_choices.begin(), m_choices.end(), choice, is_before),
                     choice);
    if (m_choices.size() > m_limit) m_choices.pop_back();
  }

  const std::vector<PLL_CHOICE>& get() const { return m_choices; }

 private:
  std::size_t m_limit;
  std::vector<PLL_CHOICE> m_choices;
};

// The search is over all ratios: pairs of divisors with the same product make the same frequency,
// so that one pair stands for them.
class PLL_SEARCH {
 public:
  PLL_SEARCH(const PLL& pll, double input, std::size_t limit)
      : m_pll(pll), m_input(input), m_best(limit) {
    list_dividers();
  }

  std::vector<PLL_CHOICE> search_bypassed() {
    PLL_CHOICE choice;
    choice.is_bypassed = true;
    choice.changes = m_pll.is_bypassed ? 0 : 1;
    try_dividers(choice, m_input);
    return m_best.get();
  }

  std::vector<PLL_CHOICE> search_multiplied() {
    const int bypass_changes = m_pll.is_bypassed ? 1 : 0;
    for (const DIVISION& division : list_divisions()) {
      for (const unsigned long m : m_pll.m.candidates) {
        PLL_CHOICE choice;
        choice.m = m;
        choice.n = division.n;
        choice.k = division.k;
        choice.changes = bypass_changes + division.changes + (m_pll.m.changes_to(m) ? 1 : 0);
        try_dividers(choice, pll_output(m_input, m, division.n, division.k));
      }
    }
    return m_best.get();
  }

 private:
  // Divisors of the PLL that stand for all with their product.
  struct DIVISION {
    std::uint32_t product;
    int changes;
    unsigned long n;
    unsigned long k;
    auto rank() const { return std::tie(product, changes, n, k); }
  };

  std::vector<DIVISION> list_divisions() const {
    std::vector<DIVISION> divisions;
    for (const unsigned long n : m_pll.n.candidates) {
      for (const unsigned long k : m_pll.k.candidates) {
        const auto product = static_cast<std::uint32_t>(std::uint64_t{n} * k);
        const int changes = (m_pll.n.changes_to(n) ? 1 : 0) + (m_pll.k.changes_to(k) ? 1 : 0);
        if (product != 0) divisions.push_back({product, changes, n, k});
      }
    }
    std::sort(divisions.begin(), divisions.end(),
              [](const DIVISION& a, const DIVISION& b) { return a.rank() < b.rank(); });
    const auto has_same_product = [](const DIVISION& a, const DIVISION& b) {
      return a.product == b.product;
    };
    divisions.erase(std::unique(divisions.begin(), divisions.end(), has_same_product),
                    divisions.end());
    return divisions;
  }

  // All ways to choose a divider for each clock.
  void list_dividers() {
    m_dividers = {{}};
    for (const OUTPUT_CLOCK& clock : m_pll.clocks) {
      std::vector<NUMBERS> longer;
      for (const NUMBERS& dividers : m_dividers) {
        for (const unsigned long divider : clock.divider.candidates) {
          longer.push_back(dividers);
          longer.back().push_back(divider);
        }
      }
      m_dividers = std::move(longer);
    }
  }

  void try_dividers(PLL_CHOICE& choice, double output) {
    for (const NUMBERS& dividers : m_dividers) {
      const double worst = worst_error(output, dividers);
      if (m_best.is_hopeless(worst)) continue;
      PLL_CHOICE complete = choice;
      complete.dividers = dividers;
      complete.worst = worst;
      finish(complete, output);
      m_best.add(complete);
    }
  }

  double worst_error(double output, const NUMBERS& dividers) const {
    double worst = 0;
    for (std::size_t i = 0; i != dividers.size(); ++i) {
      if (!m_pll.clocks[i].wanted) continue;
      const double frequency = output / static_cast<double>(dividers[i]);
      worst = std::max(worst, std::abs(error_of(frequency, *m_pll.clocks[i].wanted)));
    }
    return worst;
  }

  void finish(PLL_CHOICE& choice, double output) const {
    for (std::size_t i = 0; i != choice.dividers.size(); ++i) {
      const OUTPUT_CLOCK& clock = m_pll.clocks[i];
      const double frequency = output / static_cast<double>(choice.dividers[i]);
      choice.frequencies.push_back(frequency);
      if (clock.wanted) choice.sum += std::abs(error_of(frequency, *clock.wanted));
      if (clock.divider.changes_to(choice.dividers[i])) ++choice.changes;
      if (!clock.wanted && !is_near(frequency, clock.present)) ++choice.changes;
    }
  }

  const PLL& m_pll;
  double m_input;
  std::vector<NUMBERS> m_dividers;
  BEST_CHOICES m_best;
};

// ---- Choices for all PLLs ----------------------------------------------------------------------

// One choice for each PLL.
struct COMBINATION {
  std::vector<PLL_CHOICE> parts;
  double worst = 0;
  double sum = 0;
  int changes = 0;

  void add(const PLL_CHOICE& part) {
    worst = std::max(worst, part.worst);
    sum += part.sum;
    changes += part.changes;
    parts.push_back(part);
  }
  auto rank() const { return std::tie(worst, sum, changes); }
};

class CLOCK_SEARCH {
 public:
  CLOCK_SEARCH(const SBD_VELDRAN& device, const std::vector<CLOCK_WANT>& wants, std::size_t limit)
      : m_device(device),
        m_limit(limit),
        m_input(present_number(device, SBD_VEL_INPUT_CLOCK_FREQUENCY)),
        m_plls(make_plls(device, wants)) {}

  bool search(std::vector<CLOCK_CHOICE>& choices, std::string& fault) {
    if (m_input == 0) {
      fault = "clocks.input_clock_frequency has no value to begin with";
      return false;
    }
    combine();
    if (m_combinations.empty()) {
      fault = fmt::format("no setting is legal with an input clock of {}",
                          format_frequency(static_cast<double>(m_input)));
      return false;
    }
    for (const COMBINATION& combination : m_combinations) {
      choices.push_back(make_choice(combination));
    }
    return true;
  }

 private:
  // The best choices of each PLL make the best ones of all: both orders look at the worst error
  // first, then at the sum. Whether a PLL is bypassed matters to what is legal, so that both are
  // kept apart until that is known.
  void combine() {
    m_combinations = {{}};
    for (const PLL& pll : m_plls) {
      const auto input = static_cast<double>(m_input);
      std::vector<PLL_CHOICE> parts = PLL_SEARCH(pll, input, m_limit).search_bypassed();
      for (PLL_CHOICE& part : PLL_SEARCH(pll, input, m_limit).search_multiplied()) {
        parts.push_back(std::move(part));
      }
      std::vector<COMBINATION> longer;
      for (const COMBINATION& combination : m_combinations) {
        for (const PLL_CHOICE& part : parts) {
          longer.push_back(combination);
          longer.back().add(part);
        }
      }
      m_combinations = std::move(longer);
    }
    keep_the_best();
  }

  void keep_the_best() {
    const auto is_illegal = [this](const COMBINATION& combination) {
      return !is_input_allowed(combination);
    };
    m_combinations.erase(std::remove_if(m_combinations.begin(), m_combinations.end(), is_illegal),
                         m_combinations.end());
    std::stable_sort(
        m_combinations.begin(), m_combinations.end(),
        [](const COMBINATION& a, const COMBINATION& b) { return a.rank() < b.rank(); });
    drop_repetitions();
    if (m_combinations.size() > m_limit) m_combinations.resize(m_limit);
  }

  // A PLL that is bypassed and one that multiplies by 1 make the same clocks.
  void drop_repetitions() {
    std::vector<COMBINATION> kept;
    for (COMBINATION& combination : m_combinations) {
      const auto is_same = [&combination](const COMBINATION& other) {
        return std::equal(other.parts.begin(), other.parts.end(), combination.parts.begin(),
                          [](const PLL_CHOICE& a, const PLL_CHOICE& b) {
                            return a.frequencies == b.frequencies;
                          });
      };
      if (kept.size() == m_limit) break;
      if (std::none_of(kept.begin(), kept.end(), is_same)) kept.push_back(std::move(combination));
    }
    m_combinations = std::move(kept);
  }

  // Which input clocks are allowed depends on which PLLs are in use.
  bool is_input_allowed(const COMBINATION& combination) const {
    SBD_PARAMETER_RULE rule;
    const std::string reference = in_clocks(SBD_VEL_INPUT_CLOCK_FREQUENCY);
    if (!sbd_get_parameter_rule(m_device.get_chip_type(), reference.c_str(), rule)) return false;
    if (rule.value_rule == nullptr) return true;
    const SBD_VALUE_RULE& values = *rule.value_rule;
    bool is_exception = values.exception_count != 0;
    for (std::size_t i = 0; i != values.exception_count; ++i) {
      is_exception = is_exception && holds(values.exceptions[i], combination);
    }
    return allows(is_exception ? values.exception_values : values.values, m_input);
  }

  bool holds(const SBD_RULE_CONDITION& condition, const COMBINATION& combination) const {
    const bool is_true = flag_of(condition.reference, combination);
    return condition.test == SBD_RULE_CONDITION::RT_IS_TRUE ? is_true : !is_true;
  }

  bool flag_of(const char* reference, const COMBINATION& combination) const {
    for (std::size_t i = 0; i != m_plls.size(); ++i) {
      if (in_clocks(m_plls[i].path->bypass) == reference) return combination.parts[i].is_bypassed;
    }
    const PARAMETER_VIEW view = view_parameter(m_device, reference);
    return !view.text.empty() && view.value.m_bool_value;
  }

  CLOCK_CHOICE make_choice(const COMBINATION& combination) const {
    CLOCK_CHOICE choice;
    choice.worst_ppm = combination.worst;
    for (std::size_t i = 0; i != m_plls.size(); ++i) {
      add_results(choice, m_plls[i], combination.parts[i]);
      add_settings(choice, m_plls[i], combination.parts[i]);
    }
    return choice;
  }

  static void add_results(CLOCK_CHOICE& choice, const PLL& pll, const PLL_CHOICE& part) {
    for (std::size_t i = 0; i != pll.clocks.size(); ++i) {
      const OUTPUT_CLOCK& clock = pll.clocks[i];
      CLOCK_CHOICE::RESULT result = {clock.path->name, part.frequencies[i], std::nullopt};
      if (clock.wanted) result.ppm = error_of(result.frequency, *clock.wanted);
      choice.results.push_back(std::move(result));
    }
  }

  static void add_settings(CLOCK_CHOICE& choice, const PLL& pll, const PLL_CHOICE& part) {
    choice.settings.push_back({in_clocks(pll.path->bypass), part.is_bypassed ? "true" : "false",
                               part.is_bypassed != pll.is_bypassed});
    if (!part.is_bypassed) {
      add_setting(choice, pll.m, part.m);
      add_setting(choice, pll.n, part.n);
      add_setting(choice, pll.k, part.k);
    }
    for (std::size_t i = 0; i != pll.clocks.size(); ++i) {
      add_setting(choice, pll.clocks[i].divider, part.dividers[i]);
    }
  }

  static void add_setting(CLOCK_CHOICE& choice, const FACTOR& factor, unsigned long value) {
    if (factor.name == nullptr) return;
    choice.settings.push_back(
        {in_clocks(factor.name), std::to_string(value), factor.changes_to(value)});
  }

  const SBD_VELDRAN& m_device;
  std::size_t m_limit;
  unsigned long m_input;
  std::vector<PLL> m_plls;
  std::vector<COMBINATION> m_combinations;
};

// ---- What is wanted ----------------------------------------------------------------------------

bool parse_frequency(std::string_view text, double& frequency) {
  struct UNIT {
    std::string_view name;
    double hertz;
  };
  constexpr std::array<UNIT, 4> k_units = {{{"", 1}, {"Hz", 1}, {"kHz", 1e3}, {"MHz", 1e6}}};
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), frequency, std::chars_format::fixed);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  for (const UNIT& unit : k_units) {
    if (text != unit.name) continue;
    frequency *= unit.hertz;
    return frequency > 0 && std::isfinite(frequency);
  }
  return false;
}

std::string list_clock_names() {
  std::string names;
  for (const CLOCK_PATH& path : clock_paths()) {
    names.append(names.empty() ? "" : ", ").append(path.name);
  }
  return names;
}

}  // namespace

bool parse_want(std::string_view text, CLOCK_WANT& want, std::string& fault) {
  const std::size_t equals = text.find('=');
  want.clock = text.substr(0, equals);
  const auto is_meant = [&want](const CLOCK_PATH& path) { return want.clock == path.name; };
  const std::vector<CLOCK_PATH>& paths = clock_paths();
  if (std::none_of(paths.begin(), paths.end(), is_meant)) {
    fault = fmt::format("no clock '{}'; there are {}", want.clock, list_clock_names());
    return false;
  }
  if (equals == std::string_view::npos ||
      !parse_frequency(text.substr(equals + 1), want.frequency)) {
    fault = fmt::format("'{}' has no frequency such as {}=33.333MHz", text, want.clock);
    return false;
  }
  return true;
}

bool search_clocks(const SBD_VELDRAN& device, const std::vector<CLOCK_WANT>& wants,
                   std::size_t limit, std::vector<CLOCK_CHOICE>& choices, std::string& fault) {
  return CLOCK_SEARCH(device, wants, limit).search(choices, fault);
}

}  // namespace sbd_tool
