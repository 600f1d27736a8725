// The one place of the library that needs more of the system than standard C++ has: files that are
// made exclusively, brought to the disc and keep their mode.
#include "sbd/source/sbd_safe_save.h"

#include <fcntl.h>
#include <signal.h>  // Not <csignal>, which has no masks.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "sbd/access/sbd_refusal.h"
#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/diagnostics/sbd_messages.h"
#include "sbd/sbd_source_document.h"
#include "sbd/source/sbd_source_verify.h"

namespace {

constexpr char k_source[] = "sbd_safe_save";

struct ERROR_ROW {
  int number;
  const char* text;
};
constexpr ERROR_ROW k_errors[] = {{ENOSPC, "no space left on the device"},
                                  {EDQUOT, "the disc quota is exhausted"},
                                  {EFBIG, "the file is too large"},
                                  {EACCES, "permission denied"},
                                  {EPERM, "operation not permitted"},
                                  {EROFS, "the file system is read-only"},
                                  {ENOENT, "no such file or folder"},
                                  {ENOTDIR, "a part of the path is not a folder"},
                                  {EISDIR, "it is a folder"},
                                  {ELOOP, "too many symbolic links"},
                                  {ENAMETOOLONG, "the name is too long"},
                                  {EMFILE, "too many open files"},
                                  {ENFILE, "too many open files"},
                                  {EIO, "input/output error"}};

SBD_STRING number_text(long long number) {
  char digits[32];
  return SBD_STRING(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// Tells what could not be done, by the system's error number; returns false.
bool fail(SBD_STRING& why, const char* step, int error) {
  why = step;
  why += ": ";
  for (const ERROR_ROW& row : k_errors) {
    if (row.number != error) continue;
    why += row.text;
    why += '.';
    return false;
  }
  why += "system error " + number_text(error) + ".";
  return false;
}

bool fail(SBD_STRING& why, const char* reason) {
  why = reason;
  return false;
}

class DESCRIPTOR {
 public:
  explicit DESCRIPTOR(int number = -1) : m_number(number) {}
  ~DESCRIPTOR() { close(); }
  DESCRIPTOR(const DESCRIPTOR&) = delete;
  DESCRIPTOR& operator=(const DESCRIPTOR&) = delete;

  void reset(int number) {
    close();
    m_number = number;
  }
  bool is_open() const { return m_number >= 0; }
  int number() const { return m_number; }
  // Some errors of writing are told only now.
  bool close() {
    if (m_number < 0) return true;
    const int number = m_number;
    m_number = -1;
    return ::close(number) == 0 || errno == EINTR;
  }

 private:
  int m_number;
};

// Past the limit for the size of files, the system sends a signal that ends the program. It is held
// back here, and the write fails.
class SIZE_SIGNAL_HOLD {
 public:
  SIZE_SIGNAL_HOLD() {
    sigemptyset(&m_signal);
    sigaddset(&m_signal, SIGXFSZ);
    sigset_t pending;
    m_was_pending = sigpending(&pending) == 0 && sigismember(&pending, SIGXFSZ) == 1;
    m_is_held = pthread_sigmask(SIG_BLOCK, &m_signal, &m_before) == 0;
  }
  ~SIZE_SIGNAL_HOLD() {
    if (!m_is_held) return;
    const timespec no_time{};
    while (!m_was_pending && sigtimedwait(&m_signal, nullptr, &no_time) == -1 && errno == EINTR) {
    }
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
  }
  SIZE_SIGNAL_HOLD(const SIZE_SIGNAL_HOLD&) = delete;
  SIZE_SIGNAL_HOLD& operator=(const SIZE_SIGNAL_HOLD&) = delete;

 private:
  sigset_t m_signal{};
  sigset_t m_before{};
  bool m_was_pending = false;
  bool m_is_held = false;
};

SBD_STRING folder_of(const SBD_STRING& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == SBD_STRING::npos) return ".";
  return slash == 0 ? SBD_STRING("/") : path.substr(0, slash);
}

// The path that the symbolic links at `path` lead to, whether or not something is there.
bool follow_links(SBD_STRING& path, SBD_STRING& why) {
  constexpr int k_most_links = 40;
  for (int links = 0; links <= k_most_links; ++links) {
    char target[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
    if (length < 0) return true;  // No link; if there is an error, it shows up again.
    if (static_cast<std::size_t>(length) == sizeof target) break;
    const std::string_view text(target, static_cast<std::size_t>(length));
    const bool is_absolute = !text.empty() && text.front() == '/';
    SBD_STRING next = is_absolute ? SBD_STRING() : folder_of(path) + "/";
    next += text;
    path = std::move(next);
  }
  return fail(why, "The link can't be followed", ELOOP);
}

// A new file that is removed unless it takes its place.
class NEW_FILE {
 public:
  ~NEW_FILE() {
    m_file.close();
    if (!m_path.empty()) ::unlink(m_path.c_str());
  }

  // Makes it in the folder, under a name that nothing has.
  bool make(const SBD_STRING& folder, mode_t mode, SBD_STRING& why) {
    constexpr int k_most_tries = 10000;
    for (int i = 0; i != k_most_tries; ++i) {
      SBD_STRING path = folder + "/.sbd-" + number_text(::getpid()) + "-" + number_text(i) + ".tmp";
      m_file.reset(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
      if (m_file.is_open()) {
        m_path = std::move(path);
        return true;
      }
      if (errno != EEXIST && errno != EINTR) break;
    }
    return fail(why, "No new file can be made in the folder", errno);
  }

  // The owner where that is allowed; without it, nobody is to act in the new owner's name.
  bool take_over(const struct stat& old, SBD_STRING& why) {
    mode_t mode = old.st_mode & 07777;
    struct stat own {};
    if (::fstat(m_file.number(), &own) != 0) return fail(why, "The new file is gone", errno);
    const bool is_same = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
    if (!is_same && ::fchown(m_file.number(), old.st_uid, old.st_gid) != 0) {
      constexpr mode_t k_acts_as_owner = S_ISUID | S_ISGID;
      mode &= ~k_acts_as_owner;
      // At least the group, which often is the folder's.
      if (::fchown(m_file.number(), static_cast<uid_t>(-1), old.st_gid) != 0) errno = 0;
    }
    if (::fchmod(m_file.number(), mode) == 0) return true;
    return fail(why, "The mode can't be kept", errno);
  }

  bool write(std::string_view content, SBD_STRING& why) {
    const SIZE_SIGNAL_HOLD hold;
    constexpr std::size_t k_most_at_once = std::size_t{1} << 30;
    while (!content.empty()) {
      const ssize_t count =
          ::write(m_file.number(), content.data(), std::min(content.size(), k_most_at_once));
      if (count > 0) {
        content.remove_prefix(static_cast<std::size_t>(count));
      } else if (count == 0 || errno != EINTR) {
        return fail(why, "The new file can't be written", count == 0 ? ENOSPC : errno);
      }
    }
    return true;
  }

  bool sync(SBD_STRING& why) {
    int result = 0;
    while ((result = ::fsync(m_file.number())) != 0 && errno == EINTR) {
    }
    if (result == 0) return true;
    return fail(why, "The new file can't be brought to the disc", errno);
  }

  // Whether the file holds `content` and nothing else.
  bool compare(std::string_view content, SBD_STRING& why) {
    if (::lseek(m_file.number(), 0, SEEK_SET) != 0) {
      return fail(why, "The new file can't be read back", errno);
    }
    SBD_VECTOR<char> buffer(std::size_t{64} * 1024);
    for (;;) {
      const ssize_t count = ::read(m_file.number(), buffer.data(), buffer.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return fail(why, "The new file can't be read back", errno);
      const auto size = static_cast<std::size_t>(count);
      if (size == 0) break;
      if (size > content.size() || std::memcmp(buffer.data(), content.data(), size) != 0) {
        return fail(why, "The new file does not hold what was written to it.");
      }
      content.remove_prefix(size);
    }
    if (content.empty()) return true;
    return fail(why, "The new file does not hold what was written to it.");
  }

  bool rename_to(const SBD_STRING& path, SBD_STRING& why) {
    if (!m_file.close()) return fail(why, "The new file can't be written", errno);
    if (::rename(m_path.c_str(), path.c_str()) != 0) {
      return fail(why, "The new file can't take the place of the old one", errno);
    }
    m_path.clear();
    return true;
  }

 private:
  DESCRIPTOR m_file;
  SBD_STRING m_path;
};

// Whether what is at the path may be replaced; `old` is filled in when something is there.
bool check_old_file(const SBD_STRING& path, struct stat& old, bool& is_there, SBD_STRING& why) {
  is_there = ::stat(path.c_str(), &old) == 0;
  if (!is_there && errno == ENOENT) return true;
  if (!is_there) return fail(why, "The file can't be reached", errno);
  if (S_ISDIR(old.st_mode)) return fail(why, "The file can't be written", EISDIR);
  if (!S_ISREG(old.st_mode)) return fail(why, "It is not a regular file.");
  if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0) return true;
  return fail(why, "The file can't be written", errno);
}

// The file has its new content already; only a loss of power could still take it back.
void sync_folder(const SBD_STRING& folder, const char* path) {
  const DESCRIPTOR directory(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.is_open() && ::fsync(directory.number()) == 0) return;
  if (errno == EINVAL || errno == EACCES) return;  // Not for this file system, or for us.
  SBD_STRING reason;
  fail(reason, "The folder can't be brought to the disc", errno);
  sbd_warn({"File saved: '", path, "'. ", reason.c_str()});
}

struct STREAM_CLOSER {
  ~STREAM_CLOSER() {
    if (stream != nullptr) (void)std::fclose(stream);
    std::free(text);
  }
  std::FILE* stream = nullptr;
  char* text = nullptr;
  std::size_t length = 0;
};

}  // namespace

bool sbd_replace_file(const char* path, std::string_view content, SBD_STRING& why) {
  SBD_STRING target = path;
  if (target.empty()) return fail(why, "The file can't be reached", ENOENT);
  if (!follow_links(target, why)) return false;
  struct stat old {};
  bool is_there = false;
  if (!check_old_file(target, old, is_there, why)) return false;

  constexpr mode_t k_private = S_IRUSR | S_IWUSR;
  constexpr mode_t k_default = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
  const SBD_STRING folder = folder_of(target);
  NEW_FILE file;
  if (!file.make(folder, is_there ? k_private : k_default, why)) return false;
  if (!file.write(content, why)) return false;
  if (is_there && !file.take_over(old, why)) return false;
  if (!file.sync(why)) return false;
  if (!file.compare(content, why) || !file.rename_to(target, why)) return false;
  sync_folder(folder, path);
  return true;
}

bool sbd_write_to_text(const SBD_FILE_PARSER& document, SBD_STRING& text, SBD_STRING& why) {
  STREAM_CLOSER memory;
  memory.stream = ::open_memstream(&memory.text, &memory.length);
  if (memory.stream == nullptr) return fail(why, "The document can't be written", errno);
  document.write(memory.stream, document.get_parser_para().root, 0);
  const bool is_good = std::fflush(memory.stream) == 0 && std::ferror(memory.stream) == 0;
  if (!is_good) return fail(why, "There is no memory for the document's text.");
  text.assign(memory.text, memory.length);
  return true;
}

void sbd_refuse_save(const char* path, const SBD_STRING& why) {
  SBD_FILE_PARSER::post_message(sbd_make_message<MSG_E>(k_msg_file_error, path));
  sbd_refuse({"Cannot save file: '", path, "'. ", why.c_str()});
}

bool sbd_save_document(const SBD_FILE_PARSER& document, const char* path, SBD_STRING& why) {
  if (!SBD_CHECK(path != nullptr, "path != NULL", k_source)) return false;
  return sbd_guarded(k_source, false, [&document, path, &why] {
    SBD_STRING text;
    const bool is_good = sbd_check_expressible(document, SBD_LAYOUT::CANONICAL, why) &&
                         sbd_write_to_text(document, text, why) &&
                         sbd_compare_text(document, text, why) && sbd_replace_file(path, text, why);
    if (!is_good) sbd_refuse_save(path, why);
    return is_good;
  });
}
