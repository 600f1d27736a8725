// Runs of characters of one kind, measured many at a time where the machine can.
//
// All functions may look at the 16 bytes from their start on, whatever stands there: sources and
// pools have so much room behind them.
#ifndef SBD_READING_SBD_RUN_H
#define SBD_READING_SBD_RUN_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "sbd/reading/sbd_chars.h"

#if defined(__SSE2__) && defined(__GNUC__)
#include <emmintrin.h>
#define SBD_HAS_SSE2 1
#else
#define SBD_HAS_SSE2 0
#endif

inline constexpr std::size_t k_run_step = 16;

// The same as sbd_is(c, CC_BLANK), quick for what no blank space precedes.
inline bool sbd_is_blank(char c) {
  return static_cast<unsigned char>(c) <= ' ' && sbd_is(c, CC_BLANK);
}

// How often each character stands in a stretch of text.
struct SBD_MARK_COUNTS {
  std::size_t semicolons;
  std::size_t braces;  // Opening ones.
  std::size_t commas;
};

// Counted from the lowest bit; there must be one.
inline std::size_t sbd_first_clear_bit(unsigned mask) {
#if defined(__GNUC__)
  return static_cast<std::size_t>(__builtin_ctz(~mask));
#else
  std::size_t count = 0;
  for (; (mask & 1U) != 0; mask >>= 1U) ++count;
  return count;
#endif
}

#if SBD_HAS_SSE2

inline __m128i sbd_load_step(const char* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

// A bit for each of the 16 bytes.
inline unsigned sbd_mask_of(__m128i bytes) {
  return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

// The bytes that lie in `first` ... `first + count - 1`: moved to the low end of the signed bytes,
// they are those below the count.
inline __m128i sbd_in_range(__m128i bytes, char first, int count) {
  const __m128i moved = _mm_add_epi8(bytes, _mm_set1_epi8(static_cast<char>(-128 - first)));
  return _mm_cmplt_epi8(moved, _mm_set1_epi8(static_cast<char>(-128 + count)));
}

inline unsigned sbd_name_mask(__m128i bytes) {
  const __m128i lower = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
  const __m128i is_letter = sbd_in_range(lower, 'a', 26);
  const __m128i is_digit = sbd_in_range(bytes, '0', 10);
  const __m128i is_underscore = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('_'));
  return sbd_mask_of(_mm_or_si128(_mm_or_si128(is_letter, is_digit), is_underscore));
}

inline unsigned sbd_digit_mask(__m128i bytes) {
  return sbd_mask_of(sbd_in_range(bytes, '0', 10));
}

inline unsigned sbd_hex_digit_mask(__m128i bytes) {
  const __m128i lower = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
  return sbd_mask_of(_mm_or_si128(sbd_in_range(bytes, '0', 10), sbd_in_range(lower, 'a', 6)));
}

inline unsigned sbd_quote_or_newline_mask(__m128i bytes) {
  return sbd_mask_of(_mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"')),
                                  _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'))));
}

inline constexpr unsigned k_whole_step = 0xFFFF;

// Behind the bytes from `next` on that MASK_OF marks.
template <unsigned (*MASK_OF)(__m128i)>
const char* sbd_skip_run(const char* next) {
  for (;;) {
    const unsigned mask = MASK_OF(sbd_load_step(next));
    if (mask != k_whole_step) return next + sbd_first_clear_bit(mask);
    next += k_run_step;
  }
}

// Behind the letters, digits and underscores from `next` on.
inline const char* sbd_skip_name(const char* next) {
  return sbd_skip_run<sbd_name_mask>(next);
}

inline const char* sbd_skip_digits(const char* next) {
  return sbd_skip_run<sbd_digit_mask>(next);
}

inline const char* sbd_skip_hex_digits(const char* next) {
  return sbd_skip_run<sbd_hex_digit_mask>(next);
}

// The first quotation mark or newline from `next` on; null if there is none before `end`.
inline const char* sbd_find_quote_or_newline(const char* next, const char* end) {
  while (next < end) {
    const unsigned mask = sbd_quote_or_newline_mask(sbd_load_step(next));
    if (mask != 0) {
      next += sbd_first_clear_bit(~mask);
      return next < end ? next : nullptr;
    }
    next += k_run_step;
  }
  return nullptr;
}

// Behind the blanks from `next` on, of which there usually are several. Tabs and carriage returns
// are rare and taken one by one.
inline const char* sbd_skip_indentation(const char* next) {
  const __m128i blank = _mm_set1_epi8(' ');
  for (;;) {
    const unsigned mask = sbd_mask_of(_mm_cmpeq_epi8(sbd_load_step(next), blank));
    if (mask == k_whole_step) {
      next += k_run_step;
      continue;
    }
    next += sbd_first_clear_bit(mask);
    if (!sbd_is_blank(*next)) return next;
    ++next;
  }
}

// Counts in the first `size` bytes, a multiple of a step up to 255 steps.
inline SBD_MARK_COUNTS sbd_count_marks(const char* text, std::size_t size) {
  __m128i semicolons = _mm_setzero_si128();
  __m128i braces = _mm_setzero_si128();
  __m128i commas = _mm_setzero_si128();
  for (const char* const end = text + size; text != end; text += k_run_step) {
    const __m128i bytes = sbd_load_step(text);
    // A match is -1.
    semicolons = _mm_sub_epi8(semicolons, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(';')));
    braces = _mm_sub_epi8(braces, _mm_cmpeq_epi8(bytes, _mm_set1_epi8('{')));
    commas = _mm_sub_epi8(commas, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(',')));
  }
  const auto sum = [](__m128i counts) {
    const __m128i halves = _mm_sad_epu8(counts, _mm_setzero_si128());
    return static_cast<std::size_t>(_mm_cvtsi128_si32(halves)) +
           static_cast<std::size_t>(_mm_extract_epi16(halves, 4));
  };
  return {sum(semicolons), sum(braces), sum(commas)};
}

