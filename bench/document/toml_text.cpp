#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"
#include "bench/document/text_sink.h"

namespace {

constexpr TEXT_SINK::VALUE_STYLE TOML_STYLE = {", ", true, false};

// A table with its full name for each block, the parameters below it.
class TOML_TEXT_SINK : public TEXT_SINK {
 public:
  void begin_block(std::string_view, std::string_view name, std::string_view comment) override {
    m_path_lengths.push_back(m_path.size());
    if (!m_path.empty()) m_path += '.';
    m_path += plain_name(name);
    m_text += '\n';
    if (!comment.empty()) ((m_text += "# ") += comment) += '\n';
    ((m_text += '[') += m_path) += "]\n";
  }

  void add_parameter(std::string_view name, const GENERATED_VALUE& value,
                     std::string_view comment) override {
    (m_text += name) += " = ";
    add_plain_value(value, TOML_STYLE);
    if (!comment.empty()) (m_text += "    # ") += comment;
    m_text += '\n';
  }

  void end_block() override {
    m_path.resize(m_path_lengths.back());
    m_path_lengths.pop_back();
  }

 private:
  std::string m_path;
  std::vector<std::size_t> m_path_lengths;
};

}  // namespace

std::string make_toml_text(std::size_t parameter_count) {
  TOML_TEXT_SINK sink;
  generate_document(parameter_count, sink);
  return sink.take_text();
}
