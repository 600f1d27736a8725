// Files that vanish at the end of a test.
#ifndef TESTS_SUPPORT_TEMPORARY_FILES_H
#define TESTS_SUPPORT_TEMPORARY_FILES_H

#include <string>
#include <string_view>

// A directory of its own, removed with the files in it.
class TEMPORARY_DIRECTORY {
 public:
  TEMPORARY_DIRECTORY();
  ~TEMPORARY_DIRECTORY();
  TEMPORARY_DIRECTORY(const TEMPORARY_DIRECTORY&) = delete;
  TEMPORARY_DIRECTORY& operator=(const TEMPORARY_DIRECTORY&) = delete;

  const std::string& path() const { return m_path; }
  std::string path_of(const std::string& file) const { return m_path + "/" + file; }

  // Writes the file and returns its path.
  std::string write(const std::string& file, std::string_view content) const;

 private:
  std::string m_path;
};

#endif
