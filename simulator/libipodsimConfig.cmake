# The simulated service as a part of a program: find_package(libipodsim) gives the target ipod::sim. There is no shared
# library, so whoever links it needs what it is made with.
include(CMakeFindDependencyMacro)
find_dependency(libipod 1 HINTS "${CMAKE_CURRENT_LIST_DIR}/../libipod")
find_dependency(PNG 1.6)
find_dependency(PkgConfig)
pkg_check_modules(TAGLIB QUIET IMPORTED_TARGET taglib>=1.11)
pkg_check_modules(ICU QUIET IMPORTED_TARGET icu-i18n icu-uc)

if(TARGET PkgConfig::TAGLIB AND TARGET PkgConfig::ICU)
  include("${CMAKE_CURRENT_LIST_DIR}/libipodsimTargets.cmake")
else()
  set(libipodsim_FOUND FALSE)
  set(libipodsim_NOT_FOUND_MESSAGE
    "libipodsim needs the development files of TagLib (1.11 or newer) and ICU (pkg-config modules taglib, icu-i18n, icu-uc)")
endif()
