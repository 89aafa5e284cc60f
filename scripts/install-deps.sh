#!/usr/bin/env bash
# Installs the Debian 12 packages the build and the tests need; does nothing when all are there.
set -euo pipefail
packages=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev qt6-qpa-plugins qt6-wayland libgl-dev fonts-dejavu-core
    libpugixml-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    clang clang-format clang-tidy libclang-rt-14-dev
    xvfb xauth
    libxml2-utils libplist-utils python3
    libxcb1-dev libxcb-res0-dev openbox xterm x11-apps procps
    desktop-file-utils appstream shared-mime-info dpkg-dev file
)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    SUDO=""
    [ "$(id -u)" -eq 0 ] || SUDO="sudo"
    export DEBIAN_FRONTEND=noninteractive
    $SUDO apt-get update -q
    $SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
