#include "tools/tree_printer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "tools/names.h"
#include "tools/notation.h"
#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

using STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

constexpr std::size_t k_indent = 2;
// Deeper lines begin with their depth instead: nobody can see how far they are indented.
constexpr std::size_t k_deepest_indent = 32;

// The parts of a statement's line, in this order.
enum COLUMN : std::size_t { NAME, VALUE_TEXT, ATTRIBUTES, COMMENT, COLUMN_COUNT };

using CELLS = std::array<std::string, COLUMN_COUNT>;
using WIDTHS = std::array<std::size_t, COLUMN_COUNT>;

// A text wider than this does not move the columns behind it.
constexpr WIDTHS k_greatest_widths = {32, 44, 32, 0};
constexpr std::string_view k_gap = "  ";

STYLE style_of(std::size_t column) {
  constexpr std::array<STYLE, COLUMN_COUNT> k_styles = {STYLE::NAME, STYLE::DATA, STYLE::ATTRIBUTE,
                                                        STYLE::FAINT};
  return k_styles[column];
}

std::string comment_text(std::string_view comment) {
  while (!comment.empty() && (comment.back() == '\n' || comment.back() == '\r')) {
    comment.remove_suffix(1);
  }
  return make_visible(comment);
}

std::string attributes_text(const STATEMENT& statement) {
  if (statement.type != STATEMENT::ST_ASSIGNMENT || statement.attributes == nullptr) return {};
  std::string text = "[";
  for (const auto* attribute = statement.attributes; attribute != nullptr;
       attribute = attribute->next) {
    if (text.size() > 1) text += ", ";
    text += attribute->attr_key;
    if (attribute->attr_value != nullptr) text.append(" ").append(attribute->attr_value);
  }
  return text + "]";
}

class TREE_PRINTER {
 public:
  TREE_PRINTER(OUTPUT& output, const PAINTER& painter, const SBD_FILE_PARSER& document)
      : m_output(output), m_painter(painter), m_document(document) {}

  void print(TREE_WALK walk) {
    for (;;) {
      const TREE_WALK::STEP step = walk.next();
      if (step == TREE_WALK::STEP::END) return;
      m_depth = walk.depth();
      if (step == TREE_WALK::STEP::ENTER) {
        enter(*walk.node());
      } else {
        leave_block();
      }
    }
  }

 private:
  void enter(const NODE& node) {
    if (m_depth == 0 && m_is_block_done) m_output.write_line("");
    m_is_block_done = false;
    switch (node.type) {
      case NODE::NT_BLOCK:
        print_block(node);
        break;
      case NODE::NT_STATEMENT:
        print_statement(node);
        break;
      case NODE::NT_COMMENT:
        print_line(m_painter.paint(STYLE::FAINT, comment_text(node.comment)));
        break;
    }
  }

  void leave_block() {
    m_is_block_done = true;
    m_is_in_run = false;
  }

  void print_block(const NODE& node) {
    m_is_in_run = false;
    std::string line = m_painter.paint(STYLE::KEYWORD, node.block->type) + " ";
    line += m_painter.paint(STYLE::NAME, shown_name(node));
    print_line(line);
  }

  void print_statement(const NODE& node) {
    if (!m_is_in_run) measure_run(node);
    CELLS cells = make_cells(node);
    if (node.statement->type == STATEMENT::ST_ASSIGNMENT) {
      print_cells(cells);
      return;
    }
    for (const auto* reference = node.statement->reference; reference != nullptr;
         reference = reference->next) {
      cells[VALUE_TEXT] = reference_text(*reference);
      print_cells(cells);
      cells = {};
    }
  }

  // A run is a number of statements without a block between them. They share their columns.
  void measure_run(const NODE& first) {
    m_is_in_run = true;
    m_widths = {};
    for (const NODE* node = &first; node != nullptr && node->type != NODE::NT_BLOCK;
         node = m_depth == 0 ? nullptr : node->next) {
      if (node->type != NODE::NT_STATEMENT) continue;
      measure(make_cells(*node));
      if (node->statement->type != STATEMENT::ST_REFERENCE) continue;
      for (const auto* reference = node->statement->reference; reference != nullptr;
           reference = reference->next) {
        CELLS cells;
        cells[VALUE_TEXT] = reference_text(*reference);
        measure(cells);
      }
    }
  }

  void measure(const CELLS& cells) {
    for (std::size_t column = 0; column != COLUMN_COUNT; ++column) {
      const std::size_t width = width_of(cells[column]);
      if (width > k_greatest_widths[column]) continue;
      m_widths[column] = std::max(m_widths[column], width);
    }
  }

  // The value column of a reference statement is left to its references, one line each.
  CELLS make_cells(const NODE& node) {
    const STATEMENT& statement = *node.statement;
    CELLS cells;
    cells[NAME] = shown_name(node);
    cells[ATTRIBUTES] = attributes_text(statement);
    if (statement.comment != nullptr) cells[COMMENT] = comment_text(statement.comment);
    if (statement.type == STATEMENT::ST_ASSIGNMENT) {
      cells[VALUE_TEXT] = "= " + make_visible(get_notation(m_document, *statement.value));
    }
    return cells;
  }

  std::string reference_text(const SBD_FILE_PARSER::SBD_PARA_REF& reference) {
    const std::string target = full_name(m_document, *reference.target);
    if (target == reference.name) return fmt::format("-> {}", target);
    return fmt::format("-> {} ({})", target, reference.name);
  }

  void print_cells(const CELLS& cells) {
    std::size_t count = COLUMN_COUNT;
    while (count > 0 && cells[count - 1].empty()) --count;
    std::string line;
    for (std::size_t column = 0; column != count; ++column) {
      if (cells[column].empty() && m_widths[column] == 0) continue;
      const std::size_t width = width_of(cells[column]);
      line += m_painter.paint(style_of(column), cells[column]);
      if (column + 1 == count) break;
      if (width < m_widths[column]) line.append(m_widths[column] - width, ' ');
      line += column == NAME ? " " : k_gap;
    }
    print_line(line);
  }

  void print_line(std::string_view text) {
    m_output.write(std::string(std::min(m_depth, k_deepest_indent) * k_indent, ' '));
    if (m_depth > k_deepest_indent) {
      m_output.write(m_painter.paint(STYLE::FAINT, fmt::format("[{}] ", m_depth)));
    }
    m_output.write_line(text);
  }

  std::string shown_name(const NODE& node) {
    return m_depth == 0 ? full_name(m_document, node) : std::string(declared_name(node));
  }

  OUTPUT& m_output;
  const PAINTER& m_painter;
  const SBD_FILE_PARSER& m_document;
  std::size_t m_depth = 0;
  bool m_is_block_done = false;  // A block has ended since the last line.
  bool m_is_in_run = false;
  WIDTHS m_widths{};
};

}  // namespace

void print_tree(OUTPUT& output, const PAINTER& painter, const SBD_FILE_PARSER& document,
                TREE_WALK walk) {
  TREE_PRINTER(output, painter, document).print(std::move(walk));
}

}  // namespace sbd_tool
