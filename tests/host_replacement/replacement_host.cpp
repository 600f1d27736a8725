#include "tests/host_replacement/replacement_host.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "h/mem_alloc_sys.h"
#include "h/msg_service.h"

namespace replacement_host {

// Is never destroyed: the library may release memory at the very end.
RECORD& record() {
  static RECORD* const the_record = new RECORD;
  return *the_record;
}

}  // namespace replacement_host

using replacement_host::record;

// ---- Memory ------------------------------------------------------------------------------------

void* MEM_MANAGER::new_wrapper(std::size_t size, const char* module_tag) {
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  record().live_blocks[module_tag]++;
  return block;
}

void MEM_MANAGER::delete_wrapper(void* block, const char* module_tag) noexcept {
  if (block == nullptr) return;
  record().live_blocks[module_tag]--;
  std::free(block);
}

MEM_INITIALIZER::MEM_INITIALIZER(const char* module_tag) noexcept {
  record().registered_tags.emplace_back(module_tag);
}

// ---- Messages ----------------------------------------------------------------------------------

class MSG_CONTENT {
 public:
  replacement_host::MESSAGE message;
};

MSG_POST::~MSG_POST() = default;

MSG_BASE::MSG_BASE(SEVERITY severity, MSG_REPORT* parent)
    : m_content(new MSG_CONTENT{{"EWD"[severity], 0, "", "", parent != nullptr, false}}) {}

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
  MEM_MANAGER::delete_wrapper(block, "SBD");
}

void MSG_BASE::fill_args(const char* message_template, int id, ...) {
  m_content->message.number = id;
  std::string& filled = m_content->message.filled;
  filled = message_template;

  // In the library's templates the positions 1, 2 and so on come without a gap.
  va_list arguments;
  va_start(arguments, id);
  for (char position = '1'; position <= '9'; position++) {
    const std::string mark = std::string("%") + position + "!";
    const std::size_t place = std::string(message_template).find(mark);
    if (place == std::string::npos) break;
    filled += "|";
    if (message_template[place + mark.size()] == 'd') {
      filled += std::to_string(va_arg(arguments, int));
    } else {
      filled += va_arg(arguments, const char*);
    }
  }
  va_end(arguments);
}

void MSG_BASE::fill_args(const char* format, va_list arguments) {
  char buffer[200];
  std::vsnprintf(buffer, sizeof buffer, format, arguments);
  m_content->message.filled = buffer;
}

void MSG_BASE::set_module(const char* module_tag) {
  m_content->message.module = module_tag;
}

void MSG_BASE::post(MSG_REPORT* target) {
  m_content->message.has_target = target != nullptr;
  record().messages.push_back(m_content->message);
}

MSG_E::MSG_E(MSG_REPORT* parent) : MSG_BASE(ERROR_SEVERITY, parent) {}
MSG_W::MSG_W(MSG_REPORT* parent) : MSG_BASE(WARNING_SEVERITY, parent) {}
MSG_D::MSG_D(MSG_REPORT* parent) : MSG_BASE(DEBUG_SEVERITY, parent) {}

void MSG_INTERNAL_ERROR::report(const char* condition, const char* module, const char* source,
                                int) {
  record().internal_errors.push_back({condition, module, source});
}
