#include "tools/finding_printer.h"

#include <fmt/format.h>

#include <string>

#include "tools/excerpt.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr std::size_t k_number_width = 6;
constexpr std::size_t k_widest_message = 400;  // A message may quote a token of any length.

STYLE style_of(SEVERITY severity) {
  switch (severity) {
    case SEVERITY::WARNING:
      return STYLE::WARNING;
    case SEVERITY::INFO:
      return STYLE::NOTE;
    case SEVERITY::ERROR:
      break;
  }
  return STYLE::ERROR;
}

class FINDING_PRINTER {
 public:
  FINDING_PRINTER(OUTPUT& output, const PAINTER& painter, std::string_view file,
                  std::string_view source)
      : m_output(output), m_painter(painter), m_file(make_visible(file)), m_source(source) {}

  void print(const FINDING& finding) {
    print_message(finding);
    if (finding.place) print_excerpt(*finding.place, style_of(finding.severity));
    if (!finding.note.empty()) print_note(finding.note, finding.note_place);
    if (!finding.mend.empty()) print_note(finding.mend, std::nullopt);
  }

  void print_note(std::string_view text, const std::optional<SOURCE_RANGE>& place) {
    m_output.write_line(paint_head(name_place(place)) + m_painter.paint(STYLE::NOTE, "note:") +
                        " " + make_visible(text));
  }

 private:
  std::string paint_head(std::string_view place) {
    return m_painter.paint(STYLE::PLACE, fmt::format("{}:", place)) + " ";
  }

  // "file" or "file:line:column".
  std::string name_place(const std::optional<SOURCE_RANGE>& place) const {
    return place ? fmt::format("{}:{}:{}", m_file, place->line, place->column) : m_file;
  }

  void print_message(const FINDING& finding) {
    const std::string place = name_place(finding.place);
    const std::string severity = fmt::format("{}:", name_of(finding.severity));
    std::string line = paint_head(place) + m_painter.paint(style_of(finding.severity), severity);
    line += " " + make_visible(finding.text, k_widest_message);
    if (!finding.key.empty()) line += fmt::format(" [{}]", make_visible(finding.key));
    m_output.write_line(line);
  }

  void print_excerpt(const SOURCE_RANGE& place, STYLE style) {
    const EXCERPT excerpt = make_excerpt(m_source, place);
    const std::string number = fmt::format("{:>{}}", place.line, k_number_width);
    print_excerpt_line(number, excerpt.line);
    std::string mark = "^" + std::string(excerpt.mark_width - 1, '~');
    if (excerpt.is_end_of_input) mark += " end of input";
    print_excerpt_line(std::string(number.size(), ' '),
                       std::string(excerpt.mark_column, ' ') + m_painter.paint(style, mark));
  }

  void print_excerpt_line(std::string_view number, std::string_view text) {
    m_output.write_line(fmt::format("{} |{}{}", number, text.empty() ? "" : " ", text));
  }

  OUTPUT& m_output;
  const PAINTER& m_painter;
  std::string m_file;
  std::string_view m_source;
};

}  // namespace

void print_findings(OUTPUT& output, const PAINTER& painter, std::string_view file,
                    std::string_view source, const FINDINGS& findings) {
  FINDING_PRINTER printer(output, painter, file, source);
  for (const FINDING& finding : findings.list) printer.print(finding);
  if (findings.omitted_count != 0) {
    printer.print_note(fmt::format("{} more not shown", findings.omitted_count), std::nullopt);
  }
}

}  // namespace sbd_tool
