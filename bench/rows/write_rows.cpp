// Writing a document that was read before to an open stream on a file in memory, in each library's
// own indented layout. The file has its pages already, so that it is the writers that count.
#include <cstdio>
#include <memory>
#include <string>

#include "bench/measure/temporary_file.h"
#include "bench/readers/peers.h"
#include "bench/rows/rows.h"

namespace {

constexpr double RAPIDJSON_LIMIT = 1.0;

struct WRITING {
  explicit WRITING(const PEER& peer, std::size_t parameters)
      : reader(peer.make()), file(""), stream(std::fopen(file.path(), "wb")) {
    if (stream == nullptr) stop_measuring(peer.name, "open");
    reader->keep(reader->make_text(parameters));
  }
  ~WRITING() { std::fclose(stream); }
  WRITING(const WRITING&) = delete;
  WRITING& operator=(const WRITING&) = delete;

  void write() const {
    std::rewind(stream);
    reader->write(stream);
    std::fflush(stream);
  }

  const std::unique_ptr<READER> reader;
  const TEMPORARY_FILE file;
  std::FILE* const stream;
};

MEASUREMENT measure_write(const PEER& peer, const SIZE_ROW& size) {
  return {std::string("write/") + peer.name + "/" + size.key, [=] {
            const auto writing = std::make_shared<WRITING>(peer, size.parameters);
            return STAGE{[=] { writing->write(); }, count_of(size)};
          }};
}

COMPARISON compare_targets(const SIZE_ROW& size) {
  return {std::string("write/") + size.key,
          {measure_write(OURS, size), measure_write(RAPIDJSON, size),
           measure_write(COMPACT_RAPIDJSON, size)},
          {{"write / RapidJSON", size.label, 0, 1, RAPIDJSON_LIMIT},
           {"write / RapidJSON, its text compact", size.label, 0, 2}}};
}

COMPARISON compare_others(const SIZE_ROW& size) {
  COMPARISON comparison;
  comparison.name = std::string("write_others/") + size.key;
  comparison.measurements = {measure_write(OURS, size)};
  for (const PEER& peer : OTHER_PEERS) {
    comparison.figures.push_back(
        {std::string("write / ") + peer.name, size.label, 0, comparison.measurements.size()});
    comparison.measurements.push_back(measure_write(peer, size));
  }
  return comparison;
}

}  // namespace

void add_write_rows(std::vector<COMPARISON>& comparisons) {
  for (const SIZE_ROW& size : SIZES) comparisons.push_back(compare_targets(size));
  for (const SIZE_ROW& size : SIZES) comparisons.push_back(compare_others(size));
}
