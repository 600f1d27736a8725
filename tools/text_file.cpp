#include "tools/text_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tools/visible_text.h"

namespace sbd_tool {

bool write_text_file(SESSION& session, const std::string& path, const std::string& text,
                     PRESENT_FILE present_file) {
  std::FILE* const file =
      std::fopen(path.c_str(), present_file == PRESENT_FILE::STAYS ? "wbx" : "wb");
  bool is_written = file != nullptr;
  if (file != nullptr) {
    is_written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    is_written = std::fclose(file) == 0 && is_written;
  }
  if (!is_written) {
    session.complain(fmt::format("can't write {}: {}", make_visible(path), std::strerror(errno)),
                     EXIT_UNUSABLE);
  }
  return is_written;
}

}  // namespace sbd_tool
