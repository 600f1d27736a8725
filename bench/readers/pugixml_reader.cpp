#include <pugixml.hpp>

#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"

namespace {

constexpr char NAME[] = "pugixml";

void read(pugi::xml_document& document, const std::string& text) {
  if (!document.load_buffer(text.data(), text.size())) stop_measuring(NAME, "parse");
}

// Values have no kinds of their own in XML; what looks like a number is one.
std::string text_of(const std::string& text) {
  char* end = nullptr;
  const double number = text.rfind("0x", 0) == 0
                            ? static_cast<double>(std::strtoull(text.c_str(), &end, 16))
                            : std::strtod(text.c_str(), &end);
  return !text.empty() && *end == '\0' ? number_text(number) : text;
}

class PUGIXML_READER : public READER {
 public:
  std::string library() const override {
    return std::string(NAME) + " " + std::to_string(PUGIXML_VERSION / 1000) + "." +
           std::to_string(PUGIXML_VERSION / 10 % 100);
  }

  std::string make_text(std::size_t parameter_count) const override {
    return make_xml_text(parameter_count);
  }

  void read_and_free(const std::string& text) const override {
    pugi::xml_document document;
    read(document, text);
  }

  void read_file_and_free(const char* path) const override {
    pugi::xml_document document;
    if (!document.load_file(path)) stop_measuring(NAME, "load");
  }

  void keep(const std::string& text) override { read(m_document, text); }

  std::uint64_t look_up(const std::vector<std::string>& paths) const override {
    std::uint64_t sum = 0;
    for (const std::string& path : paths) {
      sum += m_document.first_element_by_path(path.c_str(), '.').text().as_ullong();
    }
    return sum;
  }

  void write(std::FILE* stream) const override {
    pugi::xml_writer_file writer(stream);
    m_document.save(writer, "    ");
  }

  std::string value_text(const std::string& path) const override {
    const pugi::xml_node node = m_document.first_element_by_path(path.c_str(), '.');
    if (!node.child("item")) return text_of(node.text().get());
    std::vector<std::string> elements;
    for (const pugi::xml_node item : node.children("item")) {
      elements.push_back(text_of(item.text().get()));
    }
    return list_text(elements);
  }

 private:
  pugi::xml_document m_document;
};

}  // namespace

std::unique_ptr<READER> make_pugixml_reader() {
  return std::make_unique<PUGIXML_READER>();
}
