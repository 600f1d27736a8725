// sbd fmt: writes files in the library's own layout.
#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "sbd/sbd_source_document.h"
#include "tools/canonical.h"
#include "tools/commands/command.h"
#include "tools/commands/options.h"
#include "tools/descriptor.h"
#include "tools/finding_printer.h"
#include "tools/input.h"
#include "tools/unified_diff.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr char k_footer[] =
    "Indents by four blanks, puts each brace and each statement on a line of its own, and an "
    "empty\n"
    "line behind each block. Comments stay.\n"
    "\n"
    "Examples:\n"
    "  sbd fmt board.sbd\n"
    "  sbd fmt --check boards/*.sbd\n"
    "  sbd fmt --diff board.sbd | less\n"
    "  sbd fmt - <board.sbd >new.sbd";

class FMT_COMMAND : public COMMAND {
 public:
  COMMAND_SYNTAX declare(const COMMAND_SYNTAX& tool) override {
    const COMMAND_SYNTAX command =
        tool.add_command("fmt", "Write files in the library's own layout");
    command
        .add_positional("FILE", m_files,
                        "Descriptor files; \"-\" is standard input, written to standard output")
        .required();
    command.add_flag("--check", m_is_check,
                     "Write nothing; list the files that would change; exit code 1 if any");
    command.add_flag("--diff", m_is_diff,
                     "Write nothing; print what would change, as a unified diff");
    command.add_flag("-v,--verbose", m_is_verbose, "Say of each file whether it was changed");
    add_color(command, m_colors);
    command.set_footer(k_footer);
    return command;
  }

  void run(SESSION& session) override {
    if (std::count(m_files.begin(), m_files.end(), k_standard_input) > 1) {
      session.complain("standard input can be read only once", EXIT_UNUSABLE);
      return;
    }
    for (const std::string& file : m_files) format(session, file);
  }

 private:
  void format(SESSION& session, const std::string& file) {
    const auto descriptor = read_faultless(session, file, m_colors);
    if (descriptor == nullptr) return;
    std::string text;
    std::string fault;
    if (!make_canonical(descriptor->document, text, fault)) {
      tell_fault(session, *descriptor, fault);
      return;
    }
    const bool is_changed = text != descriptor->source;
    if (m_is_check || m_is_diff) {
      if (is_changed) tell_change(session, *descriptor, file, text);
    } else if (file == k_standard_input) {
      session.out().write(text);
    } else if (is_changed && !save(session, *descriptor, file)) {
      return;
    }
    if (m_is_verbose) tell_what_was_done(session, *descriptor, is_changed);
  }

  void tell_fault(SESSION& session, const DESCRIPTOR& descriptor, const std::string& fault) {
    FINDINGS findings;
    findings.list.emplace_back();
    findings.list.back().text = fault;
    tell(session, descriptor, findings);
    session.note(EXIT_FAULTS);
  }

  void tell_change(SESSION& session, const DESCRIPTOR& descriptor, const std::string& file,
                   const std::string& text) {
    if (m_is_check) session.note(EXIT_FAULTS);
    if (m_is_diff) {
      const std::string name = file == k_standard_input ? "stdin" : file;
      session.out().write(make_unified_diff(name, descriptor.source, text));
    } else {
      session.out().write_line(descriptor.name);
    }
  }

  bool save(SESSION& session, const DESCRIPTOR& descriptor, const std::string& file) {
    FINDINGS findings;
    const FINDING_COLLECTOR collector(descriptor.document, 0, findings);
    SBD_STRING why;
    if (sbd_save_document(descriptor.document, file.c_str(), why)) return true;
    tell(session, descriptor, findings);
    session.note(EXIT_UNUSABLE);
    return false;
  }

  void tell(SESSION& session, const DESCRIPTOR& descriptor, const FINDINGS& findings) {
    session.out().flush();
    print_findings(session.err(), make_painter(m_colors, session.err()), descriptor.name,
                   descriptor.source, findings);
  }

  void tell_what_was_done(SESSION& session, const DESCRIPTOR& descriptor, bool is_changed) {
    session.out().flush();
    std::string_view what = "nothing to change";
    if (is_changed) what = m_is_check || m_is_diff ? "would be changed" : "changed";
    session.err().write_line(fmt::format("{}: {}", make_visible(descriptor.name), what));
  }

  std::vector<std::string> m_files;
  bool m_is_check = false;
  bool m_is_diff = false;
  bool m_is_verbose = false;
  COLOR_CHOICE m_colors = COLOR_CHOICE::AUTO;
};

}  // namespace

std::unique_ptr<COMMAND> make_fmt_command() {
  return std::make_unique<FMT_COMMAND>();
}

}  // namespace sbd_tool
