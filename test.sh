#!/usr/bin/env bash
# Installs what is missing, builds and runs all tests. With a preset as argument (debug, sanitize) that one.
set -euo pipefail
cd "$(dirname "$0")"
preset=${1:-release}

tools/install.sh
tools/build.sh "$preset"
QT_QPA_PLATFORM=offscreen ctest --preset "$preset" --no-tests=error
