#include "bench/document/document_generator.h"
#include "bench/document/document_texts.h"
#include "bench/document/text_sink.h"

namespace {

constexpr TEXT_SINK::VALUE_STYLE INDENTED_STYLE = {", ", false, false};
constexpr TEXT_SINK::VALUE_STYLE COMPACT_STYLE = {",", false, false};

class JSON_TEXT_SINK : public TEXT_SINK {
 public:
  explicit JSON_TEXT_SINK(bool is_compact) : m_is_compact(is_compact) { open(); }

  void begin_block(std::string_view, std::string_view name, std::string_view) override {
    begin_member(name);
    open();
  }

  void add_parameter(std::string_view name, const GENERATED_VALUE& value,
                     std::string_view) override {
    begin_member(name);
    add_plain_value(value, m_is_compact ? COMPACT_STYLE : INDENTED_STYLE);
  }

  void end_block() override { close(); }

  std::string take_document() {
    close();
    return take_text();
  }

 private:
  void open() {
    m_text += '{';
    m_level++;
    m_is_empty = true;
  }

  void close() {
    m_level--;
    m_is_empty = false;
    break_line();
    m_text += '}';
  }

  void break_line() {
    if (m_is_compact) return;
    m_text += '\n';
    indent();
  }

  void begin_member(std::string_view name) {
    if (!m_is_empty) m_text += ',';
    m_is_empty = false;
    break_line();
    add_quoted(plain_name(name));
    m_text += m_is_compact ? ":" : ": ";
  }

  const bool m_is_compact;
  bool m_is_empty = true;  // Nothing in the innermost object yet.
};

std::string make_text(std::size_t parameter_count, bool is_compact) {
  JSON_TEXT_SINK sink(is_compact);
  generate_document(parameter_count, sink);
  return sink.take_document();
}

}  // namespace

std::string make_json_text(std::size_t parameter_count) {
  return make_text(parameter_count, false);
}

std::string make_compact_json_text(std::size_t parameter_count) {
  return make_text(parameter_count, true);
}
