// Setting one parameter in the text of a large file, in memory, beside copying that text.
#include <cstring>
#include <memory>
#include <string>

#include "bench/document/document_texts.h"
#include "bench/readers/reader.h"
#include "bench/rows/rows.h"
#include "sbd/sbd_source_document.h"

namespace {

constexpr double COPY_LIMIT = 2.0;
constexpr std::size_t SMALL = 1000;
constexpr std::size_t LARGE = 100000;

// A document that was read, and one of its numbers, which every edit sets to another value.
class EDITED_DOCUMENT {
 public:
  explicit EDITED_DOCUMENT(std::size_t parameters)
      : m_name(make_number_names(parameters, parameters).front()) {
    const std::string text = make_sbd_text(parameters);
    if (!m_source.read_text(text.data(), text.size(), "bench.sbd")) stop_measuring("sbd", "read");
  }

  void edit() {
    m_is_odd = !m_is_odd;
    if (!m_source.set_value(m_name.c_str(), m_is_odd ? "4711" : "815")) {
      stop_measuring("sbd", "set a value");
    }
  }

  std::size_t put_together() const { return m_source.text().size(); }

 private:
  const std::string m_name;
  SBD_SOURCE_DOCUMENT m_source;
  bool m_is_odd = false;
};

MEASUREMENT measure_edit_with_text(std::size_t parameters) {
  return {"edit/set a value and take the text", [=] {
            const auto document = std::make_shared<EDITED_DOCUMENT>(parameters);
            return STAGE{[=] {
              document->edit();
              if (document->put_together() == 0) stop_measuring("sbd", "no text");
            }};
          }};
}

MEASUREMENT measure_edit(const char* key, std::size_t parameters) {
  return {std::string("edit/set a value/") + key, [=] {
            const auto document = std::make_shared<EDITED_DOCUMENT>(parameters);
            return STAGE{[=] { document->edit(); }};
          }};
}

MEASUREMENT measure_copy(std::size_t parameters) {
  return {"edit/memcpy of the text", [=] {
            const std::string text = make_sbd_text(parameters);
            const auto copy = std::make_shared<std::string>(text);
            // Through a pointer that the compiler can't follow, so that no copy is left out.
            void* (*volatile copy_bytes)(void*, const void*, std::size_t) = std::memcpy;
            return STAGE{[=] { copy_bytes(copy->data(), text.data(), text.size()); }};
          }};
}

}  // namespace

void add_edit_rows(std::vector<COMPARISON>& comparisons) {
  comparisons.push_back({"edit",
                         {measure_edit_with_text(LARGE), measure_copy(LARGE)},
                         {{"edit of one of 10^5 parameters, with the new text / memcpy of the text",
                           "", 0, 1, COPY_LIMIT}}});
  comparisons.push_back(
      {"edit_growth",
       {measure_edit("100000", LARGE), measure_edit("1000", SMALL)},
       {{"edit of one of 10^5 parameters, without the text / of 10^3", "", 0, 1}}});
}
