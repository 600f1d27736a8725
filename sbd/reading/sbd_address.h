// Places in memory as numbers: what is reckoned with pointers must not leave a piece of memory.
#ifndef SBD_READING_SBD_ADDRESS_H
#define SBD_READING_SBD_ADDRESS_H

#include <cstdint>
#include <cstring>

inline std::intptr_t sbd_address_of(const void* place) {
  return reinterpret_cast<std::intptr_t>(place);
}

// What lies at an address: nothing is known of it but the number.
template <class T>
T* sbd_place_at(std::intptr_t address) {
  T* place = nullptr;
  static_assert(sizeof place == sizeof address, "an address is a number");
  std::memcpy(&place, &address, sizeof place);
  return place;
}

// What lies so many bytes behind a place, or in front of it, reckoned in 64 bits on every machine.
inline const char* sbd_place_behind(const void* place, std::int64_t distance) {
  return sbd_place_at<const char>(static_cast<std::intptr_t>(sbd_address_of(place) + distance));
}

inline constexpr std::intptr_t k_cache_line = 64;

// Lets the machine fetch so many lines of its cache, of which the first one lies `first_line` lines
// behind a place.
inline void sbd_prefetch(const void* place, std::intptr_t first_line, std::intptr_t count) {
#if defined(__GNUC__)
  for (std::intptr_t line = first_line; line != first_line + count; ++line) {
    __builtin_prefetch(sbd_place_behind(place, line * k_cache_line));
  }
#else
  static_cast<void>(place);
  static_cast<void>(first_line);
  static_cast<void>(count);
#endif
}

// Lets it fetch the line that lies so many bytes behind a place, which is going to be written.
inline void sbd_prefetch_to_write(const void* place, std::intptr_t distance) {
#if defined(__GNUC__)
  constexpr int k_to_write = 1;
  __builtin_prefetch(sbd_place_behind(place, distance), k_to_write);
#else
  static_cast<void>(place);
  static_cast<void>(distance);
#endif
}

#endif
