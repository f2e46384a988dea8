# Cross build of mivorgsse2.dll with mingw-w64 for 32-bit Windows.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
# The -win32 compilers: the -posix ones add an import of libwinpthread-1.dll.
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-win32)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-win32)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
# mingw-w64's gfortran (Debian gfortran-mingw-w64-i686), for the Fortran
# client of the tests, when it is installed.
find_program(MIVOR_MINGW_GFORTRAN i686-w64-mingw32-gfortran-win32)
if(MIVOR_MINGW_GFORTRAN)
  set(CMAKE_Fortran_COMPILER ${MIVOR_MINGW_GFORTRAN})
endif()
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# SSE2 arithmetic gives double results identical to x86-64; mingw assumes a
# 4-byte aligned incoming stack and realigns where it must.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mincoming-stack-boundary=2")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mincoming-stack-boundary=2")
# Test executables run under 32-bit wine when it is installed.
find_program(MIVOR_WINE wine)
if(MIVOR_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run.sh)
endif()
