// Reports conditions of the library's own code that do not hold.
#ifndef SBD_DIAGNOSTICS_SBD_INTERNAL_ERROR_H
#define SBD_DIAGNOSTICS_SBD_INTERNAL_ERROR_H

#include <utility>

// The sources that internal errors name; several files of ours may share one of them.
inline constexpr char k_source_parser[] = "sbd_parser";
inline constexpr char k_source_file_parser[] = "sbd_file_parser";

// Hands the condition to the host. When the host returns, the caller carries on with a safe value;
// what the host throws ends here.
void sbd_report_internal_error(const char* condition, const char* source, int line) noexcept;

// Thrown where an operation has to end because of what was reported before.
struct SBD_REPORTED {};

// Reports what was thrown and is being handled, unless that was done before. It can only be the
// host's.
void sbd_report_exception(const char* source, int line) noexcept;

// True when `condition` holds; otherwise reports its text and returns false.
#define SBD_CHECK(condition, text, source) \
  ((condition) ? true : (sbd_report_internal_error((text), (source), __LINE__), false))

// Runs `body` and returns what it returns. When it throws, which only the host's services can make
// it do, that is reported and the result is `fallback`: nothing throws across our boundary.
template <class RESULT, class BODY>
RESULT sbd_guarded(const char* source, RESULT fallback, BODY&& body) noexcept {
  try {
    return std::forward<BODY>(body)();
  } catch (...) {
    sbd_report_exception(source, __LINE__);
    return fallback;
  }
}

#endif
