#include "tools/file_search.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include "tools/input.h"

namespace sbd_tool {

namespace {

namespace fs = std::filesystem;

bool is_hidden(const fs::path& path) {
  const std::string name = path.filename().string();
  return !name.empty() && name.front() == '.';
}

// A link that leads nowhere is a file as well: one that can't be read.
bool is_descriptor(const fs::path& path) {
  if (path.extension() != k_descriptor_extension) return false;
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  return fs::is_regular_file(status) || !fs::exists(status);
}

bool is_folder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

// The entries of a folder that are not hidden, in alphabetical order.
std::vector<fs::path> list_entries(const fs::path& folder, std::error_code& error) {
  std::vector<fs::path> entries;
  fs::directory_iterator entry(folder, error);
  while (!error && entry != fs::directory_iterator()) {
    if (!is_hidden(entry->path())) entries.push_back(entry->path());
    entry.increment(error);
  }
  std::sort(entries.begin(), entries.end(),
            [](const fs::path& a, const fs::path& b) { return a.native() < b.native(); });
  return entries;
}

// The search below one folder of the command line.
class FOLDER_SEARCH {
 public:
  explicit FOLDER_SEARCH(FILE_SEARCH& result) : m_result(result) {}

  void search(const fs::path& top) {
    const std::size_t files_before = m_result.files.size();
    const std::size_t failures_before = m_result.unreadable_folders.size();
    m_pending.push_back(top);
    while (!m_pending.empty()) {
      const fs::path path = m_pending.back();
      m_pending.pop_back();
      if (is_folder(path)) {
        enter(path);
      } else if (is_descriptor(path)) {
        m_result.files.push_back(path.string());
      }
    }
    const bool has_failed = m_result.unreadable_folders.size() != failures_before;
    if (m_result.files.size() == files_before && !has_failed) {
      m_result.empty_folders.push_back(top.string());
    }
  }

 private:
  void enter(const fs::path& folder) {
    std::error_code error;
    const fs::path canonical = fs::canonical(folder, error);
    if (!error && !m_visited.insert(canonical.native()).second) return;
    const std::vector<fs::path> entries = list_entries(folder, error);
    if (error) m_result.unreadable_folders.emplace_back(folder.string(), error.message());
    m_pending.insert(m_pending.end(), entries.rbegin(), entries.rend());
  }

  FILE_SEARCH& m_result;
  std::vector<fs::path> m_pending;  // The next one is the last.
  std::set<std::string> m_visited;
};

}  // namespace

FILE_SEARCH search_files(const std::vector<std::string>& names) {
  FILE_SEARCH result;
  for (const std::string& name : names) {
    if (name != k_standard_input && is_folder(name)) {
      FOLDER_SEARCH(result).search(name);
    } else {
      result.files.push_back(name);
    }
  }
  return result;
}

}  // namespace sbd_tool
