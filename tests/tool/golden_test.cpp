// Runs the tool as each folder under golden/ says and compares, byte for byte, what it prints.
//
// A folder has a shell command in "cmd", the files it works on, perhaps a "stdin", and what is
// expected: "stdout", "stderr" and "exit" (a missing file stands for an empty output and for 0).
// The command is run in a copy of the folder. Of the files that are there afterwards, a
// "FILE.after" has the content that is expected of FILE; without one, FILE has to be as it was.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/temporary_files.h"
#include "tests/tool/run_tool.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> find_cases() {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(SBD_GOLDEN_FOLDER)) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void expect_file(const fs::path& path, const std::string& content) {
  if (std::getenv("SBD_UPDATE_GOLDEN") == nullptr) {
    EXPECT_EQ(read_file(path.string()), content) << path;
    return;
  }
  if (content.empty()) {
    fs::remove(path);
  } else {
    std::ofstream(path, std::ios::binary) << content;
  }
}

bool is_after(const fs::path& path) {
  return path.extension() == ".after";
}

// True for what says how a run ends, and so is not there for the run.
bool is_outcome(const fs::path& path) {
  const fs::path name = path.filename();
  return is_after(path) || name == "stdout" || name == "stderr" || name == "exit";
}

// What a test works in.
void copy_case(const fs::path& folder, const fs::path& copy) {
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (is_outcome(entry.path())) continue;
    fs::copy(entry.path(), copy / entry.path().filename(), fs::copy_options::recursive);
  }
}

class GOLDEN : public testing::TestWithParam<std::string> {
 protected:
  void expect_files() {
    for (const fs::directory_entry& entry : fs::directory_iterator(m_copy.path())) {
      if (!entry.is_regular_file()) continue;
      const std::string content = read_file(entry.path().string());
      const fs::path before = m_folder / entry.path().filename();
      fs::path after = before;
      after += ".after";
      const bool is_same = fs::exists(before) && read_file(before.string()) == content;
      if (fs::exists(after) || !is_same) expect_file(after, content);
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(m_folder)) {
      const fs::path name = entry.path().filename();
      if (is_outcome(name) && !is_after(name)) continue;
      const fs::path expected = is_after(name) ? name.stem() : name;
      EXPECT_TRUE(fs::exists(m_copy.path() / expected)) << expected << " is gone";
    }
  }

  const fs::path m_folder = fs::path(SBD_GOLDEN_FOLDER) / GetParam();
  const TEMPORARY_DIRECTORY m_copy;
};

TEST_P(GOLDEN, PrintsWhatIsExpected) {
  copy_case(m_folder, m_copy.path());
  const TOOL_RUN run = run_script(m_copy.path(), read_file((m_folder / "cmd").string()));
  expect_files();
  expect_file(m_folder / "stdout", run.out);
  expect_file(m_folder / "stderr", run.err);
  expect_file(m_folder / "exit", run.exit_code == 0 ? "" : std::to_string(run.exit_code) + "\n");
}

std::string name_of(const testing::TestParamInfo<std::string>& test) {
  return test.param;
}

INSTANTIATE_TEST_SUITE_P(Case, GOLDEN, testing::ValuesIn(find_cases()), name_of);

}  // namespace
