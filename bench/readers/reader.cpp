#include "bench/readers/reader.h"

#include <cstdio>
#include <cstdlib>

#include "bench/document/document_texts.h"

std::string READER::path_of(const std::string& name) const {
  return plain_name(name);
}

std::string number_text(double number) {
  char text[64];
  std::snprintf(text, sizeof text, "%.1f", number);
  return text;
}

std::string list_text(const std::vector<std::string>& elements) {
  std::string text;
  for (const std::string& element : elements) (text += text.empty() ? "[" : ", ") += element;
  return text += ']';
}

void stop_measuring(const char* reader, const std::string& reason) {
  std::fprintf(stderr, "bench: %s: %s\n", reader, reason.c_str());
  std::exit(1);
}
