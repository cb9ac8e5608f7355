#!/bin/sh
# The part of try_install.sh that runs inside the new system.
set -eu
say() { printf '\n== %s\n' "$*"; }
fail() {
    echo "try_inside.sh: $*" >&2
    exit 1
}
export DEBIAN_FRONTEND=noninteractive
configuration='/etc/config_cmd_tree.xml /etc/cmd_tree_help.txt /etc/config/start_config.json'

say 'install'
apt-get install -qq -y --no-install-recommends /opt/packages/*.deb >/tmp/apt.log 2>&1 || { cat /tmp/apt.log && exit 1; }
dpkg-query -W '*apconf*'
unit=$(find /lib/systemd/system /usr/lib/systemd/system -name apconfd.service | head -n 1)
program=$(sed -n 's/^ExecStart=\([^ ]*\).*/\1/p' "$unit")
[ -x "$program" ] || fail "the unit starts '$program', which is not there"
[ -L /etc/systemd/system/multi-user.target.wants/apconfd.service ] || fail 'the server does not start with the machine'
for file in $configuration; do
    dpkg-query -W -f '${Conffiles}\n' apconf | grep -q "^ $file " || fail "$file is no configuration file"
done
ldconfig -p | grep -q 'libapconf\.so\.1 ' || fail 'the library is not in the cache'

say 'run the demo'
APCONF_PRIVATE_NAMESPACE=inside /opt/apconf/host/demo/demo.sh /usr/bin >/tmp/demo.log 2>&1 || { cat /tmp/demo.log && exit 1; }
tail -n 1 /tmp/demo.log

say 'remove'
echo '# of the administrator' >>/etc/cmd_tree_help.txt
apt-get remove -qq -y apconf libapconf-dev libapconf1 >/tmp/apt.log 2>&1 || { cat /tmp/apt.log && exit 1; }
grep -q administrator /etc/cmd_tree_help.txt || fail 'the removal took the configuration'
[ ! -e "$program" ] || fail "$program is still there"

say 'purge'
dpkg --purge apconf libapconf-dev libapconf1 >/tmp/apt.log 2>&1 || { cat /tmp/apt.log && exit 1; }
left=$(find / -xdev \( -path /opt -o -path /tmp -o -path /proc -o -path /sys -o -path /var/cache -o -path /var/log \) -prune \
    -o -name '*apconf*' -print)
for file in $configuration /etc/config; do
    [ ! -e "$file" ] || left="$left $file"
done
[ -z "$left" ] || fail "left behind: $left"
echo 'Nothing is left.'
