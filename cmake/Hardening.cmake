# What a release build has in front of a mistake in its own memory handling: tests/packaging/hardening.sh looks for it
# in the files. Debug and sanitizer builds go without: they have better.
include(CheckPIESupported)
check_pie_supported()

if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT ZV32_SANITIZE)
  add_compile_options(-fstack-protector-strong -fstack-clash-protection -fcf-protection=full)
  add_compile_definitions(_FORTIFY_SOURCE=2)
  add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()
