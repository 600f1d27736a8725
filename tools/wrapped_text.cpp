#include "tools/wrapped_text.h"

#include <algorithm>

#include "tools/visible_text.h"

namespace sbd_tool {

std::string wrap_text(std::string_view text, std::size_t width, std::size_t indent) {
  std::string lines;
  std::size_t line_width = 0;  // 0 at the beginning of a line.
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(text.size(), word.size() + 1));
    if (word.empty()) continue;
    const std::size_t word_width = width_of(word);
    if (line_width != 0 && line_width + 1 + word_width > width) {
      lines += '\n';
      line_width = 0;
    }
    if (line_width == 0) {
      lines.append(indent, ' ');
      line_width = indent;
    } else {
      lines += ' ';
      ++line_width;
    }
    lines += word;
    line_width += word_width;
  }
  return line_width == 0 ? lines : lines + '\n';
}

}  // namespace sbd_tool
