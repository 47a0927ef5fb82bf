#!/usr/bin/env bash
# Installs what is missing, builds, and runs tavix_gather.exe on the example run
# directory (examples/benzene) in a temporary copy, so that the repository stays
# clean; then shows the report it wrote.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target tavix_gather.exe
exe="$PWD/build/default/tavix_gather.exe"

run=$(mktemp -d "${TMPDIR:-/tmp}/tavix-example.XXXXXX")
cp -r examples/benzene/. "$run/"
echo "== running tavix_gather.exe in $run"
(cd "$run" && "$exe")
echo
echo "== $run/tavix-quantum.dat"
cat "$run/tavix-quantum.dat"
