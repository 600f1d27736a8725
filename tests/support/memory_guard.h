// Makes every test that leaves memory of the library behind fail.
//
// Including this header is enough: the guard listens to all tests of the program.
#ifndef TESTS_SUPPORT_MEMORY_GUARD_H
#define TESTS_SUPPORT_MEMORY_GUARD_H

// Installs the guard. Always true.
bool install_memory_guard();

inline const bool is_memory_guard_installed = install_memory_guard();

#endif
