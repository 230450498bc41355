# The library as its tests link it: with its private headers, and with its private symbols, which
# are hidden in a shared library but not in its objects.
include_guard(GLOBAL)

add_library(projectdb_testable STATIC $<TARGET_OBJECTS:projectdb>)
target_include_directories(projectdb_testable PUBLIC
  "${PROJECT_SOURCE_DIR}/projectdb/include" "${PROJECT_SOURCE_DIR}/projectdb/src")
target_link_libraries(projectdb_testable PUBLIC kel::common XercesC::XercesC)
projectdb_use_system(projectdb_testable)
if(PROJECTDB_COVERAGE)
  # Programs without this option have the counters too, but do not write them down.
  target_link_options(projectdb_testable INTERFACE -fprofile-instr-generate)
endif()
