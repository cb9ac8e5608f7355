#!/bin/sh
# Holds a build's library against the recorded binary interface: programs that were built with the release must go on
# working. Usage: check_abi.sh BUILD [record]
# A difference fails, also one that breaks nothing: it is recorded with the change that makes it.
set -eu
cd "$(dirname "$0")/.."
library=$1/libapconf.so
recorded=abi/libapconf.so.1.abi
scope='--drop-private-types --exported-interfaces-only'

machine=$(uname -m)
[ "$machine" = x86_64 ] || {
    echo "check_abi.sh: the recorded interface is that of x86_64; this machine is $machine, nothing was compared"
    exit 0
}
if [ "${2:-}" = record ]; then
    # Nothing of where and how it was built: names, types and layouts only.
    # shellcheck disable=SC2086  # several options
    abidw --headers-dir include $scope --drop-undefined-syms --no-corpus-path --no-comp-dir-path --no-show-locs \
        --no-parameter-names --no-write-default-sizes --type-id-style hash --out-file "$recorded" "$library"
    exit 0
fi
# shellcheck disable=SC2086
abidiff --headers-dir2 include $scope "$recorded" "$library" || {
    cat >&2 <<'TEXT'
check_abi.sh: the library's binary interface is not the recorded one (the report is above).
What was there before must stay as it was, or the library needs a new SONAME. What only adds to it is recorded with
"./dev abi record".
TEXT
    exit 1
}
echo "The binary interface is the recorded one."
