# Copies the libraries and ipodctl of BUILD to FOLDER as a package installs them: without the build tree's search paths,
# through which the dynamic linker would look for every library.
file(GLOB libraries
  "${BUILD}/middleware/lib*.so.1" "${BUILD}/libipod/lib*.so.1" "${BUILD}/ipodkit/lib*.so.2" "${BUILD}/names/lib*.so.1")
file(MAKE_DIRECTORY "${FOLDER}")
foreach(original IN LISTS libraries ITEMS "${BUILD}/ipodctl/ipodctl")
  if(EXISTS "${original}")
    get_filename_component(name "${original}" NAME)
    file(REAL_PATH "${original}" content)
    file(COPY_FILE "${content}" "${FOLDER}/${name}")
    file(RPATH_REMOVE FILE "${FOLDER}/${name}")
  endif()
endforeach()
