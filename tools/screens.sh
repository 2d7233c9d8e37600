#!/usr/bin/env bash
# Draws every screen on demo data into docs/screens/. tools/screens.sh [light|dark] [DIRECTORY]
set -euo pipefail
cd "$(dirname "$0")/.."
palette=${1:-light}
pictures=${2:-docs/screens}

tools/build.sh release
mkdir -p "$pictures"
QT_QPA_PLATFORM=offscreen build/release/demo_screens build/release/Kolmar.mdb "$pictures" "$palette"
