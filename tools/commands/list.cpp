// sbd list: prints the full names of blocks and parameters.
#include <string>
#include <vector>

#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/descriptor.h"
#include "tools/json_tree.h"
#include "tools/lookup.h"

namespace sbd_tool {

namespace {

using BLOCK = SBD_FILE_PARSER::SBD_BLOCK;
using LAYOUT = JSON_WRITER::LAYOUT;

constexpr char k_examples[] =
    "Prints one full name on each line, a block before what is in it.\n"
    "\n"
    "Examples:\n"
    "  sbd list board.sbd\n"
    "  sbd list --type module --scope board.stripe board.sbd\n"
    "  sbd list --parameters board.sbd | grep '\\.size$'";

// The full name of the node that a walk is at.
//
// Names are put together on the way, not asked for one by one: in a deep tree they are so long
// that no more than one at a time should be in memory, and it should not be looked up.
class CURRENT_NAME {
 public:
  explicit CURRENT_NAME(std::string scope) : m_text(std::move(scope)) {}

  void enter(std::string_view name) {
    m_lengths.push_back(m_text.size());
    if (!m_text.empty()) m_text += '.';
    m_text += name;
  }
  void leave() {
    m_text.resize(m_lengths.back());
    m_lengths.pop_back();
  }
  const std::string& text() const { return m_text; }

 private:
  std::string m_text;
  std::vector<std::size_t> m_lengths;
};

// Prints names, one on each line or as JSON.
class NAME_PRINTER {
 public:
  NAME_PRINTER(OUTPUT& output, bool is_json)
      : m_output(output), m_json(output), m_is_json(is_json) {}

  void begin(const std::string& file) {
    if (!m_is_json) return;
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("version");
    m_json.count(k_json_version);
    m_json.key("file");
    m_json.text(file);
    m_json.key("names");
    m_json.begin_array(LAYOUT::LINES);
  }

  void print(const NODE& node, const std::string& name) {
    if (!m_is_json) {
      m_output.write_line(name);
      return;
    }
    m_json.begin_object(LAYOUT::ONE_LINE);
    m_json.key("name");
    m_json.text(name);
    m_json.key("kind");
    m_json.text(kind_of(node));
    if (node.type == NODE::NT_BLOCK) {
      m_json.key("type");
      m_json.text(node.block->type);
    }
    m_json.end();
  }

  void end() {
    if (!m_is_json) return;
    m_json.end();
    m_json.end();
    m_json.finish();
  }

 private:
  OUTPUT& m_output;
  JSON_WRITER m_json;
  bool m_is_json;
};

class LIST_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command =
        tool.add_command("list", "Print the names of blocks and parameters");
    add_file(command, m_file);
    m_type_option = command.add_option("--type", "TYPE", m_type, "Only blocks of this type");
    m_scope_option = command.add_option("--scope", "NAME", m_scope, "Only what is in this block");
    command.add_flag("--parameters", m_has_parameters, "Print the parameters of the blocks, too");
    command.add_flag("--json", m_is_json, "Print JSON");
    add_color(command, m_colors);
    command.set_footer(k_examples);
    return command;
  }

  void run(SESSION& session) override {
    if (!choose_type(session)) return;
    const auto descriptor = read_faultless(session, m_file, m_colors);
    if (descriptor == nullptr) return;
    const SBD_FILE_PARSER& document = descriptor->document;
    const NODE* scope = nullptr;
    if (m_scope_option.is_given()) {
      scope = find_wanted(session, *descriptor, m_scope, WANTED::BLOCK);
      if (scope == nullptr) return;
    }
    NAME_PRINTER printer(session.out(), m_is_json);
    printer.begin(descriptor->name);
    print_names(printer, document, scope);
    printer.end();
  }

 private:
  bool choose_type(SESSION& session) {
    if (!m_type_option.is_given()) return true;
    m_block_type = SBD_FILE_PARSER::lookup_block_type(m_type.c_str());
    if (m_block_type != BLOCK::BT_UNKNOWN) return true;
    session.complain("no block type '" + m_type +
                         "': there are device, bus, module, slave, master, region and parameters",
                     EXIT_UNUSABLE);
    return false;
  }

  void print_names(NAME_PRINTER& printer, const SBD_FILE_PARSER& document, const NODE* scope) {
    const NODE* const first =
        scope != nullptr ? scope->block->members : document.get_parser_para().root;
    CURRENT_NAME name(scope != nullptr ? full_name(document, *scope) : std::string());
    TREE_WALK walk(first, TREE_WALK::EXTENT::WITH_SIBLINGS);
    for (;;) {
      const TREE_WALK::STEP step = walk.next();
      if (step == TREE_WALK::STEP::END) return;
      if (step == TREE_WALK::STEP::LEAVE) {
        name.leave();
        continue;
      }
      const NODE& node = *walk.node();
      if (node.type == NODE::NT_COMMENT) continue;
      name.enter(declared_name(node));
      if (is_listed(node, walk.block() != nullptr ? walk.block() : scope)) {
        printer.print(node, name.text());
      }
      if (node.type != NODE::NT_BLOCK) name.leave();
    }
  }

  bool is_listed(const NODE& node, const NODE* enclosing) const {
    if (node.type == NODE::NT_BLOCK) return has_listed_type(node);
    return m_has_parameters && enclosing != nullptr && has_listed_type(*enclosing);
  }

  bool has_listed_type(const NODE& block) const {
    return !m_type_option.is_given() || block.block->block_type == m_block_type;
  }

  std::string m_file;
  std::string m_type;
  std::string m_scope;
  OPTION_SYNTAX m_type_option;
  OPTION_SYNTAX m_scope_option;
  BLOCK::BLOCK_TYPE m_block_type = BLOCK::BT_UNKNOWN;
  bool m_has_parameters = false;
  bool m_is_json = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_list_command() {
  return std::make_unique<LIST_COMMAND>();
}

}  // namespace sbd_tool
