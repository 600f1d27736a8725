// The host's message service, as the library sees it.
//
// This header declares the interface only. The host program, or the standalone implementation in
// host/, defines these classes at link time.
#ifndef H_MSG_SERVICE_H
#define H_MSG_SERVICE_H

#include <cstdarg>
#include <cstddef>

#include "h/host_api.h"

class MSG_REPORT;   // A report that messages can be gathered under; the host's own.
class MSG_CONTENT;  // What a message object holds; the host's own.

// Anything that can be posted.
class HOST_API MSG_POST {
 public:
  virtual ~MSG_POST();

  // Delivers the message to `target`, or to the host's default destination when it is null.
  virtual void post(MSG_REPORT* target) = 0;
};

// A message with a severity, a template with its arguments, and the tag of its module.
class HOST_API MSG_BASE : public MSG_POST {
 public:
  ~MSG_BASE() override;
  MSG_BASE(const MSG_BASE&) = delete;
  MSG_BASE& operator=(const MSG_BASE&) = delete;

  // Message objects live in the host's memory, charged to the module that makes them.
  static void* operator new(std::size_t size) = delete;
  static void* operator new(std::size_t size, const char* module_tag);
  static void operator delete(void* block, const char* module_tag) noexcept;
  static void operator delete(void* block) noexcept;

  // Fills the message numbered `id`. The template is "text/KEY"; its placeholders are "%N!s!"
  // (const char*) and "%N!d!" (int), where N is the position of the argument, from 1 on.
  void fill_args(const char* message_template, int id, ...);

  // Fills a message without number or key by the rules of vprintf.
  void fill_args(const char* format, va_list arguments);

  // Names the module that the message comes from.
  void set_module(const char* module_tag);

  void post(MSG_REPORT* target) override;

 protected:
  // How grave a message is.
  enum SEVERITY { ERROR_SEVERITY = 0, WARNING_SEVERITY = 1, DEBUG_SEVERITY = 2 };
  MSG_BASE(SEVERITY severity, MSG_REPORT* parent);  // Not filled yet.

 private:
  MSG_CONTENT* m_content;
};

// An error. A non-null `parent` gathers the message under that report.
class HOST_API MSG_E : public MSG_BASE {
 public:
  explicit MSG_E(MSG_REPORT* parent);  // Not filled yet.
};

// A warning.
class HOST_API MSG_W : public MSG_BASE {
 public:
  explicit MSG_W(MSG_REPORT* parent);  // Not filled yet.
};

// A debug message.
class HOST_API MSG_D : public MSG_BASE {
 public:
  explicit MSG_D(MSG_REPORT* parent);  // Not filled yet.
};

// Reports that a condition which must always hold does not. Whether the process goes on is the
// host's decision; when it returns, the caller carries on with a safe value.
class HOST_API MSG_INTERNAL_ERROR {
 public:
  // `source` is a source file without path and extension; the texts live until this returns.
  static void report(const char* condition, const char* module, const char* source, int line);
};

#endif
