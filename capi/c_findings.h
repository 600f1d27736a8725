// What the library has to say, kept as data.
#ifndef CAPI_C_FINDINGS_H
#define CAPI_C_FINDINGS_H

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "capi/sbd_c.h"
#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"

class SBD_VELDRAN;

namespace sbd_c {

// More than anybody reads, and no more than memory holds when every byte of a file is wrong.
inline constexpr std::size_t k_most_findings = 10000;

class FINDINGS {
 public:
  void clear();
  void add(sbdc_severity severity, int number, std::string_view key, std::string_view text,
           std::string_view parameter, const sbdc_position& position);
  // One that is not the library's own.
  void add_error(std::string_view text) { add(SBDC_ERROR, 0, "", text, "", sbdc_position{}); }

  std::size_t size() const { return m_list.size(); }
  std::size_t omitted() const { return m_omitted; }
  const sbdc_finding* at(std::size_t index) const;

 private:
  const char* keep(std::string_view text);

  std::deque<std::string> m_texts;  // Of the findings; a deque leaves them where they are.
  std::vector<sbdc_finding> m_list;
  std::size_t m_omitted = 0;
};

sbdc_position to_position(const SBD_FILE_PARSER::SBD_SOURCE_RANGE& range);

// While it lives, takes what the library posts in this thread. One at a time per thread.
class RECORDER {
 public:
  // Finds the places of messages in `document`, and, if `device` is not null, the parameters that
  // they are about.
  RECORDER(FINDINGS& findings, const SBD_FILE_PARSER* document, const SBD_VELDRAN* device);
  ~RECORDER();
  RECORDER(const RECORDER&) = delete;
  RECORDER& operator=(const RECORDER&) = delete;

  // `status`, unless something happened that says more.
  sbdc_status judge(sbdc_status status) const;
  bool has_seen(int number) const { return m_last_number == number; }

  void take(const sbd_host::MESSAGE& message) noexcept;
  void take(const sbd_host::INTERNAL_ERROR& error) noexcept;

 private:
  void record(const sbd_host::MESSAGE& message);

  FINDINGS& m_findings;
  const SBD_FILE_PARSER* m_document;
  const SBD_VELDRAN* m_device;
  int m_last_number = 0;
  bool m_is_out_of_memory = false;
  bool m_has_internal_error = false;
};

// The status that `body` returns; nothing that it throws gets out.
template <class BODY>
sbdc_status guarded(BODY&& body) noexcept {
  try {
    return body();
  } catch (...) {
    // Nothing but a lack of memory throws in here.
    return SBDC_NO_MEMORY;
  }
}

}  // namespace sbd_c

#endif
