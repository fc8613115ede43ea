# How everything of this project is compiled, and nothing of its users: flags live on the interface
# target orlf_build_flags, which no exported target carries.
add_library(orlf_build_flags INTERFACE)
set(ORLF_WARNINGS -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# GCC 12 sees overlapping copies and writes out of bounds in strings made of literals where there
# are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  list(APPEND ORLF_WARNINGS
    $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict> $<$<COMPILE_LANGUAGE:CXX>:-Wno-array-bounds>)
endif()
if(ORLF_DEVELOPER)
  target_compile_options(orlf_build_flags INTERFACE ${ORLF_WARNINGS})
endif()
if(ORLF_SANITIZERS)
  target_compile_options(orlf_build_flags INTERFACE
    -fsanitize=${ORLF_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORLF_SANITIZERS})
endif()
if(ORLF_COVERAGE)
  target_compile_options(orlf_build_flags INTERFACE --coverage)
  add_link_options(--coverage)
endif()

# Tests are read by compilers far oftener than they run: the last -O given counts. Clang takes -Og for
# -O1, which under sanitizers costs it three times the time of -O0.
add_library(orlf_test_flags INTERFACE)
target_link_libraries(orlf_test_flags INTERFACE orlf_build_flags)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(orlf_test_flags INTERFACE -O0 -g1)
else()
  target_compile_options(orlf_test_flags INTERFACE -Og -g1)
endif()

# To be linked after all else by what holds coroutines: Clang 14 cannot compile their parts under the
# check of calls through pointers to functions.
add_library(orlf_coroutine_flags INTERFACE)
if(ORLF_SANITIZERS MATCHES "undefined" AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(orlf_coroutine_flags INTERFACE -fno-sanitize=function)
endif()

# The standard headers that nearly every source of the library includes, compiled once. A source
# still names what it uses: the check of headers and clang-tidy compile without this.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/library_headers.cpp CONTENT "// Headers only.\n")
add_library(orlf_library_headers OBJECT ${PROJECT_BINARY_DIR}/library_headers.cpp)
set_target_properties(orlf_library_headers PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_link_libraries(orlf_library_headers PRIVATE orlf_build_flags)
target_precompile_headers(orlf_library_headers PRIVATE
  <algorithm>
  <array>
  <chrono>
  <cmath>
  <functional>
  <map>
  <memory>
  <mutex>
  <optional>
  <span>
  <string>
  <string_view>
  <unordered_map>
  <utility>
  <variant>
  <vector>)
