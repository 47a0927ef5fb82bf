#!/usr/bin/env bash
# Installs what the build needs when it is missing (Debian/Ubuntu packages).
set -euo pipefail

need=()
command -v cmake >/dev/null 2>&1 || need+=(cmake)
command -v g++ >/dev/null 2>&1 || need+=(g++)
command -v ninja >/dev/null 2>&1 || need+=(ninja-build)
command -v ccache >/dev/null 2>&1 || need+=(ccache)
command -v python3 >/dev/null 2>&1 || need+=(python3)
[ -f /usr/include/gtest/gtest.h ] || need+=(libgtest-dev)
[ -f /usr/include/gmock/gmock.h ] || need+=(libgmock-dev)
[ -f /usr/include/benchmark/benchmark.h ] || need+=(libbenchmark-dev)
# Tests check that a real client, Open Babel, reads the structure files we write.
command -v obabel >/dev/null 2>&1 || need+=(openbabel)

if [ ${#need[@]} -gt 0 ]; then
  echo "Installing: ${need[*]}"
  sudo_cmd=""
  if [ "$(id -u)" -ne 0 ]; then sudo_cmd="sudo"; fi
  $sudo_cmd apt-get update
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y "${need[@]}"
fi
