// The parts of give_advice. Each appends its findings in any order.
#ifndef TOOLS_ADVICE_RULES_H
#define TOOLS_ADVICE_RULES_H

#include <vector>

#include "tools/findings.h"
#include "tools/stripe_contents.h"

namespace sbd_tool {

// What stands in the stripe's module and nothing looks at.
void advise_unread(const SBD_VELDRAN& device, const STRIPE_CONTENTS& contents,
                   std::vector<FINDING>& advice);

// Enabled memory windows that overlap, or end behind the last address.
void advise_windows(const SBD_VELDRAN& device, std::vector<FINDING>& advice);

// Settings that another setting makes void, and ones that state their default.
void advise_effects(const SBD_VELDRAN& device, const STRIPE_CONTENTS& contents,
                    std::vector<FINDING>& advice);

}  // namespace sbd_tool

#endif
