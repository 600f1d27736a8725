// One library that reads the document in its own format.
#ifndef BENCH_READERS_READER_H
#define BENCH_READERS_READER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class READER {
 public:
  virtual ~READER() = default;

  virtual std::string make_text(std::size_t parameter_count) const = 0;

  // Builds a document from the text and destroys it again.
  virtual void read_and_free(const std::string& text) const = 0;

  // Keeps the document of the text for what follows.
  virtual void keep(const std::string& text) = 0;

  // Looks every parameter up by its dotted name (see plain_name for libraries other than ours) and
  // returns how many there are; each one's value is fetched in its own type.
  virtual std::size_t look_up(const std::vector<std::string>& names) const = 0;
};

std::unique_ptr<READER> make_sbd_reader();
std::unique_ptr<READER> make_rapidjson_reader();
std::unique_ptr<READER> make_rapidjson_compact_reader();
std::unique_ptr<READER> make_simdjson_reader();
std::unique_ptr<READER> make_pugixml_reader();
std::unique_ptr<READER> make_libconfig_reader();
std::unique_ptr<READER> make_toml_reader();

// Ends the program: a reader refused what it was given, so nothing measured would mean anything.
[[noreturn]] void stop_measuring(const char* reader, const std::string& reason);

#endif
