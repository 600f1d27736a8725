// Clock frequencies and port widths that follow from the settings.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "sbd/sbd_parameter_reader.h"
#include "sbd/sbd_veldran.h"
#include "tests/device/descriptor_text.h"
#include "tests/device/device_support.h"
#include "tests/device/expected_model.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();

// Reads nothing by itself: knows what it is given, and reports whatever else it is asked for.
class GIVEN_READER : public SBD_PARAMETER_READER {
 public:
  explicit GIVEN_READER(const SBD_FILE_PARSER& document)
      : SBD_PARAMETER_READER(document, SBD_STRING("stripe")) {
    m_report_unread = true;
  }
  bool read_all_parameters() override { return true; }
  bool validate_all_parameters() override { return true; }

  void give(const std::string& reference, bool value) {
    read_bool_parameter(nullptr, reference.c_str(), &value, nullptr);
    mark_parameter_as_validated(reference.c_str());
  }
  void give(const std::string& reference, unsigned long value) {
    read_dword_parameter(nullptr, reference.c_str(), &value, nullptr);
    mark_parameter_as_validated(reference.c_str());
  }
  void give(const std::string& reference, const char* value) {
    read_string_parameter(nullptr, reference.c_str(), value, nullptr);
    mark_parameter_as_validated(reference.c_str());
  }
};

class OPEN_DEVICE : public SBD_VELDRAN {
 public:
  using SBD_VELDRAN::m_chip_type;
  using SBD_VELDRAN::m_parameter_reader;
  using SBD_VELDRAN::SBD_VELDRAN;
};

std::string unread(const std::string& reference) {
  return "Parameter stripe." + reference + " has not been read from the SBD file";
}

// What the three queries answer, and nothing else happening.
class DERIVED : public testing::Test {
 protected:
  // Settings need not be good: whatever was read can be asked for.
  void use(const SETTINGS& settings, CHIP chip = CHIP::QMXA4) {
    m_device = std::make_unique<SBD_VELDRAN>("board");
    read_text(*m_device, descriptor_text(settings, chip));
    ASSERT_NE(m_device->get_parameter_reader(), nullptr);
    m_recorder.forget();
  }

  // A device of that chip whose parameters are given one by one.
  GIVEN_READER& use_given(SBD_VELDRAN::CHIP_TYPE chip = SBD_VELDRAN::CT_QMXA4) {
    auto device = std::make_unique<OPEN_DEVICE>("board");
    auto* const reader = new GIVEN_READER(*device);
    device->m_chip_type = chip;
    device->m_parameter_reader = reader;
    m_device = std::move(device);
    return *reader;
  }

  TEXTS take_conditions() {
    const TEXTS conditions = m_recorder.conditions();
    m_recorder.forget();
    return conditions;
  }

  void TearDown() override { EXPECT_TRUE(m_recorder.is_silent()); }

  // -1 for a false that left the frequency alone.
  double ahb(int bus) { return frequency(m_device->get_ahb_clock_frequency(bus, m_frequency)); }
  double sdram() { return frequency(m_device->get_sdram_clock_frequency(m_frequency)); }

  // "no 0", "yes 16", ...; "yes untouched" when the width was left alone.
  std::string width(int port) {
    unsigned long width = 77777;
    const bool result = m_device->get_dpram_data_width(port, width);
    return std::string(result ? "yes " : "no ") +
           (width == 77777 ? "untouched" : std::to_string(width));
  }

  MESSAGE_RECORDER m_recorder;
  std::unique_ptr<SBD_VELDRAN> m_device;

 private:
  double frequency(bool result) {
    const double value = m_frequency;
    m_frequency = 77777;
    if (result) return value;
    EXPECT_EQ(value, 77777);
    return -1;
  }

  double m_frequency = 77777;
};

