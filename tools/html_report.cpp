#include "tools/html_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "sbd/sbd_api.h"
#include "tools/clock_picture.h"
#include "tools/device_snapshot.h"
#include "tools/excerpt.h"
#include "tools/html_report_parts.h"
#include "tools/markup.h"
#include "tools/memory_map_picture.h"
#include "tools/svg_picture.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr std::size_t k_widest_text = 200;
constexpr std::size_t k_number_width = 6;

std::string escape_cut(std::string_view text) {
  return escape_markup(make_visible(text, k_widest_text));
}

std::string count(std::size_t number, const char* thing) {
  return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}

std::string line_of(const std::optional<SOURCE_RANGE>& place) {
  return place ? std::to_string(place->line) : std::string();
}

class REPORT {
 public:
  explicit REPORT(const DESCRIPTOR& descriptor)
      : m_descriptor(descriptor), m_file(escape_markup(descriptor.name)) {}

  // Devices come one after the other, as only one is held in memory.
  void take(const DEVICE_SNAPSHOT& device) {
    m_device_facts.push_back(describe(device));
    add_device(device);
  }

  std::string make() {
    const std::string devices = std::exchange(m_html, {});
    begin_page();
    add_summary();
    add_findings();
    m_html += devices;
    end_page();
    return std::move(m_html);
  }

 private:
  void add(std::string_view html) { m_html.append(html).append("\n"); }

  // ---- Page ----

