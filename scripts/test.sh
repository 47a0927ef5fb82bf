#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
#   scripts/test.sh            default build (RelWithDebInfo)
#   scripts/test.sh sanitize   the same tests under AddressSanitizer + UBSan
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"

scripts/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
