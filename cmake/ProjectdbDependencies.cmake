# Stops with the one command that installs what is missing, after find_package has looked for it.
function(projectdb_require package name)
  if(NOT ${package}_FOUND)
    message(FATAL_ERROR "projectdb needs ${name}, which is not found. On Debian this installs all "
      "that it is built with:\n  ${PROJECT_SOURCE_DIR}/scripts/install-dependencies build\n"
      "Then run CMake again.")
  endif()
endfunction()
