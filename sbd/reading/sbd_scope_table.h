// Where the members of a scope are found by their names: a list for the usual scope, a hash table
// for a large one. Only symbols that the reader made stand in them.
#ifndef SBD_READING_SBD_SCOPE_TABLE_H
#define SBD_READING_SBD_SCOPE_TABLE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sbd/reading/sbd_address.h"
#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_pool.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/sbd_file_parser.h"

// A name that the reader entered, while the block around it is open.
struct SBD_OPEN_MEMBER {
  SBD_FILE_PARSER::SBD_SYMBOL* symbol;
  std::uint32_t hash;
  std::uint16_t tag;
};

// What both kinds begin with.
struct SBD_SCOPE_TABLE {
  std::uint16_t listed;  // Members of a list; 0 for a hash table.
};

// True when the text of a symbol of the reader's is that name. Behind both a step can be read.
inline bool sbd_has_name(const char* text, std::string_view name) {
  for (std::size_t done = 0; done < name.size(); done += k_run_step) {
    const std::size_t count = std::min(name.size() - done, k_run_step);
    if (!sbd_equal_bytes(text + done, name.data() + done, count)) {
      return sbd_equal_ignoring_case(text, name);
    }
  }
  return text[name.size()] == '\0';
}

// The members in file order: first all their tags, so that a look at one line of the cache is
// enough for most, then how far each symbol lies from here.
class SBD_SCOPE_LIST : public SBD_SCOPE_TABLE {
 public:
  using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

  static constexpr std::size_t k_most_members = 32;

  // A list of at least one member; null where a symbol lies too far off.
  static SBD_SCOPE_LIST* make(const SBD_OPEN_MEMBER* first, std::size_t count, SBD_POOL& pool);

  // The first member of that name; null if there is none.
  SBD_SYMBOL* find(std::uint16_t tag, std::string_view name) const {
    for (std::size_t begin = 0; begin < listed; begin += k_tags_per_step) {
      for (unsigned same = find_tag(begin, tag); same != 0; same &= same - 1) {
        const std::size_t index = begin + sbd_first_clear_bit(~same) / k_bits_per_tag;
        SBD_SYMBOL* const symbol = symbol_of(index);
        fetch_around(symbol);
        if (sbd_has_name(symbol->name, name)) return symbol;
      }
    }
    return nullptr;
  }

  // Lets the memory be fetched of the first member that has that tag.
  void fetch(std::uint16_t tag) const {
    for (std::size_t begin = 0; begin < listed; begin += k_tags_per_step) {
      const unsigned same = find_tag(begin, tag);
      if (same == 0) continue;
      fetch_around(symbol_of(begin + sbd_first_clear_bit(~same) / k_bits_per_tag));
      return;
    }
  }

  void remove(const SBD_SYMBOL* symbol);

 private:
  // The reader puts a symbol behind its node, and the table of a block's members behind both: all
  // that a longer name needs next, to be fetched at once and not one after the other.
  static void fetch_around(const SBD_SYMBOL* symbol) { sbd_prefetch(symbol, -1, 5); }

  using TAG = std::uint16_t;
  using PLACE = std::int32_t;  // In units of a record's alignment.

  static constexpr std::size_t k_tags_per_step = k_run_step / sizeof(TAG);
  static constexpr std::size_t k_bits_per_tag = sizeof(TAG);
  static constexpr std::int64_t k_unit = alignof(SBD_SYMBOL);

  TAG* tags() { return reinterpret_cast<TAG*>(this) + 1; }
  const TAG* tags() const { return const_cast<SBD_SCOPE_LIST*>(this)->tags(); }
  PLACE* places() { return reinterpret_cast<PLACE*>(this) + listed / 2 + 1; }
  const PLACE* places() const { return const_cast<SBD_SCOPE_LIST*>(this)->places(); }
  SBD_SYMBOL* symbol_of(std::size_t index) const {
    const std::int64_t address = sbd_address_of(this) + places()[index] * k_unit;
    return sbd_place_at<SBD_SYMBOL>(static_cast<std::intptr_t>(address));
  }

  // Which of the tags from `begin` on, as many as a step has, are that one: the lowest of
  // k_bits_per_tag bits for each. There may be less tags than a step has.
  unsigned find_tag(std::size_t begin, TAG tag) const {
#if SBD_HAS_SSE2
    constexpr unsigned k_lowest_bits = 0x5555;
    const __m128i step = sbd_load_step(reinterpret_cast<const char*>(tags() + begin));
    const __m128i same = _mm_cmpeq_epi16(step, _mm_set1_epi16(static_cast<short>(tag)));
    // What stands behind the tags may look like one.
    const std::size_t tags_left = std::min(listed - begin, k_tags_per_step);
    const unsigned of_tags = (1U << (tags_left * k_bits_per_tag)) - 1;
    return sbd_mask_of(same) & k_lowest_bits & of_tags;
#else
    unsigned same = 0;
    for (std::size_t i = 0; i != std::min(listed - begin, k_tags_per_step); ++i) {
      if (tags()[begin + i] == tag) same |= 1U << (k_bits_per_tag * i);
    }
    return same;
#endif
  }
};

// Open addressing; a third of the slots stay empty.
class SBD_SCOPE_HASH : public SBD_SCOPE_TABLE {
 public:
  using SBD_SYMBOL = SBD_FILE_PARSER::SBD_SYMBOL;

  static SBD_SCOPE_HASH* make(std::size_t count, SBD_POOL& pool);

  // The slot of that name, behind which a step can be read, or the empty one where it would be.
  SBD_SYMBOL** find_slot(std::uint32_t hash, std::uint16_t tag, std::string_view name);

  void remove(const SBD_SYMBOL* symbol);

 private:
  std::uint32_t m_capacity;
  SBD_SYMBOL* m_slots[1];
};

#endif
