#include <fmt/format.h>

#include <string>

#include "tools/check_printer.h"
#include "tools/finding_json.h"
#include "tools/finding_printer.h"
#include "tools/json_tree.h"
#include "tools/json_writer.h"
#include "tools/text_table.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

using LAYOUT = JSON_WRITER::LAYOUT;
using FAULT = CHIP_MATRIX::FAULT;

constexpr std::size_t k_indent = 2;

class TEXT_PRINTER : public CHECK_PRINTER {
 public:
  TEXT_PRINTER(OUTPUT& output, const PAINTER& painter) : m_output(output), m_painter(painter) {}

  void print(const CHECKED_FILE& file) override {
    print_findings(m_output, m_painter, file.name, file.source, file.findings);
    for (const CHIP_MATRIX& matrix : file.matrices) print_matrix(file, matrix);
  }

 private:
  void print_matrix(const CHECKED_FILE& file, const CHIP_MATRIX& matrix) {
    const std::string head =
        fmt::format("{}: device {} ({}):", file.name, matrix.device, matrix.own_chip);
    m_output.write_line(m_painter.paint(STYLE::PLACE, make_visible(head)) + " " + describe(matrix));
    if (matrix.fits_all()) return;
    TEXT_TABLE table;
    table.add_column("PARAMETER");
    for (const std::string& chip : matrix.chips) table.add_column(chip);
    for (const CHIP_MATRIX::ROW& row : matrix.rows) {
      std::vector<TEXT_TABLE::CELL> cells = {{row.parameter, STYLE::NAME}};
      for (const FAULT fault : row.faults) cells.push_back(make_cell(fault));
      table.add_row(std::move(cells));
    }
    table.print(m_output, m_painter, k_indent);
  }

  static TEXT_TABLE::CELL make_cell(FAULT fault) {
    if (fault == FAULT::NONE) return {"-", STYLE::FAINT};
    return {std::string(name_of(fault)), STYLE::ERROR};
  }

  // "fits qmxa4 and qmxa10; 3 faults on qmxa1".
  static std::string describe(const CHIP_MATRIX& matrix) {
    std::string fits;
    std::string faults;
    for (std::size_t i = 0; i != matrix.chips.size(); ++i) {
      const std::size_t count = matrix.fault_counts[i];
      if (count == 0) {
        fits += (fits.empty() ? "fits " : ", ") + matrix.chips[i];
      } else {
        faults += fmt::format("{}{} fault{} on {}", faults.empty() ? "" : ", ", count,
                              count == 1 ? "" : "s", matrix.chips[i]);
      }
    }
    return fits + (fits.empty() || faults.empty() ? "" : "; ") + faults;
  }

  OUTPUT& m_output;
  PAINTER m_painter;
};

class JSON_PRINTER : public CHECK_PRINTER {
 public:
  explicit JSON_PRINTER(OUTPUT& output) : m_json(output) {}

  void begin() override {
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("version");
    m_json.count(k_json_version);
    m_json.key("files");
    m_json.begin_array(LAYOUT::LINES);
  }

  void print(const CHECKED_FILE& file) override {
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("file");
    m_json.text(file.name);
    m_json.key("findings");
    m_json.begin_array(LAYOUT::LINES);
    for (const FINDING& finding : file.findings.list) write_finding(m_json, finding);
    m_json.end();
    m_json.key("devices");
    m_json.begin_array(LAYOUT::LINES);
    for (const CHIP_MATRIX& matrix : file.matrices) write_matrix(matrix);
    m_json.end();
    m_json.end();
  }

  void end(const CHECK_TOTALS&) override {
    m_json.end();
    m_json.end();
    m_json.finish();
  }

 private:
  void write_matrix(const CHIP_MATRIX& matrix) {
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("name");
    m_json.text(matrix.device);
    m_json.key("chip");
    m_json.text(matrix.own_chip);
    m_json.key("chips");
    m_json.begin_array(LAYOUT::LINES);
    for (std::size_t i = 0; i != matrix.chips.size(); ++i) write_chip(matrix, i);
    m_json.end();
    m_json.end();
  }

  void write_chip(const CHIP_MATRIX& matrix, std::size_t chip) {
    m_json.begin_object(LAYOUT::LINES);
    m_json.key("chip");
    m_json.text(matrix.chips[chip]);
    m_json.key("fits");
    m_json.boolean(matrix.fault_counts[chip] == 0);
    m_json.key("faults");
    m_json.begin_array(LAYOUT::LINES);
    for (const CHIP_MATRIX::ROW& row : matrix.rows) {
      if (row.faults[chip] == FAULT::NONE) continue;
      m_json.begin_object(LAYOUT::ONE_LINE);
      m_json.key("parameter");
      m_json.text(row.parameter);
      m_json.key("fault");
      m_json.text(name_of(row.faults[chip]));
      m_json.end();
    }
    m_json.end();
    m_json.end();
  }

  JSON_WRITER m_json;
};

}  // namespace

std::unique_ptr<CHECK_PRINTER> make_matrix_text_printer(OUTPUT& output, const PAINTER& painter) {
  return std::make_unique<TEXT_PRINTER>(output, painter);
}

std::unique_ptr<CHECK_PRINTER> make_matrix_json_printer(OUTPUT& output) {
  return std::make_unique<JSON_PRINTER>(output);
}

}  // namespace sbd_tool
