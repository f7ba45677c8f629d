# Debian packages, one for each component: `cpack -G DEB` in a build directory that was configured for /usr.
include("${CMAKE_CURRENT_LIST_DIR}/install.cmake")

# Dependencies are read from a package database: this machine's, or that of a sysroot created by tools/arm-sysroot.
# Other sysroots have none.
if(CMAKE_CROSSCOMPILING)
  if(NOT CMAKE_LIBRARY_ARCHITECTURE STREQUAL "arm-linux-gnueabihf" OR NOT EXISTS "${CMAKE_SYSROOT}/var/lib/dpkg/status")
    return()
  endif()
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
  set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_BINARY_DIR}/packaging/cpack-project.cmake")
  file(WRITE "${CPACK_PROJECT_CONFIG_FILE}"
    "set(SHLIBDEPS_EXECUTABLE \"${CMAKE_CURRENT_LIST_DIR}/shlibdeps-in-sysroot\" \"${CMAKE_SYSROOT}\" armhf)\n"
    "set(CPACK_OBJCOPY_EXECUTABLE \"${CMAKE_OBJCOPY}\")\n")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libipod)
set(CPACK_PACKAGE_VENDOR "libipod authors")
# Each package has its own description.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_CONTACT "The libipod authors <libipod@example.org>")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 2)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Strips packaged files and moves the debug information to NAME-dbgsym packages.
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
# Between these packages: exactly this version.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
if(TARGET ipodnames)
  list(APPEND CPACK_COMPONENTS_ALL names)
  list(APPEND CPACK_COMPONENT_DEVELOPMENT_DEPENDS names)
endif()
if(TARGET ipodkit)
  list(APPEND CPACK_COMPONENTS_ALL kit)
  list(APPEND CPACK_COMPONENT_DEVELOPMENT_DEPENDS kit)
  set(CPACK_COMPONENT_KIT_DEPENDS runtime)
endif()
if(IPOD_MIDDLEWARE STREQUAL "host")
  list(APPEND CPACK_COMPONENTS_ALL standin)
  list(APPEND CPACK_COMPONENT_DEVELOPMENT_DEPENDS standin)
endif()
if(TARGET ipodctl OR TARGET ipod-simulator)
  list(APPEND CPACK_COMPONENTS_ALL tools)
  set(CPACK_COMPONENT_TOOLS_DEPENDS runtime kit names)
endif()
if(TARGET ipod-companiond)
  list(APPEND CPACK_COMPONENTS_ALL companiond)
  set(CPACK_COMPONENT_COMPANIOND_DEPENDS runtime kit)
endif()
if(TARGET ipodkit_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_COMPONENT_PYTHON_DEPENDS kit names)
endif()
if(TARGET ipodqml)
  list(APPEND CPACK_COMPONENTS_ALL qml screen)
  set(CPACK_COMPONENT_QML_DEPENDS kit names)
  set(CPACK_COMPONENT_SCREEN_DEPENDS qml)
endif()
# Architecture-independent, so built only once.
if(NOT CMAKE_CROSSCOMPILING)
  list(APPEND CPACK_COMPONENTS_ALL documentation)
endif()

# Directories of libraries that belong to no package: those of the build, and those found outside the system directories.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/libipod" "${CMAKE_BINARY_DIR}/middleware"
  "${CMAKE_BINARY_DIR}/ipodkit" "${CMAKE_BINARY_DIR}/names" "${CMAKE_BINARY_DIR}/qml")
foreach(library IN ITEMS "${QBX_MIDDLEWARE_LIBRARY}" "${ZLOG_LIBRARY}")
  if(library)
    get_filename_component(directory "${library}" DIRECTORY)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${directory}")
  endif()
endforeach()

# CPack has no variable for this field before 3.31, so it is added as a second line of another field. Only the prefix /usr
# has multiarch directories.
set(multi_arch "")
if(CMAKE_LIBRARY_ARCHITECTURE AND CMAKE_INSTALL_LIBDIR MATCHES "/${CMAKE_LIBRARY_ARCHITECTURE}$")
  set(multi_arch "\nMulti-Arch: same")
endif()

# PACKAGE contains only the library of TARGET. Programs linked with it depend on DEPENDENCY.
macro(library_package component package target dependency)
  string(TOUPPER "${component}" upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION "libs${multi_arch}")
  set(CPACK_DEBIAN_${upper}_PACKAGE_SHLIBDEPS ON)
  set(control "${CMAKE_BINARY_DIR}/packaging/${package}")
  get_target_property(version ${target} SOVERSION)
  file(WRITE "${control}/shlibs" "lib${target} ${version} ${dependency}\n")
  file(WRITE "${control}/triggers" "activate-noawait ldconfig\n")
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA "${control}/shlibs" "${control}/triggers")
endmacro()

# The name that a package of a head unit's own middleware provides.
set(middleware libqbxmiddleware1)
set(middleware_or_standin "libqbxmiddleware-standin1 (>= ${PROJECT_VERSION}) | ${middleware}")
# Up to this version, libipod1 contained all three libraries.
set(undivided "libipod1 (<< 1.0.0-2)")

