#!/usr/bin/env bash
# Installs what is missing, builds and runs all tests, under the sanitizers. With a preset as argument (debug, release)
# that one.
set -euo pipefail
cd "$(dirname "$0")"
preset=${1:-sanitize}

tools/install.sh
tools/build.sh "$preset"
QT_QPA_PLATFORM=offscreen ctest --preset "$preset" --no-tests=error
