# Where build products stand, in the build tree as in an installation: programs in bin/, the shared
# libraries in lib/, the modules that a host loads in lib/quorvel/. Programs and libraries find each
# other relative to themselves, so either tree can be moved.

set(QUORVEL_BIN_DIR bin)
set(QUORVEL_LIB_DIR lib)
set(QUORVEL_MODULE_DIR lib/quorvel)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${QUORVEL_BIN_DIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${QUORVEL_LIB_DIR})
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH $ORIGIN/../lib)

# quorvel_module(NAME): NAME is a library that a host loads at run time. It exports nothing: loading
# it registers its agent.
function(quorvel_module name)
  set_target_properties(${name} PROPERTIES
    PREFIX ""
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${QUORVEL_MODULE_DIR}
    INSTALL_RPATH $ORIGIN/..)
  if(UNIX)
    target_link_options(${name} PRIVATE
      -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/ExportNothing.map)
    set_property(TARGET ${name} APPEND PROPERTY
      LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/ExportNothing.map)
  endif()
  install(TARGETS ${name} LIBRARY DESTINATION ${QUORVEL_MODULE_DIR}
                          RUNTIME DESTINATION ${QUORVEL_MODULE_DIR})
endfunction()
