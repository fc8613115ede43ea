# How everything of this project is compiled, and nothing of its users: flags live on the interface
# target orlf_build_flags, which no exported target carries.
add_library(orlf_build_flags INTERFACE)
if(ORLF_DEVELOPER)
  target_compile_options(orlf_build_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
  # GCC 12 sees overlapping copies in "literal" + std::string where there are none, with -O3.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(orlf_build_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
  endif()
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
