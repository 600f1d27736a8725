#include "tools/commands/edit_command.h"

#include "tools/commands/options.h"

namespace sbd_tool {

void add_edited_file(const COMMAND_SYNTAX& command, EDIT_OPTIONS& options) {
  command
      .add_positional("FILE", options.file,
                      "The descriptor file; \"-\" is standard input, edited to standard output")
      .required();
}

void add_edit_options(const COMMAND_SYNTAX& command, EDIT_OPTIONS& options) {
  command.add_flag("-n,--dry-run", options.is_dry_run,
                   "Write nothing; print what would change, as a unified diff");
  command.add_option("-o,--output", "OUT", options.output,
                     "Write the result there instead; \"-\" is standard output");
  command.add_flag("--canonical", options.is_canonical,
                   "Write all of the file in the library's own layout");
  command.add_flag("--json", options.is_json, "Print JSON that says how it went");
  command.add_flag("-v,--verbose", options.is_verbose, "Say whether anything was changed");
  add_color(command, options.colors);
}

void PLACE_OPTIONS::declare(const COMMAND_SYNTAX& command) {
  const OPTION_SYNTAX after = command.add_option("--after", "SIBLING", m_after,
                                                 "Put what is new right behind this sibling");
  const OPTION_SYNTAX before = command.add_option("--before", "SIBLING", m_before,
                                                  "Put what is new right before this sibling");
  after.excludes(before);
}

void PLACE_OPTIONS::put_into(EDIT& edit) const {
  if (!m_after.empty()) {
    edit.place = SBD_PLACE::BEHIND;
    edit.sibling = m_after;
  } else if (!m_before.empty()) {
    edit.place = SBD_PLACE::BEFORE;
    edit.sibling = m_before;
  }
}

EDIT_COMMAND::EDIT_COMMAND(std::string name, std::string description, std::string footer)
    : m_name(std::move(name)), m_description(std::move(description)), m_footer(std::move(footer)) {}

COMMAND_SYNTAX EDIT_COMMAND::declare(const COMMAND_SYNTAX& tool) {
  const COMMAND_SYNTAX command = tool.add_command(m_name, m_description);
  add_edited_file(command, m_options);
  declare_edit(command);
  add_edit_options(command, m_options);
  command.set_footer(m_footer);
  return command;
}

void EDIT_COMMAND::run(SESSION& session) {
  std::vector<EDIT> edits;
  if (make_edits(session, edits)) edit_file(session, m_options, edits);
}

}  // namespace sbd_tool
