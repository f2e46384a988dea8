#!/usr/bin/env bash
# Installs what building and testing every flavour needs, on Debian 12.
# Only missing packages are installed; run as root (or with sudo at hand).
#
#   install-deps.sh          compilers, libraries and tools for all flavours
#   install-deps.sh --wine   also 32-bit wine, to run the win32 tests
#
# Exit status: 0 when everything is in place; 3 when only wine could not be
# installed (the caller may go on without the wine runs).
set -uo pipefail
export DEBIAN_FRONTEND=noninteractive
here="$(cd "$(dirname "$0")" && pwd)"

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi

PACKAGES=(
  build-essential cmake ninja-build python3 git
  gcc-multilib g++-multilib lib32asan8 lib32ubsan1
  g++-mingw-w64-i686 binutils-mingw-w64-i686
  googletest libgtest-dev libbenchmark-dev
  libmpfr-dev libgmp-dev sollya
  gfortran lib32gfortran-12-dev gfortran-mingw-w64-i686 libopenblas-dev
  libblas-test
  clang libclang-rt-14-dev
)

# Google Benchmark for the i386 flavour's benchmarks.
I386_PACKAGES=(libbenchmark-dev:i386)
# Wanted but not required: the i386 matrix benchmark's peer.  Without it
# the i386 flavour builds no matmul_bench.
OPTIONAL_PACKAGES=(libopenblas-dev:i386)

missing=()
for p in "${PACKAGES[@]}" "${I386_PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "install-deps: installing ${missing[*]}"
  grep -qx i386 <(dpkg --print-foreign-architectures) || $SUDO dpkg --add-architecture i386
  $SUDO apt-get -q update || echo "install-deps: apt-get update reported errors; trying anyway" >&2
  $SUDO apt-get -q install -y --no-install-recommends "${missing[@]}" || {
    echo "install-deps: could not install ${missing[*]}" >&2
    exit 1
  }
fi

for p in "${OPTIONAL_PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    $SUDO apt-get -q install -y --no-install-recommends "$p" >/dev/null 2>&1 ||
      echo "install-deps: optional $p could not be installed; going on without it" >&2
  fi
done

if [ "${1:-}" = "--wine" ]; then
  if command -v wine >/dev/null 2>&1 && dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q "ok installed"; then
    :
  else
    echo "install-deps: installing 32-bit wine"
    if ! $SUDO bash "$here/install-wine32.sh"; then
      echo "install-deps: 32-bit wine could not be installed" >&2
      exit 3
    fi
  fi
fi
exit 0
