#!/usr/bin/env bash
# Configures and builds one preset: tools/build.sh release|debug|sanitize
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1

[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
