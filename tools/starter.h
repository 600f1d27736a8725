// A descriptor to begin with.
#ifndef TOOLS_STARTER_H
#define TOOLS_STARTER_H

#include <string>
#include <string_view>
#include <vector>

namespace sbd_tool {

// A part of the stripe that one may ask for.
struct STARTER_FEATURE {
  const char* name;         // "sdram".
  const char* description;  // "external memory".
};
const std::vector<STARTER_FEATURE>& starter_features();

// The features that the chip has; `chip` is one of list_chips().
std::vector<std::string> list_chip_features(std::string_view chip);

// A commented descriptor of a device block with that name which keeps the rules of the chip: what
// has to be stated for these features, which the chip has, and behind "#" what may be stated
// besides, with its default.
std::string make_starter(std::string_view chip, std::string_view name,
                         const std::vector<std::string>& features);

}  // namespace sbd_tool

#endif
