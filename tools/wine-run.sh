#!/usr/bin/env bash
# Runs a Windows test executable under 32-bit wine in a private prefix.
# The DLLs sit beside the executables, where the loader looks first.
set -euo pipefail
export WINEPREFIX="${MIVOR_WINEPREFIX:-${TMPDIR:-/tmp}/mivor-wine-$(id -u)}"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
export WINEARCH=win32
exec wine "$@"
