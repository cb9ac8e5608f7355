#!/bin/sh
# Runs apconf-reference where the tree's own vocabulary stands in /etc. Usage: reference.sh PROGRAM ARGUMENT ...
set -eu
tree=$(cd "$(dirname "$0")/../.." && pwd)
[ "${APCONF_PRIVATE_NAMESPACE:-}" = inside ] || exec "$tree/tests/support/private_namespace.sh" "$0" "$@"
cp "$tree/etc/config_cmd_tree.xml" "$tree/etc/cmd_tree_help.txt" /etc/
exec "$@"
