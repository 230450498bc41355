# Warnings are errors in this project's own builds only: a parent project keeps its own policy.
function(projectdb_use_warnings target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor
      -Woverloaded-virtual -Werror)
    # To this compiler a source that is included in another, as in a unity build, is a header.
    target_compile_options(${target} PRIVATE
      $<$<AND:$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>,$<CXX_COMPILER_ID:GNU>>:-Wno-subobject-linkage>)
    # GoogleTest's macros are called as C++20 allows it.
    target_compile_options(${target} PRIVATE
      $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier;-Wreserved-macro-identifier;-Wno-gnu-zero-variadic-macro-arguments>)
  endif()
endfunction()
