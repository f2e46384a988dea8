#!/usr/bin/env bash
# Installs what is missing, builds the host flavour and prints the
# library's report: exports implemented by family, accuracy against MPFR.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"
bash tools/install-deps.sh
cmake --preset host >/dev/null
cmake --build --preset host
build/host/bin/mivor report "$@"
