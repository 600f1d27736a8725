#include "tools/clock_search.h"

#include <cmath>
#include <string>
#include <vector>

#include "tests/tool/device_support.h"
#include "tools/clock_picture.h"

namespace {

using sbd_tool::CLOCK_CHOICE;
using sbd_tool::CLOCK_WANT;
using sbd_tool::parse_want;

using CHOICES = std::vector<CLOCK_CHOICE>;

constexpr char k_full_clocks[] =
    "parameters clocks { input_clock_frequency = 50MHz; pll_ahb_m = 8; pll_ahb_n = 1; pll_ahb_k = "
    "1; pll_sdram_m = 10; pll_sdram_n = 1; pll_sdram_k = 2; }";

class CLOCK_SEARCH_TEST : public DEVICE_TEST {
 protected:
  CHOICES search(const std::string& clocks, const std::string& chip,
                 const std::vector<CLOCK_WANT>& wants, std::size_t limit = 10) {
    m_descriptor = open_board(board_with(clocks, "board", chip));
    CHOICES choices;
    m_fault.clear();
    const bool is_found = search_clocks(m_descriptor->document, wants, limit, choices, m_fault);
    EXPECT_EQ(is_found, m_fault.empty());
    EXPECT_EQ(is_found, !choices.empty());
    return choices;
  }

  // A board with the settings of a choice, and no others.
  static std::string clocks_of(const CLOCK_CHOICE& choice, const std::string& input) {
    std::string text = "parameters clocks { input_clock_frequency = " + input + ";";
    for (const CLOCK_CHOICE::SETTING& setting : choice.settings) {
      text += setting.name.substr(setting.name.find('.') + 1) + " = " + setting.value + ";";
    }
    return text + "}";
  }

