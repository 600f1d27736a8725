// Judges a device by the rules of its chip, and prints parameters with where their values come
// from.
#include <cstdio>

#include "sbd/sbd_parameter_rules.h"
#include "sbd/sbd_veldran.h"

namespace {

const char* origin_text(SBD_PARAMETER_ORIGIN origin) {
  switch (origin) {
    case PO_STATEMENT:
      return "stated";
    case PO_PRESENT_BLOCK_DEFAULT:
    case PO_ABSENT_BLOCK_DEFAULT:
      return "default";
    case PO_NONE:
      break;
  }
  return "none";
}

void print_parameter(const SBD_VELDRAN& device, const char* name) {
  SBD_PARAMETER_STATE state;
  SBD_STRING value;
  SBD_PARAMETER_RULE rule;
  SBD_STRING allowed;
  if (!sbd_get_parameter_state(device, name, state) || !sbd_get_value_text(state.value, value) ||
      !sbd_get_parameter_rule(device.get_chip_type(), name, rule) ||
      !sbd_get_values_text(rule, allowed)) {
    return;
  }
  std::printf("%s = %s (%s; allowed: %s)\n", name, value.c_str(), origin_text(state.origin),
              allowed.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  SBD_VELDRAN device("board");
  if (argc != 2 || !device.read(argv[1])) {
    for (const SBD_PARAMETER_FAULT& fault : device.get_parameter_faults()) {
      std::printf("%s: %s\n", fault.reference.c_str(), fault.is_missing ? "missing" : "not valid");
    }
    return 1;
  }
  print_parameter(device, "endian");
  print_parameter(device, "sdram.enabled");

  double frequency = 0;
  if (device.get_ahb_clock_frequency(1, frequency)) std::printf("AHB1: %.0f Hz\n", frequency);
  return 0;
}
