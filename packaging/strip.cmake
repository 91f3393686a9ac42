# CPack runs this over what it is about to pack: programs and libraries lose what nobody needs who runs them.
file(GLOB_RECURSE files LIST_DIRECTORIES FALSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*)
list(FILTER files INCLUDE REGEX "/bin/[^/]+$|[.]so[.][^/]+$")
foreach(file ${files})
  if(NOT IS_SYMLINK ${file})
    execute_process(COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note ${file}
                    COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
