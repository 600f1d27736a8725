// Converts the digits of number tokens; the same in every locale.
#ifndef SBD_READING_SBD_NUMBERS_H
#define SBD_READING_SBD_NUMBERS_H

#include <cstdint>
#include <string_view>

// The low 32 bits of a decimal number, with or without "+"; beyond 63 bits the number saturates.
std::uint32_t sbd_convert_decimal(std::string_view digits) noexcept;
// The low 32 bits of the digits of a base of 8 or 16, without prefix; beyond 64 bits they saturate.
std::uint32_t sbd_convert_octal(std::string_view digits) noexcept;
std::uint32_t sbd_convert_hexadecimal(std::string_view digits) noexcept;
// The same for digits behind which eight bytes can be read from their start on, whatever they are.
std::uint32_t sbd_convert_padded_decimal(std::string_view digits) noexcept;
std::uint32_t sbd_convert_padded_hexadecimal(std::string_view digits) noexcept;
// The low 32 binary digits.
std::uint32_t sbd_convert_binary(std::string_view digits) noexcept;
// The nearest double to a number with sign, digits and point, or with sign and digits.
double sbd_convert_float(std::string_view text) noexcept;

#endif
