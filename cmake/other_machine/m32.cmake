# For programs of 32 bits that run on an x86-64 machine, with Debian's g++-multilib.
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
set(GTest_DIR ${CMAKE_CURRENT_LIST_DIR} CACHE PATH "")
set(fmt_DIR ${CMAKE_CURRENT_LIST_DIR} CACHE PATH "")
set(SBD_OTHER_MACHINE ON)  # Its libraries are none for this machine's Python and compilers.
