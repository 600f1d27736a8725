// Lookup by dotted name in a document that was read before: the names of whole numbers in random
// order, so many that a large document's lookups do not stay in the cache.
#include <memory>
#include <string>

#include "bench/document/document_texts.h"
#include "bench/readers/peers.h"
#include "bench/rows/rows.h"

namespace {

constexpr std::size_t MOST_NAMES = 100000;
constexpr double SMALL_LIMIT = 1.0;
constexpr double LARGE_LIMIT = 0.6;

MEASUREMENT measure_lookup(const PEER& peer, const SIZE_ROW& size) {
  return {std::string("lookup/") + peer.name + "/" + size.key, [=] {
            const std::shared_ptr<READER> reader = peer.make();
            reader->keep(reader->make_text(size.parameters));
            std::vector<std::string> paths = make_number_names(size.parameters, MOST_NAMES);
            for (std::string& path : paths) path = reader->path_of(path);
            const std::uint64_t sum = reader->look_up(paths);
            return STAGE{[=] {
                           if (reader->look_up(paths) != sum || sum == 0) {
                             stop_measuring(peer.name, "look up");
                           }
                         },
                         static_cast<double>(paths.size())};
          }};
}

std::optional<double> limit_of(const SIZE_ROW& size) {
  if (size.parameters == TYPICAL_PARAMETERS) return SMALL_LIMIT;
  if (size.parameters == 1000000) return LARGE_LIMIT;
  return std::nullopt;
}

COMPARISON compare_lookups(const SIZE_ROW& size) {
  COMPARISON comparison;
  comparison.name = std::string("lookup/") + size.key;
  comparison.measurements = {measure_lookup(OURS, size), measure_lookup(RAPIDJSON, size),
                             measure_lookup(RAPIDJSON_POINTER, size)};
  comparison.figures = {{"lookup / RapidJSON", size.label, 0, 1, limit_of(size)},
                        {"lookup / RapidJSON's Pointer", size.label, 0, 2}};
  for (const PEER& peer : OTHER_PEERS) {
    comparison.figures.push_back(
        {std::string("lookup / ") + peer.name, size.label, 0, comparison.measurements.size()});
    comparison.measurements.push_back(measure_lookup(peer, size));
  }
  return comparison;
}

}  // namespace

void add_lookup_rows(std::vector<COMPARISON>& comparisons) {
  for (const SIZE_ROW& size : SIZES) comparisons.push_back(compare_lookups(size));
}
