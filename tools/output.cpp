#include "tools/output.h"

#include <cerrno>

namespace sbd_tool {

void OUTPUT::write(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), m_stream) != text.size()) fail();
}

void OUTPUT::write_line(std::string_view text) {
  write(text);
  write("\n");
}

void OUTPUT::flush() {
  if (std::fflush(m_stream) != 0) fail();
}

void OUTPUT::fail() const {
  if (m_failure == FAILURE::THROWS) throw WRITE_FAILURE{errno};
}

}  // namespace sbd_tool
