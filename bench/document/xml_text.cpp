#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"
#include "bench/document/text_sink.h"

namespace {

// An element for each block and parameter; the elements of lists are <item>s.
class XML_TEXT_SINK : public TEXT_SINK {
 public:
  XML_TEXT_SINK() { m_text = "<?xml version=\"1.0\"?>\n"; }

  void begin_block(std::string_view, std::string_view name, std::string_view comment) override {
    if (!comment.empty()) {
      indent();
      add_comment(comment);
    }
    indent();
    m_open.push_back(plain_name(name));
    add_tag("<", m_open.back());
    m_text += '\n';
    m_level++;
  }

  void add_parameter(std::string_view name, const GENERATED_VALUE& value,
                     std::string_view comment) override {
    indent();
    add_tag("<", name);
    add_value(value);
    add_tag("</", name);
    if (comment.empty()) {
      m_text += '\n';
    } else {
      m_text += "    ";
      add_comment(comment);
    }
  }

  void end_block() override {
    m_level--;
    indent();
    add_tag("</", m_open.back());
    m_open.pop_back();
    m_text += '\n';
  }

 private:
  void add_tag(std::string_view begin, std::string_view name) {
    ((m_text += begin) += name) += '>';
  }

  void add_comment(std::string_view comment) { ((m_text += "<!-- ") += comment) += " -->\n"; }

  template <class ADD>
  void add_item(ADD&& add) {
    add_tag("<", "item");
    add();
    add_tag("</", "item");
  }

  void add_value(const GENERATED_VALUE& value) {
    switch (value.kind) {
      case GENERATED_VALUE::DECIMAL:
        add_number(value.scaled_number());
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
      case GENERATED_VALUE::TEXT:
        m_text += value.text;
        break;
      case GENERATED_VALUE::LIST:
        for (const std::uint64_t element : value.elements) {
          add_item([&] { add_number(element); });
        }
        break;
      case GENERATED_VALUE::REFERENCES:
        if (value.names.size() == 1) {
          m_text += plain_name(value.names.front());
          break;
        }
        for (const std::string& name : value.names) {
          add_item([&] { m_text += plain_name(name); });
        }
        break;
    }
  }

  std::vector<std::string> m_open;
};

}  // namespace

std::string make_xml_text(std::size_t parameter_count) {
  XML_TEXT_SINK sink;
  generate_document(parameter_count, sink);
  return sink.take_text();
}
