// Documents: life, reading, findings, text, typed queries.
#include "capi/c_document.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "capi/c_listing_builder.h"

using sbd_c::FINDINGS;
using sbd_c::guarded;
using sbd_c::RECORDER;
using VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;

namespace {

constexpr int k_file_error = 1;

template <class READ>
sbdc_status read_into(sbdc_document* document, bool is_from_file, READ&& read) noexcept {
  ++document->change_count;
  return guarded([&] {
    document->findings.clear();
    const RECORDER recorder(document->findings, &document->tree(), nullptr);
    const bool is_good = read(document->source);
    const bool is_unreadable = !is_good && recorder.has_seen(k_file_error);
    if (!is_unreadable) document->is_from_file = is_from_file;
    if (is_good) return SBDC_OK;
    return recorder.judge(is_unreadable ? SBDC_UNREADABLE : SBDC_FAULTY);
  });
}

// The value of the assignment named `name`. What can't be had is told by `status`.
const VALUE* find_value(const sbdc_document* document, const char* name, sbdc_status& status) {
  if (document == nullptr || name == nullptr) {
    status = SBDC_MISUSE;
    return nullptr;
  }
  const SBD_FILE_PARSER::SBD_NODE* const node = document->tree().get_ref_object(name, nullptr);
  if (node == nullptr) {
    status = SBDC_NOT_FOUND;
    return nullptr;
  }
  const bool is_assignment = node->type == SBD_FILE_PARSER::SBD_NODE::NT_STATEMENT &&
                             node->statement->type == SBD_FILE_PARSER::SBD_STATEMENT::ST_ASSIGNMENT;
  status = is_assignment ? SBDC_OK : SBDC_WRONG_KIND;
  return is_assignment ? node->statement->value : nullptr;
}

}  // namespace

const char* sbdc_version(void) {
  return sbd_version();
}

const char* sbdc_status_text(sbdc_status status) {
  switch (status) {
    case SBDC_OK:
      return "no fault";
    case SBDC_FAULTY:
      return "the file has faults";
    case SBDC_UNREADABLE:
      return "the file can't be read";
    case SBDC_REFUSED:
      return "refused";
    case SBDC_NOT_FOUND:
      return "not found";
    case SBDC_WRONG_KIND:
      return "not of that kind";
    case SBDC_MISUSE:
      return "wrong use of a function";
    case SBDC_NO_MEMORY:
      return "out of memory";
    case SBDC_INTERNAL:
      return "internal error";
  }
  return "unknown status";
}

// ---- Life and reading --------------------------------------------------------------------------

sbdc_status sbdc_document_new(sbdc_document** document) {
  if (document == nullptr) return SBDC_MISUSE;
  return guarded([document] {
    FINDINGS findings;
    const RECORDER recorder(findings, nullptr, nullptr);
    auto made = std::make_unique<sbdc_document>();
    const sbdc_status status = recorder.judge(SBDC_OK);
    if (status == SBDC_OK) *document = made.release();
    return status;
  });
}

void sbdc_document_free(sbdc_document* document) {
  delete document;
}

sbdc_status sbdc_read(sbdc_document* document, const char* path) {
  if (document == nullptr || path == nullptr) return SBDC_MISUSE;
  return read_into(document, true,
                   [path](SBD_SOURCE_DOCUMENT& source) { return source.read(path); });
}

sbdc_status sbdc_read_text(sbdc_document* document, const char* text, size_t length,
                           const char* name) {
  if (document == nullptr || text == nullptr || name == nullptr) return SBDC_MISUSE;
  return read_into(document, false, [text, length, name](SBD_SOURCE_DOCUMENT& source) {
    return source.read_text(text, length, name);
  });
}

// ---- Findings and text -------------------------------------------------------------------------

size_t sbdc_finding_count(const sbdc_document* document) {
  return document == nullptr ? 0 : document->findings.size();
}

size_t sbdc_omitted_finding_count(const sbdc_document* document) {
  return document == nullptr ? 0 : document->findings.omitted();
}

const sbdc_finding* sbdc_finding_at(const sbdc_document* document, size_t index) {
  return document == nullptr ? nullptr : document->findings.at(index);
}

const char* sbdc_text(sbdc_document* document, size_t* length) {
  if (document == nullptr) return nullptr;
  const sbdc_status status =
      sbd_c::perform(document, SBDC_INTERNAL, [document](SBD_SOURCE_DOCUMENT& source) {
        // The library's own view has no NUL behind it.
        document->text = source.text();
        return true;
      });
  if (status != SBDC_OK) return nullptr;
  if (length != nullptr) *length = document->text.size();
  return document->text.c_str();
}

// ---- Typed queries -----------------------------------------------------------------------------

sbdc_status sbdc_get_number(const sbdc_document* document, const char* name, double* number) {
  if (number == nullptr) return SBDC_MISUSE;
  sbdc_status status = SBDC_OK;
  const VALUE* const value = find_value(document, name, status);
  if (value == nullptr) return status;
  if (!sbd_c::is_number(*value)) return SBDC_WRONG_KIND;
  *number = sbd_c::scaled_number(*value);
  return SBDC_OK;
}

sbdc_status sbdc_get_integer(const sbdc_document* document, const char* name, int64_t* number) {
  double scaled = 0;
  if (number == nullptr) return SBDC_MISUSE;
  const sbdc_status status = sbdc_get_number(document, name, &scaled);
  if (status != SBDC_OK) return status;
  constexpr double k_limit = 9223372036854775808.0;  // 2 to the power of 63
  if (std::trunc(scaled) != scaled || scaled < -k_limit || scaled >= k_limit) {
    return SBDC_WRONG_KIND;
  }
  *number = static_cast<int64_t>(scaled);
  return SBDC_OK;
}

sbdc_status sbdc_get_bool(const sbdc_document* document, const char* name, int* value) {
  if (value == nullptr) return SBDC_MISUSE;
  sbdc_status status = SBDC_OK;
  const VALUE* const found = find_value(document, name, status);
  if (found == nullptr) return status;
  if (found->type != VALUE::VT_BOOL) return SBDC_WRONG_KIND;
  *value = found->flag == 1 ? 1 : 0;
  return SBDC_OK;
}

sbdc_status sbdc_get_text(const sbdc_document* document, const char* name, char** text) {
  if (text == nullptr) return SBDC_MISUSE;
  sbdc_status status = SBDC_OK;
  const VALUE* const value = find_value(document, name, status);
  if (value == nullptr) return status;
  if (value->type != VALUE::VT_STRING) return SBDC_WRONG_KIND;
  const std::string_view unquoted = sbd_c::unquoted_text(*value);
  // With malloc, since it is a C program that this goes to.
  auto* const copy = static_cast<char*>(std::malloc(unquoted.size() + 1));
  if (copy == nullptr) return SBDC_NO_MEMORY;
  std::memcpy(copy, unquoted.data(), unquoted.size());
  copy[unquoted.size()] = '\0';
  *text = copy;
  return SBDC_OK;
}

void sbdc_text_free(char* text) {
  std::free(text);
}
