# External libraries that applications compile and link with as well, but that have neither a pkg-config file nor a
# CMake package: zlog, and a head unit's middleware. Both kinds of files refer to the paths found by this build. Paths
# inside a sysroot are written as on the head unit: pkg-config and CMake prepend the user's sysroot.

# Sets OUT to PATH without the sysroot, or to nothing if the compiler searches it by default.
function(ipod_path_on_target path implicit out)
  set(result "")
  if(path AND NOT path IN_LIST implicit)
    string(FIND "${path}" "${CMAKE_SYSROOT}/" at)
    string(LENGTH "${CMAKE_SYSROOT}" root)
    set(result "${path}")
    if(CMAKE_SYSROOT AND at EQUAL 0)
      string(SUBSTRING "${path}" ${root} -1 result)
    endif()
  endif()
  set(${out} "${result}" PARENT_SCOPE)
endfunction()

# Adds a library of which consumers need INCLUDE, the directory of HEADER, and LIBRARY, a file. Both arguments name
# variables, which consumers can set to other paths. Without a LIBRARY, only the header is needed.
#   IPOD_EXTERNAL_CFLAGS, IPOD_EXTERNAL_LIBS   flags for pkg-config
#   IPOD_EXTERNAL_TARGETS                      code for the CMake package; creates the target ipod::NAME
macro(ipod_add_external name header include library)
  ipod_path_on_target("${${include}}" "${CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES}" include_dir)
  set(library_file "")
  set(library_dir "")
  if(${library})
    get_filename_component(library_file "${${library}}" NAME)
    get_filename_component(library_dir "${${library}}" DIRECTORY)
  endif()
  ipod_path_on_target("${library_dir}" "${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES}" library_dir)

  if(include_dir)
    string(APPEND IPOD_EXTERNAL_CFLAGS " -I${include_dir}")
  endif()
  if(library_dir)
    string(APPEND IPOD_EXTERNAL_LIBS " -L${library_dir}")
  endif()
  if(library_file)
    string(REGEX REPLACE "^lib(.+)\\.(so|a)$" "\\1" plain_name "${library_file}")
    if(plain_name STREQUAL library_file)
      set(plain_name ":${library_file}")
    endif()
    string(APPEND IPOD_EXTERNAL_LIBS " -l${plain_name}")
  endif()
  string(APPEND IPOD_EXTERNAL_TARGETS
    "\nipod_external(${name} ${header} ${include} \"${include_dir}\" \"${library_file}\" ${library} \"${library_dir}\")")
endmacro()
