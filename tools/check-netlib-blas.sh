#!/usr/bin/env bash
# Runs netlib's BLAS test programs (Debian's libblas-test: xblat3d, xblat2d)
# against the library's dgemm_ and dgemv_, put in front of the reference
# BLAS with LD_PRELOAD.  Only the DGEMM and DGEMV lines of the stock inputs
# are switched on, error exits included; a second run adds sizes up to the
# programs' limit of 65, which reach the blocked GEMM kernels.
#
#   check-netlib-blas.sh LIBRARY_DIR      (the directory of libmivorgsse2.so)
#
# Prints the programs' summaries; exit status 0 when every test passed.
set -uo pipefail
libdir="$(cd "${1:?usage: check-netlib-blas.sh LIBRARY_DIR}" && pwd)"
blas="${MIVOR_BLAS_TESTS:-/usr/lib/x86_64-linux-gnu/blas}"
for f in xblat3d xblat2d dblat3.in dblat2.in; do
  [ -e "$blas/$f" ] || { echo "check-netlib-blas: $blas/$f missing (install libblas-test)" >&2; exit 2; }
done
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
cd "$work"

# keep ROUTINE: every other routine line of the input switched to F.
only() {
  sed -E "/^D[A-Z0-9]+ +T PUT/{/^$1 /!s/^(D[A-Z0-9]+ +)T/\1F/}" "$blas/$2"
}
# The same with the sizes 0 1 2 3 5 9 17 33 65.
larger() {
  sed -E 's/^6( +NUMBER OF VALUES OF N)/9\1/; s/^0 1 2 3 5 9( +VALUES OF N)/0 1 2 3 5 9 17 33 65\1/'
}

status=0
run() {  # program routine input-text label
  local program="$1" routine="$2" label="$4"
  printf '%s\n' "$3" >input
  LD_PRELOAD="$libdir/libmivorgsse2.so" LD_LIBRARY_PATH="$libdir" "$blas/$program" <input >/dev/null 2>&1
  local out
  out="$(ls -t d*.out 2>/dev/null | head -n 1)"
  echo "== $program, $label"
  grep -E "^ *($routine|FOR N)" "$out"
  if ! grep -q "$routine  PASSED THE TESTS OF ERROR-EXITS" "$out" ||
     ! grep -q "$routine  PASSED THE COMPUTATIONAL TESTS" "$out" ||
     grep -qE "FAIL|SUSPECT|\*\*\*\*" "$out"; then
    echo "check-netlib-blas: $routine did not pass ($label)" >&2
    status=1
  fi
  rm -f "$out"
}
run xblat3d DGEMM "$(only DGEMM dblat3.in)" "stock sizes"
run xblat3d DGEMM "$(only DGEMM dblat3.in | larger)" "sizes to 65"
run xblat2d DGEMV "$(only DGEMV dblat2.in)" "stock sizes"
run xblat2d DGEMV "$(only DGEMV dblat2.in | larger)" "sizes to 65"
exit $status
