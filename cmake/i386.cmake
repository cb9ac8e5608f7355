# 32-bit x86.
set(target i386)
set(compilers i686-linux-gnu)
set(libraries i386-linux-gnu)
set(emulator qemu-i386)
# No wider alignment of tables than the processor needs: the compiler's is for copying them with vector instructions.
set(CMAKE_CXX_FLAGS_INIT -malign-data=abi)
include(${CMAKE_CURRENT_LIST_DIR}/target.cmake)
