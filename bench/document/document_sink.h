// What the generator tells of a document, and who hears it.
#ifndef BENCH_DOCUMENT_DOCUMENT_SINK_H
#define BENCH_DOCUMENT_DOCUMENT_SINK_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct GENERATED_VALUE {
  enum KIND { DECIMAL, HEXADECIMAL, TENTHS, BOOLEAN, WORD, TEXT, LIST, REFERENCES };
  enum UNIT { NONE, KILOBYTES, MEGABYTES, MEGAHERTZ };

  KIND kind = DECIMAL;
  UNIT unit = NONE;
  std::uint64_t number = 0;             // DECIMAL, HEXADECIMAL, TENTHS of one, BOOLEAN as 1 or 0
  std::string text;                     // WORD, TEXT without quotes
  std::vector<std::uint64_t> elements;  // LIST
  std::vector<std::string> names;       // REFERENCES

  // The number times its unit, as formats without units state it.
  std::uint64_t scaled_number() const {
    constexpr std::uint64_t FACTORS[] = {1, 1024, 1024 * 1024, 1000000};
    return number * FACTORS[unit];
  }
};

// Hears the document in order. The parameters of a block come before the blocks inside it. Comments
// are "" or one line of text.
class DOCUMENT_SINK {
 public:
  virtual ~DOCUMENT_SINK() = default;
  virtual void begin_block(std::string_view type, std::string_view name,
                           std::string_view comment) = 0;
  virtual void add_parameter(std::string_view name, const GENERATED_VALUE& value,
                             std::string_view comment) = 0;
  virtual void end_block() = 0;
};

#endif
