// Reading from a file in the page cache, each library by its own means.
#include <memory>
#include <string>

#include "bench/measure/temporary_file.h"
#include "bench/readers/peers.h"
#include "bench/rows/rows.h"

namespace {

MEASUREMENT measure_file(const PEER& peer, const SIZE_ROW& size) {
  return {std::string("file/") + peer.name + "/" + size.key, [=] {
            const std::shared_ptr<READER> reader = peer.make();
            const auto file = std::make_shared<TEMPORARY_FILE>(reader->make_text(size.parameters));
            return STAGE{[=] { reader->read_file_and_free(file->path()); }, count_of(size)};
          }};
}

}  // namespace

void add_file_rows(std::vector<COMPARISON>& comparisons) {
  for (const SIZE_ROW& size : SIZES) {
    comparisons.push_back({std::string("file/") + size.key,
                           {measure_file(OURS, size), measure_file(RAPIDJSON, size)},
                           {{"read of a file / RapidJSON", size.label, 0, 1}}});
  }
}
