// Saving: whole files only, whatever happens.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

#include "sbd/sbd_source_document.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"

namespace {

constexpr char k_text[] = "device d {\n  a = 1;  # one\n}\n";
constexpr char k_changed[] = "device d {\n  a = 2;  # one\n}\n";
constexpr char k_canonical[] = "device d\n{\n    a = 2; \t# one\n}\n\n";

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

mode_t mode_of(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

std::size_t count_files(const std::string& folder) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) count += entry.exists();
  return count;
}

class SAFE_SAVE : public testing::Test {
 protected:
  void SetUp() override {
    path = folder.write("d.sbd", k_text);
    ASSERT_TRUE(source.read(path.c_str()));
    ASSERT_TRUE(source.set_value("d.a", "2"));
  }

  // Runs `body` in a child process, as nobody when we are root; true when it returned true.
  static bool in_child(const std::function<bool()>& body) {
    (void)std::fflush(nullptr);  // Lest the child prints it, too.
    const pid_t child = fork();
    if (child == 0) {
      const uid_t owner = geteuid();
      const gid_t group = getegid();
      if (owner == 0 && (setegid(k_nobody) != 0 || seteuid(k_nobody) != 0)) _exit(2);
      const bool is_good = body();
      // As itself again, the program may write down what it counted.
      if (seteuid(owner) != 0 || setegid(group) != 0) _exit(2);
      std::exit(is_good ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
  }

  // The save is refused for the reason, the file is as it was, and nothing is left beside it.
  bool is_refused(const std::string& reason) {
    messages.forget();
    const bool is_saved = source.save(path.c_str());
    return !is_saved && messages.texts() == std::vector<std::string>({
                                                file_error_text(path),
                                                "System Build Descriptor File error: Cannot save"
                                                " file: '" +
                                                    path + "'. " + reason,
                                            });
  }

  static constexpr uid_t k_nobody = 65534;

  MESSAGE_RECORDER messages;
  TEMPORARY_DIRECTORY folder;
  std::string path;
  SBD_SOURCE_DOCUMENT source;
};

TEST_F(SAFE_SAVE, ReplacesTheFileAndKeepsItsMode) {
  for (const mode_t mode : {0644U, 0600U, 0666U, 0755U}) {
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
    EXPECT_TRUE(source.save(nullptr));
    EXPECT_EQ(content_of(path), k_changed);
    EXPECT_EQ(mode_of(path), mode);
  }
  EXPECT_EQ(count_files(folder.path()), 1U);
  EXPECT_TRUE(messages.is_silent());
}

TEST_F(SAFE_SAVE, MakesNewFilesAsUsual) {
  const std::string other = folder.path_of("new.sbd");
  const mode_t mask = umask(027);
  EXPECT_TRUE(source.save(other.c_str()));
  umask(mask);
  EXPECT_EQ(content_of(other), k_changed);
  EXPECT_EQ(mode_of(other), mode_t{0640});
  EXPECT_EQ(content_of(path), k_text);
}

TEST_F(SAFE_SAVE, FollowsSymbolicLinks) {
  std::filesystem::create_directory(folder.path_of("sub"));
  const std::string link = folder.path_of("sub/link");
  const std::string second = folder.path_of("second");
  const std::string dangling = folder.path_of("dangling");
  std::filesystem::create_symlink("../d.sbd", link);
  std::filesystem::create_symlink(link, second);
  std::filesystem::create_symlink("sub/made", dangling);
  EXPECT_TRUE(source.save(second.c_str()));
  EXPECT_TRUE(source.save(dangling.c_str()));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_TRUE(std::filesystem::is_symlink(second));
  EXPECT_FALSE(std::filesystem::is_symlink(path));
  EXPECT_EQ(content_of(path), k_changed);
  EXPECT_EQ(content_of(folder.path_of("sub/made")), k_changed);
  std::filesystem::remove_all(folder.path_of("sub"));
}

TEST_F(SAFE_SAVE, TheCanonicalLayoutIsTheWriters) {
  EXPECT_TRUE(source.save_canonical(nullptr));
  EXPECT_EQ(content_of(path), k_canonical);
  SBD_FILE_PARSER document;
  ASSERT_TRUE(document.read(path.c_str()));
  SBD_STRING why;
  EXPECT_TRUE(sbd_save_document(document, path.c_str(), why)) << why;
  EXPECT_EQ(content_of(path), k_canonical);
  EXPECT_TRUE(messages.is_silent());
}

TEST_F(SAFE_SAVE, WhatIsNoFileIsRefused) {
  path = folder.path();
  EXPECT_TRUE(is_refused("The file can't be written: it is a folder."));
  path = folder.path_of("none/d.sbd");
  EXPECT_TRUE(is_refused("No new file can be made in the folder: no such file or folder."));
  path = folder.path_of("d.sbd/x");
  EXPECT_TRUE(is_refused("The file can't be reached: a part of the path is not a folder."));
  path = "/dev/null";
  EXPECT_TRUE(is_refused("It is not a regular file."));
  path = folder.path_of("loop");
  std::filesystem::create_symlink("loop", path);
  EXPECT_TRUE(is_refused("The link can't be followed: too many symbolic links."));
}

TEST_F(SAFE_SAVE, FilesAndFoldersThatMayNotBeWrittenAreLeftAlone) {
  ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(path.c_str(), 0444), 0);
  EXPECT_TRUE(
      in_child([this] { return is_refused("The file can't be written: permission denied."); }));
  ASSERT_EQ(chmod(path.c_str(), 0666), 0);
  ASSERT_EQ(chmod(folder.path().c_str(), 0555), 0);
  EXPECT_TRUE(in_child(
      [this] { return is_refused("No new file can be made in the folder: permission denied."); }));
  ASSERT_EQ(chmod(folder.path().c_str(), 0700), 0);
  EXPECT_EQ(content_of(path), k_text);
  EXPECT_EQ(count_files(folder.path()), 1U);
}

// Nobody is to act in the name of the new owner.
TEST_F(SAFE_SAVE, FilesOfOthersChangeTheirOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "only for root";
  ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(path.c_str(), 04666), 0);
  EXPECT_TRUE(in_child([this] { return source.save(nullptr); }));
  EXPECT_EQ(content_of(path), k_changed);
  EXPECT_EQ(mode_of(path), 0666U);
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, k_nobody);
}

