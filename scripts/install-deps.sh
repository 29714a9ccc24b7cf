#!/usr/bin/env bash
# Installs the Debian packages Tallyroot needs, only those that are missing.
#   install-deps.sh run    what building and starting the program needs
#   install-deps.sh test   that, plus what the tests need (mingw-w64 and Wine)
set -euo pipefail

run_packages=(g++ cmake ninja-build qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins zlib1g-dev
              libgl-dev librsvg2-bin icoutils fonts-dejavu-core)
test_packages=(clang-format g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine64 xz-utils
               dpkg-dev file lintian desktop-file-utils appstream nsis)

packages=("${run_packages[@]}")
[ "${1:-run}" = test ] && packages+=("${test_packages[@]}")

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
        missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=()
[ "$(id -u)" -ne 0 ] && sudo=(sudo)
"${sudo[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
