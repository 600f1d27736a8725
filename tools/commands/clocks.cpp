// sbd clocks: prints the clock frequencies and port widths of a device, and finds settings for
// other frequencies.
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tools/clock_picture.h"
#include "tools/clock_printer.h"
#include "tools/clock_search.h"
#include "tools/clock_view.h"
#include "tools/commands/command.h"
#include "tools/commands/device_command.h"
#include "tools/commands/options.h"
#include "tools/edit_file.h"
#include "tools/input.h"
#include "tools/names.h"
#include "tools/parameter_printer.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;

constexpr std::size_t k_indent = 2;
constexpr std::size_t k_default_limit = 10;
constexpr std::size_t k_greatest_limit = 1000;

constexpr char k_footer[] =
    "Prints the frequencies of the two AHB buses and the SDRAM and the data width of each DPRAM "
    "port,\n"
    "with the formula, the tree of clocks, and the settings that went in. One that can't be told,\n"
    "as a setting has no value or is a divisor of 0, ends in exit code 1.\n"
    "\n"
    "With --want, it tries all settings of the PLLs and dividers that the chip allows with the\n"
    "input clock of the file, and lists those that come nearest; values with a * would change.\n"
    "--apply puts one of them into the file, the rest of which stays as it is.\n"
    "\n"
    "Examples:\n"
    "  sbd clocks board.sbd\n"
    "  sbd clocks --svg --device io_board rack.sbd > clocks.svg\n"
    "  sbd clocks --want ahb1=100MHz --want sdram=133MHz board.sbd\n"
    "  sbd clocks --want ahb1=100MHz --tolerance 50 --apply 1 --dry-run board.sbd\n"
    "  sbd clocks --json board.sbd | jq '.clocks[] | {name, frequency}'";

// The edits that make a choice come true, as far as it is not so already.
std::vector<EDIT> make_edits(const SBD_VELDRAN& device, const CLOCK_CHOICE& choice) {
  std::vector<EDIT> edits;
  for (const CLOCK_CHOICE::SETTING& setting : choice.settings) {
    SBD_PARAMETER_STATE state;
    if (!setting.is_changed) continue;
    if (!sbd_get_parameter_state(device, setting.name.c_str(), state)) continue;
    EDIT edit;
    edit.kind = EDIT::KIND::SET;
    edit.value = setting.value;
    if (state.statement != nullptr) {
      edit.name = full_name(device, *state.statement);
    } else {
      // The block is there: it states the input clock.
      edit.name = full_name(device, *state.block) + setting.name.substr(setting.name.rfind('.'));
    }
    edits.push_back(std::move(edit));
  }
  return edits;
}

