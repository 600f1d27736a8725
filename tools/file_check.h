// A file checked as a whole: its format, its devices, and what else there is to say about it.
#ifndef TOOLS_FILE_CHECK_H
#define TOOLS_FILE_CHECK_H

#include <cstddef>
#include <string>
#include <vector>

#include "tools/chip_change.h"
#include "tools/descriptor.h"
#include "tools/exit_code.h"
#include "tools/findings.h"

namespace sbd_tool {

struct CHECK_OPTIONS {
  std::vector<std::string> devices;  // Only these; all that there are if it is empty.
  bool is_format_only = false;
  std::string chip;               // The devices are checked as if they had it; empty: their own.
  bool is_for_all_chips = false;  // Matrices in the place of findings about parameters.
  std::size_t finding_limit = k_default_finding_limit;  // As in FINDING_COLLECTOR.
  bool has_advice = true;
  bool has_infos = false;             // Otherwise they are only counted.
  std::vector<std::string> disabled;  // Keys of advice that is not wanted.
  bool do_warnings_count = false;     // They are faults as errors are.
};

// A device that was checked.
struct DEVICE_RESULT {
  std::string name;
  std::string chip;                 // That it was checked with.
  std::string own_chip;             // Empty if that is the same.
  std::size_t parameter_count = 0;  // 0 when they could not be checked.
  std::size_t finding_count = 0;
};

struct CHECKED_FILE {
  std::string name;    // As messages call the file.
  std::string source;  // What was read; empty when nothing was found.
  bool has_good_format = false;
  FINDINGS findings;
  std::vector<DEVICE_RESULT> devices;
  std::vector<CHIP_MATRIX> matrices;
  EXIT_CODE outcome = EXIT_UNUSABLE;
};

// Checks a file that was read. Name and source stay with the descriptor, findings do not; what is
// open of it then is no business of the caller's. May be called from several threads at a time.
CHECKED_FILE check_descriptor(DESCRIPTOR& descriptor, const CHECK_OPTIONS& options);

// Reads and checks a file, likewise.
CHECKED_FILE check_file(const std::string& path, const CHECK_OPTIONS& options);

}  // namespace sbd_tool

#endif