TEST_F(SAFE_SAVE, TheOwnerIsKept) {
  if (chown(path.c_str(), k_nobody, k_nobody) != 0) GTEST_SKIP() << "only for root";
  EXPECT_TRUE(source.save(nullptr));
  EXPECT_EQ(content_of(path), k_changed);
  struct stat status {};
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, k_nobody);
  EXPECT_EQ(status.st_gid, k_nobody);
  ASSERT_EQ(chown(path.c_str(), geteuid(), k_nobody), 0);
  EXPECT_TRUE(source.save(nullptr));
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, geteuid());
  EXPECT_EQ(status.st_gid, k_nobody);
}

TEST_F(SAFE_SAVE, PathsWithoutAFolderAreInTheCurrentOne) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  const bool is_saved = source.save("other.sbd");
  std::filesystem::create_symlink("other.sbd", "link.sbd");
  EXPECT_TRUE(source.set_value("d.a", "3"));
  const bool is_link_saved = source.save("link.sbd");
  std::filesystem::current_path(before);
  EXPECT_TRUE(is_saved);
  EXPECT_TRUE(is_link_saved);
  EXPECT_EQ(content_of(folder.path_of("other.sbd")), "device d {\n  a = 3;  # one\n}\n");
  path = "";
  EXPECT_TRUE(is_refused("The file can't be reached: no such file or folder."));
}

// What was sent before the save is still there afterwards.
TEST_F(SAFE_SAVE, ASignalThatWaitsIsLeftWaiting) {
  sigset_t signal;
  sigset_t before;
  sigemptyset(&signal);
  sigaddset(&signal, SIGXFSZ);
  ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &signal, &before), 0);
  ASSERT_EQ(raise(SIGXFSZ), 0);
  EXPECT_TRUE(source.save(nullptr));
  const timespec no_time{};
  EXPECT_EQ(sigtimedwait(&signal, nullptr, &no_time), SIGXFSZ);
  ASSERT_EQ(pthread_sigmask(SIG_SETMASK, &before, nullptr), 0);
}

TEST_F(SAFE_SAVE, TheLimitForTheSizeOfFilesIsAnError) {
  EXPECT_TRUE(in_child([] { return true; }));
  ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(path.c_str(), 0666), 0);
  EXPECT_TRUE(in_child([this] {
    rlimit before{};
    if (getrlimit(RLIMIT_FSIZE, &before) != 0) return false;
    const rlimit limit{10, before.rlim_max};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return false;
    const bool is_good = is_refused("The new file can't be written: the file is too large.");
    return setrlimit(RLIMIT_FSIZE, &before) == 0 && is_good;
  }));
  EXPECT_EQ(content_of(path), k_text);
  EXPECT_EQ(count_files(folder.path()), 1U);
}

// Each file is whole: what is written alternates between two texts of different length.
TEST_F(SAFE_SAVE, AKilledProgramLeavesAWholeFile) {
  std::string texts[2];
  for (int i = 0; i != 2; ++i) {
    texts[i] = "device d {\n";
    for (int line = 0; line != 3000 + 2000 * i; ++line) {
      texts[i] += "  p" + std::to_string(line) + " = " + std::to_string(i) + ";\n";
    }
    texts[i] += "}\n";
  }
  folder.write("d.sbd", texts[0]);
  for (int round = 0; round != 25; ++round) {
    const pid_t child = fork();
    if (child == 0) {
      SBD_SOURCE_DOCUMENT documents[2];
      for (int i = 0; i != 2; ++i) {
        documents[i].read_text(texts[i].data(), texts[i].size(), path.c_str());
      }
      for (int i = 0;; ++i) {
        if (!documents[i % 2].save(nullptr)) _exit(1);
      }
    }
    std::this_thread::sleep_for(std::chrono::microseconds(8000 + 777 * round));
    ASSERT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    const std::string content = content_of(path);
    ASSERT_TRUE(content == texts[0] || content == texts[1]) << content.size();
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    std::filesystem::remove(entry.path());
  }
}

TEST_F(SAFE_SAVE, AnAllocationThatFailsLeavesTheFile) {
  for (std::size_t count = 1;; count += 1) {
    ASSERT_LT(count, 10000U);
    sbd_host::fail_allocation("SBD", count, false);
    const bool is_saved = source.save(path.c_str());
    sbd_host::fail_allocation("SBD", 0, false);
    EXPECT_EQ(count_files(folder.path()), 1U);
    if (is_saved) break;
    EXPECT_EQ(content_of(path), k_text);
  }
  EXPECT_EQ(content_of(path), k_changed);
}

}  // namespace
