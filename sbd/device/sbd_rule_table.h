// A table of rules with an index by reference, made while it is compiled.
#ifndef SBD_DEVICE_SBD_RULE_TABLE_H
#define SBD_DEVICE_SBD_RULE_TABLE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "sbd/reading/sbd_wraps.h"

// ROW has a member `reference`. Of several rows for one reference the first counts.
template <class ROW, std::size_t COUNT>
class SBD_RULE_TABLE {
 public:
  explicit constexpr SBD_RULE_TABLE(const ROW (&rows)[COUNT]) : m_rows(rows) {
    for (std::size_t row = 0; row != COUNT; ++row) {
      const std::string_view reference = rows[row].reference;
      m_sizes[row] = reference.size();
      std::size_t slot = hash_of(reference) % k_slots;
      while (m_slots[slot] != 0) slot = (slot + 1) % k_slots;
      m_slots[slot] = static_cast<std::uint8_t>(row + 1);
    }
  }

  // The row of exactly that reference; null if there is none.
  constexpr const ROW* find(std::string_view reference) const {
    if (COUNT <= k_few) return find_among_few(reference);
    std::size_t slot = hash_of(reference) % k_slots;
    for (; m_slots[slot] != 0; slot = (slot + 1) % k_slots) {
      const std::size_t row = m_slots[slot] - std::size_t{1};
      if (is_row_of(row, reference)) return &m_rows[row];
    }
    return nullptr;
  }

 private:
  static constexpr std::size_t k_few = 4;  // So many are simply looked through.
  static constexpr std::size_t k_slots = 512;
  static constexpr std::size_t k_word = 8;
  static_assert(COUNT < 256, "row numbers have one byte, and most slots stay empty");

  // Eight characters in one number, in the order in which most machines load it at once.
  static constexpr std::uint64_t word_at(const char* text) {
    std::uint64_t word = 0;
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    if (!__builtin_is_constant_evaluated()) {
      std::memcpy(&word, text, sizeof word);
      return word;
    }
#endif
    for (unsigned i = 0; i != k_word; ++i) {
      word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
    }
    return word;
  }

  // Of its beginning, its middle and its end; what else tells references apart is compared.
  SBD_WRAPS static constexpr std::size_t hash_of(std::string_view reference) {
    constexpr std::uint64_t k_multiplier_1 = 0x9E3779B97F4A7C15U;
    constexpr std::uint64_t k_multiplier_2 = 0xC2B2AE3D27D4EB4FU;
    constexpr unsigned k_upper_bits = 32;
    const std::size_t size = reference.size();
    if (size < k_word) return size;
    const char* const text = reference.data();
    const std::uint64_t ends = word_at(text) ^ word_at(text + size - k_word) * k_multiplier_1;
    const std::uint64_t middle = word_at(text + (size - k_word) / 2);
    return static_cast<std::size_t>(((ends + middle * k_multiplier_2) * k_multiplier_1) >>
                                    k_upper_bits);
  }

  constexpr bool is_row_of(std::size_t row, std::string_view reference) const {
    return m_sizes[row] == reference.size() &&
           reference == std::string_view(m_rows[row].reference, m_sizes[row]);
  }

  constexpr const ROW* find_among_few(std::string_view reference) const {
    for (std::size_t row = 0; row != COUNT; ++row) {
      if (is_row_of(row, reference)) return &m_rows[row];
    }
    return nullptr;
  }

  const ROW* m_rows;
  std::array<std::size_t, COUNT> m_sizes{};  // Of the references.
  std::array<std::uint8_t, k_slots> m_slots{};
};

#endif
