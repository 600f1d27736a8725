#include "tools/descriptor_diff.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tests/tool/device_support.h"
#include "tools/value_meaning.h"

namespace {

using sbd_tool::DESCRIPTOR_DIFF;
using sbd_tool::DIFFERENCE;

using LINES = std::vector<std::string>;

class DESCRIPTOR_DIFF_TEST : public DEVICE_TEST {
 protected:
  DESCRIPTOR_DIFF diff(const std::string& old_text, const std::string& new_text,
                       bool is_strict = false) {
    m_old = read(old_text);
    m_new = read(new_text);
    return compare_descriptors(*m_old, *m_new, is_strict);
  }

  // "changed value a.x: 1 -> 2", one for each difference, then those of the devices.
  LINES lines(const std::string& old_text, const std::string& new_text, bool is_strict = false) {
    LINES lines;
    const DESCRIPTOR_DIFF result = diff(old_text, new_text, is_strict);
    for (const DIFFERENCE& difference : result.differences) {
      lines.push_back(std::string(name_of(difference.kind)) + " " +
                      std::string(name_of(difference.what)) + " " + difference.name + ": " +
                      difference.old_text + " -> " + difference.new_text);
    }
    for (const auto& device : result.devices) {
      for (const auto& effect : device.effects) {
        lines.push_back(device.name + " " + effect.name + ": " + effect.old_text + " -> " +
                        effect.new_text);
      }
    }
    return lines;
  }

