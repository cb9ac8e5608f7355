#!/bin/sh
# A shell in which apconf can be tried: the default vocabulary is in place and the programs are found. Runs in a private
# /etc and /tmp. Usage: private_namespace.sh try.sh DIRECTORY-OF-THE-PROGRAMS
set -eu

[ "${APCONF_PRIVATE_NAMESPACE:-}" = inside ] || {
    echo "try.sh: run it through tests/support/private_namespace.sh (./dev try does)" >&2
    exit 1
}
PATH=$(cd "$1" && pwd):$PATH
here=$(cd "$(dirname "$0")/../.." && pwd)
mkdir -p /etc/config
cp "$here/etc/config_cmd_tree.xml" "$here/etc/cmd_tree_help.txt" /etc/
cp "$here/etc/start_config.json" /etc/config/
cd /tmp
echo "/etc and /tmp are this shell's own, and what is started here ends with it. Begin with: apconfd"
exec "${SHELL:-/bin/sh}"
