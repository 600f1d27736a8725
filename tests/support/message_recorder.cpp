#include "tests/support/message_recorder.h"

MESSAGE_RECORDER::MESSAGE_RECORDER() {
  sbd_host::set_message_handler([this](const sbd_host::MESSAGE& message) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_messages.push_back({message.severity, message.number, message.text_template, message.key,
                          message.text, message.module});
    if (on_message) on_message(m_messages.back());
  });
  sbd_host::set_internal_error_handler([this](const sbd_host::INTERNAL_ERROR& error) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_internal_errors.push_back({error.condition, error.module, error.source, error.line});
  });
}

MESSAGE_RECORDER::~MESSAGE_RECORDER() {
  sbd_host::set_message_handler({});
  sbd_host::set_internal_error_handler({});
}

std::vector<std::string> MESSAGE_RECORDER::texts() const {
  std::vector<std::string> result;
  for (const RECORDED_MESSAGE& message : m_messages) result.push_back(message.text);
  return result;
}

std::vector<std::string> MESSAGE_RECORDER::texts(int number) const {
  std::vector<std::string> result;
  for (const RECORDED_MESSAGE& message : m_messages) {
    if (message.number == number) result.push_back(message.text);
  }
  return result;
}

std::vector<std::string> MESSAGE_RECORDER::conditions() const {
  std::vector<std::string> result;
  for (const RECORDED_ERROR& error : m_internal_errors) result.push_back(error.condition);
  return result;
}

std::vector<int> MESSAGE_RECORDER::numbers() const {
  std::vector<int> result;
  for (const RECORDED_MESSAGE& message : m_messages) result.push_back(message.number);
  return result;
}

void MESSAGE_RECORDER::forget() {
  m_messages.clear();
  m_internal_errors.clear();
}

std::string file_error_text(const std::string& file) {
  return "Can't open or write to System Build Descriptor File " + file;
}

std::string syntax_error_text(const std::string& file, const std::string& token, long line) {
  return "System Build Descriptor File " + file + " contains syntax error \"" + token +
         "\" at line " + std::to_string(line);
}

std::string declaration_error_text(const std::string& file, const std::string& name, long line) {
  return "Block or parameter \"" + name + "\" at line number " + std::to_string(line) +
         " in System Build Descriptor File " + file +
         " cannot be specified more than once in block";
}

std::string reference_error_text(const std::string& file, const std::string& name, long line) {
  return "Parameter or block setting \"" + name + "\" at line " + std::to_string(line) +
         " in file " + file + " contains semantic error";
}

std::string block_error_text(const std::string& file, const std::string& block, long line) {
  return "Block \"" + block + "\" at line number " + std::to_string(line) +
         " of System Build Descriptor File " + file +
         " cannot be used because the block does not have a recognized type or is in an incorrect"
         " hierarchical position";
}
