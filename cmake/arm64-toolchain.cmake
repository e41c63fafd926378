# SPDX-License-Identifier: MIT
# 64-bit ARM by Debian's cross compiler and emulator; ARM_ROOT holds the libraries. For scripts/check_arm.sh.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ARM_ROOT)

set(CMAKE_FIND_ROOT_PATH ${ARM_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(libraries ${ARM_ROOT}/usr/lib/aarch64-linux-gnu)
set(CMAKE_CXX_FLAGS_INIT "-idirafter ${ARM_ROOT}/usr/include")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-L${libraries} -Wl,-rpath-link,${libraries}:${ARM_ROOT}/lib/aarch64-linux-gnu")
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${ARM_ROOT})
