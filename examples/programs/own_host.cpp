// Brings a message service and a memory manager of its own instead of linking sbd_host.
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "h/mem_alloc_sys.h"
#include "h/msg_service.h"
#include "sbd/sbd_file_parser.h"

namespace {

long g_live_blocks = 0;
long g_allocations = 0;

}  // namespace

// ---- Memory manager ----------------------------------------------------------------------------

void* MEM_MANAGER::new_wrapper(std::size_t size, const char*) {
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  g_live_blocks++;
  g_allocations++;
  return block;
}

void MEM_MANAGER::delete_wrapper(void* block, const char*) noexcept {
  if (block == nullptr) return;
  g_live_blocks--;
  std::free(block);
}

MEM_INITIALIZER::MEM_INITIALIZER(const char* module_tag) noexcept {
  std::printf("module %s\n", module_tag);
}

// ---- Message service ---------------------------------------------------------------------------

class MSG_CONTENT {
 public:
  int number = 0;
  std::string text;
};

MSG_POST::~MSG_POST() = default;

MSG_BASE::MSG_BASE(SEVERITY, MSG_REPORT*) : m_content(new MSG_CONTENT) {}
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
  m_content->number = id;
  m_content->text = message_template;
}
void MSG_BASE::fill_args(const char* format, va_list) {
  m_content->text = format;
}
void MSG_BASE::set_module(const char*) {}
void MSG_BASE::post(MSG_REPORT*) {
  std::printf("own message %d\n", m_content->number);
}

MSG_E::MSG_E(MSG_REPORT* parent) : MSG_BASE(ERROR_SEVERITY, parent) {}
MSG_W::MSG_W(MSG_REPORT* parent) : MSG_BASE(WARNING_SEVERITY, parent) {}
MSG_D::MSG_D(MSG_REPORT* parent) : MSG_BASE(DEBUG_SEVERITY, parent) {}

void MSG_INTERNAL_ERROR::report(const char* condition, const char*, const char*, int) {
  std::printf("internal error: %s\n", condition);
}

// ---- Program -----------------------------------------------------------------------------------

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const long blocks_before = g_live_blocks;
  {
    SBD_FILE_PARSER document;
    unsigned long width = 0;
    if (!document.read(argv[1]) || !document.get_value("board.stripe.sdram.data_width", width)) {
      return 1;
    }
    std::printf("data width %lu\n", width);
    if (document.read("there is no such file")) return 1;
  }
  return g_live_blocks == blocks_before && g_allocations > 0 ? 0 : 1;
}
