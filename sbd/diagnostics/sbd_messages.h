// The messages as the library itself makes them.
#ifndef SBD_DIAGNOSTICS_SBD_MESSAGES_H
#define SBD_DIAGNOSTICS_SBD_MESSAGES_H

#include <memory>

#include "h/msg_service.h"
#include "sbd/sbd_memory.h"

// Number and template of one message; the part behind the last "/" is its key.
struct SBD_MESSAGE_ROW {
  int id;
  const char* message_template;
};

inline constexpr SBD_MESSAGE_ROW k_msg_file_error = {
    1, "Can't open or write to System Build Descriptor File %1!s!/ESBD_SBD_FILE_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_syntax_error = {
    2,
    "System Build Descriptor File %1!s! contains syntax error \"%2!s!\" at line "
    "%3!d!/ESBD_SBD_SYNTAX_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_declaration_error = {
    3,
    "Block or parameter \"%2!s!\" at line number %3!d! in System Build Descriptor File %1!s! "
    "cannot be specified more than once in block/ESBD_SBD_DECLARATION_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_reference_error = {
    4,
    "Parameter or block setting \"%2!s!\" at line %3!d! in file %1!s! contains semantic "
    "error/ESBD_SBD_REFERENCE_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_block_error = {
    5,
    "Block \"%2!s!\" at line number %3!d! of System Build Descriptor File %1!s! cannot be used "
    "because the block does not have a recognized type or is in an incorrect hierarchical "
    "position/ESBD_SBD_BLOCK_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_vel_device_error = {
    6,
    "Device block in System Build Descriptor File cannot be used because "
    "%1!s!/ESBD_SBD_VEL_DEVICE_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_vel_module_error = {
    7,
    "Module blocks that define Veldran embedded processor stripe in System Build Descriptor File "
    "cannot be used because %1!s!/ESBD_SBD_VEL_MODULE_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_error = {
    8, "System Build Descriptor File error: %1!s!/ESBD_SBD_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_warning = {
    9, "System Build Descriptor File warning: %1!s!/WSBD_SBD_WARNING"};
inline constexpr SBD_MESSAGE_ROW k_msg_no_device_block_error = {
    10, "System Build Descriptor File must contain device block/ESBD_SBD_NO_DEVICE_BLOCK_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_veldran_module_block_error = {
    11,
    "System Build Descriptor File must contain only one module block that defines Veldran embedded "
    "processor stripe of ARM-based Veldran device/ESBD_SBD_VELDRAN_MODULE_BLOCK_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_parameter_missing_error = {
    12,
    "System Build Descriptor File must contain parameter "
    "\"%1!s!\"/ESBD_SBD_PARAMETER_MISSING_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_parameter_value_error = {
    13,
    "System Build Descriptor File contains invalid setting for parameter "
    "\"%1!s!\"/ESBD_SBD_PARAMETER_VALUE_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_unsupported_family_error = {
    14,
    "System Build Descriptor File contains invalid device family %1!s! for family "
    "parameter/ESBD_UNSUPPORTED_FAMILY_ERROR"};
inline constexpr SBD_MESSAGE_ROW k_msg_family_not_defined_error = {
    15,
    "Device block \"%1!s!\" in System Build Descriptor File must contain family "
    "parameter/ESBD_FAMILY_NOT_DEFINED_ERROR"};

// A new message of the host's, filled. Throws what the host throws: whoever is inside an operation
// of the library lets that end the operation, where the functions of sbd/msg_sbd.h report it.
template <class MESSAGE, class... ARGUMENTS>
MESSAGE* sbd_make_message(const SBD_MESSAGE_ROW& row, ARGUMENTS... arguments) {
  std::unique_ptr<MESSAGE> message(new (SBD_MEMORY_MODULE::tag()) MESSAGE(nullptr));
  message->set_module(SBD_MEMORY_MODULE::tag());
  message->fill_args(row.message_template, row.id, arguments...);
  return message.release();
}

#endif
