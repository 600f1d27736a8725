// Colours, where somebody can see them.
#ifndef TOOLS_TERMINAL_H
#define TOOLS_TERMINAL_H

#include <string>
#include <string_view>

#include "tools/output.h"

namespace sbd_tool {

enum class COLOR_CHOICE { AUTO, ALWAYS, NEVER };

// What a piece of text is, as far as its colour goes.
enum class STYLE { PLAIN, ERROR, WARNING, NOTE, PLACE, KEYWORD, NAME, DATA, ATTRIBUTE, FAINT };

// Wraps text into the codes of its colour, or leaves it as it is.
class PAINTER {
 public:
  explicit PAINTER(bool has_colors) : m_has_colors(has_colors) {}
  std::string paint(STYLE style, std::string_view text) const;

 private:
  bool m_has_colors;
};

// AUTO means colours on a terminal, unless the environment variable NO_COLOR is set or the
// terminal is a dumb one.
PAINTER make_painter(COLOR_CHOICE choice, const OUTPUT& output);

}  // namespace sbd_tool

#endif
