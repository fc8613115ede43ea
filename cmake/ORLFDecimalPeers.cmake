# orlf_decimal_peers: the peers of the decimals' benchmark that are not on every machine. Each that
# is found defines ORLF_HAS_...; the table of benchmarks says of the others that they are not there.
add_library(orlf_decimal_peers INTERFACE)

# Intel's decimal library. 000: calls by value, rounding modes and flags as arguments.
find_path(BID_INCLUDE_DIR bid_functions.h)
find_library(BID_LIBRARY libbidgcc000.a)
if(BID_INCLUDE_DIR AND BID_LIBRARY)
  add_library(orlf_bid_peer SHARED EXCLUDE_FROM_ALL tests/peers/intel_bid/bid_peer.c)
  target_include_directories(orlf_bid_peer PRIVATE ${BID_INCLUDE_DIR})
  target_link_libraries(orlf_bid_peer PRIVATE ${BID_LIBRARY})
  target_link_options(orlf_bid_peer PRIVATE -Wl,--exclude-libs,ALL)
  target_link_libraries(orlf_decimal_peers INTERFACE orlf_bid_peer)
  target_compile_definitions(orlf_decimal_peers INTERFACE ORLF_HAS_BID)
endif()

# rust_decimal, from the distribution's crates; the network is not asked.
find_program(CARGO cargo)
set(crates /usr/share/cargo/registry)
file(GLOB crate ${crates}/rust_decimal-[0-9]*)
if(CARGO AND crate)
  set(peer ${PROJECT_BINARY_DIR}/rust_decimal_peer)
  foreach(file Cargo.toml lib.rs)
    configure_file(${PROJECT_SOURCE_DIR}/tests/peers/rust_decimal/${file} ${peer}/${file} COPYONLY)
  endforeach()
  file(CONFIGURE OUTPUT ${peer}/.cargo/config.toml CONTENT [=[
[source.crates-io]
replace-with = "distribution"
[source.distribution]
directory = "@crates@"
]=] @ONLY)
  execute_process(
    COMMAND ${CARGO} build --release --offline --quiet
    WORKING_DIRECTORY ${peer}
    RESULT_VARIABLE failure)
  if(failure)
    message(STATUS "rust_decimal was not built: the benchmark goes without it")
  else()
    target_link_libraries(orlf_decimal_peers INTERFACE ${peer}/target/release/librust_decimal_peer.a)
    target_compile_definitions(orlf_decimal_peers INTERFACE ORLF_HAS_RUST_DECIMAL)
  endif()
endif()
