// sbd show: prints the tree of a file.
#include <string>

#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/descriptor.h"
#include "tools/json_tree.h"
#include "tools/lookup.h"
#include "tools/tree_printer.h"

namespace sbd_tool {

namespace {

constexpr char k_examples[] =
    "Prints values as they are written, and behind each arrow the full name of what a reference\n"
    "stands for, with the name as it is written in parentheses where that is another one.\n"
    "\n"
    "Examples:\n"
    "  sbd show board.sbd\n"
    "  sbd show board.sbd board.stripe.clocks\n"
    "  sbd show --json board.sbd | jq '.nodes[].name'";

class SHOW_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command = tool.add_command("show", "Print the tree of a file");
    add_file(command, m_file);
    m_name_option = command.add_positional("NAME", m_name, "Print this block or parameter only");
    command.add_flag("--json", m_is_json, "Print JSON, with the places in the file");
    add_color(command, m_colors);
    command.set_footer(k_examples);
    return command;
  }

  void run(SESSION& session) override {
    const auto descriptor = read_faultless(session, m_file, m_colors);
    if (descriptor == nullptr) return;
    if (!m_name_option.is_given()) {
      const NODE* const root = descriptor->document.get_parser_para().root;
      print(session, *descriptor, TREE_WALK(root, TREE_WALK::EXTENT::WITH_SIBLINGS));
      return;
    }
    const NODE* const node = find_wanted(session, *descriptor, m_name, WANTED::ANY);
    if (node == nullptr) return;
    print(session, *descriptor, TREE_WALK(node, TREE_WALK::EXTENT::ALONE));
  }

 private:
  void print(SESSION& session, const DESCRIPTOR& descriptor, const TREE_WALK& walk) {
    if (m_is_json) {
      print_json(session, descriptor, walk);
    } else {
      print_tree(session.out(), make_painter(m_colors, session.out()), descriptor.document, walk);
    }
  }

  void print_json(SESSION& session, const DESCRIPTOR& descriptor, const TREE_WALK& walk) {
    JSON_WRITER json(session.out());
    json.begin_object(JSON_WRITER::LAYOUT::LINES);
    json.key("version");
    json.count(k_json_version);
    json.key("file");
    json.text(descriptor.name);
    if (m_name_option.is_given()) {
      json.key("name");
      json.text(full_name(descriptor.document, *walk.node()));
    }
    json.key("nodes");
    write_nodes(json, descriptor.document, walk);
    json.end();
    json.finish();
  }

  std::string m_file;
  std::string m_name;
  OPTION_SYNTAX m_name_option;
  bool m_is_json = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_show_command() {
  return std::make_unique<SHOW_COMMAND>();
}

}  // namespace sbd_tool
