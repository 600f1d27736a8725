#include "tests/support/temporary_files.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include <stdlib.h>

TEMPORARY_DIRECTORY::TEMPORARY_DIRECTORY()
    : m_path((std::filesystem::temp_directory_path() / "sbd_test_XXXXXX").string()) {
  if (mkdtemp(m_path.data()) == nullptr) throw std::runtime_error("no temporary directory");
}

TEMPORARY_DIRECTORY::~TEMPORARY_DIRECTORY() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::string TEMPORARY_DIRECTORY::write(const std::string& file, std::string_view content) const {
  const std::string path = path_of(file);
  std::ofstream stream(path, std::ios::binary);
  stream.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!stream.flush()) throw std::runtime_error("can't write " + path);
  return path;
}
