#include <iterator>

#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"
#include "bench/readers/token_floor.h"
#include "bench/rows/rows.h"

namespace {

struct SIZE_ROW {
  const char* label;
  std::size_t parameters;
  double floor_limit;  // How many times the floor's time a read may take.
};

constexpr SIZE_ROW SIZES[] = {
    {"typical", TYPICAL_PARAMETERS, 1.8},
    {"10^3", 1000, 1.8},
    {"10^4", 10000, 1.8},
    {"10^5", 100000, 1.8},
    {"10^6", 1000000, 2.2},
};

constexpr double PEER_LIMIT = 1.0;

MEASUREMENT measure_read(const char* name, std::unique_ptr<READER> (*make)(),
                         const SIZE_ROW& size) {
  return {
      std::string("read/") + name + "/" + size.label, static_cast<double>(size.parameters), [=] {
        std::shared_ptr<READER> reader = make();
        return [reader, text = reader->make_text(size.parameters)] { reader->read_and_free(text); };
      }};
}

MEASUREMENT measure_floor(const SIZE_ROW& size) {
  return {std::string("read/floor/") + size.label, static_cast<double>(size.parameters), [=] {
            return [text = make_sbd_text(size.parameters)] {
              if (count_tokens(text) == 0) stop_measuring("floor", "no tokens");
            };
          }};
}

}  // namespace

void add_read_rows(std::vector<COMPARISON>& comparisons) {
  for (const SIZE_ROW& size : SIZES) {
    COMPARISON comparison;
    comparison.name = std::string("read/") + size.label;
    comparison.measurements = {
        measure_read("sbd", make_sbd_reader, size),
        measure_read("rapidjson", make_rapidjson_reader, size), measure_floor(size),
        measure_read("rapidjson_compact", make_rapidjson_compact_reader, size)};
    comparison.figures = {{"read / RapidJSON", size.label, 0, 1, PEER_LIMIT},
                          {"read / floor", size.label, 0, 2, size.floor_limit},
                          {"RapidJSON / floor", size.label, 1, 2},
                          {"read / RapidJSON on compact text", size.label, 0, 3}};
    comparisons.push_back(std::move(comparison));
  }
}
