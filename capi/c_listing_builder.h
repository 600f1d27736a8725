// Makes listings of a tree.
#ifndef CAPI_C_LISTING_BUILDER_H
#define CAPI_C_LISTING_BUILDER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "capi/c_line_cursor.h"
#include "capi/c_listing.h"
#include "sbd/sbd_file_parser.h"

namespace sbd_c {

inline bool is_number(const SBD_FILE_PARSER::SBD_PARA_VALUE& value) {
  return value.type <= SBD_FILE_PARSER::SBD_PARA_VALUE::VT_FLOAT;
}

// A number times its unit.
double scaled_number(const SBD_FILE_PARSER::SBD_PARA_VALUE& value);

// The text of a string value without its quotes, if it has any.
std::string_view unquoted_text(const SBD_FILE_PARSER::SBD_PARA_VALUE& value);

// Goes through a document, or a part of it, and lists what it comes by.
class LISTING_BUILDER {
 public:
  using NODE = SBD_FILE_PARSER::SBD_NODE;

  // For what is of the `kinds`: sbdc_item_kind values combined.
  LISTING_BUILDER(const SBD_FILE_PARSER& document, unsigned kinds)
      : m_document(document), m_kinds(kinds), m_lines(document.get_source()) {}

  // To go through everything below the block; null stands for the document.
  void start_below(const NODE* block);

  // How many items there are from here on. Looks at all of them.
  std::size_t count() const;

  // Adds the next items, `most` at most, to a listing that is empty.
  void fill(sbdc_listing& listing, std::size_t most);
  // Adds just that one to a listing that is empty.
  void fill_with(const NODE* node, sbdc_listing& listing);

 private:
  using VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
  struct LEVEL {
    const NODE* next;
    std::size_t prefix_length;  // Of the names on this level: "board.stripe.".
  };
  struct OPEN_LIST {
    const VALUE* value;
    std::size_t element;  // Its place in the listing.
  };

  const NODE* step();
  std::string full_name(const NODE* node) const;
  void add(const NODE* node, std::string_view own_name, std::size_t depth);
  std::size_t length_of(const VALUE& value) const;
  std::size_t length_of(const NODE* node) const;
  sbdc_position name_position_of(const NODE* node, std::string_view own_name);
  void add_attributes(const SBD_FILE_PARSER::SBD_PARA_ATTR* first, sbdc_item& item);
  void put_value(const VALUE& value, sbdc_value& made);
  void put_single(const VALUE& value, sbdc_value& made);
  void put_references(const SBD_FILE_PARSER::SBD_PARA_REF* first, sbdc_value& made);
  sbdc_value make_reference(const SBD_FILE_PARSER::SBD_PARA_REF& reference);
  void add_elements(const VALUE& list, sbdc_value& made);
  void open_list(const VALUE& list, sbdc_value& made);
  const char* keep_type(const char* type);
  void set_names();
  template <class RECORD>
  sbdc_position position_of(const RECORD* record);
  template <class RECORD>
  sbdc_position position_of(const RECORD* record, std::size_t length);

  const SBD_FILE_PARSER& m_document;
  unsigned m_kinds;
  LINE_CURSOR m_lines;
  std::vector<LEVEL> m_levels;    // From the place where it began to where it is; empty at the end.
  std::size_t m_outer_depth = 0;  // Of the first level.
  std::string m_prefix;           // Of the names on the last level.
  sbdc_listing* m_listing = nullptr;  // That is being filled.
  std::vector<OPEN_LIST> m_to_open;   // Lists whose elements are still to be added.
  const char* m_last_type = "";       // As kept in the listing.
};

}  // namespace sbd_c

#endif
