// How the time of a read grows with the document, and what a document can do to it by its shape.
#include <iterator>
#include <memory>
#include <string>

#include "bench/document/document_texts.h"
#include "bench/document/hostile_texts.h"
#include "bench/readers/reader.h"
#include "bench/rows/rows.h"

namespace {

constexpr double GROWTH_LIMIT = 2.5;
constexpr double HOSTILE_LIMIT = 3.0;
constexpr std::size_t SMALL = 1000;
constexpr std::size_t LARGE = 1000000;
constexpr std::size_t ORDINARY = 100000;

STAGE reading_of(const std::string& text, double units) {
  const std::shared_ptr<READER> reader = make_sbd_reader();
  return {[=] { reader->read_and_free(text); }, units};
}

MEASUREMENT measure_growth(const char* key, std::size_t parameters) {
  return {std::string("growth/") + key,
          [=] { return reading_of(make_sbd_text(parameters), static_cast<double>(parameters)); }};
}

std::string make_ordinary_text() {
  return make_sbd_text(ORDINARY);
}

MEASUREMENT measure_per_byte(const char* label, std::string (*make_text)()) {
  return {std::string("hostile/") + label, [=] {
            const std::string text = make_text();
            return reading_of(text, static_cast<double>(text.size()));
          }};
}

}  // namespace

void add_growth_rows(std::vector<COMPARISON>& comparisons) {
  comparisons.push_back({"growth",
                         {measure_growth("1000000", LARGE), measure_growth("1000", SMALL)},
                         {{"read per parameter at 10^6 / at 10^3", "", 0, 1, GROWTH_LIMIT}}});

  COMPARISON hostile;
  hostile.name = "hostile";
  for (const HOSTILE_ROW& row : HOSTILE_ROWS) {
    hostile.figures.push_back({std::string("read per byte, ") + row.label + " / ordinary", "",
                               hostile.measurements.size(), std::size(HOSTILE_ROWS),
                               HOSTILE_LIMIT});
    hostile.measurements.push_back(measure_per_byte(row.label, row.make_text));
  }
  hostile.measurements.push_back(measure_per_byte("ordinary", make_ordinary_text));
  comparisons.push_back(std::move(hostile));
}
