# The simulated service, embedded in a program: find_package(libipodsim) provides the target ipod::sim. The library is
# static, so its users link its dependencies.
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
