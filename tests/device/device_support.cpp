#include "tests/device/device_support.h"

#include <gtest/gtest.h>

#include <random>

bool read_text(SBD_VELDRAN& device, std::string_view text) {
  return device.read_text(text.data(), text.size(), DESCRIPTOR_NAME);
}

std::string plain(const SBD_STRING& text) {
  return std::string(text.data(), text.size());
}

TEXTS posted(const MESSAGE_RECORDER& recorder) {
  TEXTS texts;
  for (const RECORDED_MESSAGE& message : recorder.messages()) {
    EXPECT_EQ(message.severity, sbd_host::SEVERITY::ERROR);
    texts.push_back(std::to_string(message.number) + " " + message.text);
  }
  return texts;
}

TEXTS expected_messages(const EXPECTED_DEVICE& expected) {
  TEXTS texts;
  for (const FINDING& finding : expected.findings()) {
    texts.push_back(std::to_string(finding.number) + " " + text_of(finding));
  }
  return texts;
}

std::string missing(const std::string& parameter) {
  return "12 " + text_of({12, parameter});
}
std::string invalid(const std::string& parameter) {
  return "13 " + text_of({13, parameter});
}

void expect_findings(const SETTINGS& settings, CHIP chip, const EXPECTED_DEVICE& expected,
                     SBD_VELDRAN& device, const STYLE& style) {
  const std::string text = descriptor_text(settings, chip, style);
  MESSAGE_RECORDER recorder;
  const bool result = read_text(device, text);
  EXPECT_EQ(result, expected.is_good()) << text;
  EXPECT_EQ(posted(recorder), expected_messages(expected)) << text;
  EXPECT_EQ(recorder.conditions(), TEXTS{}) << text;
  const SBD_VECTOR<SBD_PARAMETER_FAULT>& faults = device.get_parameter_faults();
  ASSERT_EQ(faults.size(), expected.findings().size()) << text;
  for (std::size_t index = 0; index < faults.size(); ++index) {
    const FINDING& finding = expected.findings()[index];
    EXPECT_EQ(plain(faults[index].reference), finding.parameter);
    EXPECT_EQ(faults[index].is_missing, finding.number == 12) << finding.parameter;
  }
}

// ---- Values --------------------------------------------------------------------------------

namespace {

const char* condition_of(KIND kind) {
  switch (kind) {
    case KIND::BOOL:
      return "m_value_type == BOOL_VALUE";
    case KIND::DWORD:
      return "m_value_type == DWORD_VALUE";
    case KIND::DOUBLE:
      return "m_value_type == DOUBLE_VALUE";
    case KIND::STRING:
      break;
  }
  return "m_value_type == STRING_VALUE";
}

// Compares the answers of one query, asked with the output holding something else before.
// `ask` takes the output.
template <class ASK>
void expect_answers(KIND kind, const EXPECTED_VALUE& expected, const ASK& ask) {
  const bool is_own = kind == expected.kind;
  const bool counts = is_own && expected.has_value;
  switch (kind) {
    case KIND::BOOL: {
      bool value = !(counts && expected.flag);
      EXPECT_EQ(ask(value), expected.has_value);
      EXPECT_EQ(value, counts && expected.flag);
      break;
    }
    case KIND::DWORD: {
      unsigned long value = 77777;
      EXPECT_EQ(ask(value), expected.has_value);
      EXPECT_EQ(value, counts ? expected.dword : 0);
      break;
    }
    case KIND::DOUBLE: {
      double value = 77777;
      EXPECT_EQ(ask(value), expected.has_value);
      EXPECT_EQ(value, counts ? expected.number : 0.0);
      break;
    }
    case KIND::STRING: {
      SBD_STRING value = "before";
      EXPECT_EQ(ask(value), expected.has_value);
      EXPECT_EQ(plain(value), counts ? expected.text : "");
      break;
    }
  }
}

// A changing, but always equally changing choice of letter case.
std::mt19937_64& letter_choice() {
  static std::mt19937_64 random(4711);
  return random;
}

}  // namespace

void expect_value(const SBD_VELDRAN& device, const std::string& parameter,
                  const EXPECTED_VALUE& expected, MESSAGE_RECORDER& recorder) {
  SCOPED_TRACE(parameter);
  recorder.forget();
  expect_answers(expected.kind, expected,
                 [&](auto& value) { return device.get_parameter(parameter.c_str(), value); });
  EXPECT_TRUE(recorder.is_silent());
}

void expect_value_in_all_kinds(const SBD_VELDRAN& device, const std::string& parameter,
                               const EXPECTED_VALUE& expected, MESSAGE_RECORDER& recorder) {
  SCOPED_TRACE(parameter);
  for (const KIND kind : ALL_KINDS) {
    SCOPED_TRACE("asked as kind " + std::to_string(static_cast<int>(kind)));
    const TEXTS conditions = kind == expected.kind ? TEXTS{} : TEXTS{condition_of(kind)};
    const auto expect_conditions = [&] {
      EXPECT_EQ(recorder.conditions(), conditions);
      EXPECT_TRUE(recorder.messages().empty());
      recorder.forget();
    };
    recorder.forget();
    for (const std::string& name : {parameter, mixed_case(parameter, letter_choice())}) {
      expect_answers(kind, expected,
                     [&](auto& value) { return device.get_parameter(name.c_str(), value); });
      expect_conditions();
      // Two names are joined, wherever the point is.
      for (std::size_t point = name.find('.'); point != std::string::npos;
           point = name.find('.', point + 1)) {
        const std::string block = name.substr(0, point), inner = name.substr(point + 1);
        expect_answers(kind, expected, [&](auto& value) {
          return device.get_parameter(block.c_str(), inner.c_str(), value);
        });
        expect_conditions();
      }
    }
  }
}

void expect_all_values(const SBD_VELDRAN& device, const EXPECTED_DEVICE& expected,
                       MESSAGE_RECORDER& recorder) {
  for (const auto& [parameter, value] : expected.values()) {
    expect_value(device, parameter, value, recorder);
    if (testing::Test::HasFailure()) return;
  }
}

void expect_clocks_and_widths(const SBD_VELDRAN& device, const EXPECTED_DEVICE& expected,
                              MESSAGE_RECORDER& recorder) {
  recorder.forget();
  const auto expect_frequency = [](double actual, double wanted) {
    if (std::isnan(wanted)) {
      EXPECT_TRUE(std::isnan(actual)) << actual;
    } else {
      EXPECT_EQ(actual, wanted);
    }
  };
  for (const int bus : {1, 2}) {
    double actual = -1, wanted = -1;
    EXPECT_EQ(device.get_ahb_clock_frequency(bus, actual),
              expected.ahb_clock_frequency(bus, wanted))
        << "bus " << bus;
    expect_frequency(actual, wanted);
  }
  double actual = -1, wanted = -1;
  EXPECT_EQ(device.get_sdram_clock_frequency(actual), expected.sdram_clock_frequency(wanted));
  expect_frequency(actual, wanted);
  for (const int port : {0, 1, 2, 100}) {
    unsigned long actual_width = 77777, wanted_width = 77777;
    EXPECT_EQ(device.get_dpram_data_width(port, actual_width),
              expected.dpram_data_width(port, wanted_width))
        << "port " << port;
    EXPECT_EQ(actual_width, wanted_width) << "port " << port;
  }
  EXPECT_TRUE(recorder.is_silent());
}