 private:
  std::unique_ptr<sbd_tool::DESCRIPTOR> m_old;
  std::unique_ptr<sbd_tool::DESCRIPTOR> m_new;
};

std::string device(const std::string& members) {
  return "device a { " + members + " }\n";
}

std::string with_x(const std::string& value) {
  return device("x = " + value + ";");
}

TEST_F(DESCRIPTOR_DIFF_TEST, OtherNotationsMeanTheSame) {
  const char* const same[][2] = {{"64K", "65536"},
                                 {"0x40K", "64K"},
                                 {"0b11", "3"},
                                 {"017", "15"},
                                 {"50MHz", "50000000Hz"},

                                 {"{1, {2, 3K}}", "{0x1,{2.0, 3072}}"},
                                 {"TRUE", "true"},
                                 {"1.5K", "1536"}};
  for (const auto& [a, b] : same) {
    EXPECT_TRUE(lines(with_x(a), with_x(b)).empty()) << a << " and " << b;
  }
  const char* const different[][2] = {{"64K", "64000"},     {"1", "\"1\""},   {"{1, 2}", "{2, 1}"},
                                      {"true", "\"true\""}, {"word", "WORD"}, {"word", "\"word\""},
                                      {"{1, 2}", "1"}};
  for (const auto& [a, b] : different) {
    EXPECT_EQ(lines(with_x(a), with_x(b)).size(), 1U) << a << " and " << b;
  }
}

TEST_F(DESCRIPTOR_DIFF_TEST, OrderCommentsLayoutAndCaseMakeNoDifference) {
  EXPECT_TRUE(lines("# one\ndevice a { x = 1; y = 2; # two\n bus b { z = 3; } }",
                    "DEVICE A {\n  bus b { z = 3; }\n  # three\n  y = 2;\n  X = 1;\n}\n")
                  .empty());
}

TEST_F(DESCRIPTOR_DIFF_TEST, StrictTellsThem) {
  EXPECT_EQ(lines(device("x = 1; # one\n y = 2;"), device("y = 2; x = 0x1; # two\n"), true),
            (LINES{"changed order a: x, y -> y, x", "changed spelling a.x: x = 1 -> x = 0x1",
                   "changed comment a.x: # one -> # two"}));
  EXPECT_EQ(lines("# a\ndevice a { x = 1; }", "device a { x = 1; }\n# b\n", true),
            (LINES{"changed comment : # a -> # b"}));
  EXPECT_TRUE(lines(device("x = 1;"), "device   a\n{\nx=1;}", true).empty());
}

TEST_F(DESCRIPTOR_DIFF_TEST, ChangedAddedAndRemoved) {
  EXPECT_EQ(lines(device("x = 1; y = 2;"), device("x = 3; z = 2;")),
            (LINES{"changed value a.x: 1 -> 3", "removed parameter a.y: 2 -> ",
                   "added parameter a.z:  -> 2"}));
  EXPECT_EQ(lines(device("x = 1;"), device("x = 1; bus b { y = 2; }")),
            (LINES{"added block a.b:  -> bus", "added parameter a.b.y:  -> 2"}));
  EXPECT_EQ(lines(device("bus b { y = 2; }"), device("slave b { y = 2; }")),
            (LINES{"changed type a.b: bus -> slave"}));
  EXPECT_EQ(lines(device("x = 1;"), device("bus x { y = 2; }")),
            (LINES{"removed parameter a.x: 1 -> ", "added block a.x:  -> bus",
                   "added parameter a.x.y:  -> 2"}));
}

TEST_F(DESCRIPTOR_DIFF_TEST, AttributesInAnyOrder) {
  EXPECT_TRUE(lines(device("x = 1 [p, q a.x];"), device("x = 1 [q a.x, p];")).empty());
  EXPECT_EQ(lines(device("x = 1 [p];"), device("x = 1;")),
            (LINES{"changed attributes a.x: [p] -> "}));
}

TEST_F(DESCRIPTOR_DIFF_TEST, RenamedBlocksAreRecognisedAndReferencesFollow) {
  EXPECT_EQ(lines(device("bus b { x = 1; y = 2; } r < a.b.x >;"),
                  device("bus c { x = 1; y = 3; } r < a.c.x >;")),
            (LINES{"renamed name a.c: a.b -> a.c", "changed value a.c.y: 2 -> 3"}));
  // Nothing in common, or another type: not the same block.
  EXPECT_EQ(lines(device("bus b { x = 1; }"), device("bus c { x = 2; }")).size(), 4U);
  EXPECT_EQ(lines(device("bus b { x = 1; }"), device("slave c { x = 1; }")).size(), 4U);
  // The one that has more in common.
  EXPECT_EQ(lines(device("bus b { x = 1; y = 2; z = 3; }"),
                  device("bus c { x = 1; y = 2; z = 4; } bus d { x = 1; y = 2; z = 3; }"))
                .front(),
            "renamed name a.d: a.b -> a.d");
}

TEST_F(DESCRIPTOR_DIFF_TEST, ReferencesToSomethingElse) {
  EXPECT_EQ(lines(device("x = 1; y = 2; r < a.x >;"), device("x = 1; y = 2; r < .x, a.y >;")),
            (LINES{"changed value a.r: <a.x> -> <a.x, a.y>"}));
  EXPECT_TRUE(lines(device("x = 1; r < a.x >;"), device("x = 1; r < .x >;")).empty());
}

TEST_F(DESCRIPTOR_DIFF_TEST, DefaultsMadeExplicitAreNoChange) {
  const std::string board = board_with(k_good_clocks);
  const std::string uart = board_with(k_good_clocks + std::string("parameters uart { enabled = "
                                                                  "false; }"));
  EXPECT_TRUE(lines(board, uart).empty());
  EXPECT_TRUE(lines(uart, board).empty());
  EXPECT_EQ(lines(board, uart, true).size(), 2U);
  // A block alone may change what its parameters default to.
  const LINES changed = lines(
      board, board_with(k_good_clocks + std::string("parameters pld { gpio_port_width = 4; }")));
  EXPECT_EQ(changed, (LINES{"added block board.stripe.pld:  -> parameters",
                            "added parameter board.stripe.pld.gpio_port_width: 0 (absent block) -> "
                            "4"}));
}

TEST_F(DESCRIPTOR_DIFF_TEST, WhatFollowsIsTold) {
  const std::string slow =
      "parameters clocks { input_clock_frequency = 20MHz; pll_ahb_bypass = true;"
      " pll_sdram_bypass = true; }";
  const std::string fast =
      "parameters clocks { input_clock_frequency = 20MHz; pll_ahb_m = 4; pll_ahb_n = 1; pll_ahb_k "
      "= "
      "1; pll_sdram_bypass = true; }";
  const LINES changed = lines(board_with(slow), board_with(fast));
  EXPECT_NE(std::find(changed.begin(), changed.end(), "board ahb1 clock: 10 MHz -> 40 MHz"),
            changed.end());
  EXPECT_NE(std::find(changed.begin(), changed.end(),
                      "removed parameter board.stripe.clocks.pll_ahb_bypass: true -> false "
                      "(default)"),
            changed.end());
}

TEST_F(DESCRIPTOR_DIFF_TEST, RenamedDevicesAreCompared) {
  const std::string other =
      "parameters clocks { input_clock_frequency = 40MHz; pll_ahb_bypass = true;"
      " pll_sdram_bypass = true; }";
  const LINES changed = lines(board_with(k_good_clocks), board_with(other, "panel"));
  ASSERT_GE(changed.size(), 3U);
  EXPECT_EQ(changed[0], "renamed name panel: board -> panel");
  EXPECT_EQ(changed[2], "panel ahb1 clock: 10 MHz -> 20 MHz");
}

TEST_F(DESCRIPTOR_DIFF_TEST, EveryFileIsLikeItself) {
  const std::string board = board_with(k_good_clocks);
  EXPECT_TRUE(diff(board, board, true).empty());
  EXPECT_TRUE(diff("", "", true).empty());
}

TEST_F(DESCRIPTOR_DIFF_TEST, ManyOtherNamesAndDeepBlocksTakeNoTime) {
  std::string old_text;
  std::string new_text;
  for (int i = 0; i != 5000; ++i) {
    const std::string number = std::to_string(i);
    old_text += "module a" + number + " { x = " + number + "; }\n";
    new_text += "module b" + number + " { y = " + number + "; }\n";
  }
  EXPECT_EQ(lines(device(old_text), device(new_text)).size(), 20000U);

  std::string deep = "x = 1;";
  for (int i = 0; i != 300; ++i) deep = "module a { " + deep + " }";
  EXPECT_TRUE(lines(device(deep), device(deep)).empty());
}

}  // namespace
