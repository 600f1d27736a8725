// Makes calls of the system fail, as discs do.
#ifndef TESTS_IO_FAULTS_IO_FAULTS_H
#define TESTS_IO_FAULTS_IO_FAULTS_H

#include <cstddef>
#include <functional>

enum class IO_CALL {
  FREAD,
  OPEN,
  READ,
  WRITE,
  FSYNC,
  FCHMOD,
  FCHOWN,
  FSTAT,
  LSEEK,
  CLOSE,
  RENAME,
  OPEN_MEMSTREAM,
  FFLUSH
};

// A fault of one kind of call while it exists. Only one may exist at a time.
class IO_FAULT {
 public:
  // The `count`-th call from now on (1: the next one) fails with `error`, once. An fread gives half
  // of what is there before it fails.
  static IO_FAULT fails(IO_CALL call, int error, int count = 1);
  // Every READ or WRITE moves this many bytes at most.
  static IO_FAULT moves_at_most(IO_CALL call, std::size_t bytes);
  // The next WRITE says that it has written everything, but has changed a byte.
  static IO_FAULT lies();
  // Runs `action` right before the next call.
  static IO_FAULT runs_before(IO_CALL call, std::function<void()> action);

  ~IO_FAULT();
  IO_FAULT(const IO_FAULT&) = delete;
  IO_FAULT& operator=(const IO_FAULT&) = delete;

  // Whether it has had an effect.
  bool was_hit() const;

 private:
  IO_FAULT() = default;
};

#endif
