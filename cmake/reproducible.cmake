# Release builds are identical wherever they are built. Debug builds keep the paths, so that a debugger finds the sources.
include(CheckCXXCompilerFlag)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# GCC knows it from version 8 on.
check_cxx_compiler_flag(-ffile-prefix-map=/from=to IPOD_HAVE_FILE_PREFIX_MAP)
if(IPOD_HAVE_FILE_PREFIX_MAP)
  # The last one that matches counts, and the build directory may lie in that of the sources.
  foreach(map IN ITEMS "${PROJECT_SOURCE_DIR}=." "${PROJECT_BINARY_DIR}=build")
    add_compile_options("$<$<OR:$<CONFIG:Release>,$<CONFIG:MinSizeRel>>:-ffile-prefix-map=${map}>")
  endforeach()
endif()
