#include <toml++/toml.h>
#include <sstream>

#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"

namespace {

constexpr char NAME[] = "toml++";

toml::table parse(const std::string& text) {
  try {
    return toml::parse(text);
  } catch (const toml::parse_error& fault) {
    stop_measuring(NAME, std::string(fault.description()));
  }
}

std::string text_of(const toml::node& node) {
  if (node.is_boolean()) return node.value_or(false) ? "true" : "false";
  if (node.is_string()) return node.value_or(std::string());
  if (node.is_number()) return number_text(node.value_or(0.0));
  std::vector<std::string> elements;
  for (const toml::node& element : *node.as_array()) elements.push_back(text_of(element));
  return list_text(elements);
}

class TOML_READER : public READER {
 public:
  std::string library() const override {
    return std::string(NAME) + " " + std::to_string(TOML_LIB_MAJOR) + "." +
           std::to_string(TOML_LIB_MINOR) + "." + std::to_string(TOML_LIB_PATCH);
  }

  std::string make_text(std::size_t parameter_count) const override {
    return make_toml_text(parameter_count);
  }

  void read_and_free(const std::string& text) const override { parse(text); }

  void read_file_and_free(const char* path) const override {
    try {
      const toml::table table = toml::parse_file(path);
    } catch (const toml::parse_error& fault) {
      stop_measuring(NAME, std::string(fault.description()));
    }
  }

  void keep(const std::string& text) override { m_table = parse(text); }

  std::uint64_t look_up(const std::vector<std::string>& paths) const override {
    std::uint64_t sum = 0;
    for (const std::string& path : paths) {
      sum += static_cast<std::uint64_t>(m_table.at_path(path).value_or(std::int64_t{0}));
    }
    return sum;
  }

  void write(std::FILE* stream) const override {
    std::ostringstream out;
    out << m_table;
    const std::string text = out.str();
    std::fwrite(text.data(), 1, text.size(), stream);
  }

  std::string value_text(const std::string& path) const override {
    const toml::node_view<const toml::node> found = m_table.at_path(path);
    return found ? text_of(*found.node()) : "";
  }

 private:
  toml::table m_table;
};

}  // namespace

std::unique_ptr<READER> make_toml_reader() {
  return std::make_unique<TOML_READER>();
}
