// The two hashes of a name: the bucket hash that callers see, and the one of our own index.
#ifndef SBD_READING_SBD_HASH_H
#define SBD_READING_SBD_HASH_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "sbd/reading/sbd_chars.h"

// One step of the PJW hash over lower-cased characters; bytes above 0x7f count as negative.
inline std::uint32_t sbd_hash_pjw_step(std::uint32_t hash, char c) {
  const auto value = static_cast<std::uint32_t>(
      static_cast<std::int32_t>(static_cast<signed char>(sbd_to_lower(c))));
  hash = (hash << 4) + value;
  const std::uint32_t high = hash & 0xF0000000U;
  return hash ^ (high >> 24) ^ high;
}

inline std::uint32_t sbd_hash_pjw(std::string_view name) {
  std::uint32_t hash = 0;
  for (const char c : name) hash = sbd_hash_pjw_step(hash, c);
  return hash;
}

// Differs from run to run, so that nobody can prepare names that collide.
std::uint64_t sbd_hash_seed() noexcept;

// Mixes eight bytes of a name into the hash. Setting bit 5 of every byte makes the hash blind to
// letter case; that it merges a few other characters too does no harm, since names are compared.
inline std::uint64_t sbd_hash_mix(std::uint64_t hash, std::uint64_t bytes) {
  constexpr std::uint64_t k_case_bits = 0x2020202020202020U;
  constexpr std::uint64_t k_multiplier_1 = 0x9E3779B97F4A7C15U;
  constexpr std::uint64_t k_multiplier_2 = 0xC2B2AE3D27D4EB4FU;
  hash = (hash ^ (bytes | k_case_bits)) * k_multiplier_1;
  // The high bits know most about the input: bring them down before they are multiplied again.
  return ((hash >> 32) | (hash << 32)) * k_multiplier_2;
}

// Our own hash of a name, letter case aside.
inline std::uint64_t sbd_hash_name(std::string_view name) {
  std::uint64_t hash = sbd_hash_seed() ^ name.size();
  const char* next = name.data();
  std::size_t left = name.size();
  for (; left >= 8; left -= 8, next += 8) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, next, 8);
    hash = sbd_hash_mix(hash, bytes);
  }
  if (left != 0) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, next, left);
    hash = sbd_hash_mix(hash, bytes);
  }
  return hash;
}

// The digest of a name that its symbol carries: never 0.
inline std::uint16_t sbd_name_tag(std::uint64_t hash) {
  return static_cast<std::uint16_t>((hash >> 48) | 1U);
}

#endif
