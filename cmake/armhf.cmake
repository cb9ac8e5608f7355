# 32-bit ARM, hard float: ARMv7 in Thumb-2.
set(target armhf)
set(compilers arm-linux-gnueabihf)
set(libraries arm-linux-gnueabihf)
set(emulator qemu-arm)
# The compiler's remarks on how it passed certain arguments before version 7 are of no use here.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/target.cmake)
