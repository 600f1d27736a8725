#include <algorithm>
#include <random>

#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"

namespace {

class NAME_SINK : public DOCUMENT_SINK {
 public:
  NAME_SINK(std::size_t parameter_count, std::size_t sample)
      : m_parameters(parameter_count), m_sample(sample) {}

  void begin_block(std::string_view, std::string_view name, std::string_view) override {
    m_lengths.push_back(m_path.size());
    (m_path += name) += '.';
  }
  void add_parameter(std::string_view name, const GENERATED_VALUE&, std::string_view) override {
    const std::size_t index = m_index++;
    if (index * m_sample / m_parameters == (index + 1) * m_sample / m_parameters) return;
    m_names.push_back(m_path + std::string(name));
  }
  void end_block() override {
    m_path.resize(m_lengths.back());
    m_lengths.pop_back();
  }

  std::vector<std::string> take_names() { return std::move(m_names); }

 private:
  const std::size_t m_parameters;
  const std::size_t m_sample;
  std::size_t m_index = 0;
  std::string m_path;
  std::vector<std::size_t> m_lengths;
  std::vector<std::string> m_names;
};

}  // namespace

std::vector<std::string> make_parameter_names(std::size_t parameter_count, std::size_t sample) {
  NAME_SINK sink(parameter_count, std::min(sample, parameter_count));
  generate_document(parameter_count, sink);
  std::vector<std::string> names = sink.take_names();
  std::shuffle(names.begin(), names.end(), std::mt19937(2));
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
