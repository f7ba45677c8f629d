# Readings, sections and search of names: find_package(ipodnames) gives the target ipod::ipodnames.
include("${CMAKE_CURRENT_LIST_DIR}/ipodnamesTargets.cmake")
