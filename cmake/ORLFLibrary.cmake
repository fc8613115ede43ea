# The installed library: the objects of all folders as one shared and one static library, their
# headers, the package files for CMake and pkg-config.
include(CMakePackageConfigHelpers)

get_property(folders GLOBAL PROPERTY ORLF_FOLDERS)
set(objects "")
set(headers ORLFoundation/ORLFoundation.h)
set(links Threads::Threads)
foreach(folder IN LISTS folders)
  list(APPEND objects $<TARGET_OBJECTS:orlf_${folder}_objects>)
  get_property(folder_headers GLOBAL PROPERTY ORLF_FOLDER_${folder}_HEADERS)
  list(APPEND headers ${folder_headers})
  get_property(folder_links GLOBAL PROPERTY ORLF_FOLDER_${folder}_LINKS)
  list(APPEND links ${folder_links})
endforeach()
list(REMOVE_DUPLICATES links)
# Libraries of headers alone leave nothing to link: users of the package do without them.
list(REMOVE_ITEM links Boost::headers Boost::boost nlohmann_json::nlohmann_json)
list(TRANSFORM headers PREPEND ${PROJECT_SOURCE_DIR}/)

function(orlf_make_library target type)
  add_library(${target} ${type} ${objects})
  add_library(ORLFoundation::${target} ALIAS ${target})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${target} PRIVATE ${links})
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ORLFoundation
    LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
endfunction()
orlf_make_library(ORLFoundation SHARED)
orlf_make_library(ORLFoundation_static STATIC)
target_sources(ORLFoundation PUBLIC
  FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/ORLFoundation)
install(TARGETS ORLFoundation ORLFoundation_static EXPORT ORLFoundationTargets
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# Bridges to the loops of libraries that this one does not link: headers alone.
install(
  FILES ${PROJECT_SOURCE_DIR}/ORLFoundation/bridges/glib/NSMainQueueGLibBridge.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ORLFoundation/bridges/glib)
install(
  FILES ${PROJECT_SOURCE_DIR}/ORLFoundation/bridges/qt/NSMainQueueQtBridge.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ORLFoundation/bridges/qt)
# The store of keychain items in the Secret Service: an archive and its header.
if(TARGET SecretServiceStore)
  install(TARGETS SecretServiceStore EXPORT ORLFoundationSecretServiceTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(
    FILES ${PROJECT_SOURCE_DIR}/ORLFoundation/bridges/libsecret/SecretServiceItemStore.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ORLFoundation/bridges/libsecret)
  install(EXPORT ORLFoundationSecretServiceTargets NAMESPACE ORLFoundation::
    DESTINATION ${package_folder})
endif()
install(EXPORT ORLFoundationTargets NAMESPACE ORLFoundation:: DESTINATION ${package_folder})
configure_package_config_file(cmake/ORLFoundationConfig.cmake.in
  ${PROJECT_BINARY_DIR}/ORLFoundationConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ORLFoundationConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(
  FILES ${PROJECT_BINARY_DIR}/ORLFoundationConfig.cmake
    ${PROJECT_BINARY_DIR}/ORLFoundationConfigVersion.cmake
    ${PROJECT_SOURCE_DIR}/cmake/FindCCTZ.cmake
  DESTINATION ${package_folder})

file(RELATIVE_PATH prefix_from_pc
  ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/orlfoundation.pc.in ${PROJECT_BINARY_DIR}/orlfoundation.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orlfoundation.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
