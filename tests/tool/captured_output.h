// An output whose text a test can look at.
#ifndef TESTS_TOOL_CAPTURED_OUTPUT_H
#define TESTS_TOOL_CAPTURED_OUTPUT_H

#include <cstdio>
#include <string>

#include "tools/output.h"

class CAPTURED_OUTPUT {
 public:
  CAPTURED_OUTPUT()
      : m_stream(std::tmpfile()), m_output(m_stream, sbd_tool::OUTPUT::FAILURE::THROWS) {}
  ~CAPTURED_OUTPUT() { std::fclose(m_stream); }
  CAPTURED_OUTPUT(const CAPTURED_OUTPUT&) = delete;
  CAPTURED_OUTPUT& operator=(const CAPTURED_OUTPUT&) = delete;

  sbd_tool::OUTPUT& output() { return m_output; }

  // What was written so far.
  std::string text() {
    std::string text;
    std::rewind(m_stream);
    for (int c = std::fgetc(m_stream); c != EOF; c = std::fgetc(m_stream)) {
      text += static_cast<char>(c);
    }
    return text;
  }

 private:
  std::FILE* m_stream;
  sbd_tool::OUTPUT m_output;
};

#endif
