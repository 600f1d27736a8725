// The handle of a listing.
#ifndef CAPI_C_LISTING_H
#define CAPI_C_LISTING_H

#include <cstddef>
#include <memory>
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
  void add_chunk(std::size_t least);

  std::vector<std::unique_ptr<char[]>> m_chunks;
  std::size_t m_chunk_size = 0;  // Of the last one.
  char* m_free = nullptr;
  std::size_t m_free_size = 0;
};

// Names, one behind the other.
class NAMES {
 public:
  // Adds a name made of two parts, with its NUL.
  void add(std::string_view prefix, std::string_view own_name);

  const char* data() const { return m_names.get(); }
  std::size_t size() const { return m_size; }

 private:
  void grow(std::size_t size);

  std::unique_ptr<char[]> m_names;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
};

}  // namespace sbd_c

struct sbdc_listing {
  std::vector<sbdc_item> items;
  std::vector<sbdc_value> elements;
  std::vector<sbdc_attribute> attributes;
  sbd_c::NAMES names;  // Of the items, in their order.
  sbd_c::TEXT_ARENA texts;
};

#endif
