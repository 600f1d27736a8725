// What the library has to say about a file.
#ifndef TOOLS_FINDINGS_H
#define TOOLS_FINDINGS_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"

namespace sbd_tool {

// The library knows the first two; an INFO is advice that nobody has to follow.
enum class SEVERITY { ERROR, WARNING, INFO };

using SOURCE_RANGE = SBD_FILE_PARSER::SBD_SOURCE_RANGE;

// One message about a file.
struct FINDING {
  SEVERITY severity = SEVERITY::ERROR;
  std::string key;
  std::string text;
  std::optional<SOURCE_RANGE> place;
  std::string note;  // What the tool knows besides, such as the cause; may be empty.
  std::optional<SOURCE_RANGE> note_place;  // What the note is about, if that is elsewhere.
  std::string device;  // The device block whose rules were not kept; empty for the format's.
  std::string
      parameter;     // Of that device, relative to its stripe's module; empty for other things.
  std::string mend;  // What may help, such as "did you mean 'enabled'?"; may be empty.
  // What to write at the place to mend it, where that is certain enough for a proposal.
  std::string replacement;
  std::string waiver;  // The reason that the file gives for it being so; see FINDINGS::waived.
};

// All messages about a file, in the order they came.
struct FINDINGS {
  std::vector<FINDING> list;
  std::size_t omitted_count = 0;  // Those that came when the list was full.
  std::size_t error_count = 0;    // With the omitted ones.
  std::size_t warning_count = 0;
  std::size_t info_count = 0;
  std::size_t hidden_count = 0;  // Of infos that nobody asked for; counted nowhere else.
  // Advice that the file says it knows; counted nowhere else.
  std::vector<FINDING> waived;

  std::size_t count() const { return error_count + warning_count + info_count; }
  bool empty() const { return count() == 0; }

  // Counts a finding, and keeps it while there are fewer than `limit` (0: in any case). Returns it
  // as kept, or null.
  FINDING* add(FINDING finding, std::size_t limit);
};

// While it lives, takes what the library posts in this thread. One at a time per thread.
class FINDING_COLLECTOR {
 public:
  // Completes a finding that is kept, while its message is posted.
  using EXPLAIN = std::function<void(FINDING& finding)>;

  // Keeps the places that `reader` gives, and the first `limit` messages (0: all of them).
  FINDING_COLLECTOR(const SBD_FILE_PARSER& reader, std::size_t limit, FINDINGS& findings,
                    EXPLAIN explain = nullptr);
  ~FINDING_COLLECTOR();
  FINDING_COLLECTOR(const FINDING_COLLECTOR&) = delete;
  FINDING_COLLECTOR& operator=(const FINDING_COLLECTOR&) = delete;

  void take(const sbd_host::MESSAGE& message);

 private:
  const SBD_FILE_PARSER& m_reader;
  std::size_t m_limit;
  FINDINGS& m_findings;
  EXPLAIN m_explain;
};

// "error", "warning" or "info".
std::string_view name_of(SEVERITY severity);

// Makes the library's messages go to the collector of the thread that posts them, and its internal
// errors to standard error.
void install_handlers();

// True once the library has reported an internal error: results can't be trusted then.
bool had_internal_error();

}  // namespace sbd_tool

#endif
