#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"
#include "sbd/sbd_file_parser.h"

namespace {

using SBD_PARA_VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;

constexpr char NAME[] = "sbd";

void read(SBD_FILE_PARSER& document, const std::string& text) {
  if (!document.read_text(text.data(), text.size(), "bench.sbd")) stop_measuring(NAME, "read");
}

class SBD_READER : public READER {
 public:
  std::string make_text(std::size_t parameter_count) const override {
    return make_sbd_text(parameter_count);
  }

  void read_and_free(const std::string& text) const override {
    SBD_FILE_PARSER document;
    read(document, text);
  }

  void keep(const std::string& text) override { read(m_document, text); }

  std::size_t look_up(const std::vector<std::string>& names) const override {
    std::size_t found = 0;
    unsigned long number = 0;
    for (const std::string& name : names) found += m_document.get_value(name.c_str(), number);
    return found;
  }

 private:
  SBD_FILE_PARSER m_document;
};

}  // namespace

std::unique_ptr<READER> make_sbd_reader() {
  return std::make_unique<SBD_READER>();
}
