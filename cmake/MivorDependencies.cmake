# What the tools, tests, benchmarks and examples need beside the compilers,
# found in one place.  The library itself needs none of it.
#
# MIVOR_REQUIRE_ALL (ON in every preset, so in CI): a missing dependency
# stops the configure with the Debian package to install.  OFF: a warning
# says what is left out of this build.
#
# Results, for the subdirectories:
#   MIVOR_HAVE_MPFR     target mivor_mpfr (MPFR and GMP): `mivor accuracy`,
#                       the MPFR tests, the table generators (host)
#   MIVOR_SOLLYA        the sollya program: the table checks (host)
#   MIVOR_HAVE_FORTRAN  gfortran (mingw-w64's on win32): the gfortran client,
#                       the Fortran example (host)
#   MIVOR_HAVE_OPENBLAS target mivor_openblas: the BLAS peer (host; on i386
#                       when the 32-bit OpenBLAS installs, which Debian
#                       does not always allow: its absence is only noted)
#   MIVOR_NETLIB_BLAS_TESTS  netlib's xblat3d (host)
#   MIVOR_HAVE_QUADMATH libquadmath: the __float128 oracles (Linux flavours)
#   MIVOR_HAVE_BENCHMARK Google Benchmark (MIVOR_BENCH builds)
#   MIVOR_CAN_RUN_TESTS the flavour's test programs can run here (win32:
#                       under 32-bit wine)
option(MIVOR_REQUIRE_ALL "Stop the configure when a dependency of the tools, tests, benchmarks or examples is missing" OFF)

# mivor_missing(WHAT PACKAGE LEFT_OUT)
function(mivor_missing what package left_out)
  if(MIVOR_REQUIRE_ALL)
    message(FATAL_ERROR "${what} not found.  Install the Debian package(s) ${package} "
                        "(bash tools/install-deps.sh installs everything), or configure with "
                        "-DMIVOR_REQUIRE_ALL=OFF to build without ${left_out}.")
  else()
    message(WARNING "${what} not found (Debian: ${package}): this build leaves out ${left_out}.")
  endif()
endfunction()

set(MIVOR_HAVE_MPFR OFF)
set(MIVOR_SOLLYA "")
set(MIVOR_HAVE_FORTRAN OFF)
set(MIVOR_HAVE_OPENBLAS OFF)
set(MIVOR_NETLIB_BLAS_TESTS "")
set(MIVOR_HAVE_QUADMATH OFF)
set(MIVOR_HAVE_BENCHMARK OFF)
set(MIVOR_CAN_RUN_TESTS ON)

find_package(Threads REQUIRED)

if(MIVOR_FLAVOUR STREQUAL "i386")
  find_library(MIVOR_OPENBLAS32_LIBRARY openblas)
  if(MIVOR_OPENBLAS32_LIBRARY)
    set(MIVOR_HAVE_OPENBLAS ON)
    add_library(mivor_openblas INTERFACE)
    target_link_libraries(mivor_openblas INTERFACE ${MIVOR_OPENBLAS32_LIBRARY})
  else()
    message(STATUS "32-bit OpenBLAS (libopenblas-dev:i386) not installed: matmul_bench compares with the host figures")
  endif()
endif()

# gfortran for every flavour: the gfortran client (and on the host the
# Fortran example); the win32 toolchain names mingw-w64's gfortran.
include(CheckLanguage)
check_language(Fortran)
if(CMAKE_Fortran_COMPILER)
  set(MIVOR_HAVE_FORTRAN ON)
elseif(WIN32)
  mivor_missing("mingw-w64 gfortran" "gfortran-mingw-w64-i686" "the gfortran client")
elseif(MIVOR_FLAVOUR STREQUAL "i386")
  mivor_missing("A 32-bit Fortran compiler" "gfortran lib32gfortran-12-dev" "the gfortran client")
else()
  mivor_missing("A Fortran compiler" "gfortran" "the gfortran client and the Fortran example")
endif()

