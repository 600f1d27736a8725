// Reading device descriptors, and all queries about them.
//
// The bytes are a descriptor, or they choose settings. What these have to come to is then told by
// the second transcription of the rules that the tests have.
#include <cmath>
#include <map>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_veldran.h"
#include "tests/device/descriptor_text.h"
#include "tests/device/expected_model.h"
#include "tests/device/expected_tables.h"
#include "tests/device/value_choices.h"

namespace {

constexpr char k_device[] = "board";
constexpr std::size_t k_most_changes = 40;

struct CHOICE {
  std::string reference;
  std::vector<WRITTEN> values;
};

const std::vector<CHOICE>& choices_of(CHIP chip) {
  static const std::map<CHIP, std::vector<CHOICE>> k_choices = [] {
    std::map<CHIP, std::vector<CHOICE>> choices;
    for (const CHIP one : ALL_CHIPS) {
      for (const PARAMETER_ROW& row : rows_of(one)) {
        choices[one].push_back({row.reference(), values_to_try(row, one)});
      }
    }
    return choices;
  }();
  return k_choices.at(chip);
}

const SETTINGS& full_settings_of(CHIP chip) {
  static const std::map<CHIP, SETTINGS> k_settings = [] {
    std::map<CHIP, SETTINGS> settings;
    for (const CHIP one : ALL_CHIPS) settings[one] = full_settings(one);
    return settings;
  }();
  return k_settings.at(chip);
}

SETTINGS decode_settings(FUZZ_BYTES& bytes, CHIP chip) {
  static const SETTINGS k_minimal = minimal_settings();
  SETTINGS settings = bytes.chance(4) ? full_settings_of(chip) : k_minimal;
  const std::vector<CHOICE>& choices = choices_of(chip);
  for (std::size_t i = 0; i != k_most_changes && !bytes.empty(); ++i) {
    const CHOICE& choice = choices[bytes.pick(choices.size())];
    const std::size_t value = bytes.pick(choice.values.size() + 1);
    if (value == choice.values.size()) {
      settings.remove(choice.reference);
    } else {
      settings.set(choice.reference, choice.values[value]);
    }
  }
  return settings;
}

bool is_same(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

void check_value(const SBD_VELDRAN& device, const std::string& reference,
                 const EXPECTED_VALUE& expected) {
  const char* const name = reference.c_str();
  bool flag = false;
  unsigned long whole = 0;
  double number = 0;
  SBD_STRING text;
  switch (expected.kind) {
    case KIND::BOOL:
      FUZZ_EXPECT(device.get_parameter(name, flag) == expected.has_value, reference);
      FUZZ_EXPECT(flag == (expected.has_value && expected.flag), reference);
      break;
    case KIND::DWORD:
      FUZZ_EXPECT(device.get_parameter(name, whole) == expected.has_value, reference);
      FUZZ_EXPECT(whole == (expected.has_value ? expected.dword : 0), reference);
      break;
    case KIND::DOUBLE:
      FUZZ_EXPECT(device.get_parameter(name, number) == expected.has_value, reference);
      FUZZ_EXPECT(number == (expected.has_value ? expected.number : 0), reference);
      break;
    case KIND::STRING:
      FUZZ_EXPECT(device.get_parameter(name, text) == expected.has_value, reference);
      FUZZ_EXPECT(std::string_view(text) == (expected.has_value ? expected.text : ""), reference);
      break;
  }
}

void check_clocks(const SBD_VELDRAN& device, const EXPECTED_DEVICE& expected) {
  double actual = -1;
  double wanted = -1;
  for (const int bus : {1, 2}) {
    FUZZ_EXPECT(
        device.get_ahb_clock_frequency(bus, actual) == expected.ahb_clock_frequency(bus, wanted),
        std::to_string(bus));
    FUZZ_EXPECT(is_same(actual, wanted), std::to_string(actual));
  }
  FUZZ_EXPECT(device.get_sdram_clock_frequency(actual) == expected.sdram_clock_frequency(wanted),
              "sdram");
  FUZZ_EXPECT(is_same(actual, wanted), std::to_string(actual));
  for (const int port : {0, 1, 2}) {
    unsigned long width = 1;
    unsigned long wanted_width = 1;
    FUZZ_EXPECT(
        device.get_dpram_data_width(port, width) == expected.dpram_data_width(port, wanted_width),
        std::to_string(port));
    FUZZ_EXPECT(width == wanted_width, std::to_string(width));
  }
}

// Every question that can be asked about a parameter; the answers must not contradict each other.
void check_state(const SBD_VELDRAN& device, const char* reference) {
  SBD_PARAMETER_RULE rule;
  FUZZ_EXPECT(sbd_get_parameter_rule(device.get_chip_type(), reference, rule), reference);
  SBD_PARAMETER_STATE state;
  FUZZ_EXPECT(sbd_get_parameter_state(device, reference, state), reference);
  FUZZ_EXPECT(state.value.m_value_type == rule.type, reference);
  FUZZ_EXPECT((state.origin == PO_STATEMENT) == (state.statement != nullptr), reference);
  FUZZ_EXPECT(device.get_parameter_reader()->get_parameter_origin(reference) == state.origin,
              reference);
  SBD_STRING text;
  FUZZ_EXPECT(sbd_get_values_text(rule, text) && !text.empty(), reference);
  FUZZ_EXPECT(sbd_get_requirement_text(rule, text) && !text.empty(), reference);
  FUZZ_EXPECT(sbd_get_value_text(state.value, text), reference);
  if (state.allowed_values != nullptr) {
    FUZZ_EXPECT(sbd_get_values_text(*state.allowed_values, text) && !text.empty(), reference);
  }
}

// In the order that the library tells them; they do not change.
const std::vector<std::string>& names_of(SBD_VELDRAN::CHIP_TYPE chip) {
  static std::map<SBD_VELDRAN::CHIP_TYPE, std::vector<std::string>> names;
  std::vector<std::string>& known = names[chip];
  if (!known.empty()) return known;
  SBD_STRING_LIST references;
  FUZZ_EXPECT(sbd_get_parameter_names(chip, references), "no names");
  for (const SBD_STRING& reference : references) known.emplace_back(reference.c_str());
  return known;
}

// Asks about every 16th parameter, from the `first` on: together they take most of the time.
void check_states(const SBD_VELDRAN& device, std::size_t first) {
  constexpr std::size_t k_step = 16;
  if (device.get_parameter_reader() == nullptr) return;
  for (const std::string& reference : names_of(device.get_chip_type())) {
    if (first++ % k_step == 0) check_state(device, reference.c_str());
  }
}

void check_settings(FUZZ_RUN& run, FUZZ_BYTES& bytes) {
  const CHIP chip = bytes.pick_of(ALL_CHIPS);
  const std::size_t first_state = bytes.rest().size();
  const SETTINGS settings = decode_settings(bytes, chip);
  const std::string text = descriptor_text(settings, chip);
  const EXPECTED_DEVICE expected(settings, chip);
  SBD_VELDRAN device(k_device);
  const bool is_good = device.read_text(text.data(), text.size(), k_file_name);
  FUZZ_EXPECT(is_good == expected.is_good(), text);
  const std::vector<POSTED> posted = run.take_posted();
  FUZZ_EXPECT(posted.size() == expected.findings().size(), text);
  for (std::size_t i = 0; i != posted.size(); ++i) {
    FUZZ_EXPECT(posted[i].number == expected.findings()[i].number, text);
    FUZZ_EXPECT(posted[i].text == text_of(expected.findings()[i]), text);
  }
  FUZZ_EXPECT(device.get_parameter_faults().size() == posted.size(), text);
  for (const auto& [reference, value] : expected.values()) check_value(device, reference, value);
  check_clocks(device, expected);
  check_states(device, first_state);
}

void check_text(FUZZ_RUN& run, std::string_view text) {
  SBD_VELDRAN device(k_device);
  const bool is_good = device.read_text(text.data(), text.size(), k_file_name);
  const std::vector<POSTED> posted = run.take_posted();
  const bool is_mips = device.get_family() == SBD_VELDRAN::DF_MIPS;
  FUZZ_EXPECT(is_good || is_mips || !posted.empty(), "refused in silence");
  expect_consistent(device);
  SBD_STRING name;
  if (is_good) device.get_module_ref_name(name);
  device.get_chip_type_name(name);
  check_states(device, text.size());
  if (device.get_parameter_reader() == nullptr) return;
  double frequency = 0;
  unsigned long width = 0;
  device.get_ahb_clock_frequency(1, frequency);
  device.get_ahb_clock_frequency(2, frequency);
  device.get_sdram_clock_frequency(frequency);
  device.get_dpram_data_width(0, width);
  device.get_dpram_data_width(1, width);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FUZZ_RUN run;
  FUZZ_BYTES bytes(data, size);
  // Descriptors begin with a letter or "#", so that those of other targets will do.
  constexpr std::uint8_t k_settings_below = 32;
  if (size != 0 && data[0] < k_settings_below && data[0] != '\n') {
    bytes.byte();
    check_settings(run, bytes);
  } else {
    check_text(run, view(data, size));
  }
  return 0;
}
