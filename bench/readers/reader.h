// One library that reads the document in its own format.
#ifndef BENCH_READERS_READER_H
#define BENCH_READERS_READER_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

class READER {
 public:
  virtual ~READER() = default;

  // Its name with its version.
  virtual std::string library() const = 0;

  virtual std::string make_text(std::size_t parameter_count) const = 0;

  // Builds a document from the text and destroys it again.
  virtual void read_and_free(const std::string& text) const = 0;

  // The same from a file, as the library itself reads files.
  virtual void read_file_and_free(const char* path) const = 0;

  // Keeps the document of the text for what follows.
  virtual void keep(const std::string& text) = 0;

  // A full name of ours as this library looks it up.
  virtual std::string path_of(const std::string& name) const;

  // Looks whole numbers up by their paths; returns their sum.
  virtual std::uint64_t look_up(const std::vector<std::string>& paths) const = 0;

  // Writes the document in the library's own indented layout.
  virtual void write(std::FILE* stream) const = 0;

  // The value at a path in a form that is the same for all libraries: numbers with one
  // decimal, texts without quotes, lists as "[a, b]"; "" when there is none.
  virtual std::string value_text(const std::string& path) const = 0;
};

std::unique_ptr<READER> make_sbd_reader();
std::unique_ptr<READER> make_rapidjson_reader();
std::unique_ptr<READER> make_rapidjson_compact_reader();
std::unique_ptr<READER> make_rapidjson_pointer_reader();
std::unique_ptr<READER> make_simdjson_reader();
std::unique_ptr<READER> make_pugixml_reader();
std::unique_ptr<READER> make_libconfig_reader();
std::unique_ptr<READER> make_toml_reader();

// Forms of value_text.
std::string number_text(double number);
std::string list_text(const std::vector<std::string>& elements);

// Ends the program: a reader refused what it was given, so nothing measured would mean anything.
[[noreturn]] void stop_measuring(const char* reader, const std::string& reason);

#endif
