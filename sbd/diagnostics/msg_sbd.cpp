#include "sbd/msg_sbd.h"

#include <cstdarg>

#include "sbd/sbd_memory.h"

namespace {

// Number and template of one message; the part behind the last "/" is its key.
struct CATALOGUE_ROW {
  int id;
  const char* message_template;
};

constexpr CATALOGUE_ROW k_file_error = {
    1, "Can't open or write to System Build Descriptor File %1!s!/ESBD_SBD_FILE_ERROR"};
constexpr CATALOGUE_ROW k_syntax_error = {
    2,
    "System Build Descriptor File %1!s! contains syntax error \"%2!s!\" at line "
    "%3!d!/ESBD_SBD_SYNTAX_ERROR"};
constexpr CATALOGUE_ROW k_declaration_error = {
    3,
    "Block or parameter \"%2!s!\" at line number %3!d! in System Build Descriptor File %1!s! "
    "cannot be specified more than once in block/ESBD_SBD_DECLARATION_ERROR"};
constexpr CATALOGUE_ROW k_reference_error = {
    4,
    "Parameter or block setting \"%2!s!\" at line %3!d! in file %1!s! contains semantic "
    "error/ESBD_SBD_REFERENCE_ERROR"};
constexpr CATALOGUE_ROW k_block_error = {
    5,
    "Block \"%2!s!\" at line number %3!d! of System Build Descriptor File %1!s! cannot be used "
    "because the block does not have a recognized type or is in an incorrect hierarchical "
    "position/ESBD_SBD_BLOCK_ERROR"};
constexpr CATALOGUE_ROW k_vel_device_error = {
    6,
    "Device block in System Build Descriptor File cannot be used because "
    "%1!s!/ESBD_SBD_VEL_DEVICE_ERROR"};
constexpr CATALOGUE_ROW k_vel_module_error = {
    7,
    "Module blocks that define Veldran embedded processor stripe in System Build Descriptor File "
    "cannot be used because %1!s!/ESBD_SBD_VEL_MODULE_ERROR"};
constexpr CATALOGUE_ROW k_error = {8, "System Build Descriptor File error: %1!s!/ESBD_SBD_ERROR"};
constexpr CATALOGUE_ROW k_warning = {
    9, "System Build Descriptor File warning: %1!s!/WSBD_SBD_WARNING"};
constexpr CATALOGUE_ROW k_no_device_block_error = {
    10, "System Build Descriptor File must contain device block/ESBD_SBD_NO_DEVICE_BLOCK_ERROR"};
constexpr CATALOGUE_ROW k_veldran_module_block_error = {
    11,
    "System Build Descriptor File must contain only one module block that defines Veldran embedded "
    "processor stripe of ARM-based Veldran device/ESBD_SBD_VELDRAN_MODULE_BLOCK_ERROR"};
constexpr CATALOGUE_ROW k_parameter_missing_error = {
    12,
    "System Build Descriptor File must contain parameter "
    "\"%1!s!\"/ESBD_SBD_PARAMETER_MISSING_ERROR"};
constexpr CATALOGUE_ROW k_parameter_value_error = {
    13,
    "System Build Descriptor File contains invalid setting for parameter "
    "\"%1!s!\"/ESBD_SBD_PARAMETER_VALUE_ERROR"};
constexpr CATALOGUE_ROW k_unsupported_family_error = {
    14,
    "System Build Descriptor File contains invalid device family %1!s! for family "
    "parameter/ESBD_UNSUPPORTED_FAMILY_ERROR"};
constexpr CATALOGUE_ROW k_family_not_defined_error = {
    15,
    "Device block \"%1!s!\" in System Build Descriptor File must contain family "
    "parameter/ESBD_FAMILY_NOT_DEFINED_ERROR"};

template <class MESSAGE, class... ARGUMENTS>
MESSAGE* make_message(const CATALOGUE_ROW& row, ARGUMENTS... arguments) {
  auto* message = new (SBD_MEMORY_MODULE::tag()) MESSAGE(nullptr);
  message->set_module(SBD_MEMORY_MODULE::tag());
  message->fill_args(row.message_template, row.id, arguments...);
  return message;
}

}  // namespace

namespace MSG_SBD {

namespace E {

MSG_E* SBD_FILE_ERROR(const char* file) {
  return make_message<MSG_E>(k_file_error, file);
}

MSG_E* SBD_SYNTAX_ERROR(const char* file, const char* token, int line) {
  return make_message<MSG_E>(k_syntax_error, file, token, line);
}

MSG_E* SBD_DECLARATION_ERROR(const char* file, const char* name, int line) {
  return make_message<MSG_E>(k_declaration_error, file, name, line);
}

MSG_E* SBD_REFERENCE_ERROR(const char* file, const char* name, int line) {
  return make_message<MSG_E>(k_reference_error, file, name, line);
}

MSG_E* SBD_BLOCK_ERROR(const char* file, const char* block, int line) {
  return make_message<MSG_E>(k_block_error, file, block, line);
}

MSG_E* SBD_VEL_DEVICE_ERROR(const char* reason) {
  return make_message<MSG_E>(k_vel_device_error, reason);
}

MSG_E* SBD_VEL_MODULE_ERROR(const char* reason) {
  return make_message<MSG_E>(k_vel_module_error, reason);
}

MSG_E* SBD_ERROR(const char* text) {
  return make_message<MSG_E>(k_error, text);
}

MSG_E* SBD_NO_DEVICE_BLOCK_ERROR() {
  return make_message<MSG_E>(k_no_device_block_error);
}

MSG_E* SBD_VELDRAN_MODULE_BLOCK_ERROR() {
  return make_message<MSG_E>(k_veldran_module_block_error);
}

MSG_E* SBD_PARAMETER_MISSING_ERROR(const char* parameter) {
  return make_message<MSG_E>(k_parameter_missing_error, parameter);
}

MSG_E* SBD_PARAMETER_VALUE_ERROR(const char* parameter) {
  return make_message<MSG_E>(k_parameter_value_error, parameter);
}

MSG_E* UNSUPPORTED_FAMILY_ERROR(const char* family) {
  return make_message<MSG_E>(k_unsupported_family_error, family);
}

MSG_E* FAMILY_NOT_DEFINED_ERROR(const char* device_block) {
  return make_message<MSG_E>(k_family_not_defined_error, device_block);
}

}  // namespace E

namespace W {

MSG_W* SBD_WARNING(const char* text) {
  return make_message<MSG_W>(k_warning, text);
}

}  // namespace W

MSG_D* DEBUG_MSG(const char* format, ...) {
  auto* message = new (SBD_MEMORY_MODULE::tag()) MSG_D(nullptr);
  std::va_list arguments;
  va_start(arguments, format);
  message->fill_args(format, arguments);
  va_end(arguments);
  message->set_module(SBD_MEMORY_MODULE::tag());
  return message;
}

}  // namespace MSG_SBD
