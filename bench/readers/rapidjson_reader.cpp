#include <rapidjson/document.h>

#include <string_view>

#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"

namespace {

constexpr char NAME[] = "RapidJSON";

void read(rapidjson::Document& document, const std::string& text) {
  if (document.Parse(text.c_str()).HasParseError()) stop_measuring(NAME, "parse");
}

// Searches the path part by part without making strings, which is the least a caller can do.
const rapidjson::Value* find(const rapidjson::Document& document, std::string_view path) {
  const rapidjson::Value* value = &document;
  for (;;) {
    const std::size_t length = std::min(path.find('.'), path.size());
    const rapidjson::Value key(
        rapidjson::StringRef(path.data(), static_cast<rapidjson::SizeType>(length)));
    const auto member = value->FindMember(key);
    if (member == value->MemberEnd()) return nullptr;
    value = &member->value;
    if (length == path.size()) return value;
    path.remove_prefix(length + 1);
  }
}

class RAPIDJSON_READER : public READER {
 public:
  explicit RAPIDJSON_READER(bool is_compact) : m_is_compact(is_compact) {}

  std::string make_text(std::size_t parameter_count) const override {
    return m_is_compact ? make_compact_json_text(parameter_count) : make_json_text(parameter_count);
  }

  void read_and_free(const std::string& text) const override {
    rapidjson::Document document;
    read(document, text);
  }

  void keep(const std::string& text) override { read(m_document, text); }

  std::size_t look_up(const std::vector<std::string>& names) const override {
    std::size_t found = 0;
    for (const std::string& name : names) {
      const rapidjson::Value* const value = find(m_document, name);
      found += value != nullptr && value->IsUint64();
    }
    return found;
  }

 private:
  const bool m_is_compact;
  rapidjson::Document m_document;
};

}  // namespace

std::unique_ptr<READER> make_rapidjson_reader() {
  return std::make_unique<RAPIDJSON_READER>(false);
}

std::unique_ptr<READER> make_rapidjson_compact_reader() {
  return std::make_unique<RAPIDJSON_READER>(true);
}
