#include "tools/memory_map_picture.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace sbd_tool {

namespace {

using ANCHOR = SVG_PICTURE::ANCHOR;
using BOX = SVG_PICTURE::BOX;
using FONT = SVG_PICTURE::FONT;
using LOOK = SVG_PICTURE::LOOK;

constexpr int k_width = 620;
constexpr int k_left = 110;  // Addresses stand left of it.
constexpr int k_right = 600;
constexpr int k_title_y = 24;
constexpr int k_top = 48;
constexpr int k_hole_height = 30;
constexpr int k_least_height = 30;
constexpr int k_height_per_bit = 2;  // Of what a window's size is more than a page.
constexpr double k_page = 4096;
constexpr int k_letter_drop = 4;  // From the middle of a line of letters to where they stand.

int height_of(std::uint64_t bytes) {
  const double bits = std::log2(std::max(static_cast<double>(bytes), k_page) / k_page);
  return k_least_height + k_height_per_bit * static_cast<int>(bits);
}

class MAP_DRAWING {
 public:
  MAP_DRAWING(const MEMORY_MAP& map, std::string_view title)
      : m_map(map), m_picture(k_width, title) {
    m_picture.add_text(k_left, k_title_y, ANCHOR::START, FONT::TITLE, title);
  }

  SVG_PICTURE draw() {
    lay_out();
    choose_lanes();
    for (const auto& [address, y] : m_heights) draw_address(address, y);
    for (const MEMORY_HOLE& hole : m_map.holes) draw_hole(hole);
    for (std::size_t i = 0; i != m_map.placed.size(); ++i) draw_window(m_map.placed[i], m_lanes[i]);
    return m_picture;
  }

 private:
  bool is_hole(std::uint64_t first) const {
    return std::any_of(m_map.holes.begin(), m_map.holes.end(),
                       [first](const MEMORY_HOLE& hole) { return hole.first == first; });
  }

  // Where on the paper each address at which something begins or ends is.
  void lay_out() {
    m_heights[0] = 0;
    m_heights[k_address_space] = 0;
    for (const MEMORY_WINDOW& window : m_map.placed) m_heights[window.first] = 0;
    for (const MEMORY_WINDOW& window : m_map.placed) m_heights[window.end] = 0;
    int y = k_top;
    for (auto at = m_heights.begin(); at != m_heights.end(); ++at) {
      at->second = y;
      const auto next = std::next(at);
      if (next == m_heights.end()) break;
      y += is_hole(at->first) ? k_hole_height : height_of(next->first - at->first);
    }
  }

  // Windows that overlap get lanes of their own: each the first one that is free.
  void choose_lanes() {
    std::vector<std::uint64_t> lane_ends;
    for (const MEMORY_WINDOW& window : m_map.placed) {
      const auto is_free = [&window](std::uint64_t end) { return end <= window.first; };
      const auto lane = std::find_if(lane_ends.begin(), lane_ends.end(), is_free);
      m_lanes.push_back(static_cast<int>(lane - lane_ends.begin()));
      if (lane == lane_ends.end()) {
        lane_ends.push_back(window.end);
      } else {
        *lane = window.end;
      }
    }
    m_lane_count = std::max(1, static_cast<int>(lane_ends.size()));
  }

  void draw_address(std::uint64_t address, int y) {
    m_picture.add_line(k_left - 8, y, k_left, y);
    m_picture.add_text(k_left - 12, y + k_letter_drop, ANCHOR::END, FONT::SMALL,
                       format_address(address));
  }

  BOX make_box(std::uint64_t first, std::uint64_t end) const {
    const int y = m_heights.at(first);
    return {k_left, y, k_right - k_left, m_heights.at(end) - y};
  }

  void draw_label(const BOX& box, FONT font, const std::string& text) {
    m_picture.add_text(box.x + box.width / 2, box.y + box.height / 2 + k_letter_drop,
                       ANCHOR::MIDDLE, font, text);
  }

  void draw_hole(const MEMORY_HOLE& hole) {
    const BOX box = make_box(hole.first, hole.end);
    const std::string size = format_size(hole.end - hole.first);
    m_picture.add_box(box, LOOK::HOLE,
                      fmt::format("hole: {} to {}, {}", format_address(hole.first),
                                  format_address(hole.end - 1), size));
    draw_label(box, FONT::SMALL, "hole, " + size);
  }

  void draw_window(const MEMORY_WINDOW& window, int lane) {
    BOX box = make_box(window.first, window.end);
    if (!window.overlaps.empty()) {
      box.width /= m_lane_count;
      box.x += lane * box.width;
    }
    const std::string size = format_size(window.end - window.first);
    std::string hint = fmt::format("{}: {} to {}, {}", window.name, format_address(window.first),
                                   format_address(window.end - 1), size);
    for (const std::string& other : window.overlaps) hint += ", overlaps " + other;
    for (const std::string& remark : window.remarks) hint += ", " + remark;
    m_picture.add_box(box, window.is_faulty() ? LOOK::FAULT : LOOK::WINDOW, hint);
    draw_label(box, FONT::NAME, fmt::format("{}  {}", window.name, size));
  }

  const MEMORY_MAP& m_map;
  SVG_PICTURE m_picture;
  std::map<std::uint64_t, int> m_heights;
  std::vector<int> m_lanes;  // Of each window that is placed.
  int m_lane_count = 1;
};

}  // namespace

SVG_PICTURE draw_memory_map(const MEMORY_MAP& map, std::string_view title) {
  return MAP_DRAWING(map, title).draw();
}

}  // namespace sbd_tool
