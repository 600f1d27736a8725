// Descriptors with devices, as the tool reads them.
#ifndef TESTS_TOOL_DEVICE_SUPPORT_H
#define TESTS_TOOL_DEVICE_SUPPORT_H

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/support/temporary_files.h"
#include "tools/device_view.h"

class DEVICE_TEST : public testing::Test {
 protected:
  void SetUp() override { sbd_tool::install_handlers(); }
  void TearDown() override {
    sbd_host::set_message_handler({});
    sbd_host::set_internal_error_handler({});
  }

  // The descriptor of this text, which is good as far as the format goes.
  std::unique_ptr<sbd_tool::DESCRIPTOR> read(const std::string& text) {
    auto descriptor = sbd_tool::read_descriptor(m_folder.write("test.sbd", text), 0);
    EXPECT_EQ(descriptor->outcome, sbd_tool::EXIT_FINE) << text;
    return descriptor;
  }

  // The same, with its device "board" open.
  std::unique_ptr<sbd_tool::DESCRIPTOR> open_board(const std::string& text) {
    auto descriptor = read(text);
    sbd_tool::open_device(*descriptor, "board", 0);
    return descriptor;
  }

  // A good device of that name and chip, but for these statements of its stripe instead of clocks.
  static std::string board_with(const std::string& statements, const std::string& name = "board",
                                const std::string& chip = "qmxa10") {
    return "device " + name + " {\nfamily = veldran_arm; type = " + chip +
           ";\nmodule stripe {\ntype = veldran_stripe;\nparameters ebi { enabled = false; }\n"
           "parameters dpram { mode[0] = no_ports; }\n" +
           statements + "\n}\n}\n";
  }

 private:
  TEMPORARY_DIRECTORY m_folder;
};

inline constexpr char k_good_clocks[] =
    "parameters clocks { input_clock_frequency = 20MHz; pll_ahb_bypass = true;"
    " pll_sdram_bypass = true; }";

#endif
