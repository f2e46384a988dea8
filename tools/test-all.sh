#!/usr/bin/env bash
# Installs what is missing, builds every flavour (host, host with ASan and
# UBSan, i386, i386 with ASan and UBSan, win32, and two clang builds,
# host-fuzz and host-tsan) and runs every test suite, the win32 one under
# 32-bit wine.  Each suite compares its flavour's golden digests with the
# committed ones, so passing suites give the same bits everywhere.
# host-fuzz runs a bounded fuzzing of every implemented export (libFuzzer,
# ASan, UBSan), host-tsan every reentrant export from four threads under
# ThreadSanitizer.  Each suite's line says how many tests its build
# registered (ctest -N) and how many ran; a difference fails the run.  Ends
# with one line "all: N passed, M failed" and the time taken.
set -uo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"

passed=0
failed=0
failures=()
started=$SECONDS
banner() { printf '\n==== %s (%d:%02d) ====\n' "$*" $(((SECONDS - started) / 60)) $(((SECONDS - started) % 60)); }

bash tools/install-deps.sh --wine
case $? in
  0) wine_ok=yes ;;
  3) wine_ok=no
     # The win32 configure then stops (MIVOR_REQUIRE_ALL) and the run fails.
     printf '\n%s\n' "!!!! 32-bit wine could not be installed: the win32 tests cannot run !!!!" >&2 ;;
  *) echo "test-all: could not install the build dependencies" >&2; exit 1 ;;
esac
if [ "$wine_ok" = yes ] && ! command -v wine >/dev/null 2>&1; then wine_ok=no; fi

build() {
  banner "build $1"
  cmake --preset "$1" >/dev/null && cmake --build --preset "$1"
}

# Runs one ctest suite and adds its counts to the totals.  The expected
# count is what the build registered; fewer tests run means some were
# skipped or lost, which fails the suite.
suite() {
  local preset="$1"; shift
  banner "test $preset"
  local expected
  expected="$(ctest --preset "$preset" -N 2>/dev/null | sed -n -E 's/^Total Tests: ([0-9]+)$/\1/p')"
  local log
  log="$(mktemp)"
  ctest --preset "$preset" "$@" 2>&1 | tee "$log"
  local status=${PIPESTATUS[0]}
  local line
  line="$(grep -E '[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$log" | tail -n 1)"
  rm -f "$log"
  if [ -z "$line" ]; then
    failed=$((failed + 1)); failures+=("$preset: ctest did not run"); return
  fi
  local bad total
  bad="$(sed -E 's/.* ([0-9]+) tests? failed out of ([0-9]+).*/\1/' <<<"$line")"
  total="$(sed -E 's/.* failed out of ([0-9]+).*/\1/' <<<"$line")"
  echo "$preset: ${expected:-?} tests registered, $total run, $bad failed"
  passed=$((passed + total - bad))
  failed=$((failed + bad))
  if [ "$status" -ne 0 ] || [ "$bad" -ne 0 ]; then failures+=("$preset: $bad of $total failed"); fi
  if [ "$total" != "$expected" ]; then
    failed=$((failed + 1)); failures+=("$preset: ${expected:-?} tests registered but $total run")
  fi
}

check() {
  local name="$1"; shift
  banner "$name"
  if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); failures+=("$name"); fi
}

presets=(host host-asan i386 i386-asan win32 host-fuzz host-tsan)
for preset in "${presets[@]}"; do
  if ! build "$preset"; then failed=$((failed + 1)); failures+=("build $preset"); fi
done
for preset in "${presets[@]}"; do
  suite "$preset"
done

banner "summary"
for f in "${failures[@]}"; do echo "FAILED: $f"; done
echo "all: $passed passed, $failed failed ($(((SECONDS - started) / 60)) min $(((SECONDS - started) % 60)) s)"
[ "$failed" -eq 0 ]
