# Cross-compiling for 32-bit ARM Linux, hard-float, with Debian's cross compiler.
#
# The "arm" preset uses it with the sysroot created by tools/arm-sysroot, and runs the tests under qemu-user. For a head
# unit's SDK, set its compilers with -DCMAKE_CXX_COMPILER and -DCMAKE_C_COMPILER, and its root with -DCMAKE_SYSROOT
# (docs/porting.md).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

# Debian's library directory, and the prefix of its compilers.
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

if(NOT CMAKE_SYSROOT OR NOT IS_DIRECTORY "${CMAKE_SYSROOT}/usr/include")
  message(FATAL_ERROR "No sysroot in '${CMAKE_SYSROOT}'. Create one with tools/arm-sysroot DIR, "
    "or set another with -DCMAKE_SYSROOT=DIR.")
endif()

# The versioned compilers: the unversioned package conflicts with the native 32-bit libraries.
if(NOT CMAKE_C_COMPILER)
  set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc-12)
endif()
if(NOT CMAKE_CXX_COMPILER)
  set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++-12)
endif()

# Programs (protoc, gdbus-codegen) come from the host; everything else comes only from the sysroot.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

foreach(language C CXX)
  find_program(IPOD_CROSS_${language} "${CMAKE_${language}_COMPILER}" NO_CACHE)
  if(NOT IPOD_CROSS_${language})
    message(FATAL_ERROR "Cannot find the cross compiler '${CMAKE_${language}_COMPILER}'. Install the packages of "
      "packaging/packages-arm.txt, or set another with -DCMAKE_${language}_COMPILER=COMPILER.")
  endif()
endforeach()

set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
  "${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/pkgconfig:${CMAKE_SYSROOT}/usr/lib/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")
unset(ENV{PKG_CONFIG_PATH})

find_program(IPOD_QEMU_ARM qemu-arm DOC "Runs ARM programs on this machine")
mark_as_advanced(IPOD_QEMU_ARM)
if(IPOD_QEMU_ARM)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${IPOD_QEMU_ARM};-L;${CMAKE_SYSROOT}")
endif()
