// What tests write behind a parameter's name.
#ifndef TESTS_DEVICE_VALUE_CHOICES_H
#define TESTS_DEVICE_VALUE_CHOICES_H

#include <vector>

#include "tests/device/descriptor_text.h"
#include "tests/device/expected_tables.h"

// Each limit of the parameter's rule and what is just past it, each keyword and some that are none,
// in several notations, and values of every wrong kind.
std::vector<WRITTEN> values_to_try(const PARAMETER_ROW& row, CHIP chip);

#endif
