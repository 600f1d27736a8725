// sbd ref: sets and removes references.
#include <memory>
#include <string>
#include <vector>

#include "tools/commands/edit_command.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "The reference statement NAME refers to the TARGETs afterwards, and to nothing else; it is "
    "added\n"
    "to its block if it does not exist. --remove removes the references to an object wherever "
    "they\n"
    "stand, and the statements that have no others.\n"
    "\n"
    "Examples:\n"
    "  sbd ref board.sbd board.sram.clock board.clocks.main board.clocks.spare\n"
    "  sbd ref board.sbd --remove board.clocks.spare";

class REF_COMMAND : public EDIT_COMMAND {
 public:
  REF_COMMAND() : EDIT_COMMAND("ref", "Set or remove references", k_footer) {}

 private:
  void declare_edit(const COMMAND_SYNTAX& command) override {
    const OPTION_SYNTAX name =
        command.add_positional("NAME", m_name, "Full name of a reference statement");
    command.add_positional("TARGET", m_targets, "Full names of what it is to refer to");
    command.add_option("--remove", "TARGET", m_removed, "Remove all references to this object")
        .excludes(name);
    m_place.declare(command);
  }

  bool make_edits(SESSION& session, std::vector<EDIT>& edits) override {
    for (const std::string& target : m_removed) {
      EDIT edit;
      edit.kind = EDIT::KIND::REMOVE_REFERENCES;
      edit.name = target;
      edits.push_back(edit);
    }
    if (!edits.empty()) return true;
    if (m_targets.empty()) {
      session.complain("NAME and TARGET, or --remove, is required (see sbd ref --help)",
                       EXIT_UNUSABLE);
      return false;
    }
    EDIT edit;
    edit.kind = EDIT::KIND::SET_REFERENCES;
    edit.name = m_name;
    edit.targets = m_targets;
    m_place.put_into(edit);
    edits.push_back(edit);
    return true;
  }

  std::string m_name;
  std::vector<std::string> m_targets;
  std::vector<std::string> m_removed;
  PLACE_OPTIONS m_place;
};

}  // namespace

std::unique_ptr<COMMAND> make_ref_command() {
  return std::make_unique<REF_COMMAND>();
}

}  // namespace sbd_tool
