// Reading from memory: parse, symbol table and all checks of ours; parse of the others; and the
// destruction of what came out.
#include <memory>
#include <string>

#include "bench/document/document_texts.h"
#include "bench/readers/peers.h"
#include "bench/readers/token_floor.h"
#include "bench/rows/rows.h"

namespace {

constexpr double RAPIDJSON_LIMIT = 1.0;
constexpr double FLOOR_LIMIT = 1.8;
constexpr double LARGE_FLOOR_LIMIT = 2.2;
constexpr std::size_t LARGE = 1000000;

MEASUREMENT measure_read(const PEER& peer, const SIZE_ROW& size) {
  return {std::string("read/") + peer.name + "/" + size.key, [=] {
            const std::shared_ptr<READER> reader = peer.make();
            const std::string text = reader->make_text(size.parameters);
            return STAGE{[=] { reader->read_and_free(text); }, count_of(size)};
          }};
}

MEASUREMENT measure_floor(const SIZE_ROW& size) {
  return {std::string("read/floor/") + size.key, [=] {
            const std::string text = make_sbd_text(size.parameters);
            return STAGE{[=] {
                           if (count_tokens(text) == 0) stop_measuring("floor", "no tokens");
                         },
                         count_of(size)};
          }};
}

// What has a target is measured apart from the slow ones, and so in more rounds.
COMPARISON compare_targets(const SIZE_ROW& size) {
  const double floor_limit = size.parameters < LARGE ? FLOOR_LIMIT : LARGE_FLOOR_LIMIT;
  return {std::string("read/") + size.key,
          {measure_read(OURS, size), measure_read(RAPIDJSON, size), measure_floor(size),
           measure_read(COMPACT_RAPIDJSON, size)},
          {{"read / RapidJSON", size.label, 0, 1, RAPIDJSON_LIMIT},
           {"read / floor", size.label, 0, 2, floor_limit},
           {"RapidJSON's read / floor", size.label, 1, 2},
           {"read / RapidJSON, its text compact", size.label, 0, 3}}};
}

COMPARISON compare_others(const SIZE_ROW& size) {
  COMPARISON comparison;
  comparison.name = std::string("read_others/") + size.key;
  comparison.measurements = {measure_read(OURS, size)};
  for (const PEER& peer : OTHER_PEERS) {
    comparison.figures.push_back(
        {std::string("read / ") + peer.name, size.label, 0, comparison.measurements.size()});
    comparison.measurements.push_back(measure_read(peer, size));
  }
  return comparison;
}

}  // namespace

void add_read_rows(std::vector<COMPARISON>& comparisons) {
  for (const SIZE_ROW& size : SIZES) comparisons.push_back(compare_targets(size));
  for (const SIZE_ROW& size : SIZES) comparisons.push_back(compare_others(size));
}
