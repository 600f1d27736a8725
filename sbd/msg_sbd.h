// The library's messages.
//
// Each function makes a new message of the host's message service, fills it and returns it to the
// caller, who owns it; SBD_FILE_PARSER::post_message posts and destroys it. Numbers and keys are
// fixed: hosts file messages by them. Text arguments must not be null. When the host has no memory
// for a message, that is an internal error of the source "msg_sbd", and the result is null.
#ifndef SBD_MSG_SBD_H
#define SBD_MSG_SBD_H

#include "h/msg_service.h"
#include "sbd/sbd_api.h"

namespace MSG_SBD {

namespace E {
SBD_API MSG_E* SBD_FILE_ERROR(const char* file);                                     // 1
SBD_API MSG_E* SBD_SYNTAX_ERROR(const char* file, const char* token, int line);      // 2
SBD_API MSG_E* SBD_DECLARATION_ERROR(const char* file, const char* name, int line);  // 3
SBD_API MSG_E* SBD_REFERENCE_ERROR(const char* file, const char* name, int line);    // 4
SBD_API MSG_E* SBD_BLOCK_ERROR(const char* file, const char* block, int line);       // 5
SBD_API MSG_E* SBD_VEL_DEVICE_ERROR(const char* reason);                             // 6
SBD_API MSG_E* SBD_VEL_MODULE_ERROR(const char* reason);                             // 7
SBD_API MSG_E* SBD_ERROR(const char* text);                                          // 8
SBD_API MSG_E* SBD_NO_DEVICE_BLOCK_ERROR();                                          // 10
SBD_API MSG_E* SBD_VELDRAN_MODULE_BLOCK_ERROR();                                     // 11
SBD_API MSG_E* SBD_PARAMETER_MISSING_ERROR(const char* parameter);                   // 12
SBD_API MSG_E* SBD_PARAMETER_VALUE_ERROR(const char* parameter);                     // 13
SBD_API MSG_E* UNSUPPORTED_FAMILY_ERROR(const char* family);                         // 14
SBD_API MSG_E* FAMILY_NOT_DEFINED_ERROR(const char* device_block);                   // 15
}  // namespace E

namespace W {
SBD_API MSG_W* SBD_WARNING(const char* text);  // 9
}  // namespace W

// A debug message by the rules of printf. The library itself makes none.
SBD_API MSG_D* DEBUG_MSG(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

}  // namespace MSG_SBD

#endif
