#include "sbd/diagnostics/sbd_internal_error.h"

#include "h/msg_service.h"
#include "sbd/sbd_memory.h"

namespace {
// Makes the module known to the host before anything is allocated under its tag.
const MEM_INITIALIZER k_memory_initializer(SBD_MEMORY_MODULE::tag());
}  // namespace

void sbd_report_internal_error(const char* condition, const char* source, int line) noexcept {
  try {
    MSG_INTERNAL_ERROR::report(condition, SBD_MEMORY_MODULE::tag(), source, line);
  } catch (...) {
    // The host's report failed; there is nobody left to tell.
  }
}

void sbd_report_exception(const char* source, int line) noexcept {
  try {
    throw;
  } catch (const SBD_REPORTED&) {
    return;
  } catch (...) {
    sbd_report_internal_error("out of memory", source, line);
  }
}
