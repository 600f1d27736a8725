// The references of all rows of the parameter tables, prepared once for all readers.
#ifndef SBD_DEVICE_SBD_ROW_NAMES_H
#define SBD_DEVICE_SBD_ROW_NAMES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

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

  // Calls `visit` with the number of each row of that reference, in lower case, until it returns
  // true; rows are numbered through all tables.
  template <class VISIT>
  bool visit_rows_of(std::string_view reference, const VISIT& visit) const {
    const std::uint32_t hash = SBD_PARAMETER_STORE::hash_of(reference);
    for (std::size_t slot = hash % k_slots; m_slots[slot] != 0; slot = (slot + 1) % k_slots) {
      const std::size_t row = m_slots[slot] - std::size_t{1};
      if (m_names[row].reference == reference && visit(row)) return true;
    }
    return false;
  }

 private:
  SBD_ROW_NAMES();
  template <class ROW>
  void add_rows(const ROW* row);
  void set_ranks();
  void set_slots();

  static constexpr std::size_t k_text_size = 8192;
  static constexpr std::size_t k_slots = 512;
  static_assert(k_count < 256, "row numbers have one byte, and most slots stay empty");

  std::array<SBD_PREPARED_NAME, k_count> m_names;
  std::array<char, k_text_size> m_texts{};      // About half of it is left, so a step can be read.
  std::array<std::uint8_t, k_slots> m_slots{};  // 1 + number of a row, or 0.
  std::size_t m_name_count = 0;
  std::size_t m_text_size = 0;
};

#endif
