#!/usr/bin/env bash
# Installs the Debian packages that are missing, and those named as arguments; does nothing, and needs no root, when
# none is missing.
set -euo pipefail

packages=(
  g++ cmake ninja-build ccache pkg-config clang-format sqlite3
  qt6-base-dev libqt6opengl6-dev qt6-serialport-dev qt6-charts-dev fonts-dejavu-core
  libsqlitecpp-dev libsqlite3-dev libcurl4-openssl-dev libxlsxwriter-dev zlib1g-dev libboost-context-dev
  libgtest-dev libgmock-dev libbenchmark-dev libmodbus-dev
  python3 python3-aiosmtpd python3-openpyxl python3-pymodbus socat
)

installed() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'; }

packages+=("$@")

missing=()
for package in "${packages[@]}"; do
  installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

if [ "$(id -u)" -eq 0 ]; then root=(); else root=(sudo); fi
"${root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
