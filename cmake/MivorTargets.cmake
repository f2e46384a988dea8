# Helpers shared by the subdirectories.

# GoogleTest from the Debian source package, built with this flavour's flags
# (the packaged binaries are x86-64 only).
macro(mivor_use_googletest)
  if(NOT TARGET gtest)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    if(WIN32)
      set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
    endif()
    set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
    add_subdirectory(/usr/src/googletest/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
    foreach(t gtest gtest_main)
      target_compile_options(${t} PRIVATE -w)
      if(WIN32)
        # The -win32 mingw toolchain has no std::mutex, which GoogleTest
        # needs for one internal class.
        target_compile_options(${t} PUBLIC -include ${PROJECT_SOURCE_DIR}/tests/support/mingw_std_mutex.h)
      endif()
    endforeach()
  endif()
endmacro()

# mivor_add_test(NAME SOURCES ... [INTERNAL] [LIBS ...])
#   A GoogleTest executable registered with CTest.  Tests call the library
#   through its exports (the shared library or DLL) unless INTERNAL, which
#   links the static library to reach internal kernels (Linux flavours only).
#   Where the flavour's programs cannot run (win32 without wine) the program
#   is built but not registered.
function(mivor_add_test name)
  cmake_parse_arguments(T "INTERNAL" "" "SOURCES;LIBS" ${ARGN})
  if(T_INTERNAL AND WIN32)
    return()
  endif()
  mivor_use_googletest()
  add_executable(${name} ${T_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  if(T_INTERNAL)
    target_link_libraries(${name} PRIVATE mivorgsse2_static mivor_internal mivori gtest gtest_main ${T_LIBS})
  else()
    target_link_libraries(${name} PRIVATE mivorgsse2 mivor_public mivori gtest gtest_main ${T_LIBS})
  endif()
  if(MIVOR_CAN_RUN_TESTS)
    add_test(NAME ${name} COMMAND ${name})
  endif()
endfunction()
