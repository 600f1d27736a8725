// The handle of a document.
#ifndef CAPI_C_DOCUMENT_H
#define CAPI_C_DOCUMENT_H

#include <cstddef>
#include <string>

#include "capi/c_findings.h"
#include "capi/sbd_c.h"
#include "sbd/sbd_source_document.h"

struct sbdc_document {
  SBD_SOURCE_DOCUMENT source;
  sbd_c::FINDINGS findings;
  std::string text;              // What sbdc_text gave last.
  std::size_t change_count = 0;  // Calls that may have changed the tree.
  bool is_from_file = false;     // Rather than from memory: its name is that of a file then.

  const SBD_FILE_PARSER& tree() const { return source.document(); }
};

namespace sbd_c {

// Runs `body`, which returns whether it went well, keeping what is posted meanwhile; `failure` is
// the status when it did not.
template <class BODY>
sbdc_status perform(sbdc_document* document, sbdc_status failure, BODY&& body) noexcept {
  ++document->change_count;
  return guarded([&] {
    document->findings.clear();
    const RECORDER recorder(document->findings, nullptr, nullptr);
    const bool is_good = body(document->source);
    return is_good ? SBDC_OK : recorder.judge(failure);
  });
}

}  // namespace sbd_c

#endif
