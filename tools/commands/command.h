// What every command of the tool has.
#ifndef TOOLS_COMMANDS_COMMAND_H
#define TOOLS_COMMANDS_COMMAND_H

#include <memory>

#include "tools/command_line.h"
#include "tools/session.h"

namespace sbd_tool {

class COMMAND {
 public:
  virtual ~COMMAND() = default;

  // Declares the command, its options and its help; its arguments are then parsed into members.
  // The command must live as long as `tool`.
  virtual COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) = 0;

  // Does the work. How it went is noted in the session.
  virtual void run(SESSION& session) = 0;
};

std::unique_ptr<COMMAND> make_check_command();
std::unique_ptr<COMMAND> make_show_command();
std::unique_ptr<COMMAND> make_get_command();
std::unique_ptr<COMMAND> make_list_command();
std::unique_ptr<COMMAND> make_params_command();
std::unique_ptr<COMMAND> make_clocks_command();
std::unique_ptr<COMMAND> make_map_command();
std::unique_ptr<COMMAND> make_diff_command();
std::unique_ptr<COMMAND> make_report_command();
std::unique_ptr<COMMAND> make_new_command();
std::unique_ptr<COMMAND> make_explain_command();
std::unique_ptr<COMMAND> make_set_command();
std::unique_ptr<COMMAND> make_unset_command();
std::unique_ptr<COMMAND> make_ref_command();
std::unique_ptr<COMMAND> make_attr_command();
std::unique_ptr<COMMAND> make_block_command();
std::unique_ptr<COMMAND> make_rename_command();
std::unique_ptr<COMMAND> make_edit_command();
std::unique_ptr<COMMAND> make_fmt_command();

}  // namespace sbd_tool

#endif
