# Compiles the README's example and checks that it prints what the README shows.
file(READ ${PROJECT_SOURCE_DIR}/README.md readme)
string(REGEX MATCH "```cpp\n([^`]*)```" found "${readme}")
set(example "${CMAKE_MATCH_1}")
string(REGEX MATCH "```text\n([^`]*)```" found "${readme}")
set(printed "${CMAKE_MATCH_1}")
if(NOT example OR NOT printed)
  message(FATAL_ERROR "README.md shows no example, or not what it prints")
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/README.md)

file(CONFIGURE OUTPUT readme_example.cpp CONTENT "${example}" @ONLY)
file(CONFIGURE OUTPUT readme_example.txt CONTENT "${printed}" @ONLY)
add_executable(readme_example ${CMAKE_CURRENT_BINARY_DIR}/readme_example.cpp)
target_link_libraries(readme_example PRIVATE ORLFoundation::ORLFoundation orlf_build_flags)
add_test(NAME readme_example_prints_what_the_readme_shows
  COMMAND sh -c "\"$1\" | diff \"$2\" -" sh $<TARGET_FILE:readme_example>
    ${CMAKE_CURRENT_BINARY_DIR}/readme_example.txt)
