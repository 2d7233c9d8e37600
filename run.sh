#!/usr/bin/env bash
# Installs what is missing, builds, and shows the main job on demo data against a simulated field.
# With a display the program opens; without one every demo station is collected once, unattended.
set -euo pipefail
cd "$(dirname "$0")"

tools/install.sh
tools/build.sh release norwen fieldsim demo_register
exec tools/demo.sh
