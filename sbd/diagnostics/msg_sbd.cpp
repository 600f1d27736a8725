#include "sbd/msg_sbd.h"

#include <cstdarg>
#include <memory>

#include "sbd/diagnostics/sbd_internal_error.h"
#include "sbd/diagnostics/sbd_messages.h"

namespace {

constexpr char k_source[] = "msg_sbd";

template <class MESSAGE, class... ARGUMENTS>
MESSAGE* make_guarded(const SBD_MESSAGE_ROW& row, ARGUMENTS... arguments) {
  return sbd_guarded(k_source, static_cast<MESSAGE*>(nullptr),
                     [&] { return sbd_make_message<MESSAGE>(row, arguments...); });
}

}  // namespace

namespace MSG_SBD {

namespace E {

MSG_E* SBD_FILE_ERROR(const char* file) {
  return make_guarded<MSG_E>(k_msg_file_error, file);
}

MSG_E* SBD_SYNTAX_ERROR(const char* file, const char* token, int line) {
  return make_guarded<MSG_E>(k_msg_syntax_error, file, token, line);
}

MSG_E* SBD_DECLARATION_ERROR(const char* file, const char* name, int line) {
  return make_guarded<MSG_E>(k_msg_declaration_error, file, name, line);
}

MSG_E* SBD_REFERENCE_ERROR(const char* file, const char* name, int line) {
  return make_guarded<MSG_E>(k_msg_reference_error, file, name, line);
}

MSG_E* SBD_BLOCK_ERROR(const char* file, const char* block, int line) {
  return make_guarded<MSG_E>(k_msg_block_error, file, block, line);
}

MSG_E* SBD_VEL_DEVICE_ERROR(const char* reason) {
  return make_guarded<MSG_E>(k_msg_vel_device_error, reason);
}

MSG_E* SBD_VEL_MODULE_ERROR(const char* reason) {
  return make_guarded<MSG_E>(k_msg_vel_module_error, reason);
}

MSG_E* SBD_ERROR(const char* text) {
  return make_guarded<MSG_E>(k_msg_error, text);
}

MSG_E* SBD_NO_DEVICE_BLOCK_ERROR() {
  return make_guarded<MSG_E>(k_msg_no_device_block_error);
}

MSG_E* SBD_VELDRAN_MODULE_BLOCK_ERROR() {
  return make_guarded<MSG_E>(k_msg_veldran_module_block_error);
}

MSG_E* SBD_PARAMETER_MISSING_ERROR(const char* parameter) {
  return make_guarded<MSG_E>(k_msg_parameter_missing_error, parameter);
}

MSG_E* SBD_PARAMETER_VALUE_ERROR(const char* parameter) {
  return make_guarded<MSG_E>(k_msg_parameter_value_error, parameter);
}

MSG_E* UNSUPPORTED_FAMILY_ERROR(const char* family) {
  return make_guarded<MSG_E>(k_msg_unsupported_family_error, family);
}

MSG_E* FAMILY_NOT_DEFINED_ERROR(const char* device_block) {
  return make_guarded<MSG_E>(k_msg_family_not_defined_error, device_block);
}

}  // namespace E

namespace W {

MSG_W* SBD_WARNING(const char* text) {
  return make_guarded<MSG_W>(k_msg_warning, text);
}

}  // namespace W

MSG_D* DEBUG_MSG(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  MSG_D* const made = sbd_guarded(k_source, static_cast<MSG_D*>(nullptr), [format, &arguments] {
    std::unique_ptr<MSG_D> message(new (SBD_MEMORY_MODULE::tag()) MSG_D(nullptr));
    message->fill_args(format, arguments);
    message->set_module(SBD_MEMORY_MODULE::tag());
    return message.release();
  });
  va_end(arguments);
  return made;
}

}  // namespace MSG_SBD
