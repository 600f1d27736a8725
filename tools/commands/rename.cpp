// sbd rename: gives a block or parameter another name.
#include <memory>
#include <string>
#include <vector>

#include "tools/commands/edit_command.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "References to what is renamed, and to what is in it, are written anew, unless "
    "--no-references\n"
    "is given; a file in which a reference has no target afterwards is not written, though.\n"
    "\n"
    "Examples:\n"
    "  sbd rename board.sbd board.clocks.main primary\n"
    "  sbd rename --dry-run board.sbd board.clocks timing";

class RENAME_COMMAND : public EDIT_COMMAND {
 public:
  RENAME_COMMAND() : EDIT_COMMAND("rename", "Give a block or parameter another name", k_footer) {}

 private:
  void declare_edit(const COMMAND_SYNTAX& command) override {
    command.add_positional("NAME", m_name, "Full name of a block or parameter").required();
    command.add_positional("NEW_NAME", m_new_name, "Its new name in its block").required();
    command.add_flag("--no-references", m_without_references, "Leave references as they are");
  }

  bool make_edits(SESSION& /*session*/, std::vector<EDIT>& edits) override {
    EDIT edit;
    edit.kind = EDIT::KIND::RENAME;
    edit.name = m_name;
    edit.value = m_new_name;
    edit.with_references = !m_without_references;
    edits.push_back(edit);
    return true;
  }

  std::string m_name;
  std::string m_new_name;
  bool m_without_references = false;
};

}  // namespace

std::unique_ptr<COMMAND> make_rename_command() {
  return std::make_unique<RENAME_COMMAND>();
}

}  // namespace sbd_tool
