// SBD_WRAPS stands before a function whose unsigned arithmetic is meant to lose what goes beyond
// the highest bit, as that of a hash. Anywhere else the build that checks integers takes it for a
// fault.
#ifndef SBD_READING_SBD_WRAPS_H
#define SBD_READING_SBD_WRAPS_H

#if defined(__clang__)
#define SBD_WRAPS __attribute__((no_sanitize("unsigned-integer-overflow", "unsigned-shift-base")))
#else
#define SBD_WRAPS
#endif

#endif
