# For a machine that puts the highest byte first, whose programs qemu-user runs here, with Debian's
# g++-s390x-linux-gnu and qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_C_COMPILER s390x-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x;-L;/usr/s390x-linux-gnu)
set(GTest_DIR ${CMAKE_CURRENT_LIST_DIR} CACHE PATH "")
set(fmt_DIR ${CMAKE_CURRENT_LIST_DIR} CACHE PATH "")
set(SBD_OTHER_MACHINE ON)  # Its libraries are none for this machine's Python and compilers.
