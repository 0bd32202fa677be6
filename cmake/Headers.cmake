# Headers that most sources of a kind read are compiled once for all of them: half of the time of a build went there.
# Sources still include what they use: the clang preset builds without this, and finds what is missing.

option(ZV32_COMPILED_HEADERS "Compile the headers of the standard library, Qt and GoogleTest once" ON)

# zv32_headers(NAME KIND [LINK TARGETS...] HEADERS...): KIND is that of the targets that are to use them, LIBRARY or
# PROGRAM: their code is made for other places.
function(zv32_headers name kind)
  cmake_parse_arguments(ARG "" "" "LINK;HEADERS" ${ARGN})
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/nothing.cpp CONTENT "int main() {}\n")
  if(kind STREQUAL "PROGRAM")
    add_executable(${name} EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/nothing.cpp)
  else()
    add_library(${name} OBJECT EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/nothing.cpp)
  endif()
  target_link_libraries(${name} PRIVATE ${ARG_LINK})
  target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
endfunction()

# zv32_use_headers(TARGET HEADERS): the target's sources find them compiled.
function(zv32_use_headers target headers)
  if(ZV32_COMPILED_HEADERS)
    target_precompile_headers(${target} REUSE_FROM ${headers})
  endif()
endfunction()

set(zv32_standard <algorithm> <array> <cerrno> <cstdint> <cstdlib> <cstring> <functional> <map> <memory> <optional>
  <string> <string_view> <utility> <vector>)
zv32_headers(standard_headers LIBRARY HEADERS ${zv32_standard})
zv32_headers(console_headers LIBRARY LINK Qt5::Core HEADERS
  ${zv32_standard} <QByteArray> <QList> <QSet> <QString> <QThread>)
target_compile_options(console_headers PRIVATE -ffunction-sections) # as those who read them
