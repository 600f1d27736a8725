// What the commands that edit one file have in common.
#ifndef TOOLS_COMMANDS_EDIT_COMMAND_H
#define TOOLS_COMMANDS_EDIT_COMMAND_H

#include <string>
#include <vector>

#include "tools/commands/command.h"
#include "tools/edit_file.h"

namespace sbd_tool {

// FILE and the options that say what becomes of the result. FILE is declared first.
void add_edited_file(const COMMAND_SYNTAX& command, EDIT_OPTIONS& options);
void add_edit_options(const COMMAND_SYNTAX& command, EDIT_OPTIONS& options);

// --after and --before: where something new stands.
class PLACE_OPTIONS {
 public:
  void declare(const COMMAND_SYNTAX& command);
  void put_into(EDIT& edit) const;

 private:
  std::string m_after;
  std::string m_before;
};

class EDIT_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) final;
  void run(SESSION& session) final;

 protected:
  EDIT_COMMAND(std::string name, std::string description, std::string footer);

  // Declares what stands behind FILE.
  virtual void declare_edit(const COMMAND_SYNTAX& command) = 0;

  // The edits that the arguments say; false when they say none, which is then told.
  virtual bool make_edits(SESSION& session, std::vector<EDIT>& edits) = 0;

  const EDIT_OPTIONS& options() const { return m_options; }

 private:
  std::string m_name;
  std::string m_description;
  std::string m_footer;
  EDIT_OPTIONS m_options;
};

}  // namespace sbd_tool

#endif
