# The asynchronous interface on top of libipod: find_package(ipodkit) provides the target ipod::ipodkit.
include(CMakeFindDependencyMacro)
find_dependency(libipod 1 HINTS "${CMAKE_CURRENT_LIST_DIR}/../libipod")
find_dependency(tl-expected)
include("${CMAKE_CURRENT_LIST_DIR}/ipodkitTargets.cmake")
