#!/bin/bash
# Builds the packages a second time, from a copy of the tree in another place, with another umask, locale and time zone,
# and fails unless every file is the same as that of the first build.
set -euo pipefail
cd "$(dirname "$0")/.."

copy=$(mktemp -d)
trap 'rm -rf "$copy"' EXIT
mkdir -p "$copy/some/other/place"
git ls-files -z | tar -c --null -T - | tar -x -C "$copy/some/other/place"
(umask 027 && LC_ALL=C.UTF-8 TZ=Pacific/Kiritimati "$copy/some/other/place/packaging/build.sh")

first=build/package/packages
second=$copy/some/other/place/build/package/packages
(cd "$first" && sha256sum -- *) >"$copy/first"
(cd "$second" && sha256sum -- *) >"$copy/second"
cat "$copy/first"
diff "$copy/first" "$copy/second" || {
    echo "reproduce.sh: the second build differs" >&2
    exit 1
}
echo "Both builds are the same."
