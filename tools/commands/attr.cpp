// sbd attr: sets the attributes of a parameter.
#include <memory>
#include <string>
#include <vector>

#include "tools/commands/edit_command.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "The parameter has the given attributes afterwards, and no others. The value of an attribute "
    "is a\n"
    "name with a dot in it.\n"
    "\n"
    "Examples:\n"
    "  sbd attr board.sbd board.clocks.main display=board.title readonly\n"
    "  sbd attr board.sbd board.clocks.main --clear";

class ATTR_COMMAND : public EDIT_COMMAND {
 public:
  ATTR_COMMAND() : EDIT_COMMAND("attr", "Set the attributes of a parameter", k_footer) {}

 private:
  void declare_edit(const COMMAND_SYNTAX& command) override {
    command.add_positional("NAME", m_name, "Full name of the parameter").required();
    const OPTION_SYNTAX attributes =
        command.add_positional("ATTRIBUTE", m_attributes, "Attributes: KEY or KEY=VALUE");
    command.add_flag("--clear", m_is_cleared, "Remove all attributes").excludes(attributes);
  }

  bool make_edits(SESSION& session, std::vector<EDIT>& edits) override {
    if (m_attributes.empty() && !m_is_cleared) {
      session.complain("an ATTRIBUTE, or --clear, is required (see sbd attr --help)",
                       EXIT_UNUSABLE);
      return false;
    }
    EDIT edit;
    edit.kind = EDIT::KIND::SET_ATTRIBUTES;
    edit.name = m_name;
    for (const std::string& attribute : m_attributes) {
      edit.attributes.push_back(split_pair(attribute));
    }
    edits.push_back(edit);
    return true;
  }

  std::string m_name;
  std::vector<std::string> m_attributes;
  bool m_is_cleared = false;
};

}  // namespace

std::unique_ptr<COMMAND> make_attr_command() {
  return std::make_unique<ATTR_COMMAND>();
}

}  // namespace sbd_tool
