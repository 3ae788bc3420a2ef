# Where build products stand, in the build tree as in an installation: programs in bin/, the shared
# libraries in lib/, the modules that a host loads in lib/quorvel/; on Windows, where a program finds
# its libraries beside itself, all in bin/. Programs and libraries find each other relative to
# themselves, so either tree can be moved.

set(QUORVEL_BIN_DIR bin)
set(QUORVEL_LIB_DIR lib)
set(QUORVEL_MODULE_DIR lib/quorvel)
if(WIN32)
  set(QUORVEL_MODULE_DIR ${QUORVEL_BIN_DIR})
  set(CMAKE_SHARED_LIBRARY_PREFIX "")
endif()

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
  if(WIN32)
    target_link_options(${name} PRIVATE -Wl,--exclude-all-symbols)
  else()
    target_link_options(${name} PRIVATE
      -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/ExportNothing.map)
    set_property(TARGET ${name} APPEND PROPERTY
      LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/ExportNothing.map)
  endif()
  install(TARGETS ${name} LIBRARY DESTINATION ${QUORVEL_MODULE_DIR}
                          RUNTIME DESTINATION ${QUORVEL_MODULE_DIR})
endfunction()

# One C++ runtime for all, so that exceptions and singletons cross the libraries' boundaries: it
# stands beside the programs.
if(WIN32)
  set(QUORVEL_COMPILER "MinGW-w64, GCC ${CMAKE_CXX_COMPILER_VERSION}" CACHE INTERNAL "")
  file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  foreach(runtime libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${path}")
      message(FATAL_ERROR "${CMAKE_CXX_COMPILER} has no ${runtime}")
    endif()
    # For who packs it and needs its licence.
    set(QUORVEL_RUNTIME_${runtime} ${path} CACHE INTERNAL "")
    file(COPY_FILE ${path} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${runtime} ONLY_IF_DIFFERENT)
    install(FILES ${path} DESTINATION ${QUORVEL_BIN_DIR})
  endforeach()
endif()
