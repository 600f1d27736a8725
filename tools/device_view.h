// A descriptor seen as the setup of a device: what its parameters come to, and what is wrong.
//
// Commands print these as they like. All of it stays valid as long as the descriptor and is about
// the device that it was opened for last.
#ifndef TOOLS_DEVICE_VIEW_H
#define TOOLS_DEVICE_VIEW_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sbd/sbd_parameter_rules.h"
#include "tools/descriptor.h"
#include "tools/findings.h"
#include "tools/tree_walk.h"

namespace sbd_tool {

using PARAMETER_VALUE = SBD_PARAMETER_READER::SBD_PARAMETER_VALUE;

// Findings of the tool itself. The library reads such devices without a word.
inline constexpr char k_no_rules_key[] = "TOOL_NO_RULES_FOR_CHIP";
inline constexpr char k_no_stripe_key[] = "TOOL_NO_STRIPE_MODULE";

// ---- Devices -----------------------------------------------------------------------------------

// The names of the device blocks of a document, in file order.
std::vector<std::string> list_devices(const SBD_FILE_PARSER& document);

// "a, b, c"; a long list is cut.
std::string join_device_names(const std::vector<std::string>& names);

// Binds the descriptor to that device and validates it. What is wrong is added to the descriptor's
// findings, each with its cause, and makes its outcome worse; `finding_limit` as in
// FINDING_COLLECTOR. True when there are parameters, with or without faults.
bool open_device(DESCRIPTOR& descriptor, const std::string& name, std::size_t finding_limit);

// "board (qmxa10)": the device that is open, for headings.
std::string device_title(const DESCRIPTOR& descriptor);

// ---- Parameters --------------------------------------------------------------------------------

// A parameter of the device that is open, as it counts.
struct PARAMETER_VIEW {
  enum class FAULT { NONE, MISSING, INVALID };

  std::string name;                            // Relative to the stripe's module.
  PARAMETER_VALUE value{false, false, false};  // Of the parameter's type in any case.
  std::string text;                            // The value; empty when there is none.
  SBD_PARAMETER_ORIGIN origin = PO_NONE;
  const NODE* statement = nullptr;    // Null where nothing states it.
  std::optional<SOURCE_RANGE> place;  // Of its statement.
  std::string written;                // What its statement says, on one line.
  bool is_required = false;
  FAULT fault = FAULT::NONE;
};

// All parameters of the chip, in the order in which they are validated.
std::vector<PARAMETER_VIEW> list_parameters(const SBD_VELDRAN& device);

// One of them; a name that the chip does not have gives one without value and name.
PARAMETER_VIEW view_parameter(const SBD_VELDRAN& device, const std::string& name);

// "file", "default", "absent block" (the default for a parameter whose block is not there), "none".
std::string_view name_of(SBD_PARAMETER_ORIGIN origin);
// "boolean", "integer", "number", "text".
std::string_view name_of(PARAMETER_VALUE::VALUE_TYPE type);
// "", "missing", "invalid".
std::string_view name_of(PARAMETER_VIEW::FAULT fault);

// The place of a node's text; none where it was not read from one.
std::optional<SOURCE_RANGE> place_of(const SBD_FILE_PARSER& document, const NODE* node);

}  // namespace sbd_tool

#endif
