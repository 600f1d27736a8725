#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"
#include "bench/document/text_sink.h"

namespace {

constexpr TEXT_SINK::VALUE_STYLE LIBCONFIG_STYLE = {", ", true, true};

class LIBCONFIG_TEXT_SINK : public TEXT_SINK {
 public:
  void begin_block(std::string_view, std::string_view name, std::string_view comment) override {
    m_text += '\n';
    if (!comment.empty()) {
      indent();
      ((m_text += "# ") += comment) += '\n';
    }
    indent();
    (m_text += plain_name(name)) += " :\n";
    indent();
    m_text += "{\n";
    m_level++;
  }

  void add_parameter(std::string_view name, const GENERATED_VALUE& value,
                     std::string_view comment) override {
    indent();
    (m_text += name) += " = ";
    add_plain_value(value, LIBCONFIG_STYLE);
    m_text += ';';
    if (!comment.empty()) (m_text += "    # ") += comment;
    m_text += '\n';
  }

  void end_block() override {
    m_level--;
    indent();
    m_text += "};\n";
  }
};

}  // namespace

std::string make_libconfig_text(std::size_t parameter_count) {
  LIBCONFIG_TEXT_SINK sink;
  generate_document(parameter_count, sink);
  return sink.take_text();
}
