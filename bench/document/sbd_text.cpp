#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"
#include "bench/document/text_sink.h"

namespace {

constexpr const char* UNITS[] = {"", "K", "M", "MHz"};

class SBD_TEXT_SINK : public TEXT_SINK {
 public:
  void begin_block(std::string_view type, std::string_view name,
                   std::string_view comment) override {
    m_text += '\n';
    if (!comment.empty()) {
      indent();
      ((m_text += "# ") += comment) += '\n';
    }
    indent();
    (((m_text += type) += ' ') += name) += '\n';
    indent();
    m_text += "{\n";
    m_level++;
  }

  void add_parameter(std::string_view name, const GENERATED_VALUE& value,
                     std::string_view comment) override {
    indent();
    m_text += name;
    m_text += value.kind == GENERATED_VALUE::REFERENCES ? " " : " = ";
    add_value(value);
    m_text += ';';
    if (!comment.empty()) (m_text += "    # ") += comment;
    m_text += '\n';
  }

  void end_block() override {
    m_level--;
    indent();
    m_text += "}\n";
  }

 private:
  void add_value(const GENERATED_VALUE& value) {
    switch (value.kind) {
      case GENERATED_VALUE::DECIMAL:
        add_number(value.number);
        m_text += UNITS[value.unit];
        break;
      case GENERATED_VALUE::HEXADECIMAL:
        add_hexadecimal(value.number);
        break;
      case GENERATED_VALUE::TENTHS:
        add_tenths(value.number);
        break;
      case GENERATED_VALUE::BOOLEAN:
        m_text += value.number != 0 ? "true" : "false";
        break;
      case GENERATED_VALUE::WORD:
        m_text += value.text;
        break;
      case GENERATED_VALUE::TEXT:
        add_quoted(value.text);
        break;
      case GENERATED_VALUE::LIST:
        m_text += '{';
        add_joined(value.elements, ", ", [this](std::uint64_t element) { add_number(element); });
        m_text += '}';
        break;
      case GENERATED_VALUE::REFERENCES:
        m_text += "< ";
        add_joined(value.names, ", ", [this](const std::string& name) { m_text += name; });
        m_text += " >";
        break;
    }
  }
};

}  // namespace

std::string make_sbd_text(std::size_t parameter_count) {
  SBD_TEXT_SINK sink;
  generate_document(parameter_count, sink);
  return sink.take_text();
}
