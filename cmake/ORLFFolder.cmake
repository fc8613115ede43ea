# One folder of the library is one target, called a room. `orlf_add_folder` declares
#   LAYER          the room's height: it may use rooms of lower layers alone
#   HEADERS        what is installed and part of the interface
#   HOUSE_HEADERS  what other rooms' sources may include too, and no user sees
#   SOURCES
#   USES           the rooms whose headers it includes
#   LINKS          the outside libraries that its sources call, kept private
# and its tests, benchmarks and fuzz targets. It makes the object library orlf_<name>_objects, which
# the installed library is put together from, the archive orlf_<name>, which tests link, and the
# tests, benchmarks and fuzzers of the folder.
include_guard(GLOBAL)

function(orlf_add_folder name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LAYER"
    "HEADERS;HOUSE_HEADERS;SOURCES;USES;LINKS;TESTS;TEST_LINKS;BENCHMARKS;BENCHMARK_LINKS;FUZZERS")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "orlf_add_folder(${name}): unknown arguments ${arg_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT arg_LAYER MATCHES "^[0-9]+$")
    message(FATAL_ERROR "orlf_add_folder(${name}): LAYER is to be a number")
  endif()
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  set_property(GLOBAL APPEND PROPERTY ORLF_FOLDERS ${name})
  set_property(GLOBAL PROPERTY ORLF_FOLDER_${name}_LINKS ${arg_LINKS})
  list(TRANSFORM arg_HEADERS PREPEND ${folder}/ OUTPUT_VARIABLE headers)
  set_property(GLOBAL PROPERTY ORLF_FOLDER_${name}_HEADERS ${headers})

  set(objects orlf_${name}_objects)
  set(sources ${arg_SOURCES})
  if(NOT sources)
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}_empty.cpp CONTENT "// Headers only.\n")
    set(sources ${CMAKE_CURRENT_BINARY_DIR}/${name}_empty.cpp)
  endif()
  add_library(${objects} OBJECT ${sources})
  target_sources(${objects} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS})
  set_target_properties(${objects} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_compile_features(${objects} PUBLIC cxx_std_20)
  target_include_directories(${objects} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${objects} PRIVATE orlf_build_flags ${arg_LINKS})
  target_precompile_headers(${objects} REUSE_FROM orlf_library_headers)

  add_library(orlf_${name} STATIC $<TARGET_OBJECTS:${objects}>)
  set_target_properties(orlf_${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_compile_features(orlf_${name} PUBLIC cxx_std_20)
  target_include_directories(orlf_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(orlf_${name} PRIVATE ${arg_LINKS})
  foreach(used IN LISTS arg_USES)
    target_link_libraries(orlf_${name} PUBLIC orlf_${used})
  endforeach()

  if(ORLF_BUILD_TESTS AND arg_TESTS)
    orlf_add_test(orlf_${name}_tests SOURCES ${arg_TESTS} LINKS orlf_${name} ${arg_TEST_LINKS})
  endif()
  if(ORLF_BUILD_BENCHMARKS)
    foreach(source IN LISTS arg_BENCHMARKS)
      orlf_add_benchmark(${source} LINKS orlf_${name} ${arg_BENCHMARK_LINKS})
    endforeach()
  endif()
  if(ORLF_BUILD_FUZZERS)
    foreach(source IN LISTS arg_FUZZERS)
      orlf_add_fuzzer(${source} LINKS orlf_${name})
    endforeach()
  endif()
endfunction()

# Where a target is compiled as few sources, makes one of each of its folders.
function(orlf_unite_by_folder target)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    get_filename_component(folder ${source} DIRECTORY)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${folder}")
  endforeach()
  set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()

# A GoogleTest program; each of its tests is one ctest test. Its sources are compiled in fours where
# the rest is compiled plainly: what GoogleTest's templates cost is paid once for them.
function(orlf_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS")
  add_executable(${name} ${arg_SOURCES} $<TARGET_OBJECTS:orlf_test_exit>)
  set(c_sources ${arg_SOURCES})
  list(FILTER c_sources INCLUDE REGEX "[.]c$")
  set_source_files_properties(${c_sources} PROPERTIES
    SKIP_PRECOMPILE_HEADERS ON
    SKIP_UNITY_BUILD_INCLUSION ON)
  # Helpers first: what they call in a folder is found in the archives after them.
  target_link_libraries(${name} PRIVATE orlf_test_support ${arg_LINKS} orlf_test_flags GTest::gmock_main)
  target_precompile_headers(${name} REUSE_FROM orlf_test_headers)
  if(NOT CMAKE_UNITY_BUILD)
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 4)
  endif()
  set_property(GLOBAL APPEND PROPERTY ORLF_TESTS ${name})
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES
    PROPERTIES
      TIMEOUT ${ORLF_TEST_TIMEOUT}
      LABELS unit)
endfunction()

# A Google Benchmark program, with strict warnings in every build: no other reads it.
function(orlf_add_benchmark source)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINKS")
  get_filename_component(stem ${source} NAME_WE)
  add_executable(${stem} ${source})
  target_link_libraries(${stem} PRIVATE ${arg_LINKS} orlf_build_flags benchmark::benchmark_main)
  target_compile_options(${stem} PRIVATE ${ORLF_WARNINGS})
  set_property(GLOBAL APPEND PROPERTY ORLF_BENCHMARKS ${stem})
endfunction()

# A libFuzzer program where the compiler has it (preset fuzz), else a program that replays its seeds.
function(orlf_add_fuzzer source)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINKS")
  get_filename_component(stem ${source} NAME_WE)
  if(ORLF_LIBFUZZER)
    add_executable(${stem} ${source})
    target_link_options(${stem} PRIVATE -fsanitize=fuzzer)
  else()
    add_executable(${stem} ${source} ${PROJECT_SOURCE_DIR}/tests/support/ReplaySeeds.cpp)
  endif()
  target_link_libraries(${stem} PRIVATE ${arg_LINKS} orlf_build_flags)
  set_property(GLOBAL APPEND PROPERTY ORLF_FUZZERS ${stem})
  if(ORLF_BUILD_TESTS AND EXISTS ${PROJECT_SOURCE_DIR}/tests/data/fuzz/${stem})
    add_test(NAME seeds_${stem} COMMAND ${stem} -runs=0 ${PROJECT_SOURCE_DIR}/tests/data/fuzz/${stem})
  endif()
endfunction()
