# Installs what consumers find the libraries by: the package configuration and the pkg-config file.
include(CMakePackageConfigHelpers)

set(config_directory "${CMAKE_INSTALL_LIBDIR}/cmake/projectdb")
set(schema_file "${CMAKE_INSTALL_DATADIR}/projectdb/wdp_proj.xsd")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/projectdbConfig.cmake.in"
  projectdbConfig.cmake INSTALL_DESTINATION "${config_directory}" PATH_VARS schema_file)
write_basic_package_version_file(projectdbConfigVersion.cmake COMPATIBILITY SameMajorVersion)

set(pkg_config_directory "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
string(REGEX REPLACE "[^/]+" ".." prefix_of_pkg_config "${pkg_config_directory}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/projectdb.pc.in" projectdb.pc @ONLY)

install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/projectdbConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/projectdbConfigVersion.cmake"
  DESTINATION "${config_directory}" COMPONENT development)
install(EXPORT kel_common-targets NAMESPACE kel:: FILE kel-targets.cmake
  DESTINATION "${config_directory}" COMPONENT development)
install(EXPORT projectdb-targets NAMESPACE projectdb::
  DESTINATION "${config_directory}" COMPONENT development)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/projectdb.pc"
  DESTINATION "${pkg_config_directory}" COMPONENT development)
install(FILES "${PROJECT_SOURCE_DIR}/schema/wdp_proj.xsd"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/projectdb" COMPONENT runtime)
