# quorvel_resources(NAME DESCRIPTION TEXT [MANIFEST] [MESSAGES]): gives the program or library NAME what
# Windows reads beside its code: its version; a program's manifest; the texts of the records that it
# writes to the event log. Elsewhere there is no such thing.

if(WIN32)
  find_program(QUORVEL_MESSAGE_COMPILER NAMES x86_64-w64-mingw32-windmc windmc REQUIRED)
  find_program(QUORVEL_RESOURCE_COMPILER ${CMAKE_RC_COMPILER} REQUIRED)
endif()

function(quorvel_resources name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "MANIFEST;MESSAGES" "DESCRIPTION" "")
  if(NOT WIN32)
    return()
  endif()
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${name}.resources)
  set(sources ${PROJECT_SOURCE_DIR}/cmake/windows)
  set(kind VFT_DLL)
  set(file ${name}.dll)
  get_target_property(type ${name} TYPE)
  if(type STREQUAL EXECUTABLE)
    set(kind VFT_APP)
    set(file ${name}.exe)
  endif()
  set(more "")
  set(needed "")
  if(arg_MANIFEST)
    configure_file(${sources}/Program.manifest ${folder}/Program.manifest @ONLY)
    # By their numbers: the program's manifest, of the type of manifests.
    string(APPEND more "1 24 \"${folder}/Program.manifest\"\n")
    list(APPEND needed ${folder}/Program.manifest)
  endif()
  if(arg_MESSAGES)
    add_custom_command(OUTPUT ${folder}/Messages.rc
      COMMAND ${QUORVEL_MESSAGE_COMPILER} -h ${folder} -r ${folder} ${sources}/Messages.mc
      DEPENDS ${sources}/Messages.mc
      COMMENT "Compiling the messages of ${name}" VERBATIM)
    string(APPEND more "#include \"${folder}/Messages.rc\"\n")
    list(APPEND needed ${folder}/Messages.rc)
  endif()
  configure_file(${sources}/Version.rc.in ${folder}/Resources.rc @ONLY)
  add_custom_command(OUTPUT ${folder}/Resources.obj
    COMMAND ${QUORVEL_RESOURCE_COMPILER} -I ${folder} ${folder}/Resources.rc -O coff ${folder}/Resources.obj
    DEPENDS ${folder}/Resources.rc ${needed}
    COMMENT "Compiling the resources of ${name}" VERBATIM)
  target_sources(${name} PRIVATE ${folder}/Resources.obj)
endfunction()