if(MIVOR_FLAVOUR STREQUAL "host")
  # MPFR and GMP: the oracle of the accuracy tool, the MPFR tests and the
  # table generators.
  find_library(MIVOR_MPFR_LIBRARY mpfr)
  find_library(MIVOR_GMP_LIBRARY gmp)
  find_path(MIVOR_MPFR_INCLUDE_DIR mpfr.h)
  if(MIVOR_MPFR_LIBRARY AND MIVOR_GMP_LIBRARY AND MIVOR_MPFR_INCLUDE_DIR)
    set(MIVOR_HAVE_MPFR ON)
    add_library(mivor_mpfr INTERFACE)
    target_include_directories(mivor_mpfr INTERFACE ${MIVOR_MPFR_INCLUDE_DIR})
    target_link_libraries(mivor_mpfr INTERFACE ${MIVOR_MPFR_LIBRARY} ${MIVOR_GMP_LIBRARY})
  else()
    mivor_missing("MPFR or GMP" "libmpfr-dev libgmp-dev"
                  "`mivor accuracy`, the MPFR tests and the table checks")
  endif()

  find_program(MIVOR_SOLLYA_PROGRAM sollya)
  if(MIVOR_SOLLYA_PROGRAM)
    set(MIVOR_SOLLYA ${MIVOR_SOLLYA_PROGRAM})
  else()
    mivor_missing("Sollya" "sollya" "the checks of the fitted tables")
  endif()

  find_library(MIVOR_OPENBLAS_LIBRARY openblas)
  find_path(MIVOR_OPENBLAS_INCLUDE_DIR cblas.h PATH_SUFFIXES openblas-pthread openblas)
  if(MIVOR_OPENBLAS_LIBRARY AND MIVOR_OPENBLAS_INCLUDE_DIR)
    set(MIVOR_HAVE_OPENBLAS ON)
    add_library(mivor_openblas INTERFACE)
    target_include_directories(mivor_openblas INTERFACE ${MIVOR_OPENBLAS_INCLUDE_DIR})
    target_link_libraries(mivor_openblas INTERFACE ${MIVOR_OPENBLAS_LIBRARY})
  else()
    mivor_missing("OpenBLAS" "libopenblas-dev" "the BLAS comparisons")
  endif()

  # netlib's BLAS test programs, run against dgemm_ and dgemv_.
  set(MIVOR_NETLIB_BLAS_TESTS /usr/lib/x86_64-linux-gnu/blas/xblat3d)
  if(NOT EXISTS ${MIVOR_NETLIB_BLAS_TESTS})
    set(MIVOR_NETLIB_BLAS_TESTS "")
    mivor_missing("netlib's BLAS test programs" "libblas-test" "the netlib check of dgemm_ and dgemv_")
  endif()
endif()

if(NOT WIN32)
  # libquadmath and __float128: the oracle of the REAL(16) conversions.
  include(CheckCXXSourceCompiles)
  set(CMAKE_REQUIRED_LIBRARIES quadmath)
  check_cxx_source_compiles([[
    #include <quadmath.h>
    int main() { __float128 x = 2; return (int)sqrtq(x); }
  ]] MIVOR_QUADMATH_LINKS)
  unset(CMAKE_REQUIRED_LIBRARIES)
  if(MIVOR_QUADMATH_LINKS)
    set(MIVOR_HAVE_QUADMATH ON)
  elseif(MIVOR_FLAVOUR STREQUAL "i386")
    mivor_missing("32-bit libquadmath" "gcc-multilib g++-multilib" "the __float128 conversion oracle")
  else()
    mivor_missing("libquadmath" "libgcc-12-dev" "the __float128 conversion oracle")
  endif()
endif()

if(MIVOR_BENCH)
  find_package(benchmark QUIET)
  if(benchmark_FOUND)
    set(MIVOR_HAVE_BENCHMARK ON)
  elseif(MIVOR_FLAVOUR STREQUAL "i386")
    mivor_missing("Google Benchmark (32-bit)" "libbenchmark-dev:i386" "the benchmarks")
  else()
    mivor_missing("Google Benchmark" "libbenchmark-dev" "the benchmarks")
  endif()
endif()

if(WIN32 AND MIVOR_TESTS)
  # Set by the toolchain file when wine is there.
  if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
    set(MIVOR_CAN_RUN_TESTS OFF)
    mivor_missing("32-bit wine" "wine wine32:i386 (tools/install-wine32.sh)"
                  "the win32 test runs (the test programs are still built)")
  endif()
endif()
