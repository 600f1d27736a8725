// A stream that notices when nothing more can be written.
#ifndef TOOLS_OUTPUT_H
#define TOOLS_OUTPUT_H

#include <cstdio>
#include <string_view>

namespace sbd_tool {

// Thrown where a checked output can't be written; ends the program.
struct WRITE_FAILURE {
  int error = 0;  // As in errno.
};

class OUTPUT {
 public:
  enum class FAILURE { THROWS, IS_IGNORED };

  OUTPUT(std::FILE* stream, FAILURE failure) : m_stream(stream), m_failure(failure) {}

  void write(std::string_view text);
  void write_line(std::string_view text);
  void flush();

  std::FILE* stream() const { return m_stream; }

 private:
  void fail() const;

  std::FILE* m_stream;
  FAILURE m_failure;
};

}  // namespace sbd_tool

#endif
