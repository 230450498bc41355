# Windows 10 and later on x86-64, by the MinGW-w64 compiler of Debian; Wine runs the tests.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# The object format has room for fewer sections than a unity build makes.
set(CMAKE_CXX_FLAGS_INIT "-D_WIN32_WINNT=0x0A00 -Wa,-mbig-obj")
# A program needs no library of the compiler beside it, but with shared libraries it shares those too.
if(NOT BUILD_SHARED_LIBS)
  set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
endif()

# What scripts/make-windows-prefix made.
cmake_path(SET windows_prefix NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../.deps/windows/usr")
# What a project names by itself, such as where this library is installed, goes before it.
set(CMAKE_FIND_ROOT_PATH ${CMAKE_PREFIX_PATH} "${windows_prefix}" /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Its configuration is in a directory of the architecture of the package.
file(GLOB fmt_DIR "${windows_prefix}/lib/*/cmake/fmt")

# Where Wine has the files of the machine that builds.
set(PROJECTDB_HOST_DRIVE "Z:")
find_program(PROJECTDB_WINE wine)
if(PROJECTDB_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR
    "${CMAKE_CURRENT_LIST_DIR}/../scripts/run-windows-program" "${PROJECTDB_WINE}")
endif()