  void begin_page() {
    add("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">");
    add("<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">");
    add(fmt::format("<meta http-equiv=\"Content-Security-Policy\" content=\"{}\">",
                    k_report_policy));
    add(fmt::format("<title>{}: report</title>", m_file));
    add(fmt::format("<style>\n{}{}</style>\n</head>\n<body>", k_report_style, k_svg_style));
    add(fmt::format("<header><h1>{}</h1>\n<p class=\"{}\">{}</p></header>", m_file,
                    m_descriptor.findings.error_count == 0 ? "good" : "bad", verdict()));
    add("<main>");
  }

  std::string verdict() const {
    const FINDINGS& findings = m_descriptor.findings;
    if (findings.empty()) return "No findings";
    std::string text = count(findings.error_count, "error");
    if (findings.warning_count != 0) text += ", " + count(findings.warning_count, "warning");
    return text;
  }

  void end_page() {
    add("</main>");
    add(fmt::format("<footer><p>Made by sbd {}.</p></footer>", sbd_version()));
    add(fmt::format("<script>{}</script>\n</body>\n</html>", k_report_script));
  }

  // ---- Summary ----

  void add_summary() {
    add("<section>\n<h2>Summary</h2>\n<table>");
    add_fact("File", m_file);
    add_fact("Size", count(m_descriptor.source.size(), "byte"));
    add_fact("Findings", verdict());
    for (const std::string& fact : m_device_facts) add_fact("Device", fact);
    add("</table>\n</section>");
  }

  void add_fact(const char* name, const std::string& html) {
    add(fmt::format("<tr><th scope=\"row\">{}</th><td>{}</td></tr>", name, html));
  }

  static std::string describe(const DEVICE_SNAPSHOT& device) {
    std::string text = escape_markup(device.title);
    if (!device.has_parameters) return text + ": no parameters";
    const auto is_stated = [](const PARAMETER_VIEW& view) { return view.origin == PO_STATEMENT; };
    const auto stated =
        std::count_if(device.parameters.begin(), device.parameters.end(), is_stated);
    text += fmt::format(": {}, {} of them stated; {} in the map",
                        count(device.parameters.size(), "parameter"), stated,
                        count(device.map.placed.size(), "window"));
    return text + fmt::format("; {}", count(device.error_count, "error"));
  }

  // ---- Findings ----

  void add_findings() {
    const FINDINGS& findings = m_descriptor.findings;
    add("<section>\n<h2>Findings</h2>");
    if (findings.empty()) add("<p>None.</p>");
    for (const FINDING& finding : findings.list) add_finding(finding);
    if (findings.omitted_count != 0) {
      add(fmt::format("<p>{} more not shown.</p>", findings.omitted_count));
    }
    for (const FINDING& finding : findings.waived) add_waived(finding);
    add("</section>");
  }

  void add_finding(const FINDING& finding) {
    const std::string_view severity = name_of(finding.severity);
    add(fmt::format("<article class=\"finding {}\">", severity));
    add(fmt::format("<p><b>{}</b> {}{}</p>", severity, place_text(finding.place),
                    escape_cut(finding.text)));
    if (finding.place) add_excerpt(*finding.place);
    if (!finding.note.empty()) {
      add(fmt::format("<p class=\"note\">{}{}</p>", place_text(finding.note_place),
                      escape_cut(finding.note)));
    }
    if (!finding.mend.empty()) add(fmt::format("<p>{}</p>", escape_cut(finding.mend)));
    add(fmt::format("<p class=\"key\">{}{}</p>", escape_markup(finding.key),
                    finding.device.empty() ? "" : ", device " + escape_cut(finding.device)));
    add("</article>");
  }

  // Advice that the file gives a reason not to follow.
  void add_waived(const FINDING& finding) {
    add(fmt::format("<p class=\"note\">Waived: {}{} ({}; {})</p>", place_text(finding.place),
                    escape_cut(finding.text), escape_cut(finding.waiver),
                    escape_markup(finding.key)));
  }

  static std::string place_text(const std::optional<SOURCE_RANGE>& place) {
    return place ? fmt::format("line {}, column {}: ", place->line, place->column) : "";
  }

  void add_excerpt(const SOURCE_RANGE& place) {
    const EXCERPT excerpt = make_excerpt(m_descriptor.source, place);
    const std::string number = fmt::format("{:>{}}", place.line, k_number_width);
    add(fmt::format("<pre>{} | {}\n{} | {}{}{}</pre>", number, escape_markup(excerpt.line),
                    std::string(number.size(), ' '), std::string(excerpt.mark_column, ' '),
                    "^" + std::string(excerpt.mark_width - 1, '~'),
                    excerpt.is_end_of_input ? " end of input" : ""));
  }

  // ---- Devices ----

  void add_device(const DEVICE_SNAPSHOT& device) {
    if (!device.has_parameters) return;
    const std::string title = escape_markup(device.title);
    add(fmt::format("<section>\n<h2>Memory map of {}</h2>", title));
    add(draw_memory_map(device.map, device.title).element());
    add_windows(device.map);
    add(fmt::format("</section>\n<section>\n<h2>Clocks of {}</h2>", title));
    add(draw_clock_tree(device.tree, device.title).element());
    add_derived(device);
    add(fmt::format("</section>\n<section>\n<h2>Parameters of {}</h2>", title));
    add_parameters(device);
    add("</section>");
  }

  void begin_table(const std::vector<const char*>& headings, std::string_view attributes) {
    std::string row;
    for (const char* heading : headings) row += fmt::format("<th scope=\"col\">{}</th>", heading);
    add(fmt::format("<table{}>\n<thead><tr>{}</tr></thead>\n<tbody>", attributes, row));
  }
  void end_table() { add("</tbody>\n</table>"); }

  void add_row(const std::vector<std::string>& cells, std::string_view look) {
    std::string row;
    for (const std::string& cell : cells) row += fmt::format("<td>{}</td>", cell);
    add(look.empty() ? fmt::format("<tr>{}</tr>", row)
                     : fmt::format("<tr class=\"{}\">{}</tr>", look, row));
  }

  void add_windows(const MEMORY_MAP& map) {
    if (map.placed.empty()) return;
    begin_table({"Base", "End", "Size", "Window", "Prefetch", "Line", "Remarks"}, "");
    for (const MEMORY_WINDOW& window : map.placed) {
      std::string remarks;
      for (const std::string& other : window.overlaps) remarks += "overlaps " + other + " ";
      for (const std::string& remark : window.remarks) remarks += remark + " ";
      const bool is_prefetched =
          !window.prefetch.text.empty() && window.prefetch.value.m_bool_value;
      add_row({format_address(window.first), format_address(window.end - 1),
               format_size(window.end - window.first), escape_markup(window.name),
               is_prefetched ? "yes" : "no", line_of(window.base.place), escape_markup(remarks)},
              window.is_faulty() ? "fault" : "");
    }
    end_table();
  }

  void add_derived(const DEVICE_SNAPSHOT& device) {
    begin_table({"Name", "Value", "Formula", "Calculation", "Remarks"}, "");
    for (const DERIVED_VIEW& view : device.clocks) {
      add_view(view, view.value ? format_frequency(*view.value) : "unknown");
    }
    for (const DERIVED_VIEW& view : device.widths) {
      add_view(view, view.value ? fmt::format("{:g} bits", *view.value) : "unknown");
    }
    end_table();
  }

  void add_view(const DERIVED_VIEW& view, const std::string& value) {
    const std::string& remark = view.problem.empty() ? view.remark : view.problem;
    add_row({escape_markup(view.title), escape_markup(value), escape_markup(view.formula),
             escape_cut(view.calculation), escape_markup(remark)},
            view.problem.empty() ? "" : "fault");
  }

  void add_parameters(const DEVICE_SNAPSHOT& device) {
    add("<p class=\"search\" hidden><label>Search: <input type=\"search\"></label></p>");
    begin_table({"Parameter", "Value", "Origin", "Line", "Written", "Fault"},
                " class=\"searched\"");
    for (const PARAMETER_VIEW& parameter : device.parameters) {
      const bool is_faulty = parameter.fault != PARAMETER_VIEW::FAULT::NONE;
      std::string_view look = parameter.origin == PO_STATEMENT ? "stated" : "";
      if (is_faulty) look = "fault";
      add_row({escape_markup(parameter.name), escape_cut(parameter.text),
               std::string(name_of(parameter.origin)), line_of(parameter.place),
               escape_cut(parameter.written), std::string(name_of(parameter.fault))},
              look);
    }
    end_table();
  }

  const DESCRIPTOR& m_descriptor;
  std::string m_file;
  std::vector<std::string> m_device_facts;
  std::string m_html;
};

}  // namespace

std::string make_html_report(DESCRIPTOR& descriptor, const std::vector<std::string>& devices) {
  REPORT report(descriptor);
  for (const std::string& name : devices) report.take(take_snapshot(descriptor, name));
  return report.make();
}

}  // namespace sbd_tool
