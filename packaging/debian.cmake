# What the Debian packages hold beyond an installation, and how CPack makes them. scripts/package runs it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGE_CONTACT "dcffilelist authors <dcffilelist@example.org>" CACHE STRING
    "Name and address of whoever passes the packages on")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package brings its own
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES OFF) # strip.cmake takes more away than CPack would
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/strip.cmake)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(full_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

# Beside the licence of the project, a package tells those of what is linked or compiled into it.
file(READ ${PROJECT_SOURCE_DIR}/LICENSE project_licence)
function(dcf_debian_copyright package)
  set(text "${PROJECT_NAME}, the package ${package}\n\n${project_licence}")
  if(ARGN)
    string(APPEND text "\nWhat is linked with it or compiled into it\n==========================================\n")
  endif()
  foreach(name ${ARGN})
    file(READ licences/${name}.txt notice)
    string(APPEND text "\n${notice}")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/licences/${name}.txt)
  endforeach()
  file(CONFIGURE OUTPUT ${package}/copyright CONTENT "${text}" @ONLY)
endfunction()

# dcf_compress(<source> <file>): for Debian, which has its documents compressed and without a time inside.
function(dcf_compress source file)
  add_custom_command(OUTPUT ${file} DEPENDS ${source} VERBATIM
    COMMAND sh -c "gzip -9 -n <\"$1\" >\"$2\"" sh ${source} ${CMAKE_CURRENT_BINARY_DIR}/${file})
  set_property(GLOBAL APPEND PROPERTY DCF_COMPRESSED ${CMAKE_CURRENT_BINARY_DIR}/${file})
endfunction()
dcf_compress(${CMAKE_CURRENT_SOURCE_DIR}/changelog changelog.Debian.gz)
dcf_compress(${PROJECT_SOURCE_DIR}/CHANGELOG.md changelog.gz)
dcf_compress(${PROJECT_SOURCE_DIR}/docs/dcfctl.1 dcfctl.1.gz)

# dcf_library_control(<component> <package> <library>): what a package on this library will depend on, and that the linker's
# cache is to be renewed.
function(dcf_library_control component package library)
  file(CONFIGURE OUTPUT ${package}/shlibs CONTENT "${library} 1 ${package} (>= ${PROJECT_VERSION})\n")
  file(CONFIGURE OUTPUT ${package}/triggers CONTENT "activate-noawait ldconfig\n")
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA
      ${CMAKE_CURRENT_BINARY_DIR}/${package}/shlibs ${CMAKE_CURRENT_BINARY_DIR}/${package}/triggers PARENT_SCOPE)
endfunction()
dcf_library_control(library libdcffilelist1 libdcffilelist)
dcf_library_control(platform-host libdcfplatform-host1 libdcfplatform-host)
dcf_library_control(exif libdcfexif1 libdcfexif)

# dcf_debian_package(<component> <package> SECTION .. SUMMARY .. DESCRIPTION .. LICENCES .. [DEPENDS ..])
function(dcf_debian_package component package)
  cmake_parse_arguments(ARG "" "SECTION;SUMMARY;DESCRIPTION;DEPENDS" "LICENCES" ${ARGN})
  dcf_debian_copyright(${package} ${ARG_LICENCES})
  install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/${package}/copyright
    ${CMAKE_CURRENT_BINARY_DIR}/changelog.Debian.gz
    ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
  install(FILES lintian/${package} DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${ARG_SECTION} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${ARG_DEPENDS}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${ARG_SUMMARY}\n${ARG_DESCRIPTION}" PARENT_SCOPE)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} PARENT_SCOPE)
endfunction()

set(about "The file list of a DCF memory card, as a camera's media software uses it:\nlisting, browsing, selecting, \
deleting and protecting pictures and movies, and\nnaming the next one.")
dcf_debian_package(library libdcffilelist1
  SECTION libs
  SUMMARY "file list of a DCF memory card"
  DESCRIPTION "${about}\n.\nThe library calls a platform layer, which a device brings of its own and which\n\
libdcfplatform-host1 is on a workstation."
  LICENCES c-and-cpp-libraries)
dcf_debian_package(platform-host libdcfplatform-host1
  SECTION libs
  SUMMARY "file list of a DCF memory card - platform layer of a workstation"
  DESCRIPTION "${about}\n.\nThis is what the library asks of a device, answered for a workstation: a log, a\n\
durable preference store, backtraces with names."
  LICENCES c-and-cpp-libraries sqlite elfutils)
dcf_debian_package(exif libdcfexif1
  SECTION libs
  SUMMARY "file list of a DCF memory card - EXIF collector"
  DESCRIPTION "${about}\n.\nThis collector tells the list what a picture's EXIF tells: when and how it was\ntaken, and \
where."
  LICENCES c-and-cpp-libraries libexif)
dcf_debian_package(development libdcffilelist-dev
  SECTION libdevel
  SUMMARY "file list of a DCF memory card - development files"
  DESCRIPTION "${about}\n.\nThe headers of the library, of its EXIF collector and of what a device brings,\nand what \
CMake and pkg-config need to find them."
  DEPENDS "libdcffilelist1 (= ${full_version}), libdcfplatform-host1 (= ${full_version}), libdcfexif1 (= ${full_version})")
dcf_debian_package(tool dcfctl
  SECTION utils
  SUMMARY "list, browse and change the pictures and movies of a DCF memory card"
  DESCRIPTION "${about}\n.\nThis tool shows a card, plays it back on a terminal, checks it, makes a contact\nsheet of it, \
and lets one try every operation of the library by hand."
  LICENCES c-and-cpp-libraries libexif cli11 nlohmann-json libedit ncurses chafa gdk-pixbuf
  DEPENDS "libdcffilelist1 (>= ${PROJECT_VERSION}), libdcfplatform-host1 (>= ${PROJECT_VERSION}), \
libdcfexif1 (>= ${PROJECT_VERSION})")

install(FILES ${CMAKE_CURRENT_BINARY_DIR}/dcfctl.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
install(FILES ${PROJECT_SOURCE_DIR}/tools/dcfctl/completions/_dcfctl
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tool)

get_property(compressed GLOBAL PROPERTY DCF_COMPRESSED)
add_custom_target(debian-documents ALL DEPENDS ${compressed})
include(CPack)
