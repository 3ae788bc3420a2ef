# The libraries of other people: the packages of the system that is built on. A build for another
# system takes their headers, which need no compiled part, from a folder that holds nothing else (the
# headers of this system must not be seen), and compiles GoogleTest from its sources.

set(QUORVEL_HEADER_SOURCE /usr/include CACHE PATH "Where header-only libraries stand when cross-compiling")
set(QUORVEL_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH
    "The sources of GoogleTest when cross-compiling")

# quorvel_header_library(TARGET FOLDER): makes TARGET of the headers in FOLDER.
function(quorvel_header_library target folder)
  set(source ${QUORVEL_HEADER_SOURCE}/${folder})
  if(NOT IS_DIRECTORY ${source})
    message(FATAL_ERROR "${source} is missing: run scripts/setup, or set QUORVEL_HEADER_SOURCE")
  endif()
  set(headers ${CMAKE_BINARY_DIR}/headers)
  file(MAKE_DIRECTORY ${headers})
  file(CREATE_LINK ${source} ${headers}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${headers})
endfunction()

# quorvel_system_library(TARGET NAME HEADER): makes TARGET of a library that has no file for CMake.
function(quorvel_system_library target name header)
  find_library(QUORVEL_${name}_LIBRARY ${name} REQUIRED)
  find_path(QUORVEL_${name}_HEADERS ${header} REQUIRED)
  add_library(${target} UNKNOWN IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES
    IMPORTED_LOCATION ${QUORVEL_${name}_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${QUORVEL_${name}_HEADERS})
endfunction()

if(CMAKE_CROSSCOMPILING)
  quorvel_header_library(nlohmann_json::nlohmann_json nlohmann)
  quorvel_header_library(CLI11::CLI11 CLI)
else()
  find_package(nlohmann_json REQUIRED)
  find_package(CLI11 REQUIRED)
  # Of the host with the CIM-XML server.
  find_package(Boost 1.81 REQUIRED)
  find_package(OpenSSL REQUIRED)
  find_package(pugixml REQUIRED)
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    # Of the adapters that the kernel drives.
    quorvel_system_library(mnl::mnl mnl libmnl/libmnl.h)
    quorvel_system_library(pci::pci pci pci/pci.h)
  endif()
endif()

if(BUILD_TESTING AND CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${QUORVEL_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
elseif(BUILD_TESTING)
  find_package(GTest REQUIRED)
endif()
