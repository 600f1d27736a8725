// References to parameters, joined from the keywords while they are compiled.
#ifndef SBD_DEVICE_SBD_REFERENCE_H
#define SBD_DEVICE_SBD_REFERENCE_H

#include <array>
#include <cstddef>

template <const auto& BLOCK, const auto& PARAMETER>
constexpr auto sbd_join_keywords() {
  // Each keyword ends with a NUL: one gives way to the point, the other ends the reference.
  std::array<char, sizeof BLOCK + sizeof PARAMETER> joined{};
  std::size_t size = 0;
  for (std::size_t i = 0; i != sizeof BLOCK - 1; ++i) joined[size++] = BLOCK[i];
  joined[size++] = '.';
  for (std::size_t i = 0; i != sizeof PARAMETER; ++i) joined[size++] = PARAMETER[i];
  return joined;
}

template <const auto& BLOCK, const auto& PARAMETER>
inline constexpr auto k_joined_keywords = sbd_join_keywords<BLOCK, PARAMETER>();

// Block "." parameter.
template <const auto& BLOCK, const auto& PARAMETER>
inline constexpr const char* k_reference = k_joined_keywords<BLOCK, PARAMETER>.data();

#endif
