# The browser of dcfctl: its sources, curses, and the optional preview of a picture in characters.
set(CURSES_NEED_WIDE ON)
find_package(Curses REQUIRED)

set(DCF_PREVIEW AUTO CACHE STRING "Draw previews in 'dcfctl browse' (needs chafa and gdk-pixbuf): ON, OFF, or AUTO")
set_property(CACHE DCF_PREVIEW PROPERTY STRINGS AUTO ON OFF)
set(DCF_PREVIEW_BUILT OFF)
if(DCF_PREVIEW)
  find_package(PkgConfig QUIET)
  if(PkgConfig_FOUND)
    pkg_check_modules(DCF_PREVIEW_LIBRARIES QUIET IMPORTED_TARGET GLOBAL chafa gdk-pixbuf-2.0)
  endif()
  if(DCF_PREVIEW_LIBRARIES_FOUND)
    set(DCF_PREVIEW_BUILT ON)
  elseif(NOT DCF_PREVIEW STREQUAL "AUTO")
    message(FATAL_ERROR "DCF_PREVIEW is on, and chafa and gdk-pixbuf-2.0 are not both there.")
  endif()
endif()
set_property(TARGET dcfctl PROPERTY DCF_PREVIEW_BUILT ${DCF_PREVIEW_BUILT}) # the tests ask

target_sources(dcfctl PRIVATE
  BrowseController.cpp
  BrowseMarks.cpp
  BrowseModel.cpp
  BrowsePhoto.cpp
  BrowseScreen.cpp
  BrowseVerb.cpp
  BrowseView.cpp
  Preview.cpp
  PreviewPicture.cpp
  WideText.cpp)
target_include_directories(dcfctl SYSTEM PRIVATE ${CURSES_INCLUDE_DIRS})
target_link_libraries(dcfctl PRIVATE ${CURSES_LIBRARIES})
if(DCF_PREVIEW_BUILT)
  target_compile_definitions(dcfctl PRIVATE DCFCTL_HAVE_PREVIEW)
  target_link_libraries(dcfctl PRIVATE PkgConfig::DCF_PREVIEW_LIBRARIES)
endif()
if(TARGET dcfexif)
  target_link_libraries(dcfctl PRIVATE dcfexif)
endif()
