# The library as its tests link it: with its private headers, and with its private symbols, which
# are hidden in a shared library but not in its objects.
include_guard(GLOBAL)

# Adds a static library of the sources of both libraries, which stay as they are installed.
function(projectdb_add_copy copy)
  find_package(fmt 10 REQUIRED)
  add_library(${copy} STATIC)
  foreach(library IN ITEMS kel_common projectdb)
    get_target_property(directory ${library} SOURCE_DIR)
    get_target_property(sources ${library} SOURCES)
    foreach(source IN LISTS sources)
      cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${directory}")
      target_sources(${copy} PRIVATE "${source}")
    endforeach()
  endforeach()
  target_compile_features(${copy} PUBLIC cxx_std_17)
  target_include_directories(${copy} PUBLIC "${PROJECT_SOURCE_DIR}/common/include")
  target_link_libraries(${copy} PUBLIC Threads::Threads PRIVATE fmt::fmt-header-only)
  target_compile_options(${copy} PRIVATE ${PROJECTDB_LIBRARY_INSTRUMENTATION})
  projectdb_use_system(${copy})
  projectdb_use_warnings(${copy})
endfunction()

# Lets a library be used with its private headers.
function(projectdb_open_headers library)
  target_include_directories(${library} PUBLIC
    "${PROJECT_SOURCE_DIR}/projectdb/include" "${PROJECT_SOURCE_DIR}/projectdb/src")
  target_link_libraries(${library} PUBLIC XercesC::XercesC)
endfunction()

if(PROJECTDB_COVERAGE)
  # The copy counts what is executed. Optimising it nearly halves the time of the tests; inlining
  # would count each branch once more for each caller.
  projectdb_add_copy(projectdb_testable)
  target_compile_options(projectdb_testable PRIVATE
    --coverage -fprofile-update=atomic -Og -fno-early-inlining)
  target_link_options(projectdb_testable INTERFACE --coverage)
else()
  add_library(projectdb_testable STATIC $<TARGET_OBJECTS:projectdb>)
  target_link_libraries(projectdb_testable PUBLIC kel::common)
  projectdb_use_system(projectdb_testable)
endif()
target_compile_definitions(projectdb_testable PRIVATE
  $<$<BOOL:${PROJECTDB_PLAIN_DOM}>:PROJECTDB_PLAIN_DOM>)
projectdb_open_headers(projectdb_testable)
