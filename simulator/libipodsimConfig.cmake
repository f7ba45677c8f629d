# The simulated service as a part of a program: find_package(libipodsim) gives the target ipod::sim. There is no shared
# library, so whoever links it needs what it is made with.
include(CMakeFindDependencyMacro)
find_dependency(libipod 1 HINTS "${CMAKE_CURRENT_LIST_DIR}/../libipod")
find_dependency(ipodnames 1 HINTS "${CMAKE_CURRENT_LIST_DIR}/../ipodnames")
find_dependency(PNG 1.6)
find_dependency(PkgConfig)
pkg_check_modules(TAGLIB QUIET IMPORTED_TARGET taglib>=1.11)

if(TARGET PkgConfig::TAGLIB)
  include("${CMAKE_CURRENT_LIST_DIR}/libipodsimTargets.cmake")
else()
  set(libipodsim_FOUND FALSE)
  set(libipodsim_NOT_FOUND_MESSAGE
    "libipodsim needs the development files of TagLib (1.11 or newer; pkg-config module taglib)")
endif()
