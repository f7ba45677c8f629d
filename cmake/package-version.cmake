# Writes NAMEConfigVersion.cmake into the current binary directory: the versions that it is compatible with, and the
# required word size.
include(CMakePackageConfigHelpers)

function(ipod_write_package_version name)
  set(file "${CMAKE_CURRENT_BINARY_DIR}/${name}ConfigVersion.cmake")
  write_basic_package_version_file("${file}" COMPATIBILITY SameMajorVersion)
  math(EXPR word "8 * ${CMAKE_SIZEOF_VOID_P}")
  # CMake prints the version of rejected packages, so the version carries the reason.
  file(APPEND "${file}" "
if(PACKAGE_VERSION_UNSUITABLE)
  math(EXPR ipod_project_word \"8 * \${CMAKE_SIZEOF_VOID_P}\")
  set(PACKAGE_VERSION \"${PROJECT_VERSION} (built for ${word} bits, this project for \${ipod_project_word})\")
endif()
")
endfunction()
