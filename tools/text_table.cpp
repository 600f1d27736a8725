#include "tools/text_table.h"

#include <algorithm>
#include <utility>

#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr std::size_t k_gap = 2;

}  // namespace

void TEXT_TABLE::add_column(std::string heading, ALIGN align) {
  m_columns.push_back({std::move(heading), align});
}

void TEXT_TABLE::add_row(std::vector<CELL> cells) {
  for (std::size_t i = 0; i != cells.size(); ++i) {
    cells[i].text = make_visible(cells[i].text);
    m_columns[i].width = std::max(m_columns[i].width, width_of(cells[i].text));
  }
  m_rows.push_back(std::move(cells));
}

void TEXT_TABLE::print(OUTPUT& output, const PAINTER& painter, std::size_t indent) const {
  std::vector<CELL> heading;
  for (const COLUMN& column : m_columns) heading.push_back({column.heading, STYLE::FAINT});
  const bool has_heading = std::any_of(heading.begin(), heading.end(),
                                       [](const CELL& cell) { return !cell.text.empty(); });
  if (has_heading && !m_rows.empty()) print_row(output, painter, indent, heading);
  for (const std::vector<CELL>& row : m_rows) print_row(output, painter, indent, row);
}

void TEXT_TABLE::print_row(OUTPUT& output, const PAINTER& painter, std::size_t indent,
                           const std::vector<CELL>& cells) const {
  // Blanks wait until something follows them, so that no line ends in one.
  std::string line;
  std::size_t blanks = indent;
  for (std::size_t i = 0; i != cells.size(); ++i) {
    const COLUMN& column = m_columns[i];
    if (column.width == 0) continue;
    const std::size_t own_width = width_of(cells[i].text);
    const std::size_t width = std::max(column.width, width_of(column.heading));
    const std::size_t fill = width - std::min(width, own_width);
    if (column.align == ALIGN::RIGHT) blanks += fill;
    if (own_width != 0) {
      line.append(blanks, ' ').append(painter.paint(cells[i].style, cells[i].text));
      blanks = 0;
    }
    if (column.align == ALIGN::LEFT) blanks += fill;
    blanks += k_gap;
  }
  output.write_line(line);
}

}  // namespace sbd_tool
