// Values and nodes as JSON; docs/tool.md describes the forms.
#ifndef TOOLS_JSON_TREE_H
#define TOOLS_JSON_TREE_H

#include "sbd/sbd_file_parser.h"
#include "tools/json_writer.h"
#include "tools/tree_walk.h"
#include "tools/value_walk.h"

namespace sbd_tool {

// The version of all forms. It changes when a form changes in a way that breaks its readers;
// further keys may come at any time.
inline constexpr std::size_t k_json_version = 1;

// "block", "assignment", "reference" or "comment".
std::string_view kind_of(const NODE& node);

// An array of the nodes that the walk comes across at its outermost level, each with everything
// in it.
void write_nodes(JSON_WRITER& json, const SBD_FILE_PARSER& document, TREE_WALK walk);

// A place in a file, as an object.
void write_place(JSON_WRITER& json, const SBD_FILE_PARSER::SBD_SOURCE_RANGE& place);

// Just what a value says: a number (scaled by its unit), a Boolean, a text, or an array of these.
void write_plain_value(JSON_WRITER& json, const VALUE& value);

}  // namespace sbd_tool

#endif