// Both PLLs in use with these factors.
SETTINGS with_plls(const WRITTEN& input, unsigned long m, unsigned long n, unsigned long k,
                   unsigned long divide = 2) {
  SETTINGS settings = minimal_settings();
  settings.set("clocks.input_clock_frequency", input).set("clocks.ahb1_divide", whole(divide));
  for (const char* const pll : {"ahb", "sdram"}) {
    const std::string start = std::string("clocks.pll_") + pll;
    settings.set(start + "_bypass", flag(false))
        .set(start + "_m", whole(m))
        .set(start + "_n", whole(n))
        .set(start + "_k", whole(k));
  }
  return settings;
}

// ---- Frequencies -------------------------------------------------------------------------------

TEST_F(DERIVED, FrequenciesOfThePlls) {
  use(with_plls(whole(50000000), 4, 1, 2));
  EXPECT_EQ(ahb(1), 50000000.0);
  EXPECT_EQ(ahb(2), 25000000.0);
  EXPECT_EQ(sdram(), 50000000.0);
}

TEST_F(DERIVED, FrequenciesOfBypassedPlls) {
  use(minimal_settings());
  EXPECT_EQ(ahb(1), 10000000.0);
  EXPECT_EQ(ahb(2), 5000000.0);
  EXPECT_EQ(sdram(), 10000000.0);
}

TEST_F(DERIVED, EachPllIsBypassedByItself) {
  SETTINGS settings = with_plls(whole(10, "MHz"), 9, 1, 1);
  use(SETTINGS(settings).set("clocks.pll_ahb_bypass", flag(true)));
  EXPECT_EQ(ahb(1), 5000000.0);
  EXPECT_EQ(ahb(2), 2500000.0);
  EXPECT_EQ(sdram(), 45000000.0);
  use(SETTINGS(settings).set("clocks.pll_sdram_bypass", flag(true)));
  EXPECT_EQ(ahb(1), 45000000.0);
  EXPECT_EQ(ahb(2), 22500000.0);
  EXPECT_EQ(sdram(), 5000000.0);
}

TEST_F(DERIVED, FactorsOfTheTwoPllsAreKeptApart) {
  SETTINGS settings = with_plls(whole(1000000), 6, 2, 3);
  settings.set("clocks.pll_sdram_m", whole(100))
      .set("clocks.pll_sdram_n", whole(5))
      .set("clocks.pll_sdram_k", whole(2))
      .set("clocks.ahb1_divide", whole(8));
  use(settings);
  EXPECT_EQ(ahb(1), 125000.0);
  EXPECT_EQ(ahb(2), 250000.0);
  EXPECT_EQ(sdram(), 5000000.0);
}

TEST_F(DERIVED, BypassedPllNeedsNoFactors) {
  SETTINGS settings = with_plls(whole(10, "MHz"), 9, 1, 1);
  settings.set("clocks.pll_ahb_bypass", flag(true))
      .remove("clocks.pll_ahb_m")
      .set("clocks.pll_ahb_n", keyword("x"))
      .set("clocks.pll_ahb_k", whole(0));
  use(settings);
  EXPECT_EQ(ahb(1), 5000000.0);
}

TEST_F(DERIVED, DividersHaveDefaults) {
  SETTINGS settings = minimal_settings();
  settings.set("clocks.ahb1_divide", whole(4)).set("clocks.ahb2_divide", whole(8));
  use(settings);
  EXPECT_EQ(ahb(1), 5000000.0);
  EXPECT_EQ(ahb(2), 2500000.0);
  use(settings.remove("clocks.ahb1_divide"));
  EXPECT_EQ(ahb(1), 10000000.0);
  EXPECT_EQ(ahb(2), 2500000.0);
}

