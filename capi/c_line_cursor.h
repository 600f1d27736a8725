// Lines and columns of places that are asked for one behind the other.
#ifndef CAPI_C_LINE_CURSOR_H
#define CAPI_C_LINE_CURSOR_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "capi/sbd_c.h"

namespace sbd_c {

// Remembers the line that the last place was in, so that each line is looked for once.
class LINE_CURSOR {
 public:
  explicit LINE_CURSOR(std::string_view text) : m_text(text) {}

  std::string_view text() const { return m_text; }

  // Goes on from a place that is known.
  void start_at(const sbdc_position& known) {
    if (known.line == m_line) return;  // The end of a long line is not looked for again.
    m_line = known.line;
    m_begin = known.offset - (known.column - 1);
    m_end = line_end(known.offset);
  }

  // False for what stands before the last place, or so far behind it that it is better asked of the
  // document.
  bool locate(std::size_t offset, std::size_t length, sbdc_position& position) {
    if (offset < m_begin || offset > m_end + k_near || m_line == 0) return false;
    while (offset > m_end) {
      m_begin = m_end + 1;
      m_end = line_end(m_begin);
      ++m_line;
    }
    position = {static_cast<std::uint32_t>(offset), static_cast<std::uint32_t>(length), m_line,
                static_cast<std::uint32_t>(offset - m_begin + 1)};
    return true;
  }

 private:
  static constexpr std::size_t k_near = 4096;

  std::size_t line_end(std::size_t from) const {
    const void* const end = std::memchr(m_text.data() + from, '\n', m_text.size() - from);
    return end == nullptr ? m_text.size()
                          : static_cast<std::size_t>(static_cast<const char*>(end) - m_text.data());
  }

  std::string_view m_text;
  std::uint32_t m_line = 0;  // 0 before the first place.
  std::size_t m_begin = 0;   // Of that line,
  std::size_t m_end = 0;     // and its newline.
};

}  // namespace sbd_c

#endif
