// Descriptors for tests: settings, and the text that states them.
#ifndef TESTS_DEVICE_DESCRIPTOR_TEXT_H
#define TESTS_DEVICE_DESCRIPTOR_TEXT_H

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>

#include "tests/device/expected_tables.h"

// What stands behind a parameter's name.
struct WRITTEN {
  enum FORM { FLAG, NUMBER, TEXT, LIST, REFERENCE };

  FORM form = NUMBER;
  std::string text;              // As it is written, with its unit.
  bool flag = false;             // FLAG
  double number = 0;             // NUMBER, without its unit.
  unsigned long multiplier = 1;  // NUMBER
};

WRITTEN flag(bool value);
WRITTEN whole(std::uint64_t value, const std::string& unit = "");
WRITTEN hexadecimal(unsigned long value, const std::string& unit = "");
WRITTEN octal(unsigned long value);
WRITTEN binary(unsigned long value);
// A number with a point, or a negative one.
WRITTEN fraction(const std::string& digits, const std::string& unit = "");
// An identifier, or a text in its own quotes.
WRITTEN keyword(const std::string& text);
WRITTEN list(const std::string& text = "{1, 2}");
// Refers to the family of the device.
WRITTEN reference();

// 1, 1024, ... of "", "K", ...
unsigned long multiplier_of(const std::string& unit);

// What a stripe's module block holds. All names are in lower case and relative to it.
struct SETTINGS {
  std::map<std::string, WRITTEN> values;
  std::set<std::string> blocks;  // Are there even if nothing is set in them.

  SETTINGS& set(const std::string& parameter, const WRITTEN& value);
  SETTINGS& remove(const std::string& parameter);
  SETTINGS& add_block(const std::string& block);
  // With all that is in it.
  SETTINGS& remove_block(const std::string& block);

  const WRITTEN* find(const std::string& parameter) const;
  // A block is there when anything in it is.
  bool has_block(const std::string& block) const;
};

// The least that is good: bypassed PLLs and the blocks that keywords need.
SETTINGS minimal_settings();
// Everything in use, every parameter written, all values good.
SETTINGS full_settings(CHIP chip);

// How a descriptor is written down.
struct STYLE {
  std::string device = "board";
  std::string module = "stripe";
  std::string family = "veldran_arm";
  std::string type = "";  // The chip's when empty.
  // Mixes letter case, order, layout and comments when it is given.
  std::mt19937_64* variety = nullptr;
};

std::string descriptor_text(const SETTINGS& settings, CHIP chip, const STYLE& style = {});

// The name with each letter in either case.
std::string mixed_case(const std::string& name, std::mt19937_64& random);

#endif
