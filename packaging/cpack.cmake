# Debian packages, one for each component: `cpack -G DEB` in a build directory that was configured for /usr.
include("${CMAKE_CURRENT_LIST_DIR}/install.cmake")

# What a package depends on is read from a package database: this machine's, or that of a root which
# tools/arm-sysroot made. Another root has none.
if(CMAKE_CROSSCOMPILING)
  if(NOT CMAKE_LIBRARY_ARCHITECTURE STREQUAL "arm-linux-gnueabihf" OR NOT EXISTS "${CMAKE_SYSROOT}/var/lib/dpkg/status")
    return()
  endif()
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
  set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_BINARY_DIR}/packaging/cpack-project.cmake")
  file(CONFIGURE OUTPUT "${CPACK_PROJECT_CONFIG_FILE}" @ONLY CONTENT
    [[set(SHLIBDEPS_EXECUTABLE "@CMAKE_CURRENT_LIST_DIR@/shlibdeps-in-sysroot" "@CMAKE_SYSROOT@" armhf)]])
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libipod)
set(CPACK_PACKAGE_VENDOR "libipod authors")
# Each package has a description of its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_CONTACT "The libipod authors <libipod@example.org>")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development)
# The same for every architecture: made once.
if(NOT CMAKE_CROSSCOMPILING)
  list(APPEND CPACK_COMPONENTS_ALL documentation)
endif()
if(TARGET ipodctl OR TARGET ipod-simulator)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(TARGET ipodkit_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_PYTHON_DEPENDS runtime)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/libipod" "${CMAKE_BINARY_DIR}/middleware"
  "${CMAKE_BINARY_DIR}/ipodkit")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libipod1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
file(WRITE "${CMAKE_BINARY_DIR}/packaging/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_BINARY_DIR}/packaging/triggers")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "client library of the iPod service
Applications of a head unit control an attached Apple device through this
library and learn of its state. It talks to the iPod service over the session
bus and through shared memory.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libipod-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libboost-dev (>= 1.56), libglib2.0-dev (>= 2.32), libprotobuf-dev (>= 3.6), libexpected-dev")
# What only those need who put the simulated service into a test.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "libicu-dev, libpng-dev, libtag1-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libipod-doc)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "client library of the iPod service (development files)
Headers, pkg-config and CMake files, and the description of the bus interface
for programs that use libipod and for services that it talks to.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME ipod-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "command line client and simulator of the iPod service
ipodctl controls an attached Apple device through libipod from a shell.
ipod-simulator takes the place of the iPod service on a desk without a head
unit and plays a folder of audio files.")

# For one version of the interpreter, as its file name says.
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-ipodkit)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${IPOD_PYTHON_DEPENDS}")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-gi)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "Python module of the iPod client library
Session, state and commands of the companion library ipodkit, for programs that
run the main loop of GLib through python3-gi.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libipod-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION "client library of the iPod service (documentation)
Reference of the headers and of the bus interface, and guides for those who
use, port and change libipod.")

include(CPack)
