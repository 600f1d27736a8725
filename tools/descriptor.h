// A descriptor file as a command works on it.
#ifndef TOOLS_DESCRIPTOR_H
#define TOOLS_DESCRIPTOR_H

#include <cstddef>
#include <memory>
#include <string>

#include "sbd/sbd_veldran.h"
#include "tools/exit_code.h"
#include "tools/findings.h"
#include "tools/session.h"
#include "tools/terminal.h"

namespace sbd_tool {

// As many findings of a file are kept when nothing else is asked for: more than anybody reads, and
// no more than memory holds when every byte of a large file is wrong.
inline constexpr std::size_t k_default_finding_limit = 10000;

struct DESCRIPTOR {
  std::string name;    // As messages call the file.
  std::string source;  // What was read, with or without faults.
  FINDINGS findings;
  // Empty unless the format of the file is without fault; bound to no device at first.
  SBD_VELDRAN document{nullptr};
  EXIT_CODE outcome = EXIT_UNUSABLE;
};

// Reads and checks the file; `finding_limit` as in FINDING_COLLECTOR.
std::unique_ptr<DESCRIPTOR> read_descriptor(const std::string& path, std::size_t finding_limit);

// The same for a command that can go on with a faultless file only: otherwise the findings are
// printed on standard error, the session's exit code is set, and the result is null.
std::unique_ptr<DESCRIPTOR> read_faultless(SESSION& session, const std::string& path,
                                           COLOR_CHOICE colors);

}  // namespace sbd_tool

#endif
