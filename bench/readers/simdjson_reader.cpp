#include <simdjson.h>

#include <algorithm>
#include <string_view>

#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"

namespace {

namespace dom = simdjson::dom;

constexpr char NAME[] = "simdjson";

dom::element parse(dom::parser& parser, const std::string& text) {
  dom::element root;
  if (parser.parse(text).get(root) != simdjson::SUCCESS) stop_measuring(NAME, "parse");
  return root;
}

bool find(dom::element element, std::string_view path, dom::element& found) {
  for (;;) {
    const std::size_t length = std::min(path.find('.'), path.size());
    if (element.at_key(path.substr(0, length)).get(element) != simdjson::SUCCESS) return false;
    if (length == path.size()) break;
    path.remove_prefix(length + 1);
  }
  found = element;
  return true;
}

std::string text_of(dom::element element) {
  if (element.is_bool()) return bool(element) ? "true" : "false";
  if (element.is_string()) return std::string(std::string_view(element));
  if (element.is_number()) return number_text(double(element));
  std::vector<std::string> elements;
  for (const dom::element item : dom::array(element)) elements.push_back(text_of(item));
  return list_text(elements);
}

class SIMDJSON_READER : public READER {
 public:
  std::string library() const override {
    return std::string(NAME) + " " + std::to_string(simdjson::SIMDJSON_VERSION_MAJOR) + "." +
           std::to_string(simdjson::SIMDJSON_VERSION_MINOR) + "." +
           std::to_string(simdjson::SIMDJSON_VERSION_REVISION);
  }

  std::string make_text(std::size_t parameter_count) const override {
    return make_json_text(parameter_count);
  }

  void read_and_free(const std::string& text) const override {
    dom::parser parser;
    parse(parser, text);
  }

  void read_file_and_free(const char* path) const override {
    dom::parser parser;
    if (parser.load(path).error() != simdjson::SUCCESS) stop_measuring(NAME, "load");
  }

  void keep(const std::string& text) override { m_root = parse(m_parser, text); }

  std::uint64_t look_up(const std::vector<std::string>& paths) const override {
    std::uint64_t sum = 0;
    for (const std::string& path : paths) {
      dom::element element;
      std::uint64_t number = 0;
      if (find(m_root, path, element) && element.get(number) == simdjson::SUCCESS) sum += number;
    }
    return sum;
  }

  // The library has no indented layout; this is its compact one.
  void write(std::FILE* stream) const override {
    const std::string text = simdjson::to_string(m_root);
    std::fwrite(text.data(), 1, text.size(), stream);
  }

  std::string value_text(const std::string& path) const override {
    dom::element element;
    return find(m_root, path, element) ? text_of(element) : "";
  }

 private:
  dom::parser m_parser;
  dom::element m_root;
};

}  // namespace

std::unique_ptr<READER> make_simdjson_reader() {
  return std::make_unique<SIMDJSON_READER>();
}
