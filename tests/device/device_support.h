// Reads descriptors into device objects and compares what comes out with the model.
#ifndef TESTS_DEVICE_DEVICE_SUPPORT_H
#define TESTS_DEVICE_DEVICE_SUPPORT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_memory.h"
#include "sbd/sbd_veldran.h"
#include "tests/device/descriptor_text.h"
#include "tests/device/expected_model.h"
#include "tests/support/message_recorder.h"
#include "tests/support/test_scale.h"

using TEXTS = std::vector<std::string>;

// The file name in messages.
inline constexpr char DESCRIPTOR_NAME[] = "test.sbd";

bool read_text(SBD_VELDRAN& device, std::string_view text);

std::string plain(const SBD_STRING& text);

// Every posted message as "number text", in order.
TEXTS posted(const MESSAGE_RECORDER& recorder);
TEXTS expected_messages(const EXPECTED_DEVICE& expected);

std::string missing(const std::string& parameter);  // 12 ...
std::string invalid(const std::string& parameter);  // 13 ...

// Reads the descriptor of the settings and compares the result, all messages, and that nothing was
// an internal error.
void expect_findings(const SETTINGS& settings, CHIP chip, const EXPECTED_DEVICE& expected,
                     SBD_VELDRAN& device, const STYLE& style = {});

// Asks for the parameter in its own kind.
void expect_value(const SBD_VELDRAN& device, const std::string& parameter,
                  const EXPECTED_VALUE& expected, MESSAGE_RECORDER& recorder);
// Asks in all four kinds, by one name and by two, also with the letters in mixed case.
void expect_value_in_all_kinds(const SBD_VELDRAN& device, const std::string& parameter,
                               const EXPECTED_VALUE& expected, MESSAGE_RECORDER& recorder);
void expect_all_values(const SBD_VELDRAN& device, const EXPECTED_DEVICE& expected,
                       MESSAGE_RECORDER& recorder);
void expect_clocks_and_widths(const SBD_VELDRAN& device, const EXPECTED_DEVICE& expected,
                              MESSAGE_RECORDER& recorder);

#endif
