#include "capi/c_findings.h"

#include <cstring>
#include <string_view>

#include "sbd/sbd_veldran.h"

namespace sbd_c {

namespace {

// A handle belongs to one thread while a function runs, and the library posts in that thread.
thread_local RECORDER* t_recorder = nullptr;

// What is posted while nobody records is about a question whose answer says enough.
void take_message(const sbd_host::MESSAGE& message) {
  if (t_recorder != nullptr) t_recorder->take(message);
}

void take_internal_error(const sbd_host::INTERNAL_ERROR& error) {
  if (t_recorder != nullptr) t_recorder->take(error);
}

// The host services in this library are its own: these handlers are nobody else's.
bool install_handlers() {
  sbd_host::set_message_handler(take_message);
  sbd_host::set_internal_error_handler(take_internal_error);
  return true;
}

sbdc_severity to_severity(sbd_host::SEVERITY severity) {
  return severity == sbd_host::SEVERITY::WARNING ? SBDC_WARNING : SBDC_ERROR;
}

// Messages about a parameter come while its fault is the last one in the list.
bool is_about_parameter(int number) {
  constexpr int k_parameter_missing = 12;
  constexpr int k_parameter_value = 13;
  return number == k_parameter_missing || number == k_parameter_value;
}

}  // namespace

sbdc_position to_position(const SBD_FILE_PARSER::SBD_SOURCE_RANGE& range) {
  return {static_cast<std::uint32_t>(range.offset), static_cast<std::uint32_t>(range.length),
          static_cast<std::uint32_t>(range.line), static_cast<std::uint32_t>(range.column)};
}

// ---- FINDINGS ----------------------------------------------------------------------------------

void FINDINGS::clear() {
  m_list.clear();
  m_texts.clear();
  m_omitted = 0;
}

const char* FINDINGS::keep(std::string_view text) {
  return text.empty() ? "" : m_texts.emplace_back(text).c_str();
}

void FINDINGS::add(sbdc_severity severity, int number, std::string_view key, std::string_view text,
                   std::string_view parameter, const sbdc_position& position) {
  if (m_list.size() >= k_most_findings) {
    ++m_omitted;
    return;
  }
  m_list.push_back({severity, number, keep(key), keep(text), keep(parameter), position});
}

const sbdc_finding* FINDINGS::at(std::size_t index) const {
  return index < m_list.size() ? &m_list[index] : nullptr;
}

// ---- RECORDER ----------------------------------------------------------------------------------

RECORDER::RECORDER(FINDINGS& findings, const SBD_FILE_PARSER* document, const SBD_VELDRAN* device)
    : m_findings(findings), m_document(document), m_device(device) {
  static const bool k_is_installed = install_handlers();
  (void)k_is_installed;
  t_recorder = this;
}

RECORDER::~RECORDER() {
  t_recorder = nullptr;
}

sbdc_status RECORDER::judge(sbdc_status status) const {
  if (m_is_out_of_memory) return SBDC_NO_MEMORY;
  if (m_has_internal_error) return SBDC_INTERNAL;
  return status;
}

void RECORDER::take(const sbd_host::MESSAGE& message) noexcept {
  if (message.severity == sbd_host::SEVERITY::DEBUG) return;
  try {
    record(message);
  } catch (...) {
    m_is_out_of_memory = true;
  }
}

void RECORDER::record(const sbd_host::MESSAGE& message) {
  m_last_number = message.number;
  SBD_FILE_PARSER::SBD_SOURCE_RANGE range;
  const bool has_place = m_document != nullptr && m_document->get_fault_range(range);
  std::string_view parameter;
  if (m_device != nullptr && is_about_parameter(message.number)) {
    const auto& faults = m_device->get_parameter_faults();
    if (!faults.empty()) parameter = faults.back().reference;
  }
  m_findings.add(to_severity(message.severity), message.number, message.key, message.text,
                 parameter, has_place ? to_position(range) : sbdc_position{});
}

void RECORDER::take(const sbd_host::INTERNAL_ERROR& error) noexcept {
  // That is how the library says that it could not go on without memory.
  if (std::strcmp(error.condition, "out of memory") == 0) {
    m_is_out_of_memory = true;
    return;
  }
  m_has_internal_error = true;
  try {
    const std::string text =
        std::string(error.condition) + " (" + error.source + ":" + std::to_string(error.line) + ")";
    m_findings.add(SBDC_INTERNAL_ERROR, 0, "", text, "", sbdc_position{});
  } catch (...) {
    m_is_out_of_memory = true;
  }
}

}  // namespace sbd_c
