// sbd set: gives parameters values.
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/commands/edit_command.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "VALUE is written as in a descriptor, and gets into the file so: 32, 50MHz, 0x40K, -1.5, "
    "true,\n"
    "word, '\"two words\"', '{1, 2}'. A parameter that does not exist is added to its block. "
    "Either\n"
    "all parameters are set, or none.\n"
    "\n"
    "Examples:\n"
    "  sbd set board.sbd board.clocks.main 50MHz\n"
    "  sbd set board.sbd board.title '\"Board two\"' board.sizes '{4K, 0x40K}'\n"
    "  sbd set --after main board.sbd board.clocks.spare 25MHz\n"
    "  sbd set --dry-run board.sbd board.clocks.main 50MHz | patch -p1";

std::string own_name(const std::string& name) {
  return name.substr(name.rfind('.') + 1);
}

class SET_COMMAND : public EDIT_COMMAND {
 public:
  SET_COMMAND() : EDIT_COMMAND("set", "Give parameters values", k_footer) {}

 private:
  void declare_edit(const COMMAND_SYNTAX& command) override {
    command
        .add_positionals("NAME", "VALUE", m_pairs,
                         "Full name of a parameter, and its value, any number of times")
        .required();
    m_place.declare(command);
  }

  bool make_edits(SESSION& session, std::vector<EDIT>& edits) override {
    if (m_pairs.size() % 2 != 0) {
      session.complain("a NAME without VALUE (see sbd set --help)", EXIT_UNUSABLE);
      return false;
    }
    for (std::size_t i = 0; i < m_pairs.size(); i += 2) {
      EDIT edit;
      edit.kind = EDIT::KIND::SET;
      edit.name = m_pairs[i];
      edit.value = m_pairs[i + 1];
      m_place.put_into(edit);
      // New parameters keep the order in which they are given.
      const bool is_behind = edit.place == SBD_PLACE::BEHIND;
      if (is_behind && !edits.empty()) edit.sibling = own_name(edits.back().name);
      edits.push_back(edit);
    }
    return true;
  }

  std::vector<std::string> m_pairs;
  PLACE_OPTIONS m_place;
};

}  // namespace

std::unique_ptr<COMMAND> make_set_command() {
  return std::make_unique<SET_COMMAND>();
}

}  // namespace sbd_tool
