#include "tests/access/access_support.h"

#include <stdio.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/support/tree_builder.h"

namespace {

// A stream that ends up in a string.
class TEXT_STREAM {
 public:
  TEXT_STREAM() : m_stream(open_memstream(&m_text, &m_length)) {
    if (m_stream == nullptr) throw std::runtime_error("no memory stream");
  }
  ~TEXT_STREAM() {
    if (m_stream != nullptr) std::fclose(m_stream);
    std::free(m_text);
  }
  TEXT_STREAM(const TEXT_STREAM&) = delete;
  TEXT_STREAM& operator=(const TEXT_STREAM&) = delete;

  std::FILE* stream() { return m_stream; }

  std::string take() {
    std::fclose(m_stream);
    m_stream = nullptr;
    return {m_text, m_length};
  }

 private:
  char* m_text = nullptr;
  std::size_t m_length = 0;
  std::FILE* m_stream;
};

}  // namespace

std::string written(const SBD_FILE_PARSER& document) {
  TEXT_STREAM text;
  EXPECT_TRUE(document.write(text.stream(), root_of(document), 0));
  return text.take();
}

std::string written(SBD_NODE* node, unsigned long indent) {
  const SBD_FILE_PARSER document;
  TEXT_STREAM text;
  EXPECT_TRUE(document.write(text.stream(), node, indent));
  return text.take();
}

std::string written(const SBD_PARA_VALUE& value) {
  const SBD_FILE_PARSER document;
  TEXT_STREAM text;
  document.write(text.stream(), const_cast<SBD_PARA_VALUE*>(&value));
  return text.take();
}

std::string file_content(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  EXPECT_TRUE(stream.is_open()) << path;
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string state_of(const SBD_FILE_PARSER& document) {
  std::string state = written(document);
  for (unsigned long bucket = 0; bucket < SBD_FILE_PARSER::SBD_SYMBOL_TABLE::k_bucket_count;
       bucket++) {
    for (const SBD_SYMBOL* const symbol : chain_of(document, bucket)) {
      SBD_STRING name;
      EXPECT_TRUE(document.get_ref_name(symbol->node, name));
      state += std::to_string(bucket) + ": " + name.c_str() + " " + std::to_string(symbol->line) +
               " " + std::to_string(symbol->type) + "\n";
    }
  }
  return state;
}

std::string rendered(int number, const std::string& text) {
  if (number == k_error) return "System Build Descriptor File error: " + text;
  if (number == k_warning) return "System Build Descriptor File warning: " + text;
  return file_error_text(text);
}

testing::AssertionResult posted(MESSAGE_RECORDER& recorder, int number, const std::string& text) {
  const auto messages = recorder.messages();
  std::vector<std::string> conditions = recorder.conditions();
  // Looking up an empty name is reported besides.
  conditions.erase(std::remove(conditions.begin(), conditions.end(), k_empty_name),
                   conditions.end());
  recorder.forget();
  if (!conditions.empty()) return testing::AssertionFailure() << "internal: " << conditions.front();
  if (messages.size() != 1) {
    testing::AssertionResult failure = testing::AssertionFailure();
    failure << messages.size() << " messages instead of: " << text;
    for (const RECORDED_MESSAGE& message : messages) failure << "\n" << message.text;
    return failure;
  }
  const RECORDED_MESSAGE& message = messages.front();
  const auto severity =
      number == k_warning ? sbd_host::SEVERITY::WARNING : sbd_host::SEVERITY::ERROR;
  if (message.number != number || message.severity != severity ||
      message.text != rendered(number, text)) {
    return testing::AssertionFailure() << "got " << message.number << ": " << message.text
                                       << "\nwant " << number << ": " << rendered(number, text);
  }
  return testing::AssertionSuccess();
}

SBD_STRING_LIST string_list(const std::vector<std::string>& names) {
  SBD_STRING_LIST list;
  for (const std::string& name : names) list.emplace_back(name.c_str());
  return list;
}

std::string first_of_chain(const SBD_FILE_PARSER& document, const char* name) {
  const std::vector<std::string> names = chain_names(document, name);
  return names.empty() ? "" : names.front();
}
