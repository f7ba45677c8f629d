# Installs manual pages, completions, examples, and notices. Files of programs that are not built here are omitted.

set(PACKAGING "${CMAKE_CURRENT_LIST_DIR}")

# Builds everything that is installed, but nothing that only tests need.
add_custom_target(packaged)
foreach(part IN ITEMS ipod ipodkit ipodnames ipodkit_python ipodkit-stub ipodctl ipodctl-schema ipod-simulator ipod-make-samples
    manuals ipod-companiond ipod-companiond-interface ipodqml ipodqmlplugin ipod-screen)
  if(TARGET ${part})
    add_dependencies(packaged ${part})
  endif()
endforeach()

# Compresses FILE reproducibly and sets OUT to the name of the result.
function(compressed file out)
  get_filename_component(name "${file}" NAME)
  set(result "${CMAKE_BINARY_DIR}/packaging/${name}.gz")
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/packaging")
  execute_process(COMMAND gzip -9nc "${file}" OUTPUT_FILE "${result}" RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "gzip cannot compress ${file}")
  endif()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  set(${out} "${result}" PARENT_SCOPE)
endfunction()

function(install_manual page component)
  compressed("${PACKAGING}/man/${page}" manual)
  string(REGEX REPLACE ".*\\." "" section "${page}")
  install(FILES "${manual}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" COMPONENT ${component})
endfunction()

# Only for Debian packages: CPack installs component by component, which nothing else does.
function(install_notices component package)
  compressed("${PACKAGING}/changelog" changelog)
  compressed("${PROJECT_SOURCE_DIR}/CHANGELOG.md" upstream)
  set(options DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}" COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" ${options} RENAME copyright)
  install(FILES "${changelog}" ${options} RENAME changelog.Debian.gz)
  install(FILES "${upstream}" ${options} RENAME changelog.gz)
  if(EXISTS "${PACKAGING}/lintian/${package}")
    install(FILES "${PACKAGING}/lintian/${package}" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides"
      COMPONENT ${component} EXCLUDE_FROM_ALL)
  endif()
endfunction()

install_notices(runtime libipod1)
if(TARGET ipodkit)
  install_notices(kit libipodkit2)
endif()
if(TARGET ipodnames)
  install_notices(names libipodnames1)
endif()
if(IPOD_MIDDLEWARE STREQUAL "host")
  install_notices(standin libqbxmiddleware-standin1)
endif()

install_notices(development libipod-dev)
install_manual(libipod.3 development)

install_notices(documentation libipod-doc)
set(documentation "${CMAKE_INSTALL_DATAROOTDIR}/doc/libipod-doc")
# Keeps the folders of the tree, because the files link to each other.
foreach(folder IN ITEMS . bench docs docs/decisions tests/abi tests/layout/data)
  set(from "${PROJECT_SOURCE_DIR}/${folder}")
  file(GLOB guides "${from}/*.md" "${from}/*.svg" "${from}/*.png" "${from}/LICENSE*")
  install(FILES ${guides} DESTINATION "${documentation}/${folder}" COMPONENT documentation)
endforeach()
# The guides quote them.
file(GLOB examples "${PROJECT_SOURCE_DIR}/examples/*.cpp" "${PROJECT_SOURCE_DIR}/examples/*.py")
install(FILES ${examples} DESTINATION "${documentation}/examples" COMPONENT documentation)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/build/docs/" DESTINATION "${documentation}/html" COMPONENT documentation
  OPTIONAL FILES_MATCHING PATTERN "*.html" PATTERN "*.css" PATTERN "*.js" PATTERN "*.png" PATTERN "*.svg")

if(TARGET ipodqml)
  install_notices(qml qml6-module-ipod)
  install_notices(screen ipod-screen)
  install_manual(ipod-screen.1 screen)
endif()
if(TARGET ipodkit_python)
  install_notices(python python3-ipodkit)
endif()

if(TARGET ipod-companiond)
  install_notices(companiond ipod-companiond)
endif()

if(TARGET ipodctl OR TARGET ipod-simulator)
  install_notices(tools ipod-tools)
endif()
if(TARGET ipodctl)
  set(completions "${PACKAGING}/completions")
  install(FILES "${completions}/ipodctl.bash" RENAME ipodctl
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions" COMPONENT tools)
  install(FILES "${completions}/_ipodctl" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/zsh/vendor-completions"
    COMPONENT tools)
  install(FILES "${completions}/ipodctl.fish" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d"
    COMPONENT tools)
endif()
if(TARGET ipod-simulator)
  set(completions "${PACKAGING}/completions")
  install(FILES "${completions}/ipod-simulator.bash" RENAME ipod-simulator
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions" COMPONENT tools)
  install(FILES "${completions}/_ipod-simulator" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/zsh/vendor-completions"
    COMPONENT tools)
  install(FILES "${completions}/ipod-simulator.fish" DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d"
    COMPONENT tools)
  # Only examples: a machine with a real service must not start the simulator instead.
  install(FILES
    "${PACKAGING}/service/com.zarn.linux.ipod.service"
    "${PACKAGING}/service/ipod-simulator.service"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/ipod-tools/examples" COMPONENT tools)
endif()
