# What was built, one name a line, for the scripts that run all benchmarks and all fuzz targets, and
# the folders with what each may include, for the include check.
foreach(kind BENCHMARKS FUZZERS)
  get_property(programs GLOBAL PROPERTY ORLF_${kind})
  set(lines "")
  foreach(program IN LISTS programs)
    string(APPEND lines "$<TARGET_FILE:${program}>\n")
  endforeach()
  string(TOLOWER ${kind} name)
  file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/${name}.txt CONTENT "${lines}")
endforeach()
