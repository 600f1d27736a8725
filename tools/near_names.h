// Names that look like one that does not exist.
#ifndef TOOLS_NEAR_NAMES_H
#define TOOLS_NEAR_NAMES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/names.h"

namespace sbd_tool {

bool equal_ignoring_case(std::string_view a, std::string_view b);

// How many characters must be changed, inserted, left out or swapped with their neighbour to get
// from one to the other, letter case aside.
std::size_t edit_distance(std::string_view a, std::string_view b);

// A few of `names`, which may have dots in them, that `name` may have been meant for, the nearest
// first: it is misspelled, says the last component only, or has further ones in front.
std::vector<std::string> find_near_texts(const std::vector<std::string>& names,
                                         std::string_view name);

// A few full names of wanted nodes that `name` may have been meant for, the nearest first: its
// components are misspelled, or the blocks in front of the last one are not right.
std::vector<std::string> find_near_names(const SBD_FILE_PARSER& document, const std::string& name,
                                         WANTED wanted);

}  // namespace sbd_tool

#endif
