#include "tools/excerpt.h"

#include <algorithm>
#include <vector>

#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

constexpr std::string_view k_cut = "...";
constexpr std::size_t k_widest = 100;        // More characters than this do not come.
constexpr std::size_t k_widest_before = 60;  // As many of them may stand before the place.
constexpr std::size_t k_tab_width = 4;
// Looking at more of a line than this would show nothing more, whatever its characters are.
constexpr std::size_t k_window = 5 * k_widest;

// The part of the place's line that may come to be seen.
struct WINDOW {
  std::size_t begin = 0;
  std::size_t end = 0;
};

WINDOW find_window(std::string_view source, std::size_t offset) {
  WINDOW window;
  const std::size_t earliest = offset > k_window ? offset - k_window : 0;
  window.begin = offset;
  while (window.begin > earliest && source[window.begin - 1] != '\n') --window.begin;
  // Characters stay whole, unless these bytes are no characters anyway.
  while (window.begin < offset && is_continuation(source[window.begin])) ++window.begin;

  const std::string_view ahead = source.substr(offset, k_window);
  window.end = offset + std::min(ahead.find('\n'), ahead.size());
  const bool is_line_end = window.end == source.size() || source[window.end] == '\n';
  if (is_line_end && window.end > offset && source[window.end - 1] == '\r') --window.end;
  return window;
}

// One character of the line, as it is shown.
struct CELL {
  std::string shown;
  std::size_t width = 0;
};

struct CELLS {
  std::vector<CELL> list;
  std::size_t place = 0;      // Index of the cell at the place.
  std::size_t place_end = 0;  // Index behind the last cell of the place.
};

CELLS make_cells(std::string_view source, const WINDOW& window, std::size_t place,
                 std::size_t place_end) {
  CELLS cells;
  std::size_t column = 0;
  std::string_view left = source.substr(window.begin, window.end - window.begin);
  while (!left.empty()) {
    const std::size_t begin = window.end - left.size();
    const bool is_tab = left.front() == '\t';
    CELL cell;
    cell.shown = take_visible(left);
    if (is_tab) cell.shown.assign(k_tab_width - column % k_tab_width, ' ');
    cell.width = width_of(cell.shown);
    const std::size_t end = window.end - left.size();
    if (end <= place) cells.place = cells.list.size() + 1;
    if (begin < place_end) cells.place_end = cells.list.size() + 1;
    column += cell.width;
    cells.list.push_back(std::move(cell));
  }
  cells.place_end = std::max(cells.place_end, cells.place);
  return cells;
}

std::size_t width_between(const CELLS& cells, std::size_t first, std::size_t end) {
  std::size_t width = 0;
  for (; first != end; ++first) width += cells.list[first].width;
  return width;
}

// The first cell to be shown, so that not too much stands before the place.
std::size_t choose_first(const CELLS& cells) {
  if (width_between(cells, 0, cells.list.size()) <= k_widest) return 0;
  std::size_t first = cells.place;
  std::size_t width = 0;
  while (first > 0 && width + cells.list[first - 1].width <= k_widest_before) {
    width += cells.list[--first].width;
  }
  return first;
}

// Behind the last cell to be shown.
std::size_t choose_end(const CELLS& cells, std::size_t first) {
  std::size_t end = first;
  std::size_t width = 0;
  while (end < cells.list.size() && width + cells.list[end].width <= k_widest) {
    width += cells.list[end++].width;
  }
  return end;
}

}  // namespace

EXCERPT make_excerpt(std::string_view source, const SBD_FILE_PARSER::SBD_SOURCE_RANGE& place) {
  const std::size_t offset = std::min(place.offset, source.size());
  const std::size_t place_end = offset + std::min(place.length, source.size() - offset);
  const CELLS cells = make_cells(source, find_window(source, offset), offset, place_end);
  const std::size_t first = choose_first(cells);
  const std::size_t end = choose_end(cells, first);

  EXCERPT excerpt;
  if (first > 0) excerpt.line += k_cut;
  excerpt.mark_column = width_of(excerpt.line) + width_between(cells, first, cells.place);
  const std::size_t marked_end = std::max(std::min(cells.place_end, end), cells.place);
  excerpt.mark_width = std::max<std::size_t>(width_between(cells, cells.place, marked_end), 1);
  for (std::size_t i = first; i != end; ++i) excerpt.line += cells.list[i].shown;
  if (end < cells.list.size()) excerpt.line += k_cut;
  excerpt.is_end_of_input = place.length == 0;
  return excerpt;
}

}  // namespace sbd_tool
