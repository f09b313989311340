#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs what building, running and testing need on Debian 12: the one list of packages of this project.
# Does nothing when all of them are there. Needs root for what is missing.
#   install-deps.sh               what run.sh and test.sh need
#   install-deps.sh --build       only what building needs
#   install-deps.sh --developer   all of it, and what lint, clang and fuzzing need
#   install-deps.sh --analysis    all of that, and what scripts/coverage and the preset clang-19 need
set -euo pipefail

packages=(
    # build
    g++ cmake ninja-build pkg-config dpkg-dev file
    # libraries
    libcups2-dev zlib1g-dev libicu-dev libplist-dev nettle-dev libgmp-dev uuid-dev
    libcli11-dev nlohmann-json3-dev
    # the pane, the print dialog and the sample Job Properties module
    qt6-base-dev qt6-tools-dev libqt6opengl6-dev libgl-dev qt6-translations-l10n
    # what the filter may ask of the kernel
    libseccomp-dev
    # the print portal's interfaces
    xdg-desktop-portal-dev
    # discovery of controllers
    libavahi-client-dev
)
testing=(
    # tests and benchmarks
    libgtest-dev libgmock-dev libbenchmark-dev libssl-dev
    # what the tests and run.sh check against
    ghostscript groff-base fonts-urw-base35 fonts-dejavu-core cups cups-client cups-filters cups-ppdc openssl python3 poppler-utils
    avahi-daemon dbus iproute2 procps
    # programs of others that print with the pane: a display, the programs, the print portal beside another backend
    xvfb openbox xdotool x11-utils imagemagick focuswriter linguist-qt6
    evince xdg-desktop-portal xdg-desktop-portal-gtk desktop-file-utils appstream
)
# ./scripts/lint.sh, the clang and the fuzz presets
developer=(clang-14 clang-format-14 clang-tidy-14 libclang-rt-14-dev python3-clang-14)
analysis=(clang-19 gcovr)
case "${1:-}" in
--build) ;;
--developer) packages+=("${testing[@]}" "${developer[@]}") ;;
--analysis) packages+=("${testing[@]}" "${developer[@]}" "${analysis[@]}") ;;
*) packages+=("${testing[@]}") ;;
esac

# What an installed package provides counts too: newer releases merge packages.
there=$(dpkg-query -W -f '${db:Status-Status} ${Package} ${Provides}\n' | sed -n 's/^installed //p' | tr -s ' ,' '\n')
missing=()
for package in "${packages[@]}"; do
    grep -qxF "$package" <<<"$there" || missing+=("$package")
done
if [ "${#missing[@]}" -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}" >&2
sudo=()
if [ "$(id -u)" -ne 0 ]; then
    sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
