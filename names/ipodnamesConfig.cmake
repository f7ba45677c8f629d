# Reading, filing, and searching names: find_package(ipodnames) provides the target ipod::ipodnames.
include("${CMAKE_CURRENT_LIST_DIR}/ipodnamesTargets.cmake")
