// The device layer: reading and validating a complete stripe, and asking for its parameters.
#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/readers/reader.h"
#include "bench/rows/rows.h"
#include "sbd/sbd_file_parser.h"
#include "sbd/sbd_veldran.h"
#include "sbd/sbd_veldran_parameter_reader.h"

namespace {

using TABLES = SBD_VELDRAN_PARAMETER_READER;

constexpr double READ_LIMIT = 3.0;
constexpr double PARAMETER_LIMIT = 1.5;
constexpr char DEVICE[] = "board";
constexpr unsigned long CHIP_BIT = 4;  // Of the chip of the example.

std::string load_example() {
  std::ifstream file(SBD_BENCH_EXAMPLES "/qmxa10_full.sbd", std::ios::binary);
  if (!file) stop_measuring("sbd", "no example");
  return std::string(std::istreambuf_iterator<char>(file), {});
}

template <class DOCUMENT>
void read(DOCUMENT& document, const std::string& text) {
  if (!document.read_text(text.data(), text.size(), "bench.sbd")) stop_measuring("sbd", "read");
}

MEASUREMENT measure_device_read() {
  return {"device/read", [] {
            const std::string text = load_example();
            return STAGE{[=] {
              SBD_VELDRAN device(DEVICE);
              read(device, text);
            }};
          }};
}

MEASUREMENT measure_format_read() {
  return {"device/read of the format", [] {
            const std::string text = load_example();
            return STAGE{[=] {
              SBD_FILE_PARSER document;
              read(document, text);
            }};
          }};
}

// The references of a table's rows that the example's chip has.
template <class ROW>
std::vector<std::string> names_of(const ROW* row) {
  std::vector<std::string> names;
  for (; row->parameter_name != nullptr; row++) {
    if ((row->device_mask & CHIP_BIT) == 0) continue;
    const std::string block = row->block_name != nullptr ? std::string(row->block_name) + "." : "";
    names.push_back(block + row->parameter_name);
  }
  return names;
}

std::shared_ptr<SBD_VELDRAN> make_device() {
  const auto device = std::make_shared<SBD_VELDRAN>(DEVICE);
  read(*device, load_example());
  return device;
}

// Asks for every parameter of a table.
template <class VALUE, class ROW>
MEASUREMENT measure_get_parameter(const std::string& name, const ROW* rows) {
  return {name, [=] {
            const auto device = make_device();
            const std::vector<std::string> names = names_of(rows);
            return STAGE{[=] {
                           VALUE value{};
                           for (const std::string& reference : names) {
                             device->get_parameter(reference.c_str(), value);
                             benchmark::DoNotOptimize(value);
                           }
                         },
                         static_cast<double>(names.size())};
          }};
}

// The same from a map of the same names and values.
template <class VALUE, class MAPPED, class ROW>
MEASUREMENT measure_map(const std::string& name, const ROW* rows) {
  return {name, [=] {
            const auto device = make_device();
            const std::vector<std::string> names = names_of(rows);
            std::map<std::string, MAPPED> map;
            for (const std::string& reference : names) {
              VALUE value{};
              device->get_parameter(reference.c_str(), value);
              map[reference] = MAPPED(value);
            }
            return STAGE{[=] {
                           MAPPED value{};
                           for (const std::string& reference : names) {
                             const auto found = map.find(reference);
                             if (found == map.end()) stop_measuring("std::map", "find");
                             value = found->second;
                             benchmark::DoNotOptimize(value);
                           }
                         },
                         static_cast<double>(names.size())};
          }};
}

template <class VALUE, class MAPPED, class ROW>
COMPARISON compare_parameters(const std::string& type, const ROW* rows) {
  const std::string name = "get_parameter/" + type;
  return {name,
          {measure_get_parameter<VALUE>(name + "/sbd", rows),
           measure_map<VALUE, MAPPED>(name + "/std::map", rows)},
          {{"get_parameter, " + type + " / find in a std::map", "", 0, 1, PARAMETER_LIMIT}}};
}

}  // namespace

void add_device_rows(std::vector<COMPARISON>& comparisons) {
  comparisons.push_back(
      {"device",
       {measure_device_read(), measure_format_read()},
       {{"device read of a full stripe / read of the format", "", 0, 1, READ_LIMIT}}});
  comparisons.push_back(
      compare_parameters<bool, bool>("bool", TABLES::sbd_veldran_bool_parameters));
  comparisons.push_back(compare_parameters<unsigned long, unsigned long>(
      "unsigned long", TABLES::sbd_veldran_dword_parameters));
  comparisons.push_back(
      compare_parameters<double, double>("double", TABLES::sbd_veldran_double_parameters));
  comparisons.push_back(
      compare_parameters<SBD_STRING, std::string>("string", TABLES::sbd_veldran_string_parameters));
}
