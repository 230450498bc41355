# What the sources of the library need of the system.
set(projectdb_system_libraries "")
if(WIN32)
  set(projectdb_system_libraries advapi32 bcrypt)
endif()
list(TRANSFORM projectdb_system_libraries PREPEND "-l" OUTPUT_VARIABLE PROJECTDB_SYSTEM_LIBRARIES)
list(JOIN PROJECTDB_SYSTEM_LIBRARIES " " PROJECTDB_SYSTEM_LIBRARIES)
function(projectdb_use_system target)
  if(WIN32)
    target_compile_definitions(${target} PRIVATE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
    target_link_libraries(${target} PUBLIC ${projectdb_system_libraries})
  endif()
endfunction()

# What both libraries have in common: their versions, hidden symbols and installation.
function(projectdb_set_up_library target)
  # Beside the symbols that are not marked it hides those of other libraries' templates.
  set(symbol_map "${CMAKE_CURRENT_SOURCE_DIR}/exported_symbols.map")
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    # Nothing depends on it, and without it both kinds of the library have the same objects.
    DEFINE_SYMBOL ""
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    # The two libraries find each other wherever they are installed.
    INSTALL_RPATH "$ORIGIN"
    LINK_DEPENDS "${symbol_map}")
  if(BUILD_SHARED_LIBS AND WIN32)
    target_compile_definitions(${target} PUBLIC KEL_SHARED PRIVATE KEL_BUILD)
  endif()
  target_link_options(${target} PRIVATE "LINKER:--version-script=${symbol_map}")
  target_compile_options(${target} PRIVATE ${PROJECTDB_LIBRARY_INSTRUMENTATION})
  if(PROJECTDB_COVERAGE)
    # All processes of a program add to one file (%m).
    target_compile_options(${target} PRIVATE -fcoverage-mapping
      "-fprofile-instr-generate=${PROJECT_BINARY_DIR}/coverage/%m.profraw")
  endif()

  if(PROJECTDB_INSTALL)
    install(TARGETS ${target} EXPORT ${target}-targets
      RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
      LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime
        NAMELINK_COMPONENT development
      ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
    install(DIRECTORY include/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
  endif()
endfunction()
