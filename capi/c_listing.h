// The handle of a listing.
#ifndef CAPI_C_LISTING_H
#define CAPI_C_LISTING_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "capi/sbd_c.h"

namespace sbd_c {

// Copies of texts, which stay where they are until all of them go.
class TEXT_ARENA {
 public:
  // Ends with NUL.
  const char* copy(std::string_view text);

 private:
  std::vector<std::unique_ptr<char[]>> m_chunks;
  char* m_free = nullptr;
  std::size_t m_free_size = 0;
};

}  // namespace sbd_c

struct sbdc_listing {
  std::vector<sbdc_item> items;
  std::vector<sbdc_value> elements;
  std::vector<sbdc_attribute> attributes;
  std::string names;  // Of the items, in their order, each with its NUL.
  sbd_c::TEXT_ARENA texts;
};

#endif
