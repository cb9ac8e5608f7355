#!/bin/sh
# Builds the Debian packages of the tree that it lies in, with their bill of materials: build/package/packages. The same
# tree gives the same bytes wherever and whenever that is done.
set -eu
cd "$(dirname "$0")/.."

SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l packaging/debian/changelog -S Timestamp)
export SOURCE_DATE_EPOCH
# The compiler itself, not what it said at another time or place.
export CCACHE_DISABLE=1
umask 022

cmake --preset package >/dev/null
cmake --build --preset package
rm -rf build/package/packages
(cd build/package && cpack >cpack.log 2>&1) || { cat build/package/cpack.log && exit 1; }
packaging/sbom.py build/package >build/package/apconf.spdx.json
rm -r build/package/packages/_CPack_Packages
mv build/package/apconf.spdx.json build/package/packages/
