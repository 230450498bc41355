# The library as its tests link it: with its private headers, and with its private symbols, which
# are hidden in a shared library but not in its objects.
include_guard(GLOBAL)

add_library(projectdb_testable STATIC $<TARGET_OBJECTS:projectdb>)
target_include_directories(projectdb_testable PUBLIC
  "${PROJECT_SOURCE_DIR}/projectdb/include" "${PROJECT_SOURCE_DIR}/projectdb/src")
target_link_libraries(projectdb_testable PUBLIC kel::common XercesC::XercesC)
