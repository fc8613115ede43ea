# The outside libraries, each with the oldest release that is known to do. Sources link them by the
# targets named here; a folder lists its own under LINKS. The installed package looks for those
# that the library itself calls: keep cmake/ORLFoundationConfig.cmake.in in step.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(ICU 72 REQUIRED COMPONENTS uc i18n)        # ICU::uc ICU::i18n
find_package(Boost 1.74 REQUIRED)                       # Boost::headers
find_package(CCTZ REQUIRED)                             # CCTZ::cctz
find_package(OpenSSL 3.0 REQUIRED COMPONENTS Crypto)    # OpenSSL::Crypto
find_package(ZLIB 1.2 REQUIRED)                         # ZLIB::ZLIB
find_package(LibXml2 2.9 REQUIRED)                      # LibXml2::LibXml2
find_package(SQLite3 3.37 REQUIRED)                     # SQLite::SQLite3
find_package(CURL 7.87 REQUIRED)                        # CURL::libcurl
find_package(nlohmann_json 3.11 REQUIRED)               # nlohmann_json::nlohmann_json
# Only the tests of the bridges to their loops call these; the library links neither.
pkg_check_modules(GLIB QUIET IMPORTED_TARGET glib-2.0)  # PkgConfig::GLIB
find_package(Qt6 QUIET COMPONENTS Core)                 # Qt6::Core
# The store of keychain items in the Secret Service is built where this is found.
pkg_check_modules(LIBSECRET QUIET IMPORTED_TARGET libsecret-1>=0.20)  # PkgConfig::LIBSECRET
if(ORLF_BUILD_TOOL)
  find_package(CLI11 2.1 REQUIRED)                      # CLI11::CLI11
  pkg_check_modules(PANGOCAIRO REQUIRED IMPORTED_TARGET pangocairo)  # PkgConfig::PANGOCAIRO
  find_package(PNG 1.6 REQUIRED)                        # PNG::PNG
endif()

if(ORLF_BUILD_TESTS)
  find_package(GTest REQUIRED)                          # GTest::gmock
endif()
if(ORLF_BUILD_TESTS OR ORLF_BUILD_BENCHMARKS)
  pkg_check_modules(PLIST REQUIRED IMPORTED_TARGET libplist-2.0)  # PkgConfig::PLIST, a peer
endif()
if(ORLF_BUILD_BENCHMARKS)
  find_package(benchmark REQUIRED)                      # benchmark::benchmark
  find_package(date REQUIRED)                           # date::date-tz, a peer
  pkg_check_modules(LIBICAL REQUIRED IMPORTED_TARGET libical)  # PkgConfig::LIBICAL, a peer
  pkg_check_modules(NETTLE REQUIRED IMPORTED_TARGET nettle)    # PkgConfig::NETTLE, a peer
  include(ORLFDecimalPeers)                             # orlf_decimal_peers
endif()
