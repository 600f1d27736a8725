// Saving on discs that fail: the old file is there, whole, and nothing is left beside it; or the
// new one is.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "sbd/sbd_source_document.h"
#include "tests/io_faults/io_faults.h"
#include "tests/support/memory_guard.h"
#include "tests/support/message_recorder.h"
#include "tests/support/temporary_files.h"

namespace {

using TEXTS = std::vector<std::string>;

constexpr char k_text[] = "device d {\n  a = 1;  # one\n}\n";
constexpr char k_changed[] = "device d {\n  a = 2;  # one\n}\n";

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::size_t count_files(const std::string& folder) {
  const std::filesystem::directory_iterator files(folder);
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

class SAVE : public testing::Test {
 protected:
  void SetUp() override { prepare(m_folder.path()); }

  void prepare(const std::string& folder) {
    m_path = folder + "/d.sbd";
    std::ofstream(m_path, std::ios::binary) << k_text;
    ASSERT_TRUE(m_source.read(m_path.c_str()));
    ASSERT_TRUE(m_source.set_value("d.a", "2"));
  }

  TEXTS refusal(const std::string& reason) const {
    return {file_error_text(m_path),
            "System Build Descriptor File error: Cannot save file: '" + m_path + "'. " + reason};
  }

  void expect_refused(const std::string& reason) {
    m_recorder.forget();
    EXPECT_FALSE(m_source.save(nullptr));
    EXPECT_EQ(m_recorder.texts(), refusal(reason));
    EXPECT_EQ(m_recorder.conditions(), TEXTS{});
  }

  // The save is done, and says this.
  void expect_saved(const TEXTS& said) {
    m_recorder.forget();
    EXPECT_TRUE(m_source.save(nullptr));
    EXPECT_EQ(m_recorder.texts(), said);
    EXPECT_EQ(content_of(m_path), k_changed);
    EXPECT_EQ(count_files(m_folder.path()), 1U);
  }

  MESSAGE_RECORDER m_recorder;
  TEMPORARY_DIRECTORY m_folder;
  SBD_SOURCE_DOCUMENT m_source;
  std::string m_path;
};

// ---- Calls that fail ---------------------------------------------------------------------------

struct FAILURE {
  const char* name;
  IO_CALL call;
  int error;
  const char* reason;
};

void PrintTo(const FAILURE& failure, std::ostream* stream) {
  *stream << failure.name;
}

const FAILURE k_failures[] = {
    {"OpenNoSpace", IO_CALL::OPEN, ENOSPC,
     "No new file can be made in the folder: no space left on the device."},
    {"OpenReadOnly", IO_CALL::OPEN, EROFS,
     "No new file can be made in the folder: the file system is read-only."},
    {"OpenTooMany", IO_CALL::OPEN, EMFILE,
     "No new file can be made in the folder: too many open files."},
    {"WriteNoSpace", IO_CALL::WRITE, ENOSPC,
     "The new file can't be written: no space left on the device."},
    {"WriteQuota", IO_CALL::WRITE, EDQUOT,
     "The new file can't be written: the disc quota is exhausted."},
    {"WriteError", IO_CALL::WRITE, EIO, "The new file can't be written: input/output error."},
    {"ModeRefused", IO_CALL::FCHMOD, EPERM, "The mode can't be kept: operation not permitted."},
    {"SyncError", IO_CALL::FSYNC, EIO,
     "The new file can't be brought to the disc: input/output error."},
    {"SyncNoSpace", IO_CALL::FSYNC, ENOSPC,
     "The new file can't be brought to the disc: no space left on the device."},
    {"NewFileGone", IO_CALL::FSTAT, EIO, "The new file is gone: input/output error."},
    {"SeekError", IO_CALL::LSEEK, EIO, "The new file can't be read back: input/output error."},
    {"ReadBackError", IO_CALL::READ, EIO, "The new file can't be read back: input/output error."},
    {"CloseError", IO_CALL::CLOSE, EIO, "The new file can't be written: input/output error."},
    {"RenameError", IO_CALL::RENAME, EIO,
     "The new file can't take the place of the old one: input/output error."},
    {"RenameUnknownError", IO_CALL::RENAME, EXDEV,
     "The new file can't take the place of the old one: system error 18."},
};

class SAVE_FAILS : public SAVE, public testing::WithParamInterface<FAILURE> {};

TEST_P(SAVE_FAILS, AndLeavesTheOldFile) {
  {
    const IO_FAULT fault = IO_FAULT::fails(GetParam().call, GetParam().error);
    expect_refused(GetParam().reason);
    EXPECT_TRUE(fault.was_hit());
  }
  EXPECT_EQ(content_of(m_path), k_text);
  EXPECT_EQ(count_files(m_folder.path()), 1U);
  EXPECT_EQ(m_source.text(), k_changed);
  expect_saved({});
}

INSTANTIATE_TEST_SUITE_P(FAULTS, SAVE_FAILS, testing::ValuesIn(k_failures),
                         [](const auto& failure) { return failure.param.name; });

// ---- Calls that do less than they are asked for ------------------------------------------------

TEST_F(SAVE, GoesOnAfterShortWritesAndReads) {
  for (const IO_CALL call : {IO_CALL::WRITE, IO_CALL::READ}) {
    prepare(m_folder.path());
    const IO_FAULT fault = IO_FAULT::moves_at_most(call, 1);
    expect_saved({});
    EXPECT_TRUE(fault.was_hit());
  }
}

TEST_F(SAVE, GoesOnAfterInterruptions) {
  for (const IO_CALL call :
       {IO_CALL::OPEN, IO_CALL::WRITE, IO_CALL::FSYNC, IO_CALL::READ, IO_CALL::CLOSE}) {
    prepare(m_folder.path());
    const IO_FAULT fault = IO_FAULT::fails(call, EINTR);
    expect_saved({});
    EXPECT_TRUE(fault.was_hit()) << static_cast<int>(call);
  }
}

TEST_F(SAVE, NoticesThatTheDiscHoldsSomethingElse) {
  {
    const IO_FAULT fault = IO_FAULT::lies();
    expect_refused("The new file does not hold what was written to it.");
    EXPECT_TRUE(fault.was_hit());
  }
  EXPECT_EQ(content_of(m_path), k_text);
  EXPECT_EQ(count_files(m_folder.path()), 1U);
}

TEST_F(SAVE, NoticesThatTheDiscHoldsMoreOrLess) {
  for (const std::uintmax_t size : {std::uintmax_t{3}, std::uintmax_t{1000}}) {
    const auto resize = [this, size] {
      for (const auto& file : std::filesystem::directory_iterator(m_folder.path())) {
        if (file.path() != m_path) std::filesystem::resize_file(file.path(), size);
      }
    };
    const IO_FAULT fault = IO_FAULT::runs_before(IO_CALL::READ, resize);
    expect_refused("The new file does not hold what was written to it.");
    EXPECT_TRUE(fault.was_hit());
  }
  EXPECT_EQ(content_of(m_path), k_text);
  EXPECT_EQ(count_files(m_folder.path()), 1U);
}

// Then the group is kept at least.
TEST_F(SAVE, TakesAnOwnerThatCantBeKept) {
  constexpr uid_t k_other = 65534;
  if (chown(m_path.c_str(), k_other, k_other) != 0) GTEST_SKIP() << "only for root";
  const IO_FAULT fault = IO_FAULT::fails(IO_CALL::FCHOWN, EPERM);
  expect_saved({});
  EXPECT_TRUE(fault.was_hit());
  struct stat status {};
  ASSERT_EQ(stat(m_path.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, geteuid());
  EXPECT_EQ(status.st_gid, k_other);
}

// The library's own layout is put together in memory first.
TEST_F(SAVE, CanonicalTextThatCantBePutTogetherIsRefused) {
  const struct {
    IO_CALL call;
    const char* reason;
  } rows[] = {
      {IO_CALL::OPEN_MEMSTREAM, "The document can't be written: input/output error."},
      {IO_CALL::FFLUSH, "There is no memory for the document's text."},
  };
  for (const auto& row : rows) {
    m_recorder.forget();
    const IO_FAULT fault = IO_FAULT::fails(row.call, EIO);
    EXPECT_FALSE(m_source.save_canonical(m_path.c_str()));
    EXPECT_EQ(m_recorder.texts(), refusal(row.reason));
  }
  EXPECT_EQ(content_of(m_path), k_text);
}

// The file is there already; only a loss of power could take it back.
TEST_F(SAVE, WarnsWhenTheFolderCantBeBroughtToTheDisc) {
  const IO_FAULT fault = IO_FAULT::fails(IO_CALL::FSYNC, EIO, 2);
  expect_saved({"System Build Descriptor File warning: File saved: '" + m_path +
                "'. The folder can't be brought to the disc: input/output error."});
  EXPECT_TRUE(fault.was_hit());
}

TEST_F(SAVE, ThinksNothingOfFoldersThatCantBeSynced) {
  for (const int error : {EINVAL, EACCES}) {
    prepare(m_folder.path());
    const IO_FAULT fault = IO_FAULT::fails(IO_CALL::FSYNC, error, 2);
    expect_saved({});
    EXPECT_TRUE(fault.was_hit());
  }
}

TEST_F(SAVE, WarnsWhenTheFolderCantBeOpened) {
  const IO_FAULT fault = IO_FAULT::fails(IO_CALL::OPEN, EIO, 2);
  expect_saved({"System Build Descriptor File warning: File saved: '" + m_path +
                "'. The folder can't be brought to the disc: input/output error."});
  EXPECT_TRUE(fault.was_hit());
}

// ---- A full disc -------------------------------------------------------------------------------

// A file system of a few pages, as long as it exists.
class SMALL_DISC {
 public:
  explicit SMALL_DISC(const std::string& path)
      : m_path(path), m_is_there(mount("tmpfs", path.c_str(), "tmpfs", 0, "size=32k") == 0) {}
  ~SMALL_DISC() {
    if (m_is_there) umount(m_path.c_str());
  }
  SMALL_DISC(const SMALL_DISC&) = delete;
  SMALL_DISC& operator=(const SMALL_DISC&) = delete;
  bool is_there() const { return m_is_there; }

 private:
  std::string m_path;
  bool m_is_there;
};

TEST_F(SAVE, OnAFullDiscLeavesTheOldFile) {
  const std::string folder = m_folder.path_of("disc");
  std::filesystem::create_directory(folder);
  const SMALL_DISC disc(folder);
  if (!disc.is_there()) GTEST_SKIP() << "no file system can be mounted: " << std::strerror(errno);
  prepare(folder);
  const std::string filling(std::size_t{64} * 1024, 's');
  ASSERT_TRUE(m_source.set_value("d.filling", ("\"" + filling + "\"").c_str()));
  expect_refused("The new file can't be written: no space left on the device.");
  EXPECT_EQ(content_of(m_path), k_text);
  EXPECT_EQ(count_files(folder), 1U);
  ASSERT_TRUE(m_source.set_value("d.filling", "\"\""));
  EXPECT_TRUE(m_source.save(nullptr));
}

}  // namespace
