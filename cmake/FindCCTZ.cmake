# Finds CCTZ and makes the target CCTZ::cctz. Debian ships the library without a package file.
find_library(CCTZ_LIBRARY cctz)
find_path(CCTZ_INCLUDE_DIR cctz/time_zone.h)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(CCTZ REQUIRED_VARS CCTZ_LIBRARY CCTZ_INCLUDE_DIR)
mark_as_advanced(CCTZ_LIBRARY CCTZ_INCLUDE_DIR)
if(CCTZ_FOUND AND NOT TARGET CCTZ::cctz)
  add_library(CCTZ::cctz UNKNOWN IMPORTED)
  set_target_properties(CCTZ::cctz PROPERTIES
    IMPORTED_LOCATION ${CCTZ_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${CCTZ_INCLUDE_DIR})
endif()
