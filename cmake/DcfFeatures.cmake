# The parts that need a library of their own, and the one way to ask for them.
find_package(PkgConfig QUIET)

# dcf_feature(<part> <default> <help> <module>...): the option DCF_<part> is ON (without its libraries the build fails),
# OFF, or AUTO: built where pkg-config finds them. DCF_HAVE_<part> says what came of it; the libraries are
# PkgConfig::DCF_<part>_LIBRARIES. Code that depends on the part asks for the definition DCFCTL_HAVE_<part>.
macro(dcf_feature part default help)
  set(DCF_${part} ${default} CACHE STRING "${help}: ON, OFF, or AUTO")
  set_property(CACHE DCF_${part} PROPERTY STRINGS AUTO ON OFF)
  set(DCF_HAVE_${part} OFF)
  if(DCF_${part})
    if(PKG_CONFIG_FOUND)
      pkg_check_modules(DCF_${part}_LIBRARIES QUIET IMPORTED_TARGET GLOBAL ${ARGN})
    endif()
    if(DCF_${part}_LIBRARIES_FOUND)
      set(DCF_HAVE_${part} ON)
    elseif(NOT DCF_${part} STREQUAL "AUTO")
      message(FATAL_ERROR "DCF_${part} is ${DCF_${part}}, and pkg-config does not find all of these: ${ARGN}")
    endif()
  endif()
endmacro()
