// The standalone message service: fills messages and hands them to a handler.
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "h/mem_alloc_sys.h"
#include "h/msg_service.h"
#include "host/handler_slot.h"
#include "host/sbd_host.h"

// The strings are on the ordinary heap: what the host keeps of a message is not the module's.
class MSG_CONTENT {
 public:
  explicit MSG_CONTENT(sbd_host::SEVERITY message_severity) : severity(message_severity) {}

  sbd_host::SEVERITY severity;
  int number = 0;
  std::string text_template;
  std::string key;
  std::string text;
  std::string module;
};

namespace {

const char* or_empty(const char* text) {
  return text ? text : "";
}

// ---- Templates ---------------------------------------------------------------------------------

// Far above what a message needs. It keeps a mistyped position from walking off the argument list.
constexpr std::size_t k_most_arguments = 99;

struct PLACEHOLDER {
  std::size_t length;    // In the template; 0 if there is no placeholder.
  std::size_t position;  // Of its argument, from 1 on.
  bool is_number;
};

struct ARGUMENT {
  bool is_number;
  int number;
  const char* text;
};

struct ARGUMENTS {
  std::size_t count = 0;  // Up to the last one that the template mentions.
  std::array<ARGUMENT, k_most_arguments> list{};
};

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}
bool is_key_char(char c) {
  return (c >= 'A' && c <= 'Z') || is_digit(c) || c == '_';
}

// The placeholder that starts at the "%" at `at`.
PLACEHOLDER get_placeholder(std::string_view text, std::size_t at) {
  constexpr PLACEHOLDER NONE = {0, 0, false};
  std::size_t end = at + 1;
  std::size_t position = 0;
  for (; end < text.size() && is_digit(text[end]); end++) {
    position = position * 10 + static_cast<std::size_t>(text[end] - '0');
    if (position > k_most_arguments) return NONE;
  }
  if (position == 0) return NONE;

  const std::string_view type = text.substr(end, 3);
  if (type != "!s!" && type != "!d!") return NONE;
  return {end + type.size() - at, position, type == "!d!"};
}

// Sorts out what type each argument has. Where placeholders disagree a number it is, as that can
// be printed whatever was passed, while a text has to be followed.
ARGUMENTS expect_arguments(std::string_view text) {
  ARGUMENTS arguments;
  for (std::size_t at = text.find('%'); at != std::string_view::npos; at = text.find('%', at)) {
    const PLACEHOLDER placeholder = get_placeholder(text, at);
    at += std::max<std::size_t>(placeholder.length, 1);
    if (placeholder.length == 0) continue;

    arguments.count = std::max(arguments.count, placeholder.position);
    if (placeholder.is_number) arguments.list[placeholder.position - 1].is_number = true;
  }
  return arguments;
}

// Nothing in here may throw, for the caller has an argument list open. Arguments that the template
// does not mention are taken as texts, but never looked at.
void take_arguments(ARGUMENTS& arguments, va_list list) noexcept {
  for (std::size_t i = 0; i < arguments.count; i++) {
    ARGUMENT& argument = arguments.list[i];
    if (argument.is_number) {
      argument.number = va_arg(list, int);
    } else {
      argument.text = va_arg(list, const char*);
    }
  }
}

void append_argument(std::string& result, const ARGUMENT& argument) {
  if (argument.is_number) {
    result += std::to_string(argument.number);
  } else {
    result += argument.text ? argument.text : "(null)";
  }
}

// Goes through the template once and only appends, so texts of arguments are never interpreted.
std::string render(std::string_view text, const ARGUMENTS& arguments) {
  std::string result;
  std::size_t at = 0;
  for (;;) {
    const std::size_t sign = std::min(text.find('%', at), text.size());
    result.append(text, at, sign - at);
    if (sign == text.size()) return result;
    const PLACEHOLDER placeholder = get_placeholder(text, sign);
    if (placeholder.length == 0) {
      result += '%';
      at = sign + 1;
      continue;
    }
    append_argument(result, arguments.list[placeholder.position - 1]);
    at = sign + placeholder.length;
  }
}

// What is behind the last "/", if it looks like a key; a text may well have a "/" of its own.
std::string_view get_key(std::string_view message_template) {
  const std::size_t slash = message_template.rfind('/');
  if (slash == std::string_view::npos) return {};
  const std::string_view key = message_template.substr(slash + 1);
  return std::all_of(key.begin(), key.end(), is_key_char) ? key : std::string_view();
}

// By the rules of vprintf. A format that cannot be rendered stands for itself.
std::string render_format(const char* format, va_list arguments) {
  va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  if (length < 0) return format;

  std::string result(static_cast<std::size_t>(length), '\0');
  (void)std::vsnprintf(result.data(), result.size() + 1, format, arguments);
  return result;
}

// ---- Delivery ----------------------------------------------------------------------------------

// Never destroyed: a static destructor of another module may still post.
HANDLER_SLOT<sbd_host::MESSAGE_HANDLER>& message_slot() {
  static auto* const slot = new HANDLER_SLOT<sbd_host::MESSAGE_HANDLER>;
  return *slot;
}