TEST_F(DERIVED, FrequencyIsInTheUnitOfTheInput) {
  use(minimal_settings().set("clocks.input_clock_frequency", fraction("33.333", "MHz")));
  EXPECT_EQ(ahb(1), 16666500.0);
  use(minimal_settings().set("clocks.input_clock_frequency", whole(33)));
  EXPECT_EQ(ahb(1), 16.5);
  EXPECT_EQ(sdram(), 16.5);
  use(minimal_settings().set("clocks.input_clock_frequency", whole(32768, "Hz")));
  EXPECT_EQ(ahb(1), 16384.0);
  // The input clock itself is a whole number.
  use(minimal_settings().set("clocks.input_clock_frequency", fraction("32768.5", "Hz")));
  EXPECT_EQ(ahb(1), 16384.0);
  use(minimal_settings().set("clocks.input_clock_frequency", fraction("0.0000025", "MHz")));
  EXPECT_EQ(sdram(), 1.5);
}

TEST_F(DERIVED, ChipDoesNotMatterForFrequencies) {
  for (const CHIP chip : ALL_CHIPS) {
    use(with_plls(whole(50, "MHz"), 4, 1, 2), chip);
    EXPECT_EQ(ahb(1), 50e6);
    EXPECT_EQ(ahb(2), 25e6);
    EXPECT_EQ(sdram(), 50e6);
  }
}

TEST_F(DERIVED, ProductOfInputAndMultiplierIsNotCutOff) {
  use(with_plls(whole(4294967295), 4294967295, 1, 1, 1));
  EXPECT_EQ(ahb(1), 18446744065119617025.0);
  EXPECT_EQ(sdram(), 9223372032559808512.5);
  use(with_plls(whole(66, "MHz"), 255, 1, 1));
  EXPECT_EQ(ahb(1), 66e6 * 255 / 2);
}

TEST_F(DERIVED, ProductOfThePredividersWraps) {
  // 65537 x 65537 is 131073 in 32 bits.
  use(with_plls(whole(131073), 1, 65537, 65537, 1));
  EXPECT_EQ(ahb(1), 1.0);
  EXPECT_EQ(sdram(), 0.5);
  // 65536 x 65536 is 0 in 32 bits.
  use(with_plls(whole(131073), 1, 65536, 65536));
  EXPECT_EQ(ahb(1), INFINITE);
  EXPECT_EQ(sdram(), INFINITE);
  use(with_plls(whole(4294967295), 1, 4294967295, 4294967295));
  EXPECT_EQ(ahb(1), 4294967295.0 / 2);
}

TEST_F(DERIVED, DivisionByZeroIsInfiniteOrUndefined) {
  use(with_plls(whole(50, "MHz"), 4, 0, 2));
  EXPECT_EQ(ahb(1), INFINITE);
  EXPECT_EQ(ahb(2), INFINITE);
  EXPECT_EQ(sdram(), INFINITE);
  use(with_plls(whole(50, "MHz"), 4, 2, 0));
  EXPECT_EQ(ahb(1), INFINITE);
  use(with_plls(whole(50, "MHz"), 4, 1, 2, 0));
  EXPECT_EQ(ahb(1), INFINITE);
  EXPECT_EQ(ahb(2), 25e6);
  use(with_plls(whole(50, "MHz"), 4, 0, 2, 0));
  EXPECT_EQ(ahb(1), INFINITE);
  use(with_plls(whole(0), 4, 0, 2));
  EXPECT_TRUE(std::isnan(ahb(1)));
  EXPECT_TRUE(std::isnan(sdram()));
  use(with_plls(whole(50, "MHz"), 0, 0, 2));
  EXPECT_TRUE(std::isnan(ahb(2)));
  EXPECT_TRUE(std::isnan(sdram()));
  use(with_plls(whole(0), 4, 1, 2, 0));
  EXPECT_TRUE(std::isnan(ahb(1)));
  EXPECT_EQ(ahb(2), 0.0);
  EXPECT_EQ(sdram(), 0.0);
  use(minimal_settings().set("clocks.ahb2_divide", whole(0)));
  EXPECT_EQ(ahb(2), INFINITE);
}

