#include "tools/clock_picture.h"

#include <fmt/format.h>

#include <string>

namespace sbd_tool {

namespace {

using ANCHOR = SVG_PICTURE::ANCHOR;
using BOX = SVG_PICTURE::BOX;
using FONT = SVG_PICTURE::FONT;
using KIND = CLOCK_TREE_NODE::KIND;
using LOOK = SVG_PICTURE::LOOK;

constexpr int k_width = 720;
constexpr int k_margin = 20;
constexpr int k_title_y = 24;
constexpr int k_top = 48;
constexpr int k_box_width = 190;
constexpr int k_box_height = 64;
constexpr int k_column = 245;  // From one column of boxes to the next.
constexpr int k_row = 80;
constexpr int k_line_height = 17;

LOOK look_of(const CLOCK_TREE_NODE& node) {
  if (!node.frequency) return LOOK::FAULT;
  if (node.is_idle) return LOOK::IDLE;
  switch (node.kind) {
    case KIND::INPUT:
      return LOOK::SOURCE;
    case KIND::PLL:
      return LOOK::STEP;
    case KIND::CLOCK:
      break;
  }
  return LOOK::RESULT;
}

// The settings as they are, for the hint.
std::string list_settings(const CLOCK_TREE_NODE& node) {
  std::string text;
  for (const PARAMETER_VIEW& setting : node.settings) {
    const std::string value = setting.text.empty() ? "?" : setting.text;
    text += fmt::format("{}{} = {}", text.empty() ? "" : ", ", setting.name, value);
    if (setting.place) text += fmt::format(" (line {})", setting.place->line);
  }
  return text;
}

class TREE_DRAWING {
 public:
  TREE_DRAWING(const std::vector<CLOCK_TREE_NODE>& tree, std::string_view title)
      : m_tree(tree), m_picture(k_width, title) {
    m_picture.add_text(k_margin, k_title_y, ANCHOR::START, FONT::TITLE, title);
  }

  SVG_PICTURE draw() {
    place();
    for (std::size_t i = 0; i != m_tree.size(); ++i) draw_node(i);
    return m_picture;
  }

 private:
  // Each clock has a row; what is above it in the tree stands at the first of its rows.
  void place() {
    int row = 0;
    for (const CLOCK_TREE_NODE& node : m_tree) {
      m_boxes.push_back({k_margin + static_cast<int>(node.kind) * k_column, k_top + row * k_row,
                         k_box_width, k_box_height});
      if (node.kind == KIND::CLOCK) ++row;
    }
  }

  void draw_node(std::size_t index) {
    const CLOCK_TREE_NODE& node = m_tree[index];
    const BOX& box = m_boxes[index];
    m_picture.add_box(box, look_of(node), list_settings(node));
    const int x = box.x + box.width / 2;
    const int y = box.y + k_line_height;
    const std::string title = node.kind == KIND::INPUT ? "input clock" : node.title;
    m_picture.add_text(x, y, ANCHOR::MIDDLE, FONT::NAME, title);
    m_picture.add_text(x, y + k_line_height, ANCHOR::MIDDLE, FONT::SMALL,
                       node.is_idle ? node.step + ", not in use" : node.step);
    m_picture.add_text(x, y + 2 * k_line_height, ANCHOR::MIDDLE, FONT::NAME,
                       node.frequency ? format_frequency(*node.frequency) : "unknown");
    if (node.kind != KIND::INPUT) m_picture.add_link(m_boxes[find_parent(index)], box);
  }

  // The last node before that one which is one step up.
  std::size_t find_parent(std::size_t index) const {
    std::size_t parent = index;
    while (m_tree[parent].kind >= m_tree[index].kind) --parent;
    return parent;
  }

  const std::vector<CLOCK_TREE_NODE>& m_tree;
  SVG_PICTURE m_picture;
  std::vector<BOX> m_boxes;
};

}  // namespace

SVG_PICTURE draw_clock_tree(const std::vector<CLOCK_TREE_NODE>& tree, std::string_view title) {
  return TREE_DRAWING(tree, title).draw();
}

}  // namespace sbd_tool
