#!/bin/sh
# Installs a build, then builds and runs programs against what was installed, found by pkg-config or find_package.
# Usage: private_namespace.sh consume.sh pkg-config|find-package VERSION BUILD PREFIX
# The environment names the machine: CC, CXX, and for another one SYSROOT, MULTIARCH, TOOLCHAIN and EMULATOR.
set -eu

[ "${APCONF_PRIVATE_NAMESPACE:-}" = inside ] || {
    echo "consume.sh: run it through tests/support/private_namespace.sh" >&2
    exit 1
}
manner=$1
version=$2
build=$3
prefix=$4
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)

# What the machine has stays as it is: the installed files lie in a layer of their own above it.
layer=${SYSROOT:-$prefix}
mkdir /mnt/installed /mnt/installed-work
mount -t overlay overlay -o "lowerdir=$layer,upperdir=/mnt/installed,workdir=/mnt/installed-work" "$layer"
DESTDIR=${SYSROOT:-} cmake --install "$build" >"$work/install.log"

if [ -n "${SYSROOT:-}" ]; then
    export PKG_CONFIG_SYSROOT_DIR="$SYSROOT"
    libraries=$SYSROOT/usr/lib
    export PKG_CONFIG_LIBDIR="$libraries/pkgconfig:$libraries/$MULTIARCH/pkgconfig:$SYSROOT/usr/share/pkgconfig"
    CC="$CC --sysroot=$SYSROOT"
    CXX="$CXX --sysroot=$SYSROOT"
else
    export LD_LIBRARY_PATH="$prefix/lib"
fi
strict='-Wall -Wextra -Wpedantic -Werror'

# shellcheck disable=SC2046,SC2086  # the variables hold several words, and pkg-config prints several
case $manner in
pkg-config)
    pkg-config --print-errors --exact-version="$version" apconf
    $CC -std=c11 $strict "$here/consumer.c" -o "$work/consumer_c" $(pkg-config --cflags --libs apconf json-c)
    $CXX -std=c++17 $strict "$here/consumer.cpp" -o "$work/consumer_cpp" $(pkg-config --cflags --libs apconf)
    ;;
find-package)
    cmake -S "$here" -B "$work" -DAPCONF_VERSION="$version" ${TOOLCHAIN:+"-DCMAKE_TOOLCHAIN_FILE=$TOOLCHAIN"} >"$work/cmake.log"
    cmake --build "$work" >>"$work/cmake.log"
    ;;
esac

# shellcheck disable=SC2086
for program in consumer_c consumer_cpp; do
    ${EMULATOR:-} "$work/$program"
done