  std::unique_ptr<sbd_tool::DESCRIPTOR> m_descriptor;
  std::string m_fault;
};

std::string value_of(const CLOCK_CHOICE& choice, const std::string& name) {
  for (const CLOCK_CHOICE::SETTING& setting : choice.settings) {
    if (setting.name == name) return setting.value;
  }
  return "none";
}

TEST_F(CLOCK_SEARCH_TEST, WhatIsThereAlreadyIsTheBest) {
  const CHOICES choices = search(k_full_clocks, "qmxa10", {{"ahb1", 200e6}, {"sdram", 125e6}});
  ASSERT_EQ(choices.size(), 10U);
  EXPECT_EQ(choices[0].worst_ppm, 0);
  for (const CLOCK_CHOICE::SETTING& setting : choices[0].settings) {
    EXPECT_FALSE(setting.is_changed) << setting.name;
  }
}

TEST_F(CLOCK_SEARCH_TEST, ListIsInOrderAndWithoutRepetition) {
  const CHOICES choices = search(k_full_clocks, "qmxa4", {{"ahb1", 77.7e6}}, 200);
  ASSERT_EQ(choices.size(), 200U);
  for (std::size_t i = 1; i != choices.size(); ++i) {
    EXPECT_LE(choices[i - 1].worst_ppm, choices[i].worst_ppm);
    for (std::size_t j = 0; j != i; ++j) {
      const bool is_same = choices[i].results[0].frequency == choices[j].results[0].frequency &&
                           choices[i].results[1].frequency == choices[j].results[1].frequency;
      EXPECT_FALSE(is_same) << i << " and " << j;
    }
  }
}

// The search leaves out what can't be better; this one does not.
double find_least_error(double input, double wanted, unsigned greatest_mn, unsigned greatest_k) {
  double least = 1e9;
  for (unsigned m = 1; m <= greatest_mn; ++m) {
    for (unsigned n = 1; n <= greatest_mn; ++n) {
      for (unsigned k = 1; k <= greatest_k; ++k) {
        for (const unsigned divider : {2U, 4U, 8U}) {
          const double frequency = input * m / (n * k) / divider;
          least = std::min(least, std::abs(frequency - wanted) / wanted * 1e6);
        }
      }
    }
  }
  return least;
}

TEST_F(CLOCK_SEARCH_TEST, NothingLegalComesNearer) {
  for (const double wanted : {133e6, 66.6e6, 48e6, 1e6, 99.999e6}) {
    const CHOICES choices = search(k_full_clocks, "qmxa10", {{"ahb1", wanted}});
    ASSERT_FALSE(choices.empty());
    EXPECT_NEAR(choices[0].worst_ppm, find_least_error(50e6, wanted, 15, 7), 1e-6) << wanted;
  }
}

TEST_F(CLOCK_SEARCH_TEST, EveryChoiceIsLegalAndComesTrue) {
  for (const std::string chip : {"qmxa1", "qmxa4", "qmxa10"}) {
    const CHOICES choices =
        search(k_full_clocks, chip, {{"ahb1", 90e6}, {"ahb2", 30e6}, {"sdram", 133e6}}, 20);
    ASSERT_EQ(choices.size(), 20U);
    for (const CLOCK_CHOICE& choice : choices) {
      const auto board = open_board(board_with(clocks_of(choice, "50MHz"), "board", chip));
      EXPECT_TRUE(board->findings.empty()) << chip;
      const auto clocks = sbd_tool::derive_clocks(board->document);
      for (std::size_t i = 0; i != 3; ++i) {
        ASSERT_TRUE(clocks[i].value);
        EXPECT_NEAR(*clocks[i].value, choice.results[i].frequency, 1e-6);
      }
    }
  }
}

TEST_F(CLOCK_SEARCH_TEST, UnwantedClocksKeepTheirSettings) {
  const CHOICES sdram = search(k_full_clocks, "qmxa10", {{"sdram", 100e6}});
  ASSERT_FALSE(sdram.empty());
  EXPECT_EQ(sdram[0].results.size(), 1U);
  EXPECT_EQ(value_of(sdram[0], "clocks.pll_ahb_m"), "none");

  for (const CLOCK_CHOICE& choice : search(k_full_clocks, "qmxa10", {{"ahb1", 33e6}})) {
    EXPECT_EQ(value_of(choice, "clocks.ahb2_divide"), "4");
    EXPECT_FALSE(choice.results[1].ppm);
  }
}

TEST_F(CLOCK_SEARCH_TEST, OfEqualsTheOneWinsThatLeavesOtherClocksAlone) {
  const CHOICES choices = search(k_full_clocks, "qmxa10", {{"ahb1", 100e6}});
  ASSERT_FALSE(choices.empty());
  EXPECT_EQ(choices[0].results[1].frequency, 100e6);
  EXPECT_EQ(value_of(choices[0], "clocks.ahb1_divide"), "4");
}

TEST_F(CLOCK_SEARCH_TEST, SlowInputsLeaveBothPllsBypassed) {
  const std::string slow =
      "parameters clocks { input_clock_frequency = 32768Hz; pll_ahb_bypass = true; "
      "pll_sdram_bypass = true; }";
  const CHOICES choices = search(slow, "qmxa10", {{"ahb1", 100e6}, {"sdram", 1e6}});
  ASSERT_EQ(choices.size(), 3U);  // One for each divider.
  for (const CLOCK_CHOICE& choice : choices) {
    EXPECT_EQ(value_of(choice, "clocks.pll_ahb_bypass"), "true");
    EXPECT_EQ(value_of(choice, "clocks.pll_sdram_bypass"), "true");
  }
  EXPECT_EQ(value_of(choices[0], "clocks.ahb1_divide"), "2");
}

TEST_F(CLOCK_SEARCH_TEST, SaysWhyThereIsNothing) {
  EXPECT_TRUE(search("", "qmxa10", {{"ahb1", 1e6}}).empty());
  EXPECT_EQ(m_fault, "clocks.input_clock_frequency has no value to begin with");
  EXPECT_TRUE(
      search("parameters clocks { input_clock_frequency = 67MHz; }", "qmxa10", {{"ahb1", 1e6}})
          .empty());
  EXPECT_EQ(m_fault, "no setting is legal with an input clock of 67 MHz");
}

TEST_F(CLOCK_SEARCH_TEST, MissingFactorsAreFound) {
  const CHOICES choices = search("parameters clocks { input_clock_frequency = 50MHz; }", "qmxa10",
                                 {{"ahb1", 100e6}, {"sdram", 50e6}});
  ASSERT_FALSE(choices.empty());
  EXPECT_EQ(choices[0].worst_ppm, 0);
}

TEST_F(CLOCK_SEARCH_TEST, TreeHasTheInputThePllsAndTheClocks) {
  const auto board = open_board(board_with(k_full_clocks));
  const auto tree = sbd_tool::make_clock_tree(board->document);
  ASSERT_EQ(tree.size(), 6U);
  EXPECT_EQ(tree[0].frequency, 50e6);
  EXPECT_EQ(tree[1].title, "AHB PLL");
  EXPECT_EQ(tree[1].step, "x 8 / (1 x 1)");
  EXPECT_EQ(tree[1].frequency, 400e6);
  EXPECT_EQ(tree[2].frequency, 200e6);
  EXPECT_EQ(tree[3].step, "/ 4");
  EXPECT_EQ(tree[4].frequency, 250e6);
  EXPECT_EQ(tree[5].frequency, 125e6);
  EXPECT_TRUE(tree[5].is_idle);
  EXPECT_FALSE(tree[2].is_idle);

  const std::string svg = sbd_tool::draw_clock_tree(tree, "Clocks").element();
  EXPECT_NE(svg.find(">200 MHz<"), std::string::npos);
  EXPECT_NE(svg.find(">/ 2, not in use<"), std::string::npos);
}

TEST(PARSE_WANT, TakesFrequenciesWithUnits) {
  CLOCK_WANT want;
  std::string fault;
  EXPECT_TRUE(parse_want("ahb1=33.333MHz", want, fault));
  EXPECT_EQ(want.clock, "ahb1");
  EXPECT_DOUBLE_EQ(want.frequency, 33.333e6);
  EXPECT_TRUE(parse_want("sdram=32768", want, fault));
  EXPECT_EQ(want.frequency, 32768);
  EXPECT_TRUE(parse_want("ahb2=12kHz", want, fault));
  EXPECT_EQ(want.frequency, 12000);
}

TEST(PARSE_WANT, SaysWhatIsWrong) {
  CLOCK_WANT want;
  std::string fault;
  EXPECT_FALSE(parse_want("ahb3=1MHz", want, fault));
  EXPECT_EQ(fault, "no clock 'ahb3'; there are ahb1, ahb2, sdram");
  for (const char* text : {"ahb1", "ahb1=", "ahb1=MHz", "ahb1=-1MHz", "ahb1=0", "ahb1=1GB",
                           "ahb1=inf", "ahb1=nan", "ahb1=1MHzz", "ahb1=0x10"}) {
    EXPECT_FALSE(parse_want(text, want, fault)) << text;
  }
}

}  // namespace
