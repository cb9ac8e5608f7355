#!/bin/sh
# Runs a command where /etc and /tmp are its own: the system's paths are fixed, so tests and the demo bring their own
# /etc and /tmp instead of other paths. Needs no root. Usage: private_namespace.sh COMMAND [ARGUMENT ...]
set -eu

if [ "${APCONF_PRIVATE_NAMESPACE:-}" != entering ]; then
    APCONF_PRIVATE_NAMESPACE=entering APCONF_OUTER_MNT=$(readlink /proc/self/ns/mnt) \
        exec unshare -Urm --propagation private "$0" "$@"
fi

[ "$(readlink /proc/self/ns/mnt)" != "${APCONF_OUTER_MNT:?}" ] || {
    echo "private_namespace.sh: the mount namespace is still the machine's own; nothing was mounted" >&2
    exit 1
}

# A checkout below /tmp must stay visible when /tmp becomes private.
tree=$(cd "$(dirname "$0")/../.." && pwd)
mount -t tmpfs tmpfs /mnt
mkdir /mnt/upper /mnt/work /mnt/tree
mount --rbind "$tree" /mnt/tree
mount -t overlay overlay -o lowerdir=/etc,upperdir=/mnt/upper,workdir=/mnt/work /etc
mount -t tmpfs tmpfs /tmp
case $tree in
/tmp/*)
    mkdir -p "$tree"
    mount --rbind /mnt/tree "$tree"
    cd "$tree"
    ;;
esac
export APCONF_PRIVATE_NAMESPACE=inside
exec "$@"
