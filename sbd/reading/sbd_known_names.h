// Names that a document has already: descriptors use the same few names again and again, and what
// was worked out for one need not be worked out, or stored, twice.
#ifndef SBD_READING_SBD_KNOWN_NAMES_H
#define SBD_READING_SBD_KNOWN_NAMES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/reading/sbd_run.h"

// The last name that fell into each slot.
class SBD_KNOWN_NAMES {
 public:
  struct NAME {
    char* text = nullptr;  // The copy that all symbols of that spelling share.
    std::uint32_t length = 0;
    std::uint16_t check = 0;   // More of its hash than the slot tells.
    std::uint16_t bucket = 0;  // Of the symbol table.
  };

  // The slot of a name with that hash. It holds the name if `is_known` says so.
  NAME& slot_of(std::uint64_t hash) { return m_slots[(hash >> 32) % k_slot_count]; }

  static bool is_known(const NAME& slot, std::uint64_t hash, std::string_view name) {
    return slot.check == check_of(hash) && slot.length == name.size() &&
           sbd_equal_bytes(slot.text, name.data(), name.size());
  }

  static void put(NAME& slot, std::uint64_t hash, std::string_view name, char* text,
                  std::size_t bucket) {
    slot = {text, static_cast<std::uint32_t>(name.size()), check_of(hash),
            static_cast<std::uint16_t>(bucket)};
  }

 private:
  static constexpr std::size_t k_slot_count = 256;

  static std::uint16_t check_of(std::uint64_t hash) {
    return static_cast<std::uint16_t>(hash >> 40);
  }

  std::array<NAME, k_slot_count> m_slots{};
};

#endif
