# Cross-compiling for 32-bit ARM Linux, hard-float, with Debian's cross compiler.
#
# The "arm" preset uses it with the sysroot that tools/arm-sysroot makes, and runs the tests through qemu-user.
# With a unit's own SDK: its compiler by -DCMAKE_CXX_COMPILER and -DCMAKE_C_COMPILER, its root by -DCMAKE_SYSROOT
# (docs/porting.md).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

# Debian's directory of libraries, and the prefix of its compilers.
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

if(NOT CMAKE_SYSROOT OR NOT IS_DIRECTORY "${CMAKE_SYSROOT}/usr/include")
  message(FATAL_ERROR "There is no sysroot in '${CMAKE_SYSROOT}'. Make one with tools/arm-sysroot DIR, "
    "or name another with -DCMAKE_SYSROOT=DIR.")
endif()

# The versioned compilers: the unversioned package excludes that of the machine's own 32-bit libraries.
if(NOT CMAKE_C_COMPILER)
  set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc-12)
endif()
if(NOT CMAKE_CXX_COMPILER)
  set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++-12)
endif()

# Programs are run here (protoc, gdbus-codegen); everything else comes from the sysroot and nowhere else.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

foreach(language C CXX)
  find_program(IPOD_CROSS_${language} "${CMAKE_${language}_COMPILER}" NO_CACHE)
  if(NOT IPOD_CROSS_${language})
    message(FATAL_ERROR "There is no cross compiler '${CMAKE_${language}_COMPILER}'. Install the packages of "
      "packaging/packages-arm.txt, or name another with -DCMAKE_${language}_COMPILER=COMPILER.")
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
