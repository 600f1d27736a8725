// sbd check: says what is wrong with files.
#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "tools/advice.h"
#include "tools/check_printer.h"
#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/device_view.h"
#include "tools/file_check.h"
#include "tools/file_search.h"
#include "tools/input.h"
#include "tools/lookup.h"
#include "tools/message_help.h"
#include "tools/near_names.h"
#include "tools/ordered_work.h"
#include "tools/parameter_help.h"
#include "tools/progress.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr char k_examples[] =
    "Checks the format and then, by the rules of the chip, each device block, or the ones that\n"
    "--device names. Prints every finding with its place and its cause, and ends with exit code 1\n"
    "when there is an error. Folders are searched for *.sbd.\n"
    "Advice comes as warnings; a file waives it with a comment such as\n"
    "  # sbd: allow TOOL_NO_EFFECT - values of the bench\n"
    "\n"
    "Examples:\n"
    "  sbd check board.sbd\n"
    "  sbd check boards/ --jobs 8\n"
    "  sbd check --device io_board rack.sbd\n"
    "  sbd check --chip qmxa4 board.sbd\n"
    "  sbd check --all-chips boards/\n"
    "  sbd check --format-only fragments/*.sbd\n"
    "  sbd check --format sarif boards/ > findings.sarif\n"
    "  sbd check --format github boards/\n"
    "  sbd check --json board.sbd | jq '.files[].findings[].key'\n"
    "  sbd check --info --werror --disable TOOL_NO_EFFECT board.sbd\n"
    "  sbd check -v boards/*.sbd\n"
    "  sbd check -q board.sbd && echo fine\n"
    "  generate_board | sbd check -";

