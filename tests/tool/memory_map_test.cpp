#include "tools/memory_map.h"

#include <string>
#include <vector>

#include "tests/tool/device_support.h"
#include "tools/markup.h"
#include "tools/memory_map_picture.h"

namespace {

using sbd_tool::format_size;
using sbd_tool::make_memory_map;
using sbd_tool::MEMORY_MAP;
using sbd_tool::MEMORY_WINDOW;

using NAMES = std::vector<std::string>;

class MEMORY_MAP_TEST : public DEVICE_TEST {
 protected:
  MEMORY_MAP map_of(const std::string& statements, const std::string& chip = "qmxa10") {
    m_descriptor = open_board(board_with(k_good_clocks + statements, "board", chip));
    return make_memory_map(m_descriptor->document);
  }

  static std::string region(const std::string& name, const std::string& members) {
    return "region " + name + " { " + members + " }\n";
  }

  static NAMES names_of(const std::vector<MEMORY_WINDOW>& windows) {
    NAMES names;
    for (const MEMORY_WINDOW& window : windows) names.push_back(window.name);
    return names;
  }

  static MEMORY_WINDOW find(const std::vector<MEMORY_WINDOW>& windows, const std::string& name) {
    for (const MEMORY_WINDOW& window : windows) {
      if (window.name == name) return window;
    }
    ADD_FAILURE() << "no window " << name;
    return {};
  }

