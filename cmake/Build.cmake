# What every target of the project shares: language level, warnings, sanitizers, where things land.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)

set(ZV32_SANITIZE "" CACHE STRING "Value for -fsanitize=, empty for none")

option(ZV32_FUZZ "Build the fuzzers of tests/fuzz with libFuzzer, for clang++" OFF)
if(ZV32_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

option(ZV32_COVERAGE "Count which lines and branches run, for clang++" OFF)
if(ZV32_COVERAGE)
  # The counters are the mapped file itself (%c), one for each program and library (%m), shared by all processes of it:
  # one that is killed has counted too, and nothing of the environment is needed.
  set(counted ${PROJECT_BINARY_DIR}/counted.txt)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/counted.txt.in ${counted} @ONLY)
  add_compile_options(-fprofile-instr-generate=${PROJECT_BINARY_DIR}/profiles/%c%m.profraw -fcoverage-mapping
    -fprofile-update=atomic -fprofile-list=${counted} "SHELL:-mllvm -runtime-counter-relocation")
  add_link_options(-fprofile-instr-generate)
endif()

# zv32_count_nothing(): of the directory's targets nothing is counted: what is preloaded into others, stands in for them or
# measures.
macro(zv32_count_nothing)
  foreach(kind COMPILE_OPTIONS LINK_OPTIONS)
    get_property(options DIRECTORY PROPERTY ${kind})
    list(FILTER options EXCLUDE REGEX "profile|coverage|counter-relocation")
    set_property(DIRECTORY PROPERTY ${kind} ${options})
  endforeach()
endmacro()

# Indices and iterators of the standard library are checked in builds that are made to find mistakes.
if(ZV32_SANITIZE OR ZV32_COVERAGE)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Werror)
if(ZV32_SANITIZE)
  add_compile_options(-fsanitize=${ZV32_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZV32_SANITIZE})
  # In instrumented code g++ 12 warns of branches that can't be reached, its own library's among them.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized -Wno-array-bounds -Wno-stringop-overflow)
  endif()
endif()

# LD_LIBRARY_PATH has to go first, so a RUNPATH, never an RPATH.
add_link_options(-Wl,--enable-new-dtags)
# clang++ leaves the sanitizers' functions to the program.
if(NOT ZV32_FUZZ)
  add_link_options(-Wl,--no-undefined)
endif()

# A site may drop in its own build of the two libraries, so the console finds them relative to itself.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# Every include path is spelled from the project's root: "link/CCom.h".
include_directories(${PROJECT_SOURCE_DIR})

# zv32_console_folder(NAME SOURCES... [LINK ...]): one console folder, a static library on Qt Core.
function(zv32_console_folder name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC Qt5::Core ${ARG_LINK})
  # A program that calls a part of a file leaves out the rest, with the calls that it makes to the libraries.
  target_compile_options(${name} PRIVATE -ffunction-sections)
  zv32_use_headers(${name} console_headers)
endfunction()

find_package(Qt5 5.15 REQUIRED COMPONENTS Core)
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBUSB REQUIRED IMPORTED_TARGET libusb-1.0)
# Only the simulated chip's device nodes and tests need it.
pkg_check_modules(UMOCKDEV IMPORTED_TARGET umockdev-1.0)

# zv32_find_libraries_relative(PROGRAM): the same run path in the build tree and installed. CMake would pad the one of
# the build tree with colons, to change it in place at the installation, and an empty entry between colons is the
# working directory.
function(zv32_find_libraries_relative program)
  set_target_properties(${program} PROPERTIES
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
endfunction()