// The 16 bytes at `from` in lower case.
inline void sbd_lower_step(const char* from, char* to) {
  const __m128i bytes = sbd_load_step(from);
  const __m128i case_bits = _mm_and_si128(sbd_in_range(bytes, 'A', 26), _mm_set1_epi8(0x20));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_or_si128(bytes, case_bits));
}

// Whether `size` bytes are the same.
inline bool sbd_equal_bytes(const char* one, const char* other, std::size_t size) {
  while (size > k_run_step) {
    if (std::memcmp(one, other, k_run_step) != 0) return false;
    one += k_run_step;
    other += k_run_step;
    size -= k_run_step;
  }
  const unsigned wanted = (1U << size) - 1;
  const unsigned same = sbd_mask_of(_mm_cmpeq_epi8(sbd_load_step(one), sbd_load_step(other)));
  return (same & wanted) == wanted;
}

// Whether there is a NUL byte among the first `size`.
inline bool sbd_has_nul(const char* text, std::size_t size) {
  const auto nul_mask = [](const char* from) {
    return sbd_mask_of(_mm_cmpeq_epi8(sbd_load_step(from), _mm_setzero_si128()));
  };
  for (; size > k_run_step; size -= k_run_step, text += k_run_step) {
    if (nul_mask(text) != 0) return true;
  }
  return (nul_mask(text) & ((1U << size) - 1)) != 0;
}

#else

inline const char* sbd_skip_name(const char* next) {
  while (sbd_is(*next, CC_NAME)) ++next;
  return next;
}

inline const char* sbd_skip_digits(const char* next) {
  while (sbd_is(*next, CC_DIGIT)) ++next;
  return next;
}

inline const char* sbd_skip_hex_digits(const char* next) {
  while (sbd_is(*next, CC_DIGIT | CC_HEX_LETTER)) ++next;
  return next;
}

inline const char* sbd_find_quote_or_newline(const char* next, const char* end) {
  for (; next < end; ++next) {
    if (*next == '"' || *next == '\n') return next;
  }
  return nullptr;
}

inline const char* sbd_skip_indentation(const char* next) {
  while (sbd_is_blank(*next)) ++next;
  return next;
}

inline SBD_MARK_COUNTS sbd_count_marks(const char* text, std::size_t size) {
  const auto count = [text, size](char mark) {
    return static_cast<std::size_t>(std::count(text, text + size, mark));
  };
  return {count(';'), count('{'), count(',')};
}

inline void sbd_lower_step(const char* from, char* to) {
  for (std::size_t i = 0; i != k_run_step; ++i) to[i] = sbd_to_lower(from[i]);
}

inline bool sbd_equal_bytes(const char* one, const char* other, std::size_t size) {
  return std::memcmp(one, other, size) == 0;
}

inline bool sbd_has_nul(const char* text, std::size_t size) {
  return std::memchr(text, '\0', size) != nullptr;
}

#endif

// Behind the blanks from `next` on, of which there usually is one or none.
inline const char* sbd_skip_blanks(const char* next) {
  if (!sbd_is_blank(*next)) return next;
  ++next;
  return sbd_is_blank(*next) ? sbd_skip_indentation(next) : next;
}

#endif
