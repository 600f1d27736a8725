// Names that a document has already: descriptors use the same few names again and again, mostly in
// the same order, and what was worked out for one need not be worked out, or stored, twice.
#ifndef SBD_READING_SBD_KNOWN_NAMES_H
#define SBD_READING_SBD_KNOWN_NAMES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/reading/sbd_hash.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/sbd_file_parser.h"

// The last name that fell into each slot.
class SBD_KNOWN_NAMES {
 public:
  struct NAME {
    char* text;  // The copy that all symbols of that spelling share.
    std::uint32_t length;
    std::uint32_t hash;
    std::uint16_t tag;
    std::uint8_t bucket;  // Of the symbol table.
    std::uint8_t next;    // The slot of the name that came behind this one the last time.
  };

  SBD_KNOWN_NAMES() = default;
  // Knows the same, and begins with none of it as the last name.
  SBD_KNOWN_NAMES(const SBD_KNOWN_NAMES& other) : m_slots(other.m_slots) {}
  SBD_KNOWN_NAMES& operator=(const SBD_KNOWN_NAMES&) = delete;

  // The entry of a name, with a copy that COPY makes if the name is new. A step can be read behind
  // the name and behind copies, whatever stands there.
  template <class COPY>
  const NAME& know(std::string_view name, COPY&& copy) {
    NAME& guess = m_slots[m_last->next];
    if (is_same(guess, name)) {
      m_last = &guess;
      return guess;
    }
    const std::uint64_t hash = sbd_hash_padded_name(name);
    const auto slot = static_cast<std::uint8_t>(hash >> 32);
    NAME& found = m_slots[slot];
    if (!is_same(found, name)) {
      static_assert(SBD_FILE_PARSER::SBD_SYMBOL_TABLE::k_bucket_count <= 256);
      const std::size_t bucket =
          sbd_hash_pjw_padded(name) % SBD_FILE_PARSER::SBD_SYMBOL_TABLE::k_bucket_count;
      found = {copy(name),
               static_cast<std::uint32_t>(name.size()),
               static_cast<std::uint32_t>(hash),
               sbd_name_tag(hash),
               static_cast<std::uint8_t>(bucket),
               0};
    }
    m_last->next = slot;
    m_last = &found;
    return found;
  }

 private:
  static constexpr std::size_t k_slot_count = 256;

  static bool is_same(const NAME& slot, std::string_view name) {
    return slot.length == name.size() && sbd_equal_bytes(slot.text, name.data(), name.size());
  }

  std::array<NAME, k_slot_count> m_slots{};  // All zero where nothing was entered.
  NAME* m_last = m_slots.data();
};

// The same for the types of blocks, of which there are a few.
class SBD_KNOWN_TYPES {
 public:
  struct TYPE {
    char* text;  // The copy that all blocks of that spelling share.
    std::uint32_t length;
    SBD_FILE_PARSER::SBD_BLOCK::BLOCK_TYPE type;
  };

  // The entry of a type as it is written, with a copy that COPY makes if it is new.
  template <class COPY>
  const TYPE& know(std::string_view text, COPY&& copy) {
    TYPE& found = m_slots[slot_of(text.data(), text.size())];
    if (found.length != text.size() || !sbd_equal_bytes(found.text, text.data(), text.size())) {
      char* const own_text = copy(text);
      found = {own_text, static_cast<std::uint32_t>(text.size()),
               SBD_FILE_PARSER::lookup_block_type(own_text)};
    }
    return found;
  }

 private:
  static constexpr std::size_t k_slot_count = 16;

  // The types that there are have a slot each.
  static std::size_t slot_of(const char* text, std::size_t size) {
    const auto code = [text](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    return (code(0) + std::size_t{3} * code(1) + size) % k_slot_count;
  }

  std::array<TYPE, k_slot_count> m_slots{};  // All zero where nothing was entered.
};

#endif
