# What the cross files share: a Debian machine's compilers against the tree that ./dev target puts below build/, and
# qemu-user to run what comes out. A cross file names the machine first: `target` (Debian's name of the architecture),
# `compilers` (their prefix), `libraries` (the multiarch folder) and `emulator`.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${target})
set(CMAKE_C_COMPILER ${compilers}-gcc)
set(CMAKE_CXX_COMPILER ${compilers}-g++)
set(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot-${target})
set(CMAKE_LIBRARY_ARCHITECTURE ${libraries})
set(CMAKE_FIND_ROOT_PATH ${CMAKE_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator} -L ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/${libraries}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)