// Both quotients keep 64 bits; the result is rounded once more.
TEST_F(DERIVED, QuotientsAreRoundedAtTheEnd) {
  std::mt19937_64 random(31337);
  const auto any = [&] {
    return static_cast<unsigned long>(random() % (1ul << (1 + random() % 32)));
  };
  MESSAGE_RECORDER* const recorder = &m_recorder;
  for (std::size_t count = scaled(800); count > 0 && !HasFailure(); --count) {
    SETTINGS settings = with_plls(whole(any()), any(), any(), any(), any());
    settings.set("clocks.ahb2_divide", whole(any()));
    use(settings);
    expect_clocks_and_widths(*m_device, EXPECTED_DEVICE(settings, CHIP::QMXA4), *recorder);
  }
}

TEST_F(DERIVED, NoFrequencyWithoutItsSettings) {
  const SETTINGS good = with_plls(whole(50, "MHz"), 4, 1, 2);
  use(SETTINGS(good).remove("clocks.input_clock_frequency"));
  EXPECT_EQ(ahb(1), -1);
  EXPECT_EQ(ahb(2), -1);
  EXPECT_EQ(sdram(), -1);
  use(SETTINGS(good).set("clocks.input_clock_frequency", keyword("fast")));
  EXPECT_EQ(ahb(1), -1);
  EXPECT_EQ(sdram(), -1);
  use(SETTINGS(good).set("clocks.pll_ahb_bypass", whole(1)));
  EXPECT_EQ(ahb(1), -1);
  EXPECT_EQ(ahb(2), -1);
  EXPECT_EQ(sdram(), 50e6);
  use(SETTINGS(good).set("clocks.pll_sdram_bypass", whole(0)));
  EXPECT_EQ(ahb(1), 50e6);
  EXPECT_EQ(sdram(), -1);
  use(SETTINGS(good).set("clocks.ahb1_divide", flag(true)));
  EXPECT_EQ(ahb(1), -1);
  EXPECT_EQ(ahb(2), 25e6);
  use(SETTINGS(good).set("clocks.ahb2_divide", reference()));
  EXPECT_EQ(ahb(1), 50e6);
  EXPECT_EQ(ahb(2), -1);
  for (const char* const factor : {"m", "n", "k"}) {
    use(SETTINGS(good).remove(std::string("clocks.pll_ahb_") + factor));
    EXPECT_EQ(ahb(1), -1);
    EXPECT_EQ(ahb(2), -1);
    EXPECT_EQ(sdram(), 50e6);
    use(SETTINGS(good).set(std::string("clocks.pll_sdram_") + factor, list()));
    EXPECT_EQ(ahb(1), 50e6);
    EXPECT_EQ(ahb(2), 25e6);
    EXPECT_EQ(sdram(), -1);
  }
  use(SETTINGS().add_block("ebi").set("dpram.mode[0]", keyword("no_ports")));
  EXPECT_EQ(ahb(1), -1);
  EXPECT_EQ(sdram(), -1);
}

TEST_F(DERIVED, BusIsOneOrTwo) {
  use(minimal_settings());
  double frequency = 77777;
  m_device->get_ahb_clock_frequency(0, frequency);
  ASSERT_FALSE(m_recorder.conditions().empty());
  EXPECT_EQ(m_recorder.conditions().front(), "ahb_n != NULL");
  EXPECT_EQ(m_recorder.internal_errors().front().module, "SBD");
  EXPECT_EQ(m_recorder.internal_errors().front().source, "sbd_veldran");
  m_recorder.forget();
  for (const int bus : {3, -1, 100}) EXPECT_EQ(ahb(bus), -1) << bus;
  m_recorder.forget();
}

TEST_F(DERIVED, QueriesWithoutAReaderStopAtTheFirstSetting) {
  m_device = std::make_unique<SBD_VELDRAN>("board");
  const std::string error = "m_parameter_reader != NULL";
  EXPECT_EQ(ahb(1), -1);
  EXPECT_EQ(m_recorder.conditions(), TEXTS{error});
  m_recorder.forget();
  EXPECT_EQ(ahb(2), -1);
  EXPECT_EQ(m_recorder.conditions(), TEXTS{error});
  m_recorder.forget();
  EXPECT_EQ(sdram(), -1);
  EXPECT_EQ(m_recorder.conditions(), TEXTS{error});
  m_recorder.forget();
}

