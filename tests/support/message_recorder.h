// Records what the library posts.
#ifndef TESTS_SUPPORT_MESSAGE_RECORDER_H
#define TESTS_SUPPORT_MESSAGE_RECORDER_H

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "host/sbd_host.h"

struct RECORDED_MESSAGE {
  sbd_host::SEVERITY severity;
  int number;
  std::string text_template, key, text, module;
};

struct RECORDED_ERROR {
  std::string condition, module, source;
  int line;
};

// Receives all messages and internal errors while it exists; the default handlers are back
// afterwards. Only one may exist at a time. Threads may post at once.
class MESSAGE_RECORDER {
 public:
  MESSAGE_RECORDER();
  ~MESSAGE_RECORDER();
  MESSAGE_RECORDER(const MESSAGE_RECORDER&) = delete;
  MESSAGE_RECORDER& operator=(const MESSAGE_RECORDER&) = delete;

  // Is called with each message after it was recorded.
  std::function<void(const RECORDED_MESSAGE&)> on_message;

  const std::vector<RECORDED_MESSAGE>& messages() const { return m_messages; }
  const std::vector<RECORDED_ERROR>& internal_errors() const { return m_internal_errors; }

  // The texts of all messages, of those with one number, and of all internal errors.
  std::vector<std::string> texts() const;
  std::vector<std::string> texts(int number) const;
  std::vector<std::string> conditions() const;

  std::vector<int> numbers() const;
  bool is_silent() const { return m_messages.empty() && m_internal_errors.empty(); }
  void forget();

 private:
  std::mutex m_mutex;
  std::vector<RECORDED_MESSAGE> m_messages;
  std::vector<RECORDED_ERROR> m_internal_errors;
};

// The rendered texts of the messages that reading can post.
std::string file_error_text(const std::string& file);
std::string syntax_error_text(const std::string& file, const std::string& token, long line);
std::string declaration_error_text(const std::string& file, const std::string& name, long line);
std::string reference_error_text(const std::string& file, const std::string& name, long line);
std::string block_error_text(const std::string& file, const std::string& block, long line);

#endif
