// sbd unset: removes parameters.
#include <memory>
#include <string>
#include <vector>

#include "tools/commands/edit_command.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "Removes parameters and reference statements, with the comment behind each. Either all of "
    "them\n"
    "are removed, or none. One that is referred to stays, unless the references go, too.\n"
    "\n"
    "Examples:\n"
    "  sbd unset board.sbd board.clocks.main\n"
    "  sbd unset --with-references board.sbd board.clocks.main board.clocks.spare";

class UNSET_COMMAND : public EDIT_COMMAND {
 public:
  UNSET_COMMAND() : EDIT_COMMAND("unset", "Remove parameters", k_footer) {}

 private:
  void declare_edit(const COMMAND_SYNTAX& command) override {
    command.add_positional("NAME", m_names, "Full names of parameters").required();
    command.add_flag("--with-references", m_with_references, "Remove the references to them, too");
  }

  bool make_edits(SESSION& /*session*/, std::vector<EDIT>& edits) override {
    for (const std::string& name : m_names) {
      EDIT edit;
      edit.kind = EDIT::KIND::UNSET;
      edit.name = name;
      edit.with_references = m_with_references;
      edits.push_back(edit);
    }
    return true;
  }

  std::vector<std::string> m_names;
  bool m_with_references = false;
};

}  // namespace

std::unique_ptr<COMMAND> make_unset_command() {
  return std::make_unique<UNSET_COMMAND>();
}

}  // namespace sbd_tool
