// Export marks and the version of the library.
#ifndef SBD_SBD_API_H
#define SBD_SBD_API_H

#if defined(SBD_STATIC) || !defined(__GNUC__)
#define SBD_API
#else
#define SBD_API __attribute__((visibility("default")))
#endif

#define SBD_VERSION_MAJOR 0  // Raised when something public goes away or changes.
#define SBD_VERSION_MINOR 1  // Raised when something public is added.
#define SBD_VERSION_PATCH 0  // Raised when faults go away.

// The version of the library that is running, such as "0.1.0".
SBD_API const char* sbd_version() noexcept;

#endif
