#!/usr/bin/env bash
# Installs what is missing, builds, and runs the Monte Carlo route and the gather on
# the example run directory (examples/benzene) in a temporary copy, so that the
# repository stays clean; then shows the report.
#
# In each carrier directory of MC-quantum: prepare-mc.py (as the engine writes it)
# copies the inputs in and computes the hop rates with tavix_hoprate.exe;
# tavix_mc.exe runs the trajectories (nsimu of the control file); tavix_mob.exe fits
# the mean squared displacement. tavix_gather.exe then writes the report.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target tavix_gather.exe tavix_hoprate.exe tavix_mc.exe tavix_mob.exe
bin="$PWD/build/default"
export PATH="$bin:$PATH"

run=$(mktemp -d "${TMPDIR:-/tmp}/tavix-example.XXXXXX")
cp -r examples/benzene/. "$run/"
nsimu=$(sed -n 's/^ *nsimu *= *\([0-9]*\).*/\1/p' "$run/tavix.inp")
for carrier in elec hole; do
  echo "== MC-quantum/$carrier: rates, $nsimu trajectories, mobility"
  (cd "$run/MC-quantum/$carrier" &&
    python3 prepare-mc.py >prepare.log &&
    tavix_mc.exe -simu0 0 -nsimu "$nsimu" >mc.log &&
    tavix_mob.exe | tee mob.log | grep "mu")
done
echo
echo "== running tavix_gather.exe in $run"
(cd "$run" && tavix_gather.exe)
echo
echo "== $run/tavix-quantum.dat"
cat "$run/tavix-quantum.dat"
