// Rows of text in columns of one width.
#ifndef TOOLS_TEXT_TABLE_H
#define TOOLS_TEXT_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

#include "tools/output.h"
#include "tools/terminal.h"

namespace sbd_tool {

class TEXT_TABLE {
 public:
  enum class ALIGN { LEFT, RIGHT };
  struct CELL {
    std::string text;  // Made fit for a terminal when it is printed.
    STYLE style = STYLE::PLAIN;
  };

  // When all headings are empty, the table begins with its first row.
  void add_column(std::string heading, ALIGN align = ALIGN::LEFT);
  // As many cells as there are columns.
  void add_row(std::vector<CELL> cells);

  // Each line begins with `indent` blanks; columns that are empty in all rows are left out.
  void print(OUTPUT& output, const PAINTER& painter, std::size_t indent) const;

 private:
  struct COLUMN {
    std::string heading;
    ALIGN align;
    std::size_t width = 0;  // Of the widest cell; 0 for a column without text.
  };

  void print_row(OUTPUT& output, const PAINTER& painter, std::size_t indent,
                 const std::vector<CELL>& cells) const;

  std::vector<COLUMN> m_columns;
  std::vector<std::vector<CELL>> m_rows;
};

}  // namespace sbd_tool

#endif
