#!/bin/sh
# A Debian tree of a machine's headers and libraries below build/, for the cross files here.
# Usage: sysroot.sh ARCHITECTURE MIRROR
set -eu
cd "$(dirname "$0")/.."
tree=build/sysroot-$1
packages=libc6-dev,libstdc++-12-dev,libjson-c-dev,libxml2-dev,libevent-dev,libedit-dev,libcli11-dev,libgtest-dev,libgmock-dev

# What it was made of stands in the tree: another list makes it anew, and so does an attempt that was cut short.
made_of="$packages; no devices"
[ "$(cat "$tree/.made-of" 2>/dev/null)" != "$made_of" ] || exit 0
rm -rf "$tree"
mkdir -p build
mmdebstrap --variant=extract --architectures="$1" --include="$packages" bookworm "$tree" "deb $2 bookworm main"
# Programs behind the emulator would open the tree's devices, and a terminal there has no file system of terminals.
rm -rf "${tree:?}/dev"
echo "$made_of" >"$tree/.made-of"