// What a frequency follows from, in the order in which it is asked for.
TEST_F(DERIVED, SettingsAreAskedForUpToTheFirstWithoutAValue) {
  const std::string input = "clocks.input_clock_frequency";
  const auto expect_order = [&](const std::function<double()>& ask, const std::string& bypass,
                                const TEXTS& always, const TEXTS& factors) {
    for (const bool is_bypassed : {false, true}) {
      GIVEN_READER& reader = use_given();
      const auto expect_stop = [&](const std::string& name) {
        EXPECT_EQ(ask(), -1);
        EXPECT_EQ(take_conditions(), TEXTS{unread(name)});
      };
      expect_stop(input);
      reader.give(input, 2ul);
      expect_stop(bypass);
      reader.give(bypass, is_bypassed);
      TEXTS rest = always;
      if (!is_bypassed) rest.insert(rest.end(), factors.begin(), factors.end());
      for (const std::string& name : rest) {
        expect_stop(name);
        reader.give(name, 2ul);
      }
      // 2 over a divider of 2, or half of it; times 2 over 2 times 2 unless the PLL is bypassed.
      EXPECT_EQ(ask(), is_bypassed ? 1.0 : 0.5);
      EXPECT_EQ(take_conditions(), TEXTS{});
    }
  };
  const TEXTS ahb_factors = {"clocks.pll_ahb_m", "clocks.pll_ahb_n", "clocks.pll_ahb_k"};
  expect_order([this] { return ahb(1); }, "clocks.pll_ahb_bypass", {"clocks.ahb1_divide"},
               ahb_factors);
  expect_order([this] { return ahb(2); }, "clocks.pll_ahb_bypass", {"clocks.ahb2_divide"},
               ahb_factors);
  expect_order([this] { return sdram(); }, "clocks.pll_sdram_bypass", {},
               {"clocks.pll_sdram_m", "clocks.pll_sdram_n", "clocks.pll_sdram_k"});
}

// ---- Widths ------------------------------------------------------------------------------------

SETTINGS with_ports(const char* first, const char* second, unsigned long first_width,
                    unsigned long second_width) {
  SETTINGS settings = minimal_settings();
  settings.set("dpram.mode[0]", keyword(first))
      .set("dpram.mode[1]", keyword(second))
      .set("dpram.data_width[0]", whole(first_width))
      .set("dpram.data_width[1]", whole(second_width))
      .set("dpram.address_range[0]", whole(1, "K"))
      .set("dpram.address_range[1]", whole(1, "K"));
  return settings;
}

TEST_F(DERIVED, WidthOfAPortInUseIsItsOwn) {
  for (const CHIP chip : {CHIP::QMXA4, CHIP::QMXA10}) {
    use(with_ports("one_port", "Dual_Port", 16, 8), chip);
    EXPECT_EQ(width(0), "yes 16");
    EXPECT_EQ(width(1), "yes 8");
    // 64 is reduced only where both are combined.
    use(with_ports("two_ports", "unknown", 64, 64), chip);
    EXPECT_EQ(width(0), "yes 64");
    EXPECT_EQ(width(1), "yes 64");
  }
}

TEST_F(DERIVED, WidthOfAPortThatIsNotInUseIs32) {
  use(with_ports("NO_PORTS", "no_ports", 16, 8));
  EXPECT_EQ(width(0), "yes 32");
  EXPECT_EQ(width(1), "yes 32");
  use(with_ports("\"no_ports\"", "no_ports", 16, 8));
  EXPECT_EQ(width(0), "yes 16");
}

