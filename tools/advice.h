// What may be wrong with a device that keeps all rules, or could be said in fewer words.
//
// Advice is the tool's own: the library reads such descriptors without a word.
#ifndef TOOLS_ADVICE_H
#define TOOLS_ADVICE_H

#include <string_view>
#include <vector>

#include "sbd/sbd_veldran.h"
#include "tools/findings.h"

namespace sbd_tool {

inline constexpr char k_unknown_parameter_key[] = "TOOL_UNKNOWN_PARAMETER";
inline constexpr char k_unknown_block_key[] = "TOOL_UNKNOWN_BLOCK";
inline constexpr char k_not_read_key[] = "TOOL_NOT_READ";
inline constexpr char k_windows_overlap_key[] = "TOOL_WINDOWS_OVERLAP";
inline constexpr char k_window_end_key[] = "TOOL_WINDOW_BEYOND_4G";
inline constexpr char k_no_effect_key[] = "TOOL_NO_EFFECT";
inline constexpr char k_default_key[] = "TOOL_DEFAULT_STATED";
// With another chip, see tools/chip_change.h.
inline constexpr char k_value_changes_key[] = "TOOL_VALUE_CHANGES";
// About waivers, see tools/waivers.h.
inline constexpr char k_idle_waiver_key[] = "TOOL_IDLE_WAIVER";
inline constexpr char k_faulty_waiver_key[] = "TOOL_FAULTY_WAIVER";

// All of these.
const std::vector<std::string_view>& list_advice_keys();

// The advice about the device that is open and has parameters, in the order of its places.
std::vector<FINDING> give_advice(const SBD_VELDRAN& device);

}  // namespace sbd_tool

#endif
