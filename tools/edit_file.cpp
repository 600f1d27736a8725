#include "tools/edit_file.h"

#include <fmt/format.h>

#include "sbd/msg_sbd.h"
#include "sbd/sbd_source_document.h"
#include "tools/canonical.h"
#include "tools/descriptor.h"
#include "tools/finding_printer.h"
#include "tools/input.h"
#include "tools/json_tree.h"
#include "tools/json_writer.h"
#include "tools/unified_diff.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;

class FILE_EDITOR {
 public:
  FILE_EDITOR(const EDIT_OPTIONS& options, const std::vector<EDIT>& edits)
      : m_options(options), m_edits(edits) {}

  // Everything but telling how it went. Results other than files are kept.
  void run() {
    const FINDING_COLLECTOR collector(m_source.document(), k_default_finding_limit, m_findings);
    if (!read() || !edit() || !make_text()) return;
    m_is_changed = m_text != m_input.bytes;
    if (m_options.is_dry_run) {
      m_diff = make_unified_diff(diff_name(), m_input.bytes, m_text);
    } else if (!is_to_standard_output() && (m_is_changed || !m_options.output.empty())) {
      save();
    }
  }

  void tell(SESSION& session) {
    session.note(m_outcome);
    if (m_options.is_json) {
      tell_as_json(session.out());
      return;
    }
    print_findings(session.err(), make_painter(m_options.colors, session.err()), m_input.name,
                   m_input.bytes, m_findings);
    if (m_outcome != EXIT_FINE) return;
    if (m_options.is_dry_run) {
      session.out().write(m_diff);
    } else if (is_to_standard_output()) {
      session.out().write(m_text);
    }
    if (m_options.is_verbose) tell_what_was_done(session);
  }

 private:
  bool is_to_standard_output() const {
    if (m_options.output.empty()) return m_options.file == k_standard_input;
    return m_options.output == k_standard_input;
  }
  const std::string& target() const {
    return m_options.output.empty() ? m_options.file : m_options.output;
  }
  std::string diff_name() const {
    return m_options.file == k_standard_input ? "stdin" : m_options.file;
  }

  bool fail(EXIT_CODE outcome) {
    m_outcome = outcome;
    return false;
  }

  bool refuse(std::string text) {
    FINDING finding;
    finding.text = std::move(text);
    m_findings.list.push_back(std::move(finding));
    ++m_findings.error_count;
    return fail(EXIT_FAULTS);
  }

  bool read() {
    m_input = read_input(m_options.file);
    if (m_input.failure.empty()) {
      return m_source.read_text(m_input.bytes.data(), m_input.bytes.size(), m_input.name.c_str()) ||
             fail(EXIT_FAULTS);
    }
    SBD_FILE_PARSER::post_message(MSG_SBD::E::SBD_FILE_ERROR(m_input.name.c_str()));
    for (FINDING& finding : m_findings.list) finding.note = m_input.failure;
    return fail(EXIT_UNUSABLE);
  }

  bool edit() {
    for (const EDIT& edit : m_edits) {
      if (!apply_edit(m_source, edit, m_findings)) return fail(EXIT_FAULTS);
    }
    return true;
  }

  // The text that is to be written, once it is sure that it means what the edits say.
  bool make_text() {
    SBD_STRING why;
    if (!m_source.verify(why)) {
      return refuse(fmt::format("the result would not be right: {}", why.c_str()));
    }
    if (!m_options.is_canonical) {
      m_text = m_source.text();
      return true;
    }
    std::string fault;
    return make_canonical(m_source.document(), m_text, fault) || refuse(fault);
  }

  void save() {
    const char* const path = target().c_str();
    m_is_saved = m_options.is_canonical ? m_source.save_canonical(path) : m_source.save(path);
    if (!m_is_saved) fail(EXIT_UNUSABLE);
  }

  void tell_what_was_done(SESSION& session) const {
    session.out().flush();
    std::string_view what = "nothing to change";
    if (m_is_changed) what = m_options.is_dry_run ? "would be changed" : "changed";
    std::string line = fmt::format("{}: {}", make_visible(m_input.name), what);
    if (m_is_saved && !m_options.output.empty()) {
      line += fmt::format(", written to {}", make_visible(m_options.output));
    }
    session.err().write_line(line);
  }

  void tell_as_json(OUTPUT& output) const {
    JSON_WRITER json(output);
    json.begin_object(LAYOUT::LINES);
    json.key("version");
    json.count(k_json_version);
    json.key("file");
    json.text(m_input.name);
    json.key("edits");
    json.count(m_edits.size());
    json.key("changed");
    json.boolean(m_outcome == EXIT_FINE && m_is_changed);
    json.key("written");
    if (m_is_saved) {
      json.text(target());
    } else {
      json.null();
    }
    if (m_options.is_dry_run) {
      json.key("diff");
      json.text(m_diff);
    }
    json.key("findings");
    json.begin_array(LAYOUT::LINES);
    for (const FINDING& finding : m_findings.list) tell_finding(json, finding);
    json.end();
    json.end();
    json.finish();
  }

  static void tell_finding(JSON_WRITER& json, const FINDING& finding) {
    json.begin_object(LAYOUT::ONE_LINE);
    json.key("severity");
    json.text(finding.severity == SEVERITY::WARNING ? "warning" : "error");
    tell_unless_empty(json, "key", finding.key);
    json.key("text");
    json.text(finding.text);
    if (finding.place) {
      json.key("position");
      write_place(json, *finding.place);
    }
    tell_unless_empty(json, "note", finding.note);
    json.end();
  }

  static void tell_unless_empty(JSON_WRITER& json, std::string_view key, const std::string& text) {
    if (text.empty()) return;
    json.key(key);
    json.text(text);
  }

  const EDIT_OPTIONS& m_options;
  const std::vector<EDIT>& m_edits;
  INPUT m_input;
  SBD_SOURCE_DOCUMENT m_source;
  FINDINGS m_findings;
  EXIT_CODE m_outcome = EXIT_FINE;
  std::string m_text;
  std::string m_diff;
  bool m_is_changed = false;
  bool m_is_saved = false;
};

// What can't go together on standard output.
bool is_usable(SESSION& session, const EDIT_OPTIONS& options) {
  const std::string& target = options.output.empty() ? options.file : options.output;
  if (!options.is_json || options.is_dry_run || target != k_standard_input) return true;
  session.complain("the result and --json can't both be on standard output", EXIT_UNUSABLE);
  return false;
}

}  // namespace

void edit_file(SESSION& session, const EDIT_OPTIONS& options, const std::vector<EDIT>& edits) {
  if (!is_usable(session, options)) return;
  FILE_EDITOR editor(options, edits);
  editor.run();
  editor.tell(session);
}

}  // namespace sbd_tool