HANDLER_SLOT<sbd_host::INTERNAL_ERROR_HANDLER>& internal_error_slot() {
  static auto* const slot = new HANDLER_SLOT<sbd_host::INTERNAL_ERROR_HANDLER>;
  return *slot;
}

// Written at once, so that lines of several threads do not mix. Line breaks within the line become
// blanks: one message is one line, whatever its arguments contain.
void write_line(std::string line) {
  std::replace(line.begin(), line.end(), '\n', ' ');
  std::replace(line.begin(), line.end(), '\r', ' ');
  line += '\n';
  (void)std::fwrite(line.data(), 1, line.size(), stderr);
}

const char* get_severity_name(sbd_host::SEVERITY severity) {
  if (severity == sbd_host::SEVERITY::WARNING) return "warning";
  return severity == sbd_host::SEVERITY::DEBUG ? "debug" : "error";
}

void print_message(const sbd_host::MESSAGE& message) {
  std::string line = get_severity_name(message.severity);
  line.append(": ").append(message.text);
  if (*message.key) line.append(" [").append(message.key).append("]");
  write_line(std::move(line));
}

void print_internal_error(const sbd_host::INTERNAL_ERROR& error) {
  std::string line = "internal error: ";
  line.append(error.condition).append(" (").append(error.module).append(", ");
  line.append(error.source).append(":").append(std::to_string(error.line)).append(")");
  write_line(std::move(line));
}

}  // namespace

// ---- Messages ----------------------------------------------------------------------------------

MSG_POST::~MSG_POST() = default;

// There are no reports in the standalone host: every message goes to the handler.
MSG_BASE::MSG_BASE(SEVERITY severity, MSG_REPORT*)
    : m_content(new MSG_CONTENT(static_cast<sbd_host::SEVERITY>(severity))) {
  static_assert(static_cast<int>(sbd_host::SEVERITY::ERROR) == ERROR_SEVERITY, "cast above");
  static_assert(static_cast<int>(sbd_host::SEVERITY::WARNING) == WARNING_SEVERITY, "cast above");
  static_assert(static_cast<int>(sbd_host::SEVERITY::DEBUG) == DEBUG_SEVERITY, "cast above");
}

MSG_BASE::~MSG_BASE() {
  delete m_content;
}

void* MSG_BASE::operator new(std::size_t size, const char* module_tag) {
  return MEM_MANAGER::new_wrapper(size, module_tag);
}

void MSG_BASE::operator delete(void* block, const char* module_tag) noexcept {
  MEM_MANAGER::delete_wrapper(block, module_tag);
}

void MSG_BASE::operator delete(void* block) noexcept {
  // The tag is not known here, and need not be: our memory manager notes it with the block.
  MEM_MANAGER::delete_wrapper(block, "");
}

void MSG_BASE::fill_args(const char* message_template, int id, ...) {
  std::string text_template = or_empty(message_template);
  const std::string_view whole = text_template;
  const std::string_view key = get_key(whole);
  // The "/" goes with the key.
  const std::string_view text =
      key.empty() ? whole : whole.substr(0, whole.size() - key.size() - 1);

  ARGUMENTS arguments = expect_arguments(text);
  va_list list;
  va_start(list, id);
  take_arguments(arguments, list);
  va_end(list);

  m_content->number = id;
  m_content->text = render(text, arguments);
  m_content->key = key;
  m_content->text_template = std::move(text_template);
}

void MSG_BASE::fill_args(const char* format, va_list arguments) {
  m_content->number = 0;
  m_content->text = render_format(or_empty(format), arguments);
  m_content->key.clear();
  m_content->text_template = or_empty(format);
}

void MSG_BASE::set_module(const char* module_tag) {
  m_content->module = or_empty(module_tag);
}

void MSG_BASE::post(MSG_REPORT*) {
  const MSG_CONTENT& content = *m_content;
  const sbd_host::MESSAGE message = {
      content.severity,    content.number,       content.text_template.c_str(),
      content.key.c_str(), content.text.c_str(), content.module.c_str()};
  const auto handler = message_slot().get();
  if (handler) {
    (*handler)(message);
  } else {
    print_message(message);
  }
}

MSG_E::MSG_E(MSG_REPORT* parent) : MSG_BASE(ERROR_SEVERITY, parent) {}

MSG_W::MSG_W(MSG_REPORT* parent) : MSG_BASE(WARNING_SEVERITY, parent) {}

MSG_D::MSG_D(MSG_REPORT* parent) : MSG_BASE(DEBUG_SEVERITY, parent) {}

void MSG_INTERNAL_ERROR::report(const char* condition, const char* module, const char* source,
                                int line) {
  const sbd_host::INTERNAL_ERROR error = {or_empty(condition), or_empty(module), or_empty(source),
                                          line};
  const auto handler = internal_error_slot().get();
  if (handler) {
    (*handler)(error);
  } else {
    print_internal_error(error);
  }
}

namespace sbd_host {

void set_message_handler(MESSAGE_HANDLER handler) {
  message_slot().set(std::move(handler));
}

void set_internal_error_handler(INTERNAL_ERROR_HANDLER handler) {
  internal_error_slot().set(std::move(handler));
}

}  // namespace sbd_host
