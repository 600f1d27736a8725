// The references of all rows of the parameter tables, prepared once for all readers.
#ifndef SBD_DEVICE_SBD_ROW_NAMES_H
#define SBD_DEVICE_SBD_ROW_NAMES_H

#include <array>
#include <cstddef>

#include "sbd/parameter/sbd_parameter_store.h"
#include "sbd/sbd_veldran_parameter_reader.h"

class SBD_ROW_NAMES {
 public:
  using READER = SBD_VELDRAN_PARAMETER_READER;

  static constexpr std::size_t k_count =
      READER::k_bool_rows + READER::k_dword_rows + READER::k_double_rows + READER::k_string_rows;

  static const SBD_ROW_NAMES& get();

  // The names of the rows of each table.
  const SBD_PREPARED_NAME* bools() const { return m_names.data(); }
  const SBD_PREPARED_NAME* dwords() const { return bools() + READER::k_bool_rows; }
  const SBD_PREPARED_NAME* doubles() const { return dwords() + READER::k_dword_rows; }
  const SBD_PREPARED_NAME* strings() const { return doubles() + READER::k_double_rows; }

 private:
  SBD_ROW_NAMES();
  template <class ROW>
  void add_rows(const ROW* row);
  void set_ranks();

  static constexpr std::size_t k_text_size = 8192;

  std::array<SBD_PREPARED_NAME, k_count> m_names;
  std::array<char, k_text_size> m_texts{};
  std::size_t m_name_count = 0;
  std::size_t m_text_size = 0;
};

#endif
