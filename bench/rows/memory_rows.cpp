// What a document keeps of the host's memory once it is read, by the host's own account.
#include <string>

#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"
#include "bench/rows/rows.h"
#include "host/sbd_host.h"
#include "sbd/sbd_file_parser.h"

namespace {

constexpr double BYTES_LIMIT = 180;
constexpr double ALLOCATIONS_LIMIT = 0.05;

void count_memory(const SIZE_ROW& size, std::vector<RESULT>& results) {
  const std::string text = make_sbd_text(size.parameters);
  const sbd_host::MEMORY_ACCOUNT before = sbd_host::get_memory_account("SBD");
  SBD_FILE_PARSER document;
  if (!document.read_text(text.data(), text.size(), "bench.sbd")) stop_measuring("sbd", "read");
  const sbd_host::MEMORY_ACCOUNT after = sbd_host::get_memory_account("SBD");

  const double parameters = static_cast<double>(size.parameters);
  const double kept = static_cast<double>(after.live_bytes - before.live_bytes);
  const double beyond_text = kept - static_cast<double>(text.size());
  const double allocations =
      static_cast<double>(after.total_allocations - before.total_allocations);
  results.push_back({"bytes kept per parameter beyond the text", size.label,
                     beyond_text / parameters, BYTES_LIMIT});
  results.push_back(
      {"allocations per parameter", size.label, allocations / parameters, ALLOCATIONS_LIMIT});
}

}  // namespace

void add_memory_rows(std::vector<COMPARISON>& comparisons) {
  for (const SIZE_ROW& size : SIZES) {
    COMPARISON comparison;
    comparison.name = std::string("memory/") + size.key;
    comparison.count = [&size](std::vector<RESULT>& results) { count_memory(size, results); };
    comparisons.push_back(std::move(comparison));
  }
}
