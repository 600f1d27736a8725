#include "tools/unified_diff.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace sbd_tool {

namespace {

constexpr std::size_t k_context = 3;
// So many changed lines are looked at together; the work for each line grows with it.
constexpr std::ptrdiff_t k_most_steps = 256;

using LINES = std::vector<std::string_view>;
// Equal lines have equal numbers.
using LINE_NUMBERS = std::vector<std::size_t>;

// Lines [old_begin, old_end) give way to lines [new_begin, new_end), both counted from 0.
struct CHANGE {
  std::size_t old_begin;
  std::size_t old_end;
  std::size_t new_begin;
  std::size_t new_end;
};
using CHANGES = std::vector<CHANGE>;

// With their line ends, which the last one may lack.
LINES split_lines(std::string_view text) {
  LINES lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return lines;
}

class LINE_COUNTER {
 public:
  LINE_NUMBERS number(const LINES& lines) {
    LINE_NUMBERS numbers;
    numbers.reserve(lines.size());
    for (const std::string_view line : lines) {
      numbers.push_back(m_numbers.emplace(line, m_numbers.size()).first->second);
    }
    return numbers;
  }

 private:
  std::unordered_map<std::string_view, std::size_t> m_numbers;
};

// The greedy search of Myers: after d steps, each of which leaves out an old line or takes a new
// one, every diagonal (old - new) has a point that is reached farthest along it. When the end is
// too many steps away, the search ends at the farthest point of all and begins anew there.
class LINE_COMPARISON {
 public:
  LINE_COMPARISON(const LINE_NUMBERS& old_lines, const LINE_NUMBERS& new_lines)
      : m_old(old_lines),
        m_new(new_lines),
        m_old_end(static_cast<POSITION>(old_lines.size())),
        m_new_end(static_cast<POSITION>(new_lines.size())) {}

  CHANGES compare() {
    while (m_old_end > 0 && m_new_end > 0 && is_same(m_old_end - 1, m_new_end - 1)) {
      --m_old_end;
      --m_new_end;
    }
    POINT point = {0, 0};
    do {
      point = search(slide(point));
    } while (point.x < m_old_end || point.y < m_new_end);
    return std::move(m_changes);
  }

 private:
  using POSITION = std::ptrdiff_t;
  struct POINT {
    POSITION x;  // Old lines.
    POSITION y;  // New lines.
  };
  static constexpr POSITION k_none = -2;  // A step from it leads to none, too.
  // The farthest points after some number of steps, by diagonal.
  class FRONT {
   public:
    explicit FRONT(POSITION steps)
        : m_steps(steps), m_farthest(static_cast<std::size_t>(2 * steps + 1), k_none) {}
    POSITION& operator[](POSITION diagonal) { return m_farthest[index(diagonal)]; }
    POSITION operator[](POSITION diagonal) const { return m_farthest[index(diagonal)]; }
    bool has(POSITION diagonal) const { return -m_steps <= diagonal && diagonal <= m_steps; }

   private:
    std::size_t index(POSITION diagonal) const {
      return static_cast<std::size_t>(diagonal + m_steps);
    }
    POSITION m_steps;
    std::vector<POSITION> m_farthest;
  };

  bool is_same(POSITION x, POSITION y) const {
    return m_old[static_cast<std::size_t>(x)] == m_new[static_cast<std::size_t>(y)];
  }

  POINT slide(POINT point) const {
    while (point.x < m_old_end && point.y < m_new_end && is_same(point.x, point.y)) {
      ++point.x;
      ++point.y;
    }
    return point;
  }

  // The step that leads farthest along the diagonal, and where it ends, before the lines that are
  // the same there. A point beyond an end is none.
  struct STEP {
    POINT end;  // A negative x stands for none.
    bool takes_new;
  };
  STEP step_to(const FRONT& before, POSITION diagonal, POSITION start) const {
    const POSITION y_offset = diagonal + start;
    const auto checked = [this, y_offset](POSITION x) {
      return x <= m_old_end && x - y_offset <= m_new_end ? x : k_none;
    };
    const POSITION leaving_old = checked(farthest_on(before, diagonal - 1) + 1);
    const POSITION taking_new = checked(farthest_on(before, diagonal + 1));
    const POSITION x = std::max(leaving_old, taking_new);
    return {{x, x - y_offset}, taking_new >= leaving_old};
  }

  static POSITION farthest_on(const FRONT& front, POSITION diagonal) {
    return front.has(diagonal) ? front[diagonal] : k_none;
  }

  // Adds the changes on a shortest way from `begin` to the end, or to a point on the way there, and
  // returns that. Fronts count diagonals from the one of `begin`.
  POINT search(POINT begin) {
    const POSITION start = begin.x - begin.y;
    std::vector<FRONT> fronts(1, FRONT(0));
    fronts[0][0] = begin.x;
    POINT farthest = begin;
    std::size_t steps_to_farthest = 0;
    for (POSITION steps = 1; steps <= k_most_steps && !is_end(farthest); ++steps) {
      FRONT front(steps);
      for (POSITION diagonal = -steps; diagonal <= steps; diagonal += 2) {
        const STEP step = step_to(fronts.back(), diagonal, start);
        if (step.end.x < 0) continue;
        const POINT point = slide(step.end);
        front[diagonal] = point.x;
        if (point.x + point.y <= farthest.x + farthest.y) continue;
        farthest = point;
        steps_to_farthest = static_cast<std::size_t>(steps);
      }
      fronts.push_back(std::move(front));
    }
    fronts.resize(steps_to_farthest + 1, FRONT(0));
    add_way(fronts, farthest, start);
    return farthest;
  }

