# Release builds are identical regardless of their directory. Debug builds keep the paths so that debuggers find the
# sources.
include(CheckCXXCompilerFlag)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# Supported since GCC 8.
check_cxx_compiler_flag(-ffile-prefix-map=/from=to IPOD_HAVE_FILE_PREFIX_MAP)
if(IPOD_HAVE_FILE_PREFIX_MAP)
  # The last match wins, and the build directory may be inside the source directory.
  foreach(map IN ITEMS "${PROJECT_SOURCE_DIR}=." "${PROJECT_BINARY_DIR}=build")
    add_compile_options("$<$<OR:$<CONFIG:Release>,$<CONFIG:MinSizeRel>>:-ffile-prefix-map=${map}>")
  endforeach()
endif()
