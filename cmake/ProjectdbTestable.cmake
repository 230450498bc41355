# The library as its tests link it: with its private headers, and with its private symbols, which
# are hidden in a shared library but not in its objects.
include_guard(GLOBAL)

if(PROJECTDB_COVERAGE)
  find_package(fmt 10 REQUIRED)
  # A copy of both libraries counts what is executed; the libraries themselves stay as they are
  # installed.
  add_library(projectdb_testable STATIC)
  foreach(library IN ITEMS kel_common projectdb)
    get_target_property(directory ${library} SOURCE_DIR)
    get_target_property(sources ${library} SOURCES)
    foreach(source IN LISTS sources)
      cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${directory}")
      target_sources(projectdb_testable PRIVATE "${source}")
    endforeach()
  endforeach()
  target_compile_options(projectdb_testable PRIVATE --coverage -fprofile-update=atomic)
  target_link_options(projectdb_testable INTERFACE --coverage)
  target_compile_features(projectdb_testable PUBLIC cxx_std_17)
  target_include_directories(projectdb_testable PUBLIC "${PROJECT_SOURCE_DIR}/common/include")
  target_link_libraries(projectdb_testable PUBLIC Threads::Threads PRIVATE fmt::fmt-header-only)
  projectdb_use_warnings(projectdb_testable)
else()
  add_library(projectdb_testable STATIC $<TARGET_OBJECTS:projectdb>)
  target_link_libraries(projectdb_testable PUBLIC kel::common)
endif()
target_include_directories(projectdb_testable PUBLIC
  "${PROJECT_SOURCE_DIR}/projectdb/include" "${PROJECT_SOURCE_DIR}/projectdb/src")
target_link_libraries(projectdb_testable PUBLIC XercesC::XercesC)
