// The two hashes of a name: the bucket hash that callers see, and the one of our own index.
#ifndef SBD_READING_SBD_HASH_H
#define SBD_READING_SBD_HASH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "sbd/reading/sbd_chars.h"
#include "sbd/reading/sbd_run.h"
#include "sbd/reading/sbd_wraps.h"

// One step of the PJW hash over a lower-case character; bytes above 0x7f count as negative. What is
// shifted out of the 28 bits of the hash is felt in bits 4 to 7, and otherwise to be ignored.
SBD_WRAPS inline std::uint32_t sbd_hash_pjw_step(std::uint32_t hash, char c) {
  hash = (hash << 4) +
         static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(c)));
  return hash ^ ((hash >> 24) & 0xF0U);
}

inline constexpr std::uint32_t k_pjw_bits = 0x0FFFFFFFU;

inline std::uint32_t sbd_hash_pjw(std::string_view name) {
  std::uint32_t hash = 0;
  for (const char c : name) hash = sbd_hash_pjw_step(hash, sbd_to_lower(c));
  return hash & k_pjw_bits;
}

#if SBD_HAS_SSE2

inline constexpr std::size_t k_pjw_start = 6;

// The PJW hash of so many lower-case ASCII characters, which have no more than 28 bits together:
// each counts sixteen times what the next one counts.
inline std::uint32_t sbd_hash_pjw_start(const char* lower) {
  const __m128i characters = _mm_unpacklo_epi8(sbd_load_step(lower), _mm_setzero_si128());
  const __m128i pairs = _mm_madd_epi16(characters, _mm_setr_epi16(16, 1, 16, 1, 16, 1, 0, 0));
  const auto pair = [](__m128i lowest) {
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(lowest));
  };
  return (pair(pairs) << 16) + (pair(_mm_srli_si128(pairs, 4)) << 8) +
         pair(_mm_srli_si128(pairs, 8));
}

#endif

// The same for an ASCII name behind which a step can be read, whatever stands there.
inline std::uint32_t sbd_hash_pjw_padded(std::string_view name) {
  std::uint32_t hash = 0;
  for (std::size_t done = 0; done < name.size(); done += k_run_step) {
    char lower[k_run_step];
    sbd_lower_step(name.data() + done, lower);
    const std::size_t count = std::min(name.size() - done, k_run_step);
    std::size_t i = 0;
#if SBD_HAS_SSE2
    // The first characters don't fill up the 28 bits.
    if (done == 0 && count >= k_pjw_start) {
      hash = sbd_hash_pjw_start(lower);
      i = k_pjw_start;
    }
#endif
    for (; i != count; ++i) hash = sbd_hash_pjw_step(hash, lower[i]);
  }
  return hash & k_pjw_bits;
}

// Differs from run to run, so that nobody can prepare names that collide.
struct SBD_HASH_SEED {
  explicit SBD_HASH_SEED(std::uint64_t seed) noexcept : value(seed) {}
  std::uint64_t value;
};
extern const SBD_HASH_SEED k_hash_seed;

// Mixes eight bytes into a hash.
SBD_WRAPS inline std::uint64_t sbd_hash_mix(std::uint64_t hash, std::uint64_t bytes) {
  constexpr std::uint64_t k_multiplier_1 = 0x9E3779B97F4A7C15U;
  constexpr std::uint64_t k_multiplier_2 = 0xC2B2AE3D27D4EB4FU;
  hash = (hash ^ bytes) * k_multiplier_1;
  // The high bits know most about the input: bring them down before they are multiplied again.
  return ((hash >> 32) | (hash << 32)) * k_multiplier_2;
}

template <class WORD = std::uint64_t>
std::uint64_t sbd_load_word(const void* from) {
  WORD word = 0;
  std::memcpy(&word, from, sizeof word);
  return word;
}

// A name is hashed in steps of two words, the last one filled up with zeros.
inline constexpr std::size_t k_hash_step = 16;

// Set in every byte, bit 5 makes a hash blind to letter case; that it merges a few other characters
// too does no harm, since names are compared.
inline constexpr std::uint64_t k_case_bits = 0x2020202020202020U;

// One step.
inline std::uint64_t sbd_hash_step(std::uint64_t hash, std::uint64_t low, std::uint64_t high) {
  return sbd_hash_mix(sbd_hash_mix(hash, low | k_case_bits), high | k_case_bits);
}

// Up to eight bytes, filled up with zeros, in the order in which the machine would load eight.
inline std::uint64_t sbd_load_part(const char* from, std::size_t count) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  // In pieces that may overlap, since copying a few bytes one by one takes longer.
  if (count >= 8) return sbd_load_word(from);
  if (count >= 4) {
    return sbd_load_word<std::uint32_t>(from) | sbd_load_word<std::uint32_t>(from + count - 4)
                                                    << (8 * (count - 4));
  }
  if (count == 0) return 0;
  const std::size_t middle = count / 2;
  return sbd_load_word<std::uint8_t>(from) |
         sbd_load_word<std::uint8_t>(from + middle) << (8 * middle) |
         sbd_load_word<std::uint8_t>(from + count - 1) << (8 * (count - 1));
#else
  std::uint64_t word = 0;
  std::memcpy(&word, from, std::min<std::size_t>(count, 8));
  return word;
#endif
}

// Our own hash of a name, letter case aside.
inline std::uint64_t sbd_hash_name(std::string_view name, std::uint64_t seed = k_hash_seed.value) {
  std::uint64_t hash = seed ^ name.size();
  const char* next = name.data();
  std::size_t left = name.size();
  for (; left > k_hash_step; left -= k_hash_step, next += k_hash_step) {
    hash = sbd_hash_step(hash, sbd_load_word(next), sbd_load_word(next + 8));
  }
  if (left == 0) return hash;
  return sbd_hash_step(hash, sbd_load_part(next, left),
                       left > 8 ? sbd_load_part(next + 8, left - 8) : 0);
}

// The same for a name behind which a step can be read, whatever stands there.
inline std::uint64_t sbd_hash_padded_name(std::string_view name) {
  // Read from the middle on minus a count, it leaves so many bytes.
  static constexpr unsigned char k_masks[2 * k_hash_step] = {
      0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
      0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
  };
  std::uint64_t hash = k_hash_seed.value ^ name.size();
  for (std::size_t done = 0; done < name.size(); done += k_hash_step) {
    const char* const step = name.data() + done;
    const auto* const mask = &k_masks[k_hash_step - std::min(name.size() - done, k_hash_step)];
    hash = sbd_hash_step(hash, sbd_load_word(step) & sbd_load_word(mask),
                         sbd_load_word(step + 8) & sbd_load_word(mask + 8));
  }
  return hash;
}

// The digest of a name that its symbol carries: never 0.
inline std::uint16_t sbd_name_tag(std::uint64_t hash) {
  return static_cast<std::uint16_t>((hash >> 48) | 1U);
}

#endif
