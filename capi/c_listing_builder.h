// Makes listings of a tree.
#ifndef CAPI_C_LISTING_BUILDER_H
#define CAPI_C_LISTING_BUILDER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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

class LISTING_BUILDER {
 public:
  // Adds to `listing`, which is empty, what is of the `kinds`: sbdc_item_kind values combined.
  LISTING_BUILDER(const SBD_FILE_PARSER& document, unsigned kinds, sbdc_listing& listing)
      : m_document(document), m_kinds(kinds), m_listing(listing) {}

  // Everything below the block; null stands for the document.
  void add_below(const SBD_FILE_PARSER::SBD_NODE* block);
  void add_alone(const SBD_FILE_PARSER::SBD_NODE* node);

  // To be called behind all others.
  void finish();

 private:
  using NODE = SBD_FILE_PARSER::SBD_NODE;
  using VALUE = SBD_FILE_PARSER::SBD_PARA_VALUE;
  struct OPEN_LIST {
    const VALUE* value;
    std::size_t element;  // Its place in the listing.
  };

  void set_path(const NODE* node);
  std::size_t depth_of_path() const;
  void add_item(const NODE* node, std::size_t depth);
  sbdc_position name_position_of(const NODE* node, const sbdc_position& position) const;
  void add_attributes(const SBD_FILE_PARSER::SBD_PARA_ATTR* first, sbdc_item& item);
  sbdc_value make_value(const VALUE& value);
  sbdc_value make_single(const VALUE& value);
  sbdc_value make_references(const SBD_FILE_PARSER::SBD_PARA_REF* first);
  sbdc_value make_reference(const SBD_FILE_PARSER::SBD_PARA_REF& reference);
  void add_elements(const VALUE& list, sbdc_value& made);
  void open_list(const VALUE& list, sbdc_value& made);
  const char* keep_type(const char* type);
  template <class RECORD>
  sbdc_position position_of(const RECORD* record) const;

  const SBD_FILE_PARSER& m_document;
  unsigned m_kinds;
  sbdc_listing& m_listing;
  std::string m_path;                // The full name of the node that is visited.
  std::vector<OPEN_LIST> m_to_open;  // Lists whose elements are still to be added.
  std::string_view m_last_type;      // As kept in the listing.
};

}  // namespace sbd_c

#endif
