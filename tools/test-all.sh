#!/usr/bin/env bash
# Installs what is missing, builds every flavour (host, host with ASan and
# UBSan, i386, win32) and runs every test suite, the win32 one under 32-bit
# wine.  Each suite compares its flavour's golden digests with the
# committed ones, so passing suites give the same bits everywhere.  Ends
# with one line "all: N passed, M failed".
set -uo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"

passed=0
failed=0
failures=()
banner() { printf '\n==== %s ====\n' "$*"; }

bash tools/install-deps.sh --wine
case $? in
  0) wine_ok=yes ;;
  3) wine_ok=no
     printf '\n%s\n' "!!!! 32-bit wine could not be installed: the win32 tests will NOT run under wine !!!!" \
            "!!!! (the win32 flavour is still built and its DLL's tables are checked)            !!!!" >&2 ;;
  *) echo "test-all: could not install the build dependencies" >&2; exit 1 ;;
esac
if [ "$wine_ok" = yes ] && ! command -v wine >/dev/null 2>&1; then wine_ok=no; fi

build() {
  banner "build $1"
  cmake --preset "$1" >/dev/null && cmake --build --preset "$1"
}

# Runs one ctest suite and adds its counts to the totals.
suite() {
  local preset="$1"; shift
  banner "test $preset"
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
  passed=$((passed + total - bad))
  failed=$((failed + bad))
  if [ "$status" -ne 0 ] || [ "$bad" -ne 0 ]; then failures+=("$preset: $bad of $total failed"); fi
}

check() {
  local name="$1"; shift
  banner "$name"
  if "$@"; then passed=$((passed + 1)); else failed=$((failed + 1)); failures+=("$name"); fi
}

for preset in host host-asan i386 win32; do
  if ! build "$preset"; then failed=$((failed + 1)); failures+=("build $preset"); fi
done

suite host
suite host-asan
suite i386
if [ "$wine_ok" = yes ]; then
  suite win32
else
  suite win32 -R '^exports_'
fi

banner "summary"
for f in "${failures[@]}"; do echo "FAILED: $f"; done
echo "all: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
