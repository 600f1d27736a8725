#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "tools/check_printer.h"
#include "tools/source_region.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr std::string_view k_special_in_texts = "%\r\n";
constexpr std::string_view k_special_in_properties = "%\r\n:,";

std::string escape(std::string_view text, std::string_view special) {
  std::string escaped;
  for (const char c : text) {
    const bool is_special = special.find(c) != std::string_view::npos;
    escaped +=
        is_special ? fmt::format("%{:02X}", static_cast<unsigned char>(c)) : std::string(1, c);
  }
  return escaped;
}

// As the workflow knows it, without the "./" of a searched folder.
std::string make_path(const std::string& name) {
  return std::filesystem::path(name).lexically_normal().generic_string();
}

std::string_view level_of(SEVERITY severity) {
  return severity == SEVERITY::INFO ? "notice" : name_of(severity);
}

class GITHUB_PRINTER : public CHECK_PRINTER {
 public:
  explicit GITHUB_PRINTER(OUTPUT& output) : m_output(output) {}

  void print(const CHECKED_FILE& file) override {
    REGION_FINDER regions(file.source);
    for (const FINDING& finding : file.findings.list) print_finding(file, finding, regions);
    if (file.findings.omitted_count == 0) return;
    m_output.write_line(fmt::format("::warning {}::{} more findings not shown",
                                    make_property("file", make_path(file.name)),
                                    file.findings.omitted_count));
  }

 private:
  void print_finding(const CHECKED_FILE& file, const FINDING& finding, REGION_FINDER& regions) {
    std::string properties = make_property("file", make_path(file.name));
    if (finding.place) {
      const SOURCE_REGION region = regions.find(*finding.place);
      properties += fmt::format(",line={},endLine={}", region.start_line, region.end_line);
      // Columns are for places within a line.
      if (region.start_line == region.end_line) {
        properties += fmt::format(",col={},endColumn={}", region.start_column,
                                  std::max(region.end_column, region.start_column + 1) - 1);
      }
    }
    properties += "," + make_property("title", finding.key);
    m_output.write_line(
        fmt::format("::{} {}::{}", level_of(finding.severity), properties, make_text(finding)));
  }

  static std::string make_property(const char* name, const std::string& value) {
    return fmt::format("{}={}", name, escape(value, k_special_in_properties));
  }

  static std::string make_text(const FINDING& finding) {
    std::string text = make_visible(finding.text);
    if (!finding.note.empty()) {
      const std::string line =
          finding.note_place ? fmt::format("line {}: ", finding.note_place->line) : std::string();
      text += "\n" + line + make_visible(finding.note);
    }
    if (!finding.mend.empty()) text += "\n" + make_visible(finding.mend);
    return escape(text, k_special_in_texts);
  }

  OUTPUT& m_output;
};

}  // namespace

std::unique_ptr<CHECK_PRINTER> make_github_printer(OUTPUT& output) {
  return std::make_unique<GITHUB_PRINTER>(output);
}

}  // namespace sbd_tool
