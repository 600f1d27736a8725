#include "tools/terminal.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace sbd_tool {

namespace {

constexpr std::string_view k_reset = "\x1b[0m";

std::string_view code_of(STYLE style) {
  switch (style) {
    case STYLE::ERROR:
      return "\x1b[1;31m";
    case STYLE::WARNING:
      return "\x1b[1;35m";
    case STYLE::NOTE:
      return "\x1b[1;36m";
    case STYLE::PLACE:
      return "\x1b[1m";
    case STYLE::KEYWORD:
      return "\x1b[1;34m";
    case STYLE::NAME:
      return "\x1b[36m";
    case STYLE::DATA:
      return "\x1b[32m";
    case STYLE::ATTRIBUTE:
      return "\x1b[33m";
    case STYLE::FAINT:
      return "\x1b[2m";
    case STYLE::PLAIN:
      break;
  }
  return "";
}

bool is_set(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool is_dumb_terminal() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && std::string_view(terminal) == "dumb";
}

}  // namespace

std::string PAINTER::paint(STYLE style, std::string_view text) const {
  const std::string_view code = m_has_colors && !text.empty() ? code_of(style) : "";
  if (code.empty()) return std::string(text);
  return std::string(code).append(text).append(k_reset);
}

PAINTER make_painter(COLOR_CHOICE choice, const OUTPUT& output) {
  if (choice != COLOR_CHOICE::AUTO) return PAINTER(choice == COLOR_CHOICE::ALWAYS);
  if (is_set("NO_COLOR") || is_dumb_terminal()) return PAINTER(false);
  return PAINTER(isatty(fileno(output.stream())) != 0);
}

}  // namespace sbd_tool
