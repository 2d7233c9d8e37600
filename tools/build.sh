#!/usr/bin/env bash
# Configures and builds one preset, or only the targets named behind it: tools/build.sh release|debug|sanitize [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift

[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" ${@:+--target "$@"}