  // Adds the steps of the way that ends at `end`, on the last front.
  void add_way(const std::vector<FRONT>& fronts, POINT end, POSITION start) {
    std::vector<STEP> steps;
    POSITION diagonal = end.x - end.y - start;
    for (std::size_t i = fronts.size() - 1; i > 0; --i) {
      steps.push_back(step_to(fronts[i - 1], diagonal, start));
      diagonal += steps.back().takes_new ? 1 : -1;
    }
    std::for_each(steps.rbegin(), steps.rend(), [this](const STEP& step) { add(step); });
  }

  void add(const STEP& step) {
    const auto x = static_cast<std::size_t>(step.end.x);
    const auto y = static_cast<std::size_t>(step.end.y);
    const CHANGE change = step.takes_new ? CHANGE{x, x, y - 1, y} : CHANGE{x - 1, x, y, y};
    const bool is_next = !m_changes.empty() && m_changes.back().old_end == change.old_begin &&
                         m_changes.back().new_end == change.new_begin;
    if (is_next) {
      m_changes.back().old_end = change.old_end;
      m_changes.back().new_end = change.new_end;
    } else {
      m_changes.push_back(change);
    }
  }

  bool is_end(POINT point) const { return point.x == m_old_end && point.y == m_new_end; }

  const LINE_NUMBERS& m_old;
  const LINE_NUMBERS& m_new;
  POSITION m_old_end;  // Before the lines that both texts end with.
  POSITION m_new_end;
  CHANGES m_changes;
};

// "3,7", where the lines begin, and how many there are.
std::string range_text(std::size_t begin, std::size_t end) {
  const std::size_t count = end - begin;
  // No lines stand behind the line that is named.
  if (count == 0) return fmt::format("{},0", begin);
  return count == 1 ? fmt::format("{}", begin + 1) : fmt::format("{},{}", begin + 1, count);
}

class HUNK_WRITER {
 public:
  HUNK_WRITER(const LINES& old_lines, const LINES& new_lines)
      : m_old(old_lines), m_new(new_lines) {}

  // Writes changes that stand so near together that their contexts meet.
  void write(CHANGES::const_iterator first, CHANGES::const_iterator end) {
    const CHANGE& last = *std::prev(end);
    const std::size_t before = std::min(first->old_begin, k_context);
    const std::size_t behind = std::min(m_old.size() - last.old_end, k_context);
    m_text +=
        fmt::format("@@ -{} +{} @@\n", range_text(first->old_begin - before, last.old_end + behind),
                    range_text(first->new_begin - before, last.new_end + behind));
    std::size_t position = first->old_begin - before;
    for (auto change = first; change != end; ++change) {
      write_lines(' ', m_old, position, change->old_begin);
      write_lines('-', m_old, change->old_begin, change->old_end);
      write_lines('+', m_new, change->new_begin, change->new_end);
      position = change->old_end;
    }
    write_lines(' ', m_old, position, last.old_end + behind);
  }

  std::string& text() { return m_text; }

 private:
  void write_lines(char mark, const LINES& lines, std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      m_text += mark;
      m_text += lines[i];
      if (lines[i].back() != '\n') m_text += "\n\\ No newline at end of file\n";
    }
  }

  const LINES& m_old;
  const LINES& m_new;
  std::string m_text;
};

// The name behind "a/" or "b/": in quotes and with escapes when patch could not read it otherwise.
std::string head_of(std::string_view mark, std::string_view side, std::string_view file) {
  const std::string name = fmt::format("{}/{}", side, file.substr(file.find_first_not_of('/')));
  const auto is_special = [](unsigned char c) {
    return c < ' ' || c == 0x7F || c == '"' || c == '\\';
  };
  if (std::none_of(name.begin(), name.end(), is_special)) {
    // A name with a blank in it ends at a tab.
    return fmt::format("{} {}{}\n", mark, name, name.find(' ') == std::string::npos ? "" : "\t");
  }
  std::string quoted;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    quoted += is_special(byte) ? fmt::format("\\{:03o}", byte) : std::string(1, c);
  }
  return fmt::format("{} \"{}\"\n", mark, quoted);
}

}  // namespace

std::string make_unified_diff(std::string_view file, std::string_view old_text,
                              std::string_view new_text) {
  if (old_text == new_text) return {};
  const LINES old_lines = split_lines(old_text);
  const LINES new_lines = split_lines(new_text);
  LINE_COUNTER counter;
  const LINE_NUMBERS old_numbers = counter.number(old_lines);
  const LINE_NUMBERS new_numbers = counter.number(new_lines);
  const CHANGES changes = LINE_COMPARISON(old_numbers, new_numbers).compare();

  HUNK_WRITER writer(old_lines, new_lines);
  writer.text() = head_of("---", "a", file) + head_of("+++", "b", file);
  for (auto first = changes.begin(); first != changes.end();) {
    auto end = std::next(first);
    while (end != changes.end() && end->old_begin - std::prev(end)->old_end <= 2 * k_context) ++end;
    writer.write(first, end);
    first = end;
  }
  return std::move(writer.text());
}

}  // namespace sbd_tool
