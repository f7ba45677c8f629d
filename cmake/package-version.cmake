# Writes NAMEConfigVersion.cmake into the current binary directory: which versions of the package a project accepts, and
# that it must have the word size of this build.
include(CMakePackageConfigHelpers)

function(ipod_write_package_version name)
  set(file "${CMAKE_CURRENT_BINARY_DIR}/${name}ConfigVersion.cmake")
  write_basic_package_version_file("${file}" COMPATIBILITY SameMajorVersion)
  math(EXPR word "8 * ${CMAKE_SIZEOF_VOID_P}")
  # The list of what CMake found and refused shows the version, so that the reason is put there.
  file(APPEND "${file}" "
if(PACKAGE_VERSION_UNSUITABLE)
  math(EXPR ipod_project_word \"8 * \${CMAKE_SIZEOF_VOID_P}\")
  set(PACKAGE_VERSION \"${PROJECT_VERSION} (built for ${word} bits, this project for \${ipod_project_word})\")
endif()
")
endfunction()
