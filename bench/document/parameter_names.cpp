#include <algorithm>
#include <random>

#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"

namespace {

class NAME_SINK : public DOCUMENT_SINK {
 public:
  explicit NAME_SINK(bool is_for_numbers) : m_is_for_numbers(is_for_numbers) {}

  void begin_block(std::string_view, std::string_view name, std::string_view) override {
    m_lengths.push_back(m_path.size());
    (m_path += name) += '.';
  }
  void add_parameter(std::string_view name, const GENERATED_VALUE& value,
                     std::string_view) override {
    const bool is_number =
        value.kind == GENERATED_VALUE::DECIMAL || value.kind == GENERATED_VALUE::HEXADECIMAL;
    if (is_number || !m_is_for_numbers) m_names.push_back(m_path + std::string(name));
  }
  void end_block() override {
    m_path.resize(m_lengths.back());
    m_lengths.pop_back();
  }

  std::vector<std::string> take_names() { return std::move(m_names); }

 private:
  const bool m_is_for_numbers;
  std::string m_path;
  std::vector<std::size_t> m_lengths;
  std::vector<std::string> m_names;
};

std::vector<std::string> make_names(std::size_t parameter_count, bool is_for_numbers) {
  NAME_SINK sink(is_for_numbers);
  generate_document(parameter_count, sink);
  return sink.take_names();
}

}  // namespace

std::vector<std::string> make_parameter_names(std::size_t parameter_count) {
  return make_names(parameter_count, false);
}

std::vector<std::string> make_number_names(std::size_t parameter_count, std::size_t sample) {
  std::vector<std::string> names = make_names(parameter_count, true);
  std::shuffle(names.begin(), names.end(), std::mt19937(2));
  names.resize(std::min(names.size(), sample));
  return names;
}

std::string plain_name(std::string_view name) {
  std::string plain;
  for (const char c : name) {
    if (c == '[') plain += '_';
    if (c != '[' && c != ']') plain += c;
  }
  return plain;
}
