#include "tests/io_faults/io_faults.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>

namespace {

struct STATE {
  bool is_set = false;
  IO_CALL call = IO_CALL::FREAD;
  int count = 0;  // Calls until it happens; 0 for never.
  int error = 0;
  std::size_t most_bytes = 0;  // 0 for no limit.
  bool is_lie = false;
  std::function<void()> action;
  bool was_hit = false;
  std::FILE* broken = nullptr;  // A stream that failed.
};

// Calls come before main, too.
STATE& state() {
  static STATE state;
  return state;
}

// True when this call is the one; what is to run before it has then run.
bool is_due(IO_CALL call) {
  STATE& fault = state();
  if (!fault.is_set || fault.call != call || fault.count == 0 || --fault.count != 0) return false;
  fault.was_hit = true;
  if (fault.action) std::exchange(fault.action, {})();
  return fault.error != 0 || fault.is_lie;
}

std::size_t limit(IO_CALL call, std::size_t bytes) {
  STATE& fault = state();
  if (!fault.is_set || fault.call != call || fault.most_bytes == 0) return bytes;
  fault.was_hit = fault.was_hit || bytes > fault.most_bytes;
  return std::min(bytes, fault.most_bytes);
}

template <class FUNCTION>
FUNCTION* real(FUNCTION*, const char* name) {
  return reinterpret_cast<FUNCTION*>(dlsym(RTLD_NEXT, name));
}

#define REAL(function) (*real(&function, #function))

int fail() {
  errno = state().error;
  return -1;
}

}  // namespace

IO_FAULT IO_FAULT::fails(IO_CALL call, int error, int count) {
  STATE fault;
  fault.is_set = true;
  fault.call = call;
  fault.count = count;
  fault.error = error;
  state() = std::move(fault);
  return {};
}

IO_FAULT IO_FAULT::moves_at_most(IO_CALL call, std::size_t bytes) {
  STATE fault;
  fault.is_set = true;
  fault.call = call;
  fault.most_bytes = bytes;
  state() = std::move(fault);
  return {};
}

IO_FAULT IO_FAULT::lies() {
  STATE fault;
  fault.is_set = true;
  fault.call = IO_CALL::WRITE;
  fault.count = 1;
  fault.is_lie = true;
  state() = std::move(fault);
  return {};
}

IO_FAULT IO_FAULT::runs_before(IO_CALL call, std::function<void()> action) {
  STATE fault;
  fault.is_set = true;
  fault.call = call;
  fault.count = 1;
  fault.action = std::move(action);
  state() = std::move(fault);
  return {};
}

IO_FAULT::~IO_FAULT() {
  state() = STATE();
}

bool IO_FAULT::was_hit() const {
  return state().was_hit;
}

// ---- The calls -------------------------------------------------------------------------------

extern "C" {

std::size_t fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file) {
  if (!is_due(IO_CALL::FREAD)) return REAL(fread)(buffer, size, count, file);
  state().broken = file;
  errno = state().error;
  return REAL(fread)(buffer, size, count / 2, file);
}

int ferror(std::FILE* file) noexcept {
  return file == state().broken || REAL(ferror)(file) != 0 ? 1 : 0;
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const auto mode = va_arg(arguments, mode_t);
  va_end(arguments);
  return is_due(IO_CALL::OPEN) ? fail() : REAL(open)(path, flags, mode);
}

// What the call is named where files may be larger than numbers of the machine.
int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const auto mode = va_arg(arguments, mode_t);
  va_end(arguments);
  return open(path, flags, mode);
}

ssize_t read(int file, void* buffer, std::size_t size) {
  return is_due(IO_CALL::READ) ? fail() : REAL(read)(file, buffer, limit(IO_CALL::READ, size));
}

ssize_t write(int file, const void* buffer, std::size_t size) {
  if (!is_due(IO_CALL::WRITE)) return REAL(write)(file, buffer, limit(IO_CALL::WRITE, size));
  if (!state().is_lie) return fail();
  std::string changed(static_cast<const char*>(buffer), size);
  changed.back() = static_cast<char>(changed.back() + 1);
  return REAL(write)(file, changed.data(), size);
}

int fsync(int file) {
  return is_due(IO_CALL::FSYNC) ? fail() : REAL(fsync)(file);
}

int fchmod(int file, mode_t mode) noexcept {
  return is_due(IO_CALL::FCHMOD) ? fail() : REAL(fchmod)(file, mode);
}

int fchown(int file, uid_t owner, gid_t group) noexcept {
  return is_due(IO_CALL::FCHOWN) ? fail() : REAL(fchown)(file, owner, group);
}

int fstat(int file, struct stat* status) noexcept {
  return is_due(IO_CALL::FSTAT) ? fail() : REAL(fstat)(file, status);
}

off_t lseek(int file, off_t offset, int from) noexcept {
  return is_due(IO_CALL::LSEEK) ? fail() : REAL(lseek)(file, offset, from);
}

std::FILE* open_memstream(char** text, std::size_t* length) noexcept {
  if (!is_due(IO_CALL::OPEN_MEMSTREAM)) return REAL(open_memstream)(text, length);
  (void)fail();
  return nullptr;
}

int fflush(std::FILE* file) {
  return is_due(IO_CALL::FFLUSH) ? fail() : REAL(fflush)(file);
}

// The descriptor is gone even when it fails.
int close(int file) {
  const bool fails = is_due(IO_CALL::CLOSE);
  const int result = REAL(close)(file);
  return fails ? fail() : result;
}

int rename(const char* from, const char* to) noexcept {
  return is_due(IO_CALL::RENAME) ? fail() : REAL(rename)(from, to);
}

}  // extern "C"
