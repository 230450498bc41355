# Debian packages by CPack, one for each component of the installation. What they depend on is
# found out: by dpkg-shlibdeps for the programs and shared libraries, here for the headers.
find_program(DPKG_QUERY dpkg-query)
if(NOT DPKG_QUERY)
  return()
endif()

# The Debian package, by its name without the architecture, that installed the file.
function(projectdb_find_owning_package file result)
  execute_process(COMMAND "${DPKG_QUERY}" --search "${file}"
    OUTPUT_VARIABLE owner ERROR_QUIET)
  string(REGEX MATCH "^[^:]*" package "${owner}")
  set(${result} "${package}" PARENT_SCOPE)
endfunction()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "projectdb maintainers <maintainers@projectdb.example>" CACHE STRING
  "Maintainer of the Debian packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# Where the programs' own libraries are before any package has them.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  "${PROJECT_BINARY_DIR}/common" "${PROJECT_BINARY_DIR}/projectdb")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libprojectdb${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "The shared libraries, and the schema of project files.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libprojectdb-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "What programs that use the library are built with.")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
projectdb_find_owning_package("${XercesC_INCLUDE_DIR}/xercesc/util/XercesVersion.hpp" xerces_package)
if(xerces_package)
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${xerces_package} (>= ${PROJECTDB_XERCES_VERSION})")
else()
  message(WARNING "The headers of Xerces-C are of no Debian package; none will be asked for.")
endif()

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME projectdb-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION electronics)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "Programs that show, check, change and compare project files.")
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)

include(CPack)
