// Why the rules refuse a parameter.
#ifndef TOOLS_FAULT_CAUSE_H
#define TOOLS_FAULT_CAUSE_H

#include "sbd/sbd_veldran.h"
#include "tools/findings.h"

namespace sbd_tool {

// Puts the cause of the device's latest parameter fault into the finding's note, such as
// "required because sdram.enabled is true, default of a present block" or "valid on qmxa10: 1 to
// 15". The note's place is the statement of the setting that decided.
void explain_fault(const SBD_VELDRAN& device, FINDING& finding);

}  // namespace sbd_tool

#endif
