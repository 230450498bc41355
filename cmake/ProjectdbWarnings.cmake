# Warnings are errors in this project's own builds only: a parent project keeps its own policy.
function(projectdb_use_warnings target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
      -Woverloaded-virtual -Werror)
  endif()
endfunction()
