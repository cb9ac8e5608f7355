#!/bin/sh
# Installs the packages on a new Debian system in a folder of its own, runs the demo with the installed programs, and
# removes everything again. Usage: try_install.sh PACKAGES MIRROR
set -eu
here=$(cd "$(dirname "$0")" && pwd)
packages=$1
mirror=$2

# shellcheck disable=SC2016  # mmdebstrap's shell fills in the new system's folder
mmdebstrap --quiet --variant=apt --include=python3-minimal,libpython3-stdlib \
    --customize-hook="copy-in '$packages' /opt" \
    --customize-hook='mkdir -p "$1/opt/apconf/host"' \
    --customize-hook="copy-in '$here/../etc' '$here/try_inside.sh' /opt/apconf" \
    --customize-hook="copy-in '$here/../host/demo' /opt/apconf/host" \
    --customize-hook='chroot "$1" /opt/apconf/try_inside.sh' \
    --format=null bookworm - "deb $mirror bookworm main"
