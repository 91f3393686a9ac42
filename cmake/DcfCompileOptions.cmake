# The options that every target is compiled with, as one interface target: warnings, run-time type information,
# sanitizers, protections, large files, late times.
add_library(dcf-compile-options INTERFACE)
target_compile_options(dcf-compile-options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2
  # g++ 12 sees overlapping copies in "text" + std::string where there are none.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${DCF_WERROR}>:-Werror>
  $<$<NOT:$<BOOL:${DCF_RTTI}>>:-fno-rtti>)
# A 32-bit device must see files of any size, and those whose time is beyond January 2038: without 64 bits for both the
# C library refuses to tell of them, and they would read as not protected. No record holds an off_t or a time_t.
target_compile_definitions(dcf-compile-options INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
if(DCF_SANITIZE)
  target_compile_options(dcf-compile-options INTERFACE
    -fsanitize=${DCF_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(dcf-compile-options INTERFACE -fsanitize=${DCF_SANITIZE})
endif()
# What Debian calls hardening=+all. The distribution's own list is compared with it (scripts/checks/install).
if(DCF_HARDENING)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
  target_compile_options(dcf-compile-options INTERFACE -fstack-protector-strong -Wformat -Werror=format-security)
  target_compile_definitions(dcf-compile-options INTERFACE $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=2>)
  target_link_options(dcf-compile-options INTERFACE LINKER:-z,relro LINKER:-z,now)
endif()
