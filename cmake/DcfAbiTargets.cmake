# checkabi compares the binary interface of the library of this build tree with the goldens of its architecture under
# abi/; storeabi makes it the golden. The library needs debug information for both.
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  set(DCF_ARCHITECTURE amd64)
elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL "aarch64")
  set(DCF_ARCHITECTURE arm64)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  set(DCF_ARCHITECTURE armhf)
else()
  return()
endif()
foreach(command check store)
  add_custom_target(${command}abi
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/abi-${command} ${DCF_ARCHITECTURE} $<TARGET_FILE:dcffilelist>
    DEPENDS dcffilelist
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    USES_TERMINAL
    VERBATIM)
endforeach()
