#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"
#include "sbd/sbd_file_parser.h"

namespace {

using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
using SBD_STATEMENT = SBD_FILE_PARSER::SBD_STATEMENT;

constexpr char NAME[] = "sbd";

void read(SBD_FILE_PARSER& document, const std::string& text) {
  if (!document.read_text(text.data(), text.size(), "bench.sbd")) stop_measuring(NAME, "read");
}

std::string text_of(const SBD_PARA_VALUE& value) {
  const double factor = static_cast<double>(SBD_FILE_PARSER::get_unit_value(value.unit));
  std::vector<std::string> elements;
  switch (value.type) {
    case SBD_PARA_VALUE::VT_BOOL:
      return value.flag != 0 ? "true" : "false";
    case SBD_PARA_VALUE::VT_STRING: {
      const std::string text = value.text;
      return text.front() == '"' ? text.substr(1, text.size() - 2) : text;
    }
    case SBD_PARA_VALUE::VT_LIST:
      for (const SBD_PARA_VALUE* element : *value.list) elements.push_back(text_of(*element));
      return list_text(elements);
    default:
      return number_text(value.number * factor);
  }
}

std::string text_of(const SBD_FILE_PARSER::SBD_PARA_REF* reference) {
  std::vector<std::string> names;
  for (; reference != nullptr; reference = reference->next) {
    names.push_back(plain_name(reference->name));
  }
  return names.size() == 1 ? names.front() : list_text(names);
}

class SBD_READER : public READER {
 public:
  std::string library() const override { return NAME; }

  std::string make_text(std::size_t parameter_count) const override {
    return make_sbd_text(parameter_count);
  }

  void read_and_free(const std::string& text) const override {
    SBD_FILE_PARSER document;
    read(document, text);
  }

  void read_file_and_free(const char* path) const override {
    SBD_FILE_PARSER document;
    if (!document.read(path)) stop_measuring(NAME, "read");
  }

  void keep(const std::string& text) override { read(m_document, text); }

  std::string path_of(const std::string& name) const override { return name; }

  std::uint64_t look_up(const std::vector<std::string>& paths) const override {
    std::uint64_t sum = 0;
    for (const std::string& path : paths) {
      unsigned long number = 0;
      if (m_document.get_value(path.c_str(), number)) sum += number;
    }
    return sum;
  }

  void write(std::FILE* stream) const override {
    m_document.write(stream, m_document.get_parser_para().root, 0);
  }

  std::string value_text(const std::string& path) const override {
    const SBD_FILE_PARSER::SBD_NODE* const node = m_document.get_ref_object(path.c_str(), nullptr);
    if (node == nullptr || node->type != SBD_FILE_PARSER::SBD_NODE::NT_STATEMENT) return "";
    const SBD_STATEMENT& statement = *node->statement;
    return statement.type == SBD_STATEMENT::ST_REFERENCE ? text_of(statement.reference)
                                                         : text_of(*statement.value);
  }

 private:
  SBD_FILE_PARSER m_document;
};

}  // namespace

std::unique_ptr<READER> make_sbd_reader() {
  return std::make_unique<SBD_READER>();
}
