#include "tools/starter.h"

#include <string>
#include <vector>

#include "tests/tool/device_support.h"
#include "tools/memory_map.h"
#include "tools/parameter_help.h"

namespace {

using sbd_tool::list_chip_features;
using sbd_tool::make_starter;

using NAMES = std::vector<std::string>;

class STARTER : public DEVICE_TEST {
 protected:
  // What is wrong with a starter; empty when it is right.
  static std::string find_fault(const std::string& text) {
    sbd_tool::DESCRIPTOR descriptor;
    const sbd_tool::FINDING_COLLECTOR collector(descriptor.document, 1, descriptor.findings);
    const bool is_right = descriptor.document.read_text(text.data(), text.size(), "starter") &&
                          descriptor.document.select_device("board") &&
                          descriptor.document.get_parameter_reader() != nullptr;
    if (is_right && descriptor.findings.empty()) return {};
    return descriptor.findings.empty() ? "no parameters" : descriptor.findings.list.front().text;
  }
};

TEST_F(STARTER, KeepsTheRulesWithEveryCombinationOfFeatures) {
  for (const std::string& chip : sbd_tool::list_chips()) {
    const NAMES available = list_chip_features(chip);
    for (std::size_t bits = 0; bits != std::size_t{1} << available.size(); ++bits) {
      NAMES features;
      for (std::size_t i = 0; i != available.size(); ++i) {
        if ((bits >> i & 1U) != 0) features.push_back(available[i]);
      }
      ASSERT_EQ(find_fault(make_starter(chip, "board", features)), "") << chip << " " << bits;
    }
  }
}

TEST_F(STARTER, ChipsHaveTheirFeatures) {
  EXPECT_EQ(list_chip_features("qmxa4").size(), sbd_tool::starter_features().size());
  EXPECT_EQ(list_chip_features("qmxa1"), (NAMES{"pll", "sdram", "ebi", "dpram", "uart", "registers",
                                                "sram", "pld", "gpio", "interrupts"}));
  EXPECT_EQ(list_chip_features("qmxa10"), (NAMES{"pll", "sdram", "ebi", "dpram", "uart", "trace",
                                                 "registers", "sram", "pld", "interrupts"}));
}

// What stands behind "#" says what counts anyway: taking the "#" away changes nothing.
TEST_F(STARTER, OptionalLinesHoldDefaults) {
  for (const std::string& chip : sbd_tool::list_chips()) {
    const std::string text = make_starter(chip, "board", list_chip_features(chip));
    std::string stated;
    std::size_t count = 0;
    for (std::size_t begin = 0; begin < text.size();) {
      const std::size_t end = text.find('\n', begin);
      std::string line = text.substr(begin, end - begin);
      const std::size_t mark = line.find_first_not_of(' ');
      if (mark != std::string::npos && line.compare(mark, 2, "# ") == 0 &&
          line.find(" = ") != std::string::npos && line.find(';') != std::string::npos) {
        line.erase(mark, 2);
        ++count;
      }
      stated += line + "\n";
      begin = end + 1;
    }
    EXPECT_GT(count, 40U);
    const auto commented = open_board(text);
    const auto before = sbd_tool::list_parameters(commented->document);
    const auto uncommented = open_board(stated);
    EXPECT_TRUE(uncommented->findings.empty());
    const auto after = sbd_tool::list_parameters(uncommented->document);
    ASSERT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i != before.size(); ++i) {
      EXPECT_EQ(before[i].text, after[i].text) << chip << " " << before[i].name;
    }
  }
}

TEST_F(STARTER, WindowsDoNotOverlap) {
  for (const std::string& chip : sbd_tool::list_chips()) {
    const auto board = open_board(make_starter(chip, "board", list_chip_features(chip)));
    const sbd_tool::MEMORY_MAP map = sbd_tool::make_memory_map(board->document);
    EXPECT_EQ(map.placed.size(), 6U);
    for (const sbd_tool::MEMORY_WINDOW& window : map.placed) EXPECT_FALSE(window.is_faulty());
  }
}

}  // namespace
