# 32-bit x86.
set(target i386)
set(compilers i686-linux-gnu)
set(libraries i386-linux-gnu)
set(emulator qemu-i386)
include(${CMAKE_CURRENT_LIST_DIR}/target.cmake)