TEST_F(DERIVED, WidthHasADefault) {
  use(with_ports("one_port", "one_port", 16, 8)
          .remove("dpram.data_width[0]")
          .remove("dpram.data_width[1]"));
  EXPECT_EQ(width(0), "yes 32");
  EXPECT_EQ(width(1), "yes 32");
  // Also without its block, when the mode is an empty text.
  use(SETTINGS(minimal_settings()).remove_block("dpram"));
  EXPECT_EQ(width(0), "yes 32");
  EXPECT_EQ(width(1), "yes 32");
}

TEST_F(DERIVED, CombinedPortsHaveOneWidth) {
  for (const unsigned long combined : {8ul, 16ul, 32ul, 64ul, 65ul, 128ul, 0ul}) {
    SETTINGS settings = with_ports("one_port", "no_ports", 16, 8);
    settings.set("dpram.combined_mode", flag(true))
        .set("dpram.combined_data_width", whole(combined));
    use(settings);
    const std::string expected = "yes " + std::to_string(combined == 64 ? 32 : combined);
    EXPECT_EQ(width(0), expected);
    EXPECT_EQ(width(1), expected);
  }
  use(with_ports("one_port", "one_port", 16, 8).set("dpram.combined_mode", flag(true)));
  EXPECT_EQ(width(0), "yes 32");
}

TEST_F(DERIVED, CombinedModeWithoutAValueCountsAsFalse) {
  use(with_ports("one_port", "one_port", 16, 8)
          .set("dpram.combined_mode", whole(1))
          .set("dpram.combined_data_width", whole(64)));
  EXPECT_EQ(width(0), "yes 16");
  EXPECT_EQ(width(1), "yes 8");
}

TEST_F(DERIVED, ChipOfOnePortDoesNotCombine) {
  SETTINGS settings = with_ports("one_port", "one_port", 16, 8);
  settings.set("dpram.combined_mode", flag(true)).set("dpram.combined_data_width", whole(64));
  use(settings, CHIP::QMXA1);
  EXPECT_EQ(width(0), "yes 16");
  EXPECT_EQ(width(1), "yes untouched");
  EXPECT_EQ(width(2), "yes untouched");
  use(settings.set("dpram.mode[0]", keyword("no_ports")), CHIP::QMXA1);
  EXPECT_EQ(width(0), "yes 32");
}

TEST_F(DERIVED, PortsBeyondTheLastAreNoError) {
  use(with_ports("one_port", "one_port", 16, 8));
  EXPECT_EQ(width(2), "yes untouched");
  EXPECT_EQ(width(std::numeric_limits<int>::max()), "yes untouched");
}

TEST_F(DERIVED, NoWidthWithoutAValue) {
  SETTINGS settings = with_ports("one_port", "no_ports", 16, 8);
  settings.set("dpram.data_width[0]", keyword("wide"))
      .set("dpram.data_width[1]", keyword("wide"))
      .set("dpram.combined_data_width", flag(true));
  use(settings);
  EXPECT_EQ(width(0), "no 0");
  EXPECT_EQ(width(1), "yes 32");
  use(settings.set("dpram.combined_mode", flag(true)));
  EXPECT_EQ(width(0), "no 0");
  EXPECT_EQ(width(1), "no 0");
}

TEST_F(DERIVED, ModeOfTheWrongKindIsEmptyAndThePortInUse) {
  use(with_ports("no_ports", "no_ports", 16, 8).set("dpram.mode[0]", whole(0)));
  EXPECT_EQ(width(0), "yes 16");
}

TEST_F(DERIVED, NegativePortIsAskedForAndNotFound) {
  for (const CHIP chip : ALL_CHIPS) {
    use(with_ports("one_port", "one_port", 16, 8), chip);
    EXPECT_EQ(width(-1), "no 0");
    EXPECT_EQ(
        m_recorder.conditions(),
        (TEXTS{"Parameter board.stripe.dpram.mode[-1] has not been read from the SBD file",
               "Parameter board.stripe.dpram.data_width[-1] has not been read from the SBD file"}));
    m_recorder.forget();
    width(std::numeric_limits<int>::min());
    EXPECT_EQ(m_recorder.conditions().size(), 2u);
    EXPECT_EQ(m_recorder.conditions().front(),
              "Parameter board.stripe.dpram.mode[-2147483648] has not been read from the SBD file");
    m_recorder.forget();
  }
}

