# 32-bit little-endian MIPS.
set(target mipsel)
set(compilers mipsel-linux-gnu)
set(libraries mipsel-linux-gnu)
set(emulator qemu-mipsel)
include(${CMAKE_CURRENT_LIST_DIR}/target.cmake)
