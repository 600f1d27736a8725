#include "tools/findings.h"

#include <fmt/format.h>

#include <atomic>
#include <cstdio>
#include <utility>

#include "tools/visible_text.h"

namespace sbd_tool {

namespace {

// A document belongs to one thread while it reads, and posts in that thread.
thread_local FINDING_COLLECTOR* t_collector = nullptr;

std::atomic<bool> g_had_internal_error{false};

void report_internal_error(const char* what) noexcept {
  g_had_internal_error = true;
  (void)std::fprintf(stderr, "sbd: internal error: %s\n", what);
}

void take_message(const sbd_host::MESSAGE& message) noexcept {
  try {
    if (t_collector != nullptr) {
      t_collector->take(message);
      return;
    }
    const std::string line = "sbd: " + make_visible(message.text) + "\n";
    (void)std::fputs(line.c_str(), stderr);
  } catch (...) {
    report_internal_error("out of memory for a message");
  }
}

void take_internal_error(const sbd_host::INTERNAL_ERROR& error) noexcept {
  try {
    const std::string where = fmt::format("({}, {}:{})", error.module, error.source, error.line);
    report_internal_error((make_visible(error.condition) + " " + where).c_str());
  } catch (...) {
    report_internal_error(error.condition);
  }
}

std::size_t& count_of(FINDINGS& findings, SEVERITY severity) {
  switch (severity) {
    case SEVERITY::WARNING:
      return findings.warning_count;
    case SEVERITY::INFO:
      return findings.info_count;
    case SEVERITY::ERROR:
      break;
  }
  return findings.error_count;
}

}  // namespace

std::string_view name_of(SEVERITY severity) {
  switch (severity) {
    case SEVERITY::WARNING:
      return "warning";
    case SEVERITY::INFO:
      return "info";
    case SEVERITY::ERROR:
      break;
  }
  return "error";
}

FINDING* FINDINGS::add(FINDING finding, std::size_t limit) {
  ++count_of(*this, finding.severity);
  if (limit != 0 && list.size() >= limit) {
    ++omitted_count;
    return nullptr;
  }
  list.push_back(std::move(finding));
  return &list.back();
}

FINDING_COLLECTOR::FINDING_COLLECTOR(const SBD_FILE_PARSER& reader, std::size_t limit,
                                     FINDINGS& findings, EXPLAIN explain)
    : m_reader(reader), m_limit(limit), m_findings(findings), m_explain(std::move(explain)) {
  t_collector = this;
}

FINDING_COLLECTOR::~FINDING_COLLECTOR() {
  t_collector = nullptr;
}

void FINDING_COLLECTOR::take(const sbd_host::MESSAGE& message) {
  if (message.severity == sbd_host::SEVERITY::DEBUG) return;
  const bool is_warning = message.severity == sbd_host::SEVERITY::WARNING;
  FINDING finding;
  finding.severity = is_warning ? SEVERITY::WARNING : SEVERITY::ERROR;
  finding.key = message.key;
  finding.text = message.text;
  SOURCE_RANGE place;
  if (m_reader.get_fault_range(place)) finding.place = place;
  FINDING* const kept = m_findings.add(std::move(finding), m_limit);
  if (kept != nullptr && m_explain) m_explain(*kept);
}

void install_handlers() {
  sbd_host::set_message_handler(take_message);
  sbd_host::set_internal_error_handler(take_internal_error);
}

bool had_internal_error() {
  return g_had_internal_error;
}

}  // namespace sbd_tool
