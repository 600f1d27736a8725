#include "bench/measure/temporary_file.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

TEMPORARY_FILE::TEMPORARY_FILE(std::string_view text) {
  const bool has_memory = access("/dev/shm", W_OK) == 0;
  const std::filesystem::path folder =
      has_memory ? "/dev/shm" : std::filesystem::temp_directory_path();
  m_path = (folder / "sbd_bench_XXXXXX").string();
  const int descriptor = mkstemp(m_path.data());
  std::FILE* const file = descriptor >= 0 ? fdopen(descriptor, "wb") : nullptr;
  const bool is_written =
      file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (file == nullptr || std::fclose(file) != 0 || !is_written) {
    std::perror("bench: temporary file");
    std::exit(1);
  }
}

TEMPORARY_FILE::~TEMPORARY_FILE() {
  unlink(m_path.c_str());
}
