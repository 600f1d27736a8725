// Reading from what fails, changes or is too large: the file is refused and the document stays, or
// a whole text is read.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "sbd/sbd_file_parser.h"
#include "tests/io_faults/io_faults.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"
#include "tests/support/tree_builder.h"
#include "tests/support/tree_outline.h"

namespace {

using TEXTS = std::vector<std::string>;

constexpr char k_before[] = "device before { x = 1; }";
constexpr char k_text[] = "device d {\n  a = 1;\n}\n# behind\n# and so on\n";

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool k_is_sanitized = true;
#else
constexpr bool k_is_sanitized = false;
#endif

// Runs `body` in a child process; true when it returned true.
bool in_child(const std::function<bool()>& body) {
  const pid_t child = fork();
  if (child == 0) _exit(body() ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class READ_FAULTS : public testing::Test {
 protected:
  void SetUp() override {
    m_path = m_folder.write("f.sbd", k_text);
    ASSERT_TRUE(read_text(m_document, k_before, "before.sbd"));
    m_tree = outline(m_document);
  }

  // Nothing is read, and the document is the one before.
  bool is_refused() {
    m_recorder.forget();
    const bool is_read = m_document.read(m_path.c_str());
    return !is_read && m_recorder.texts() == TEXTS{file_error_text(m_path)} &&
           m_recorder.conditions().empty() && is_as_before();
  }

  bool is_as_before() {
    return outline(m_document) == m_tree && m_document.get_source() == k_before &&
           std::string(m_document.get_file_name()) == "before.sbd";
  }

  MESSAGE_RECORDER m_recorder;
  TEMPORARY_DIRECTORY m_folder;
  SBD_FILE_PARSER m_document;
  std::string m_path;
  std::string m_tree;
};

TEST_F(READ_FAULTS, AnErrorMidwayRefusesTheFile) {
  for (const int error : {EIO, EINVAL, ESTALE}) {
    const IO_FAULT fault = IO_FAULT::fails(IO_CALL::FREAD, error);
    EXPECT_TRUE(is_refused()) << error;
    EXPECT_TRUE(fault.was_hit());
  }
  EXPECT_TRUE(m_document.read(m_path.c_str()));
}

TEST_F(READ_FAULTS, WhatCanBeOpenedButNotReadIsRefused) {
  m_path = "/proc/self/mem";  // Fails at its first byte.
  EXPECT_TRUE(is_refused());
}

TEST_F(READ_FAULTS, TooManyOpenFilesRefuseTheFile) {
  if (k_is_sanitized) GTEST_SKIP() << "the sanitizer needs files for itself";
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{3, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const bool is_good = is_refused();
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_TRUE(is_good);
}

TEST_F(READ_FAULTS, AFileThatMayNotBeReadIsRefused) {
  ASSERT_EQ(chmod(m_path.c_str(), 0), 0);
  ASSERT_EQ(chmod(m_folder.path().c_str(), 0755), 0);
  EXPECT_TRUE(in_child([this] {
    if (geteuid() == 0 && seteuid(65534) != 0) return false;
    return is_refused();
  }));
}

TEST_F(READ_FAULTS, AFileThatShrinksIsReadAsFarAsItGoes) {
  constexpr off_t k_rest = 31;  // To the end of the first comment.
  const IO_FAULT fault =
      IO_FAULT::runs_before(IO_CALL::FREAD, [this] { (void)truncate(m_path.c_str(), k_rest); });
  EXPECT_TRUE(m_document.read(m_path.c_str()));
  EXPECT_TRUE(fault.was_hit());
  EXPECT_EQ(m_document.get_source(), std::string(k_text).substr(0, k_rest));
  EXPECT_TRUE(m_recorder.is_silent());
}

TEST_F(READ_FAULTS, AFileThatVanishesWhileItIsReadIsEmpty) {
  const IO_FAULT fault =
      IO_FAULT::runs_before(IO_CALL::FREAD, [this] { (void)truncate(m_path.c_str(), 0); });
  EXPECT_TRUE(m_document.read(m_path.c_str()));
  EXPECT_TRUE(fault.was_hit());
  EXPECT_EQ(m_document.get_source(), "");
  EXPECT_EQ(root_of(m_document), nullptr);
}

TEST_F(READ_FAULTS, AFileThatGrowsIsReadToItsEnd) {
  std::string more;
  for (int i = 0; i != 10000; ++i) more += "# more\n";
  const IO_FAULT fault = IO_FAULT::runs_before(IO_CALL::FREAD, [this, &more] {
    std::ofstream(m_path, std::ios::binary | std::ios::app) << more;
  });
  EXPECT_TRUE(m_document.read(m_path.c_str()));
  EXPECT_TRUE(fault.was_hit());
  EXPECT_EQ(m_document.get_source(), k_text + more);
}

// ---- A large file, almost all of which is a hole
// -------------------------------------------------

// Small enough to be read at all, and twice as much as there is memory.
constexpr off_t k_large_file = off_t{1} << (sizeof(void*) > 4 ? 31 : 29);
constexpr rlim_t k_memory = static_cast<rlim_t>(k_large_file / 2);

TEST_F(READ_FAULTS, AFileBeyondTheMemoryIsRefused) {
  if (k_is_sanitized) GTEST_SKIP() << "the sanitizer needs the addresses for itself";
  ASSERT_EQ(truncate(m_path.c_str(), k_large_file), 0);
  EXPECT_TRUE(in_child([this] {
    const rlimit limit{k_memory, k_memory};
    if (setrlimit(RLIMIT_AS, &limit) != 0) return false;
    return !m_document.read(m_path.c_str()) && m_recorder.messages().empty() &&
           m_recorder.conditions() == TEXTS{"out of memory"} && is_as_before();
  }));
}

}  // namespace