 private:
  std::unique_ptr<sbd_tool::DESCRIPTOR> m_descriptor;
};

TEST_F(MEMORY_MAP_TEST, WithoutWindowsIsOneHole) {
  const MEMORY_MAP map = map_of("");
  EXPECT_TRUE(map.placed.empty());
  EXPECT_EQ(map.others.size(), 15U);
  ASSERT_EQ(map.holes.size(), 1U);
  EXPECT_EQ(map.holes[0].first, 0U);
  EXPECT_EQ(map.holes[0].end, 0x100000000U);
}

TEST_F(MEMORY_MAP_TEST, StandsByAddressWithUnitsApplied) {
  const MEMORY_MAP map = map_of(region("sram[0]", "address_base = 64K; address_size = 0x10K;") +
                                region("pld[3]", "address_base = 0; address_size = 0b100;"));
  EXPECT_EQ(names_of(map.placed), (NAMES{"pld[3]", "sram[0]"}));
  EXPECT_EQ(map.placed[1].first, 0x10000U);
  EXPECT_EQ(map.placed[1].end, 0x14000U);
  ASSERT_EQ(map.holes.size(), 2U);
  EXPECT_EQ(map.holes[0].first, 4U);
  EXPECT_EQ(map.holes[0].end, 0x10000U);
  EXPECT_EQ(map.holes[1].first, 0x14000U);
}

TEST_F(MEMORY_MAP_TEST, NeighboursDoNotOverlapButOneByteDoes) {
  const MEMORY_MAP apart = map_of(region("sram[0]", "address_base = 0; address_size = 4K;") +
                                  region("sram[1]", "address_base = 4K; address_size = 4K;"));
  EXPECT_TRUE(apart.placed[0].overlaps.empty());
  EXPECT_TRUE(apart.placed[1].overlaps.empty());

  const MEMORY_MAP shared = map_of(region("sram[0]", "address_base = 0; address_size = 4097;") +
                                   region("sram[1]", "address_base = 4K; address_size = 4K;"));
  EXPECT_EQ(shared.placed[0].overlaps, (NAMES{"sram[1]"}));
  EXPECT_EQ(shared.placed[1].overlaps, (NAMES{"sram[0]"}));
  EXPECT_EQ(shared.holes.size(), 1U);
}

TEST_F(MEMORY_MAP_TEST, AWindowInsideAnotherLeavesNoHole) {
  const MEMORY_MAP map = map_of(region("sram[0]", "address_base = 0; address_size = 2G;") +
                                region("sram[1]", "address_base = 4K; address_size = 4K;") +
                                region("pld[0]", "address_base = 2G; address_size = 2G;"));
  EXPECT_TRUE(map.holes.empty());
  EXPECT_EQ(map.placed[2].overlaps, NAMES{});
}

TEST_F(MEMORY_MAP_TEST, TheLastByteIsInsideAndTheNextIsNot) {
  const MEMORY_MAP inside = map_of(region("pld[0]",
                                          "address_base = 0xFFFFF000; "
                                          "address_size = 4K;"));
  EXPECT_FALSE(inside.placed[0].is_faulty());
  const MEMORY_MAP past = map_of(region("pld[0]",
                                        "address_base = 0xFFFFF000; "
                                        "address_size = 4097;"));
  EXPECT_TRUE(past.placed[0].is_faulty());
  EXPECT_EQ(past.placed[0].remarks, (NAMES{"runs past 4 GiB"}));
}

TEST_F(MEMORY_MAP_TEST, WhatIsNotInUseIsNotPlaced) {
  const MEMORY_MAP map =
      map_of(region("sram[0]", "enabled = false; address_base = 0; address_size = 4K;") +
             region("sram[1]", "address_base = 0; address_size = 0;") +
             "parameters sdram { enabled = false;\n" +
             region("region[0]", "address_base = 0; address_size = 1M;") + "}\n");
  EXPECT_TRUE(map.placed.empty());
  EXPECT_FALSE(find(map.others, "sram[0]").is_in_use);
  EXPECT_EQ(find(map.others, "sram[1]").remarks, (NAMES{"size is 0"}));
  EXPECT_EQ(find(map.others, "sdram.region[0]").remarks, (NAMES{"sdram.enabled is false"}));
}

TEST_F(MEMORY_MAP_TEST, WhatHasNoValueIsTold) {
  const MEMORY_MAP map = map_of(region("registers", "address_base = 0;"));
  ASSERT_FALSE(map.others.empty());
  EXPECT_EQ(map.others[0].name, "registers");
  EXPECT_TRUE(map.others[0].is_in_use);
  EXPECT_EQ(map.others[0].remarks, (NAMES{"registers.address_size has no value"}));
}

TEST_F(MEMORY_MAP_TEST, NumbersThatADeviceCutsAreTold) {
  const MEMORY_MAP map = map_of(region("pld[0]", "address_base = 5G; address_size = 64K;") +
                                region("pld[1]", "address_base = 0; address_size = 4G;"));
  ASSERT_EQ(map.placed.size(), 1U);
  EXPECT_EQ(map.placed[0].first, 0x40000000U);
  EXPECT_EQ(map.placed[0].remarks,
            (NAMES{"pld[0].address_base counts as 1073741824, not 5368709120"}));
  EXPECT_EQ(find(map.others, "pld[1]").remarks,
            (NAMES{"pld[1].address_size counts as 0, not 4294967296", "size is 0"}));
}

TEST_F(MEMORY_MAP_TEST, PictureHasEveryWindowAndHole) {
  const MEMORY_MAP map = map_of(region("sram[0]", "address_base = 0; address_size = 8K;") +
                                region("sram[1]", "address_base = 4K; address_size = 8K;"));
  const std::string svg = draw_memory_map(map, "a <map> & more").element();
  EXPECT_NE(svg.find("<rect class=\"fault\" x=\"110\""), std::string::npos);
  // Side by side.
  EXPECT_NE(svg.find("<rect class=\"fault\" x=\"355\""), std::string::npos);
  EXPECT_NE(svg.find("<rect class=\"hole\""), std::string::npos);
  EXPECT_NE(svg.find("a &lt;map&gt; &amp; more"), std::string::npos);
  EXPECT_EQ(svg.find("<map>"), std::string::npos);
}

TEST(FORMAT_SIZE, IsAsADescriptorWritesIt) {
  EXPECT_EQ(format_size(0), "0");
  EXPECT_EQ(format_size(1023), "1023");
  EXPECT_EQ(format_size(1024), "1K");
  EXPECT_EQ(format_size(1536), "1536");
  EXPECT_EQ(format_size(64 << 20), "64M");
  EXPECT_EQ(format_size(std::uint64_t{1} << 32U), "4G");
}

TEST(ESCAPE_MARKUP, LeavesNothingThatMeansSomething) {
  EXPECT_EQ(sbd_tool::escape_markup("<a href=\"x\" b='y'>&"),
            "&lt;a href=&quot;x&quot; b=&#39;y&#39;&gt;&amp;");
  EXPECT_EQ(sbd_tool::escape_markup("\x01\xff"), "\\x01\\xff");
}

}  // namespace
