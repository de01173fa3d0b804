# Cross build for 64-bit Windows with Debian's mingw-w64 (g++-mingw-w64-x86-64).
# Programs are linked statically so that they run under wine, or on a Windows
# machine, with no compiler runtime beside them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(MINGW_PREFIX x86_64-w64-mingw32)
# The posix thread model: the win32 one of GCC 12 has no std::mutex, which
# GoogleTest needs.
set(CMAKE_C_COMPILER ${MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
# zlib (libz-mingw-w64-dev) goes into the programs, not beside them.
set(ZLIB_USE_STATIC_LIBS ON)

# Windows programs built here run under wine on the build machine.
find_program(VANTORO_WINE64 NAMES wine64 PATHS /usr/lib/wine NO_DEFAULT_PATH)
find_program(VANTORO_WINE64 NAMES wine64 wine)
if(VANTORO_WINE64)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${VANTORO_WINE64})
endif()
