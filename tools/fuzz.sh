#!/usr/bin/env bash
# Runs every fuzz target for so many seconds: tools/fuzz.sh SECONDS
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:?tools/fuzz.sh SECONDS}

tools/install.sh clang libclang-rt-14-dev
cmake --preset debug -B build/fuzz -DNORWEN_FUZZ=ON -DCMAKE_CXX_COMPILER=clang++ >/dev/null
cmake --build build/fuzz
for target in build/fuzz/fuzz_*; do
  echo "== ${target##*/}"
  corpus=build/fuzz/corpus/${target##*/}
  mkdir -p "$corpus"
  "$target" -max_total_time="$seconds" -print_final_stats=0 -verbosity=0 -artifact_prefix=build/fuzz/ "$corpus"
done
