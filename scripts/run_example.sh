#!/usr/bin/env bash
# Installs what is missing, builds, and runs tavix_gather.exe on the example run
# directory, in a copy so that the repository stays clean; then shows the report.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target tavix_gather.exe
exe="$PWD/build/default/tavix_gather.exe"

"$exe" --version
"$exe" -h
