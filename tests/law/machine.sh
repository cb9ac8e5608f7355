#!/bin/sh
# Runs a command on a machine of its own: DIRECTORY/tmp is its /tmp and DIRECTORY/config its /etc/config. For programs
# that run inside tests/support/private_namespace.sh. Usage: machine.sh DIRECTORY COMMAND [ARGUMENT ...]
set -eu

if [ "${1:-}" != --inside ]; then
    [ "${APCONF_PRIVATE_NAMESPACE:-}" = inside ] || {
        echo "machine.sh: run this inside tests/support/private_namespace.sh" >&2
        exit 1
    }
    exec unshare --mount --propagation private "$0" --inside "$@"
fi

directory=$2
shift 2
tree=$(cd "$(dirname "$0")/../.." && pwd)
mkdir -p /etc/config
mount --bind "$directory/config" /etc/config
mount --bind "$directory/tmp" /tmp
# A checkout below /tmp must stay visible; private_namespace.sh has kept it here.
case $tree in
/tmp/*)
    mkdir -p "$tree"
    mount --rbind /mnt/tree "$tree"
    ;;
esac
exec "$@"
