# Compiler for the phone that runs the iPhone's library: the desktop phone's sources, for arm64 Linux, with the libraries that
# device/sysroot.sh has unpacked. Its programs run under qemu; "max" is a processor that authenticates pointers.
#
#     cmake -S . -B DIR --toolchain device/phone_toolchain.cmake -DCORVEL_SYSROOT=DIR/root
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CORVEL_SYSROOT "" CACHE PATH "Debian's arm64 packages, unpacked")
if(CORVEL_SYSROOT MATCHES "[ \t]")
    message(FATAL_ERROR "A path with spaces can't be used here, since pkg-config takes none for a sysroot: ${CORVEL_SYSROOT}")
endif()
# Checks of the compiler are projects of their own.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CORVEL_SYSROOT)

set(CMAKE_SYSROOT ${CORVEL_SYSROOT})
set(CMAKE_FIND_ROOT_PATH ${CORVEL_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CORVEL_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CORVEL_SYSROOT}/usr/lib/aarch64-linux-gnu/pkgconfig:${CORVEL_SYSROOT}/usr/share/pkgconfig)

foreach(language C CXX ASM)
    set(CMAKE_${language}_COMPILER_TARGET aarch64-linux-gnu)
endforeach()
set(CMAKE_C_COMPILER clang-22)
set(CMAKE_CXX_COMPILER clang++-22)
set(CMAKE_ASM_COMPILER clang-22)
foreach(kind EXE SHARED MODULE)
    # Libraries of the sysroot name others that nothing here calls.
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "--ld-path=ld.lld-22 -Wl,--allow-shlib-undefined")
endforeach()
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -cpu max -L ${CORVEL_SYSROOT})
