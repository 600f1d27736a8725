#include "tools/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

namespace sbd_tool {

namespace {

constexpr std::chrono::milliseconds k_patience{500};
constexpr std::chrono::milliseconds k_interval{100};
constexpr char k_erase_line[] = "\r\x1b[K";

}  // namespace

PROGRESS::PROGRESS(OUTPUT& output, std::size_t total, std::string things)
    : m_output(output),
      m_total(total),
      m_things(std::move(things)),
      m_is_terminal(isatty(fileno(output.stream())) != 0),
      m_next_time(CLOCK::now() + k_patience) {}

void PROGRESS::show(std::size_t done) {
  if (!m_is_terminal || done == m_total || CLOCK::now() < m_next_time) return;
  m_next_time = CLOCK::now() + k_interval;
  m_is_shown = true;
  m_output.write(fmt::format("{}checked {} of {} {}", k_erase_line, done, m_total, m_things));
  m_output.flush();
}

void PROGRESS::clear() {
  if (!m_is_shown) return;
  m_is_shown = false;
  m_output.write(k_erase_line);
  m_output.flush();
}

}  // namespace sbd_tool