TEST_F(DERIVED, NegativePortOfCombinedPortsHasTheirWidth) {
  use(with_ports("one_port", "one_port", 16, 8)
          .set("dpram.combined_mode", flag(true))
          .set("dpram.combined_data_width", whole(8)));
  EXPECT_EQ(width(-1), "yes 8");
}

// No more is asked for than the width of a port follows from.
TEST_F(DERIVED, WidthIsAskedForOnlyWhereItCounts) {
  const std::string combined_mode = "dpram.combined_mode";
  GIVEN_READER* reader = &use_given();
  EXPECT_EQ(width(1), "no 0");
  EXPECT_EQ(take_conditions(),
            (TEXTS{unread(combined_mode), unread("dpram.mode[1]"), unread("dpram.data_width[1]")}));
  reader->give(combined_mode, false);
  reader->give("dpram.mode[1]", "no_ports");
  EXPECT_EQ(width(1), "yes 32");
  EXPECT_EQ(take_conditions(), TEXTS{});
  reader->give("dpram.mode[0]", "one_port");
  EXPECT_EQ(width(0), "no 0");
  EXPECT_EQ(take_conditions(), TEXTS{unread("dpram.data_width[0]")});
  // The width of a port by itself is told as it is.
  reader->give("dpram.data_width[0]", 64ul);
  EXPECT_EQ(width(0), "yes 64");

  reader = &use_given();
  reader->give(combined_mode, true);
  EXPECT_EQ(width(0), "no 0");
  EXPECT_EQ(take_conditions(), TEXTS{unread("dpram.combined_data_width")});
  reader->give("dpram.combined_data_width", 16ul);
  EXPECT_EQ(width(0), "yes 16");
  EXPECT_EQ(width(1), "yes 16");

  for (const auto chip : {SBD_VELDRAN::CT_QMXA1, SBD_VELDRAN::CT_QMXM1}) {
    reader = &use_given(chip);
    EXPECT_EQ(width(1), "yes untouched");
    reader->give("dpram.mode[0]", "two_ports");
    reader->give("dpram.data_width[0]", 8ul);
    EXPECT_EQ(width(0), "yes 8");
    EXPECT_EQ(take_conditions(), TEXTS{});
  }
}

TEST_F(DERIVED, WidthsWithoutAReader) {
  const std::string error = "m_parameter_reader != NULL";
  // A chip that is not known counts as one of two ports: combined mode, mode and width are asked.
  m_device = std::make_unique<SBD_VELDRAN>("board");
  for (const int port : {0, 1}) {
    EXPECT_EQ(width(port), "no 0");
    EXPECT_EQ(m_recorder.conditions(), TEXTS(3, error));
    m_recorder.forget();
  }
  EXPECT_EQ(width(2), "yes untouched");
  EXPECT_TRUE(m_recorder.is_silent());
  // MIPS-based chips have no reader either; the smallest has one port.
  for (const char* const type : {"qmxm1", "qmxm4", "qmxm10"}) {
    STYLE style;
    style.family = "veldran_mips";
    style.type = type;
    EXPECT_FALSE(read_text(*m_device, descriptor_text(minimal_settings(), CHIP::QMXA1, style)));
    EXPECT_TRUE(m_recorder.is_silent());
    const bool is_small = style.type == "qmxm1";
    EXPECT_EQ(width(0), "no 0");
    EXPECT_EQ(m_recorder.conditions(), TEXTS(is_small ? 2 : 3, error));
    m_recorder.forget();
    EXPECT_EQ(width(1), is_small ? "yes untouched" : "no 0");
    EXPECT_EQ(m_recorder.conditions(), TEXTS(is_small ? 0 : 3, error));
    m_recorder.forget();
  }
}

}  // namespace
