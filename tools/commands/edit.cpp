// sbd edit: performs the edits of a script.
#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/commands/edit_command.h"
#include "tools/edit_script.h"
#include "tools/input.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "Either all edits of the script are performed, or none. Each line is one, with the arguments "
    "of\n"
    "the command of its name, FILE left out:\n"
    "\n"
    "  set NAME VALUE [--after SIBLING | --before SIBLING]\n"
    "  unset NAME [--with-references]\n"
    "  ref NAME TARGET... [--after SIBLING | --before SIBLING]\n"
    "  ref --remove TARGET\n"
    "  attr NAME KEY[=VALUE]...\n"
    "  attr NAME --clear\n"
    "  block add TYPE NAME --set PARAMETER=VALUE... [--after SIBLING | --before SIBLING]\n"
    "  block remove NAME [--with-references]\n"
    "  rename NAME NEW_NAME [--no-references]\n"
    "\n"
    "Values are written as in a descriptor, without quoting for a shell. \"#\" begins a comment.\n"
    "\n"
    "Examples:\n"
    "  sbd edit board.sbd --script changes.txt\n"
    "  echo 'set board.title \"Board two\"' | sbd edit board.sbd --script -";

class EDIT_SCRIPT_COMMAND : public EDIT_COMMAND {
 public:
  EDIT_SCRIPT_COMMAND() : EDIT_COMMAND("edit", "Perform the edits of a script", k_footer) {}

 private:
  void declare_edit(const COMMAND_SYNTAX& command) override {
    command
        .add_option("--script", "EDITS", m_script, "File with the edits; \"-\" is standard input")
        .required();
  }

  bool make_edits(SESSION& session, std::vector<EDIT>& edits) override {
    if (m_script == k_standard_input && options().file == k_standard_input) {
      session.complain("standard input can be read only once", EXIT_UNUSABLE);
      return false;
    }
    const INPUT script = read_input(m_script);
    if (!script.failure.empty()) {
      session.complain(fmt::format("can't read {}: {}", make_visible(script.name), script.failure),
                       EXIT_UNUSABLE);
      return false;
    }
    std::string fault;
    if (read_edit_script(script.bytes, script.name, edits, fault)) return true;
    session.complain(fault, EXIT_UNUSABLE);
    return false;
  }

  std::string m_script;
};

}  // namespace

std::unique_ptr<COMMAND> make_edit_command() {
  return std::make_unique<EDIT_SCRIPT_COMMAND>();
}

}  // namespace sbd_tool
