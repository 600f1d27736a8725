#include "tools/advice.h"

#include <algorithm>
#include <string>

#include "tools/advice_rules.h"

namespace sbd_tool {

const std::vector<std::string_view>& list_advice_keys() {
  static const std::vector<std::string_view> k_keys = {
      k_unknown_parameter_key, k_unknown_block_key, k_not_read_key, k_windows_overlap_key,
      k_window_end_key,        k_no_effect_key,     k_default_key,  k_value_changes_key,
      k_idle_waiver_key,       k_faulty_waiver_key};
  return k_keys;
}

std::vector<FINDING> give_advice(const SBD_VELDRAN& device) {
  std::vector<FINDING> advice;
  const STRIPE_CONTENTS contents = list_contents(device);
  advise_unread(device, contents, advice);
  advise_windows(device, advice);
  advise_effects(device, contents, advice);
  for (FINDING& finding : advice) finding.device = device.get_device_name();
  std::stable_sort(advice.begin(), advice.end(), [](const FINDING& a, const FINDING& b) {
    return (a.place ? a.place->offset : 0) < (b.place ? b.place->offset : 0);
  });
  return advice;
}

}  // namespace sbd_tool
