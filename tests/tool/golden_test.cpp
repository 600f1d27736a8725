// Runs the tool as each folder under golden/ says and compares, byte for byte, what it prints.
//
// A folder has a shell command in "cmd", the files it works on, perhaps a "stdin", and what is
// expected: "stdout", "stderr" and "exit" (a missing file stands for an empty output and for 0).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

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

class GOLDEN : public testing::TestWithParam<std::string> {};

TEST_P(GOLDEN, PrintsWhatIsExpected) {
  const fs::path folder = fs::path(SBD_GOLDEN_FOLDER) / GetParam();
  const TOOL_RUN run = run_script(folder.string(), read_file((folder / "cmd").string()));
  expect_file(folder / "stdout", run.out);
  expect_file(folder / "stderr", run.err);
  expect_file(folder / "exit", run.exit_code == 0 ? "" : std::to_string(run.exit_code) + "\n");
}

std::string name_of(const testing::TestParamInfo<std::string>& test) {
  return test.param;
}

INSTANTIATE_TEST_SUITE_P(Case, GOLDEN, testing::ValuesIn(find_cases()), name_of);

}  // namespace
