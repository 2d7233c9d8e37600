#!/usr/bin/env bash
# Thirty days of forty stations for many seeds, two at a time: tools/soak.sh [COUNT [FIRST]]. 1,000 seeds if not said.
# A seed that fails is printed; NORWEN_SOAK=SEED:1 gives it back.
set -euo pipefail
cd "$(dirname "$0")/.."
count=${1:-1000}
first=${2:-1}

tools/install.sh
tools/build.sh release test_soak
seq "$first" $((first + count - 1)) | xargs -P "$(nproc)" -I{} sh -c '
  NORWEN_SOAK={}:1 build/release/test_soak >"build/soak.{}.log" 2>&1 && rm "build/soak.{}.log" ||
    { echo "seed {}:"; grep -m 3 -A 3 Failure "build/soak.{}.log"; exit 1; }'
echo "$count seeds, none failed"
