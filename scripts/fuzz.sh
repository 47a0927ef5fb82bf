#!/usr/bin/env bash
# Builds the libFuzzer programs with clang and runs each for a while (default 60 s).
#   scripts/fuzz.sh [seconds]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"

scripts/setup.sh
if ! command -v clang++ >/dev/null 2>&1 || ! ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a >/dev/null 2>&1; then
  sudo_cmd=""
  if [ "$(id -u)" -ne 0 ]; then sudo_cmd="sudo"; fi
  $sudo_cmd apt-get update
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y clang libclang-rt-dev || \
    DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y clang libclang-rt-14-dev
fi

cmake --preset fuzz
cmake --build --preset fuzz

for exe in build/fuzz/fuzz/*_fuzz; do
  name=$(basename "$exe" _fuzz)
  work="$PWD/build/fuzz/corpus-$name"
  rm -rf "$work" && mkdir -p "$work"
  if [ -d "fuzz/corpus/$name" ]; then cp -r "fuzz/corpus/$name/." "$work/"; fi
  echo "== fuzzing $name for ${seconds}s"
  "$exe" -max_total_time="$seconds" -rss_limit_mb=2048 -timeout=20 -print_final_stats=1 "$work"
done
