// sbd block: adds and removes blocks.
#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/commands/edit_command.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "Examples:\n"
    "  sbd block add board.sbd parameters board.clocks --set main=50MHz\n"
    "  sbd block remove board.sbd board.clocks\n"
    "  sbd block add --help";

constexpr char k_add_footer[] =
    "TYPE is device (at the top level), bus, module, slave, master, region or parameters. The "
    "format\n"
    "has no form for a block without anything in it: --set gives it its first parameters.\n"
    "\n"
    "Examples:\n"
    "  sbd block add board.sbd parameters board.clocks --set main=50MHz --set spare=25MHz\n"
    "  sbd block add board.sbd module board.uart --set 'name=\"UART 1\"' --after clocks";

constexpr char k_remove_footer[] =
    "Removes the block and all that is in it. A block that is referred to, or holds what is "
    "referred\n"
    "to, from outside stays, unless the references go, too.\n"
    "\n"
    "Examples:\n"
    "  sbd block remove board.sbd board.clocks\n"
    "  sbd block remove --with-references board.sbd board.clocks";

class BLOCK_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command = tool.add_command("block", "Add or remove blocks");
    command.require_command();
    command.set_footer(k_footer);
    declare_add(command);
    declare_remove(command);
    return command;
  }

  void run(SESSION& session) override {
    EDIT edit;
    if (m_add.is_given() ? make_addition(session, edit) : make_removal(edit)) {
      edit_file(session, m_options, {edit});
    }
  }

 private:
  void declare_add(const COMMAND_SYNTAX& command) {
    m_add = command.add_command("add", "Add a block");
    add_edited_file(m_add, m_options);
    m_add.add_positional("TYPE", m_type, "Type of the block").required();
    m_add.add_positional("NAME", m_name, "Full name of the new block").required();
    m_add.add_option("--set", "NAME=VALUE", m_members,
                     "Give the block a parameter; may be repeated");
    m_place.declare(m_add);
    add_edit_options(m_add, m_options);
    m_add.set_footer(k_add_footer);
  }

  void declare_remove(const COMMAND_SYNTAX& command) {
    const COMMAND_SYNTAX remove = command.add_command("remove", "Remove a block");
    add_edited_file(remove, m_options);
    remove.add_positional("NAME", m_name, "Full name of the block").required();
    remove.add_flag("--with-references", m_with_references,
                    "Remove the references into the block, too");
    add_edit_options(remove, m_options);
    remove.set_footer(k_remove_footer);
  }

  bool make_addition(SESSION& session, EDIT& edit) const {
    edit.kind = EDIT::KIND::ADD_BLOCK;
    edit.value = m_type;
    edit.name = m_name;
    m_place.put_into(edit);
    for (const std::string& member : m_members) {
      edit.members.push_back(split_pair(member));
      if (edit.members.back().value) continue;
      session.complain(fmt::format("'{}' is not of the form NAME=VALUE (see sbd block add --help)",
                                   make_visible(member)),
                       EXIT_UNUSABLE);
      return false;
    }
    return true;
  }

  bool make_removal(EDIT& edit) const {
    edit.kind = EDIT::KIND::REMOVE_BLOCK;
    edit.name = m_name;
    edit.with_references = m_with_references;
    return true;
  }

  COMMAND_SYNTAX m_add;
  EDIT_OPTIONS m_options;
  std::string m_type;
  std::string m_name;
  std::vector<std::string> m_members;
  PLACE_OPTIONS m_place;
  bool m_with_references = false;
};

}  // namespace

std::unique_ptr<COMMAND> make_block_command() {
  return std::make_unique<BLOCK_COMMAND>();
}

}  // namespace sbd_tool
