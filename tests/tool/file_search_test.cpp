#include "tools/file_search.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/temporary_files.h"

namespace {

namespace fs = std::filesystem;
using sbd_tool::FILE_SEARCH;
using sbd_tool::search_files;

class FILE_SEARCH_TEST : public testing::Test {
 protected:
  void make(const std::string& name) {
    const fs::path path = m_top / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "x";
  }
  FILE_SEARCH search(const std::string& name) { return search_files({path(name)}); }
  std::string path(const std::string& name) const { return (m_top / name).string(); }
  std::vector<std::string> paths(const std::vector<std::string>& names) const {
    std::vector<std::string> list;
    for (const std::string& name : names) list.push_back(path(name));
    return list;
  }

  const TEMPORARY_DIRECTORY m_folder;
  const fs::path m_top = m_folder.path();
};

TEST_F(FILE_SEARCH_TEST, FilesStayAsTheyAreNamed) {
  const std::vector<std::string> names = {"b.txt", "-", "missing.sbd", "a.sbd"};
  EXPECT_EQ(search_files(names).files, names);
}

TEST_F(FILE_SEARCH_TEST, FoldersAreSearchedInAlphabeticalOrder) {
  for (const char* const name : {"f/b/2.sbd", "f/b/1.sbd", "f/c.sbd", "f/a/9.sbd", "f/B.sbd"}) {
    make(name);
  }
  EXPECT_EQ(search("f").files,
            paths({"f/B.sbd", "f/a/9.sbd", "f/b/1.sbd", "f/b/2.sbd", "f/c.sbd"}));
}

TEST_F(FILE_SEARCH_TEST, OnlyDescriptorsThatAreNotHiddenAreFound) {
  for (const char* const name :
       {"f/a.sbd", "f/a.txt", "f/sbd", "f/.b.sbd", "f/.git/c.sbd", "f/d.sbd.bak", "f/E.SBD"}) {
    make(name);
  }
  fs::create_directory(m_top / "f/folder.sbd");
  EXPECT_EQ(search("f").files, paths({"f/a.sbd"}));
}

TEST_F(FILE_SEARCH_TEST, LinksAreFollowedButNotRoundAndRound) {
  make("f/a/1.sbd");
  make("g/2.sbd");
  fs::create_directory_symlink("..", m_top / "f/a/up");
  fs::create_directory_symlink("loop", m_top / "f/loop");
  fs::create_directory_symlink("../g", m_top / "f/other");
  fs::create_symlink("nowhere", m_top / "f/z.sbd");
  EXPECT_EQ(search("f").files, paths({"f/a/1.sbd", "f/other/2.sbd", "f/z.sbd"}));
}

TEST_F(FILE_SEARCH_TEST, EmptyFoldersAreTold) {
  make("f/a.txt");
  const FILE_SEARCH result = search("f");
  EXPECT_TRUE(result.files.empty());
  EXPECT_EQ(result.empty_folders, paths({"f"}));
}

TEST_F(FILE_SEARCH_TEST, DeepFoldersAreNoProblem) {
  std::string name = "f";
  for (int i = 0; i != 300; ++i) name += "/d";
  make(name + "/a.sbd");
  EXPECT_EQ(search("f").files, paths({name + "/a.sbd"}));
}

}  // namespace
