#include <rapidjson/filereadstream.h>
#include <rapidjson/filewritestream.h>
#include <rapidjson/pointer.h>
#include <rapidjson/prettywriter.h>

#include <algorithm>
#include <string_view>

#include "bench/document/document_texts.h"
#include "bench/readers/rapidjson_parse.h"
#include "bench/readers/reader.h"

namespace {

constexpr char NAME[] = "RapidJSON";

void read(rapidjson::Document& document, const std::string& text) {
  if (!parse_rapidjson(document, text.c_str())) stop_measuring(NAME, "parse");
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

std::string text_of(const rapidjson::Value& value) {
  if (value.IsBool()) return value.GetBool() ? "true" : "false";
  if (value.IsString()) return value.GetString();
  if (value.IsNumber()) return number_text(value.GetDouble());
  std::vector<std::string> elements;
  for (const rapidjson::Value& element : value.GetArray()) elements.push_back(text_of(element));
  return list_text(elements);
}

class RAPIDJSON_READER : public READER {
 public:
  explicit RAPIDJSON_READER(bool is_compact) : m_is_compact(is_compact) {}

  std::string library() const override { return std::string(NAME) + " " RAPIDJSON_VERSION_STRING; }

  std::string make_text(std::size_t parameter_count) const override {
    return m_is_compact ? make_compact_json_text(parameter_count) : make_json_text(parameter_count);
  }

  void read_and_free(const std::string& text) const override {
    rapidjson::Document document;
    read(document, text);
  }

  void read_file_and_free(const char* path) const override {
    std::FILE* const file = std::fopen(path, "rb");
    if (file == nullptr) stop_measuring(NAME, "open");
    char buffer[65536];
    rapidjson::FileReadStream in(file, buffer, sizeof buffer);
    rapidjson::Document document;
    if (document.ParseStream(in).HasParseError()) stop_measuring(NAME, "parse");
    std::fclose(file);
  }

  void keep(const std::string& text) override { read(m_document, text); }

  std::uint64_t look_up(const std::vector<std::string>& paths) const override {
    std::uint64_t sum = 0;
    for (const std::string& path : paths) {
      const rapidjson::Value* const value = find(m_document, path);
      if (value != nullptr && value->IsUint64()) sum += value->GetUint64();
    }
    return sum;
  }

  void write(std::FILE* stream) const override {
    char buffer[65536];
    rapidjson::FileWriteStream out(stream, buffer, sizeof buffer);
    if (m_is_compact) {
      rapidjson::Writer<rapidjson::FileWriteStream> writer(out);
      m_document.Accept(writer);
    } else {
      rapidjson::PrettyWriter<rapidjson::FileWriteStream> writer(out);
      m_document.Accept(writer);
    }
  }

  std::string value_text(const std::string& path) const override {
    const rapidjson::Value* const value = find(m_document, path);
    return value != nullptr ? text_of(*value) : "";
  }

 protected:
  rapidjson::Document m_document;

 private:
  const bool m_is_compact;
};

// Looks up by the library's own kind of path.
class RAPIDJSON_POINTER_READER : public RAPIDJSON_READER {
 public:
  RAPIDJSON_POINTER_READER() : RAPIDJSON_READER(false) {}

  std::string path_of(const std::string& name) const override {
    std::string path = "/" + plain_name(name);
    std::replace(path.begin(), path.end(), '.', '/');
    return path;
  }

  std::uint64_t look_up(const std::vector<std::string>& paths) const override {
    std::uint64_t sum = 0;
    for (const std::string& path : paths) {
      const rapidjson::Pointer pointer(path.data(), path.size());
      const rapidjson::Value* const value = pointer.Get(m_document);
      if (value != nullptr && value->IsUint64()) sum += value->GetUint64();
    }
    return sum;
  }

  std::string value_text(const std::string& path) const override {
    const rapidjson::Value* const value =
        rapidjson::Pointer(path.data(), path.size()).Get(m_document);
    return value != nullptr ? text_of(*value) : "";
  }
};

}  // namespace

std::unique_ptr<READER> make_rapidjson_reader() {
  return std::make_unique<RAPIDJSON_READER>(false);
}

std::unique_ptr<READER> make_rapidjson_compact_reader() {
  return std::make_unique<RAPIDJSON_READER>(true);
}

std::unique_ptr<READER> make_rapidjson_pointer_reader() {
  return std::make_unique<RAPIDJSON_POINTER_READER>();
}