library_package(runtime libipod1 ipod "libipod1 (>= ${PROJECT_VERSION})")
if(IPOD_MIDDLEWARE STREQUAL "host")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "${middleware_or_standin}")
endif()
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "client library of the iPod service
Applications of a head unit control an attached Apple device and follow its
state through this library. It talks to the iPod service over the session bus
and through shared memory.")

if(TARGET ipodkit)
  library_package(kit libipodkit2 ipodkit "libipodkit2 (>= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_KIT_PACKAGE_BREAKS "${undivided}")
  set(CPACK_DEBIAN_KIT_PACKAGE_REPLACES "${undivided}")
  set(CPACK_DEBIAN_KIT_DESCRIPTION "asynchronous interface on top of the iPod client library
Asynchronous commands with results, the state of the player as one value, and
pages of names on top of libipod, for C++ programs.")
endif()

if(TARGET ipodnames)
  library_package(names libipodnames1 ipodnames "libipodnames1 (>= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_NAMES_DESCRIPTION "readings, sections, and search of names in any script
Finds names in long lists by letter or as you type, Chinese names by pinyin or
initials. Needs neither libipod nor a service.")
endif()

if(IPOD_MIDDLEWARE STREQUAL "host")
  library_package(standin libqbxmiddleware-standin1 qbxmiddleware "${middleware_or_standin}")
  set(CPACK_DEBIAN_STANDIN_PACKAGE_PROVIDES ${middleware})
  set(CPACK_DEBIAN_STANDIN_PACKAGE_CONFLICTS ${middleware})
  set(CPACK_DEBIAN_STANDIN_PACKAGE_BREAKS "${undivided}")
  set(CPACK_DEBIAN_STANDIN_PACKAGE_REPLACES "${undivided}")
  set(CPACK_DEBIAN_STANDIN_DESCRIPTION "stand-in for the middleware of a head unit, for development only
Locks, logging, and an audio-source manager that grants every request, so that
programs that use libipod run without a head unit.
.
Do not install it on a head unit: it replaces the head unit's own
libqbxmiddleware, and audio sources are no longer arbitrated.")
endif()

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libipod-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libboost-dev (>= 1.56), libglib2.0-dev (>= 2.32), libprotobuf-dev (>= 3.6), libexpected-dev")
# Needed only to embed the simulated service in tests.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "libpng-dev, libtag1-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libipod-doc)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "client library of the iPod service (development files)
Headers, pkg-config and CMake files, and the description of the bus interface
for programs that use libipod and for implementations of the service.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ipod-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "command line client and simulator of the iPod service
ipodctl controls an attached Apple device through libipod from a shell.
ipod-simulator replaces the iPod service on a machine without a head
unit and plays a folder of audio files.")

set(CPACK_DEBIAN_COMPANIOND_PACKAGE_NAME ipod-companiond)
set(CPACK_DEBIAN_COMPANIOND_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_COMPANIOND_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPANIOND_PACKAGE_SUGGESTS playerctl)
set(CPACK_DEBIAN_COMPANIOND_DESCRIPTION "media controls and state of the attached Apple device
A user service that lets media keys, desktop widgets, and playerctl control
the device by MPRIS, publishes its state on the session bus, and remembers
calls and other events for applications that start late.")

# Built for one version of the interpreter, which is part of its file name.
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-ipodkit)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${IPOD_PYTHON_DEPENDS}")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-gi)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "Python module of the iPod client library
Session, state, events, commands, and lists of the library ipodkit, for
programs that use asyncio, or GLib's main loop through python3-gi.")

# Only in builds with -DIPOD_BUILD_SCREEN=ON.
if(TARGET ipodqml)
  library_package(qml qml6-module-ipod ipodqml "qml6-module-ipod (>= ${PROJECT_VERSION})")
endif()
set(CPACK_DEBIAN_QML_DESCRIPTION "QML module of the iPod client library
State, lists, and artwork of an attached device for applications in QML, on top
of the library ipodkit.")

set(CPACK_DEBIAN_SCREEN_PACKAGE_NAME ipod-screen)
set(CPACK_DEBIAN_SCREEN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_SCREEN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_SCREEN_PACKAGE_DEPENDS "qml6-module-qtquick, qml6-module-qtquick-window, qml6-module-qtqml-workerscript")
set(CPACK_DEBIAN_SCREEN_PACKAGE_RECOMMENDS "fonts-noto-core, fonts-noto-cjk | fonts-wqy-microhei")
set(CPACK_DEBIAN_SCREEN_DESCRIPTION "media screen for the head unit of a vehicle
Shows what an attached device plays, its music, queue, and phone calls, for
touch, keys, and a rotary knob, by day and at night.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libipod-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION "doc\nMulti-Arch: foreign")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION "client library of the iPod service (documentation)
Reference of the headers and of the bus interface, and guides for those who
use, port, and change libipod.")

include(CPack)