class CLOCKS_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command =
        tool.add_command("clocks", "Print the clocks and port widths of a device, or choose them");
    add_file(command, m_file);
    add_device(command, m_device);
    const OPTION_SYNTAX json = command.add_flag("--json", m_is_json, "Print JSON");
    const OPTION_SYNTAX svg =
        command.add_flag("--svg", m_is_svg, "Print the tree of clocks as a drawing, in SVG")
            .excludes(json);
    m_want_option = command
                        .add_option("--want", "CLOCK=FREQUENCY", m_want_texts,
                                    "Find settings that make ahb1, ahb2 or sdram so fast, such as "
                                    "ahb1=100MHz. May be repeated")
                        .excludes(svg);
    m_tolerance_option = command.add_option("--tolerance", "PPM", m_tolerance_text,
                                            "List settings only that are off by no more than that");
    m_limit_option =
        command.add_count("--limit", "N", "settings", m_limit, "List no more than N settings (10)");
    m_apply_option = command.add_count("--apply", "N", "settings", m_choice,
                                       "Put the N-th of the listed settings into the file");
    m_dry_run_option = command.add_flag("-n,--dry-run", m_edit_options.is_dry_run,
                                        "With --apply: print what would change, as a unified diff");
    m_output_option = command.add_option("-o,--output", "OUT", m_edit_options.output,
                                         "With --apply: write the result there instead");
    add_color(command, m_colors);
    command.set_footer(k_footer);
    return command;
  }

  void run(SESSION& session) override {
    if (!read_arguments(session)) return;
    const auto descriptor = read_device(session, m_file, m_device, m_colors);
    if (descriptor == nullptr) return;
    if (m_wants.empty()) {
      show(session, *descriptor);
    } else {
      choose(session, *descriptor);
    }
  }

 private:
  // ---- Arguments ----

  bool read_arguments(SESSION& session) {
    std::string fault = find_misplaced_option();
    if (fault.empty()) fault = read_wants();
    if (fault.empty()) fault = read_tolerance();
    if (fault.empty() && m_limit_option.is_given() &&
        (m_limit == 0 || m_limit > k_greatest_limit)) {
      fault = fmt::format("--limit takes 1 to {}", k_greatest_limit);
    }
    if (fault.empty() && m_apply_option.is_given() && m_file == k_standard_input) {
      fault = "--apply needs a file, not standard input";
    }
    if (fault.empty()) return true;
    session.complain(fault + " (see sbd clocks --help)", EXIT_UNUSABLE);
    return false;
  }

  std::string find_misplaced_option() const {
    struct NEED {
      const OPTION_SYNTAX& option;
      const OPTION_SYNTAX& needed;
      const char* fault;
    };
    const NEED needs[] = {
        {m_tolerance_option, m_want_option, "--tolerance is for --want"},
        {m_limit_option, m_want_option, "--limit is for --want"},
        {m_apply_option, m_want_option, "--apply is for --want"},
        {m_dry_run_option, m_apply_option, "--dry-run is for --apply"},
        {m_output_option, m_apply_option, "--output is for --apply"},
    };
    for (const NEED& need : needs) {
      if (need.option.is_given() && !need.needed.is_given()) return need.fault;
    }
    return {};
  }

  std::string read_wants() {
    for (const std::string& text : m_want_texts) {
      CLOCK_WANT want;
      std::string fault;
      if (!parse_want(text, want, fault)) return fault;
      const auto is_same = [&want](const auto& other) { return other.clock == want.clock; };
      if (std::any_of(m_wants.begin(), m_wants.end(), is_same)) {
        return fmt::format("{} is wanted twice", want.clock);
      }
      m_wants.push_back(std::move(want));
    }
    return {};
  }

  std::string read_tolerance() {
    if (!m_tolerance_option.is_given()) return {};
    const char* const end = m_tolerance_text.data() + m_tolerance_text.size();
    const auto result = std::from_chars(m_tolerance_text.data(), end, m_tolerance);
    const bool is_number = result.ec == std::errc() && result.ptr == end;
    if (is_number && std::isfinite(m_tolerance) && m_tolerance >= 0) return {};
    return fmt::format("'{}' is not a number of ppm", m_tolerance_text);
  }

  // ---- What the clocks are ----

  void show(SESSION& session, const DESCRIPTOR& descriptor) {
    m_clocks = derive_clocks(descriptor.document);
    m_widths = derive_widths(descriptor.document);
    const std::vector<CLOCK_TREE_NODE> tree = make_clock_tree(descriptor.document);
    note_problems(session);
    if (m_is_json) {
      print_json(session.out(), descriptor, tree);
    } else if (m_is_svg) {
      const std::string title = "Clocks of " + device_title(descriptor);
      session.out().write(draw_clock_tree(tree, title).file());
    } else {
      print(session.out(), tree);
    }
  }

  void note_problems(SESSION& session) const {
    for (const auto* const views : {&m_clocks, &m_widths}) {
      for (const DERIVED_VIEW& view : *views) {
        if (!view.problem.empty()) session.note(EXIT_FAULTS);
      }
    }
  }

  void print(OUTPUT& output, const std::vector<CLOCK_TREE_NODE>& tree) const {
    const PAINTER painter = make_painter(m_colors, output);
    print_derived(output, painter, m_clocks, m_widths);
    output.write_line("\nTree:");
    print_clock_tree(output, painter, tree);
    output.write_line("\nSettings:");
    print_parameters(output, painter, k_indent, collect_settings(m_clocks, m_widths));
  }

  void print_json(OUTPUT& output, const DESCRIPTOR& descriptor,
                  const std::vector<CLOCK_TREE_NODE>& tree) const {
    JSON_WRITER json(output);
    json.begin_object(LAYOUT::LINES);
    write_device_keys(json, descriptor);
    json.key("clocks");
    write_derived(json, m_clocks, "frequency");
    json.key("widths");
    write_derived(json, m_widths, "bits");
    json.key("tree");
    write_clock_tree(json, tree);
    json.key("parameters");
    write_parameters(json, collect_settings(m_clocks, m_widths));
    json.end();
    json.finish();
  }

  // ---- What they could be ----

  void choose(SESSION& session, const DESCRIPTOR& descriptor) {
    std::vector<CLOCK_CHOICE> choices;
    std::string fault;
    if (!search_clocks(descriptor.document, m_wants, m_limit, choices, fault)) {
      session.complain(fault, EXIT_FAULTS);
      return;
    }
    const double nearest = choices.front().worst_ppm;
    const auto is_off = [this](const CLOCK_CHOICE& choice) {
      return choice.worst_ppm > m_tolerance;
    };
    choices.erase(std::remove_if(choices.begin(), choices.end(), is_off), choices.end());
    if (m_apply_option.is_given()) {
      apply(session, descriptor, choices);
    } else if (m_is_json) {
      print_choices_as_json(session.out(), descriptor, choices);
    } else if (!choices.empty()) {
      print_choices(session.out(), make_painter(m_colors, session.out()), choices);
    }
    if (choices.empty()) complain_of_tolerance(session, nearest);
  }

  void complain_of_tolerance(SESSION& session, double nearest) const {
    session.complain(fmt::format("no legal setting is within {} ppm; the nearest one is off by "
                                 "{:.6g} ppm",
                                 m_tolerance_text, nearest),
                     EXIT_FAULTS);
  }

  void apply(SESSION& session, const DESCRIPTOR& descriptor,
             const std::vector<CLOCK_CHOICE>& choices) {
    if (choices.empty()) return;
    if (m_choice == 0 || m_choice > choices.size()) {
      session.complain(
          fmt::format("there is no setting {}: the list has 1 to {}", m_choice, choices.size()),
          EXIT_FAULTS);
      return;
    }
    m_edit_options.file = m_file;
    m_edit_options.is_json = m_is_json;
    m_edit_options.colors = m_colors;
    edit_file(session, m_edit_options, make_edits(descriptor.document, choices[m_choice - 1]));
  }

  static void print_choices_as_json(OUTPUT& output, const DESCRIPTOR& descriptor,
                                    const std::vector<CLOCK_CHOICE>& choices) {
    JSON_WRITER json(output);
    json.begin_object(LAYOUT::LINES);
    write_device_keys(json, descriptor);
    json.key("choices");
    write_choices(json, choices);
    json.end();
    json.finish();
  }

  std::string m_file;
  std::string m_device;
  bool m_is_json = false;
  bool m_is_svg = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;

  OPTION_SYNTAX m_want_option;
  OPTION_SYNTAX m_tolerance_option;
  OPTION_SYNTAX m_limit_option;
  OPTION_SYNTAX m_apply_option;
  OPTION_SYNTAX m_dry_run_option;
  OPTION_SYNTAX m_output_option;
  std::vector<std::string> m_want_texts;
  std::vector<CLOCK_WANT> m_wants;
  std::string m_tolerance_text;
  double m_tolerance = std::numeric_limits<double>::infinity();
  std::size_t m_limit = k_default_limit;
  std::size_t m_choice = 0;
  EDIT_OPTIONS m_edit_options;

  std::vector<DERIVED_VIEW> m_clocks;
  std::vector<DERIVED_VIEW> m_widths;
};

}  // namespace

std::unique_ptr<COMMAND> make_clocks_command() {
  return std::make_unique<CLOCKS_COMMAND>();
}

}  // namespace sbd_tool