std::string count_of(std::size_t count, std::string_view thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::string summarize(const CHECK_TOTALS& totals) {
  const std::string files = count_of(totals.files, "file");
  std::string text = totals.errors != 0 ? count_of(totals.errors, "error") : "no errors";
  if (totals.warnings != 0) text += " and " + count_of(totals.warnings, "warning");
  if (totals.infos != 0) text += " and " + count_of(totals.infos, "info");
  if (totals.files_with_findings == 0) {
    text += " in " + files;
  } else if (totals.files != 1) {
    text += fmt::format(" in {} of {}", totals.files_with_findings, files);
  }
  if (totals.hidden == 0) return text;
  return text + fmt::format("; {} not shown (--info)", count_of(totals.hidden, "info"));
}

// ---- Forms -------------------------------------------------------------------------------------

using MAKE_PRINTER = std::unique_ptr<CHECK_PRINTER> (*)(OUTPUT& output, COLOR_CHOICE colors);

struct FORM {
  const char* name;
  MAKE_PRINTER make_printer;
  MAKE_PRINTER make_matrix_printer;  // Null: there is none.
};

constexpr FORM k_forms[] = {
    {"text",
     [](OUTPUT& output, COLOR_CHOICE colors) {
       return make_text_printer(output, make_painter(colors, output));
     },
     [](OUTPUT& output, COLOR_CHOICE colors) {
       return make_matrix_text_printer(output, make_painter(colors, output));
     }},
    {"json", [](OUTPUT& output, COLOR_CHOICE) { return make_json_printer(output); },
     [](OUTPUT& output, COLOR_CHOICE) { return make_matrix_json_printer(output); }},
    {"sarif", [](OUTPUT& output, COLOR_CHOICE) { return make_sarif_printer(output); }, nullptr},
    {"github", [](OUTPUT& output, COLOR_CHOICE) { return make_github_printer(output); }, nullptr},
};
constexpr const FORM& k_text_form = k_forms[0];
constexpr const FORM& k_json_form = k_forms[1];

std::vector<std::string> list_forms() {
  std::vector<std::string> names;
  for (const FORM& form : k_forms) names.emplace_back(form.name);
  return names;
}

const FORM& find_form(std::string_view name) {
  return *std::find_if(std::begin(k_forms), std::end(k_forms),
                       [name](const FORM& form) { return form.name == name; });
}

// ---- The command -------------------------------------------------------------------------------

class CHECK_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command = tool.add_command("check", "Say what is wrong with files");
    command
        .add_positional("FILE-OR-FOLDER", m_names,
                        "Descriptor files, and folders to search; \"-\" is standard input")
        .required();
    const OPTION_SYNTAX form = command.add_choice(
        "--format", "FORM", list_forms(),
        [this](const std::string& name) { m_form = &find_form(name); },
        "text (the default), json, sarif or github");
    command.add_flag("--json", m_is_json, "The same as --format json").excludes(form);
    declare_checks(command);
    declare_advice(command);
    declare_output(command);
    command.set_footer(k_examples);
    return command;
  }

  void run(SESSION& session) override {
    if (std::count(m_names.begin(), m_names.end(), k_standard_input) > 1) {
      session.complain("standard input can be read only once", EXIT_UNUSABLE);
      return;
    }
    if (!resolve_disabled(session)) return;
    if (m_is_json) m_form = &k_json_form;
    if (m_options.is_for_all_chips && m_form->make_matrix_printer == nullptr) {
      session.complain(fmt::format("--all-chips has no form {}", quote_name(m_form->name)),
                       EXIT_UNUSABLE);
      return;
    }
    const std::vector<std::string> files = find_files(session);
    if (!files.empty()) check(session, files);
  }

 private:
  void declare_checks(const COMMAND_SYNTAX& command) {
    const OPTION_SYNTAX format_only =
        command.add_flag("--format-only", m_options.is_format_only,
                         "Do not look at what the format means to a device");
    command
        .add_option("--device", "NAME", m_options.devices,
                    "Check this device block only; may be repeated")
        .excludes(format_only);
    const OPTION_SYNTAX chip = command.add_choice(
        "--chip", "CHIP", list_chips(), [this](const std::string& name) { m_options.chip = name; },
        "Check what would be wrong with this chip: qmxa1, qmxa4 or qmxa10");
    command
        .add_flag("--all-chips", m_options.is_for_all_chips,
                  "Print which chips each device fits, and what it breaks on the others")
        .excludes(chip)
        .excludes(format_only);
    chip.excludes(format_only);
    command.add_count("-j,--jobs", "N", "jobs", m_jobs,
                      "Check so many files at a time (default: one for each processor)");
  }

  void declare_advice(const COMMAND_SYNTAX& command) {
    const OPTION_SYNTAX no_advice = command.add_flag("--no-advice", m_has_no_advice,
                                                     "Say what breaks the rules and nothing else");
    command
        .add_option("--disable", "CODE", m_options.disabled,
                    "Leave out this advice, such as TOOL_NO_EFFECT; may be repeated")
        .excludes(no_advice);
    command
        .add_flag("--info", m_options.has_infos,
                  "Print advice that need not be followed, too, such as stated defaults")
        .excludes(no_advice);
    command.add_flag("--werror", m_options.do_warnings_count,
                     "End with exit code 1 when there is a warning");
  }

  // Makes keys of what was given for --disable.
  bool resolve_disabled(SESSION& session) {
    m_options.has_advice = !m_has_no_advice;
    const std::vector<std::string_view>& advice = list_advice_keys();
    for (std::string& key : m_options.disabled) {
      const MESSAGE_HELP* const message = find_message(key);
      const bool is_advice = message != nullptr &&
                             std::find(advice.begin(), advice.end(), message->key) != advice.end();
      if (is_advice) {
        key = message->key;
        continue;
      }
      const std::vector<std::string> known(advice.begin(), advice.end());
      const std::string suggestion = ask_for(find_near_texts(known, key));
      session.complain(fmt::format("--disable: {} is no code of advice{}{}", quote_name(key),
                                   suggestion.empty() ? "" : "; ", suggestion),
                       EXIT_UNUSABLE);
      return false;
    }
    return true;
  }

  void declare_output(const COMMAND_SYNTAX& command) {
    const OPTION_SYNTAX quiet =
        command.add_flag("-q,--quiet", m_is_quiet, "Print nothing: the exit code says it all");
    command
        .add_flag("-v,--verbose", m_is_verbose,
                  "Say what was checked, and print a summary in any case")
        .excludes(quiet);
    command.add_count(
        "--max-findings", "N", "findings", m_options.finding_limit,
        fmt::format("Print so many findings of each file (0: all of them; default: {})",
                    k_default_finding_limit));
    add_color(command, m_colors);
  }

  std::vector<std::string> find_files(SESSION& session) const {
    FILE_SEARCH search = search_files(m_names);
    for (const std::string& folder : search.empty_folders) {
      session.complain(fmt::format("no *{} in {}", k_descriptor_extension, quote_name(folder)),
                       EXIT_UNUSABLE);
    }
    for (const auto& [folder, reason] : search.unreadable_folders) {
      session.complain(fmt::format("can't search {}: {}", quote_name(folder), reason),
                       EXIT_UNUSABLE);
    }
    return std::move(search.files);
  }

  void check(SESSION& session, const std::vector<std::string>& files) const {
    const MAKE_PRINTER make_printer =
        m_options.is_for_all_chips ? m_form->make_matrix_printer : m_form->make_printer;
    const std::unique_ptr<CHECK_PRINTER> printer =
        m_is_quiet ? nullptr : make_printer(session.out(), m_colors);
    PROGRESS progress(session.err(), files.size(), "files");
    CHECK_TOTALS totals;
    std::vector<CHECKED_FILE> results(files.size());
    if (printer) printer->begin();
    do_in_order(
        files.size(), m_jobs != 0 ? m_jobs : count_processors(),
        [&](std::size_t i) { results[i] = check_file(files[i], m_options); },
        [&](std::size_t i) {
          const CHECKED_FILE file = std::move(results[i]);
          totals.add(file.findings);
          session.note(file.outcome);
          if (printer) print(session, *printer, progress, file);
          progress.show(i + 1);
        });
    progress.clear();
    if (printer) printer->end(totals);
    print_summary(session, totals);
  }

  void print(SESSION& session, CHECK_PRINTER& printer, PROGRESS& progress,
             const CHECKED_FILE& file) const {
    const bool is_silent =
        m_form == &k_text_form && file.findings.empty() && file.matrices.empty() && !m_is_verbose;
    if (!is_silent) progress.clear();
    printer.print(file);
    if (file.has_good_format && !m_options.is_for_all_chips) tell_devices(session, file);
  }

  // What was looked at; without it nobody could tell a fine device from one that was passed over.
  void tell_devices(SESSION& session, const CHECKED_FILE& file) const {
    const bool is_unclear = m_form == &k_text_form && m_options.devices.empty() &&
                            file.devices.size() > 1 && !file.findings.empty();
    if (!m_is_verbose && !is_unclear) return;
    session.out().flush();
    const auto tell = [&session, &file](const std::string& text) {
      session.err().write_line(make_visible(file.name + ": " + text));
    };
    if (!m_is_verbose) {
      tell(name_devices(file.devices));
      return;
    }
    for (const DEVICE_RESULT& device : file.devices) tell(describe(device));
    if (!file.devices.empty()) return;
    tell(m_options.is_format_only ? "only the format checked"
                                  : "only the format checked, there is no device block");
  }

  static std::string describe(const DEVICE_RESULT& device) {
    const std::string own = device.own_chip.empty() ? "" : device.own_chip + " as ";
    const std::string chip = device.chip.empty() ? "" : fmt::format(" ({}{})", own, device.chip);
    const std::string parameters = device.parameter_count == 0
                                       ? "no parameters"
                                       : count_of(device.parameter_count, "parameter");
    const std::string findings =
        device.finding_count == 0 ? "fine" : count_of(device.finding_count, "finding");
    return fmt::format("device {}{}: {} checked, {}", device.name, chip, parameters, findings);
  }

  static std::string name_devices(const std::vector<DEVICE_RESULT>& devices) {
    std::vector<std::string> fine;
    std::vector<std::string> faulty;
    for (const DEVICE_RESULT& device : devices) {
      (device.finding_count == 0 ? fine : faulty).push_back(device.name);
    }
    return fmt::format("devices with findings: {}; fine: {}", join_device_names(faulty),
                       fine.empty() ? "none" : join_device_names(fine));
  }

  void print_summary(SESSION& session, const CHECK_TOTALS& totals) const {
    const bool is_worth_saying =
        m_form == &k_text_form && totals.files > 1 && totals.files_with_findings > 0;
    if (m_is_quiet || !(is_worth_saying || m_is_verbose)) return;
    session.out().flush();
    session.err().write_line(summarize(totals));
  }

  std::vector<std::string> m_names;
  CHECK_OPTIONS m_options;
  const FORM* m_form = &k_text_form;
  bool m_is_json = false;
  bool m_has_no_advice = false;
  std::size_t m_jobs = 0;
  bool m_is_quiet = false;
  bool m_is_verbose = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_check_command() {
  return std::make_unique<CHECK_COMMAND>();
}

}  // namespace sbd_tool
