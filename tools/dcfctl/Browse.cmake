# The browser of dcfctl: its sources, curses, and the optional preview of a picture in characters.
set(CURSES_NEED_WIDE ON)
find_package(Curses REQUIRED)

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
if(DCF_HAVE_PREVIEW)
  target_compile_definitions(dcfctl PRIVATE DCFCTL_HAVE_PREVIEW)
  target_link_libraries(dcfctl PRIVATE PkgConfig::DCF_PREVIEW_LIBRARIES)
endif()
