#!/bin/bash
# The main job on real input, step by step, with the programs that ship. Runs in a private /etc and /tmp.
# Usage: private_namespace.sh demo.sh DIRECTORY-OF-THE-PROGRAMS
set -euo pipefail

[ "${APCONF_PRIVATE_NAMESPACE:-}" = inside ] || {
    echo "demo.sh: run it through tests/support/private_namespace.sh (./dev demo does)" >&2
    exit 1
}

here=$(cd "$(dirname "$0")" && pwd)
PATH=$(cd "$1" && pwd):$PATH
log=/tmp/apconfd.log
server=

bold() { printf '\n\033[1m%s\033[0m\n' "$*"; }
step() { bold "-- $*"; }
fail() {
    printf '\nThe demo failed: %s\n' "$*" >&2
    [ ! -f "$log" ] || { echo "The server's last lines:" && tail -n 20 "$log"; } >&2
    exit 1
}
# Shows a command as it is typed, then runs it.
run() {
    printf '$ %s\n' "$*"
    "$@"
}
# Commits and leaves the message's number in `message`.
commit() {
    run apconf commit "$1" 2>/tmp/commit.err | tee /tmp/commit.out || fail "$(cat /tmp/commit.err)"
    sed 's/^/  /' /tmp/commit.err
    message=$(tail -n 1 /tmp/commit.out)
}
same() { [ "$1" = "$2" ] || fail "$3: expected '$1', got '$2'"; }

start_server() {
    apconfd --foreground --verbose >>"$log" 2>&1 &
    server=$!
    for _ in $(seq 100); do
        if apconf get config/hostname_cmd >/dev/null 2>&1; then return 0; fi
        sleep 0.05
    done
    fail "the server does not answer"
}
stop_server() {
    [ -z "$server" ] || { kill "-$1" "$server" 2>/dev/null && wait "$server" 2>/dev/null; } || true
    server=
}
trap 'stop_server KILL' EXIT

# Waits until message $1 is archived or explained in "bad".
wait_applied() {
    for _ in $(seq 100); do
        if [ -f "/tmp/cmessage_queue/old/$1.json" ]; then return 0; fi
        sleep 0.05
    done
    fail "message $1 was not applied"
}
running() { apconf get / --json --secrets; }

mkdir -p /etc/config
cp "$here"/../../etc/config_cmd_tree.xml "$here"/../../etc/cmd_tree_help.txt /etc/
cp "$here"/../../etc/start_config.json /etc/config/
rm -f "$log"

step "Start the server on an empty queue: the factory configuration becomes message 1"
echo '$ apconfd --foreground --verbose &'
start_server
wait_applied 1
run apconf queue
running >/tmp/running
"$here"/contains.py /etc/config/start_config.json /tmp/running || fail "the factory configuration is not in force"

step "A client sets an SSID and reads it back"
run apconf set 'config/radio[0]/bss[0]/ssid_cmd' ssid=Lobby
run apconf get 'config/radio[0]/bss[0]/ssid_cmd'
same '{"ssid":"Lobby"}' "$(apconf get 'config/radio[0]/bss[0]/ssid_cmd' | tr -d ' \n')" "the SSID"

step "A value that is out of range is refused, and says what would be accepted"
if run apconf set 'config/radio[0]/bss[0]/rts_threshold_cmd' rts=99999; then fail "the value was taken"; fi

step "Commit a batch while the server is down: two radios, four BSSes, VLANs, pools, an access list, ..."
stop_server TERM
commit "$here/batch.json"
run cat /tmp/cmessage_queue/new/.max_index
echo
run apconf queue
bold "The queue file, its first lines:"
run apconf queue show "$message" | sed -n 1,24p

step "The server starts, applies the message and archives what came of it"
start_server
wait_applied "$message"
grep -E "applied message $message " "$log" || fail "the log does not tell of message $message"
run apconf queue
running >/tmp/running
"$here"/contains.py "$here/batch.json" /tmp/running || fail "the batch is not in force"
"$here"/contains.py "$here/batch.json" "/tmp/cmessage_queue/old/$message.json" || fail "the archived copy differs"
echo "Everything that was sent is in the running configuration and in the archived copy. For example:"
run apconf get 'config/radio[1]/bss[0]/auth_open_wpa2'
run apconf get 'config/vlan'

step "A queue file is damaged: it is skipped, and the next message is applied"
damaged=$(tr -d ' ' </tmp/cmessage_queue/new/.max_index)
echo '{"MODULE": "dem' >"/tmp/cmessage_queue/new/$damaged.json"
printf '%d ' $((damaged + 1)) >/tmp/cmessage_queue/new/.max_index
echo '{"ACTION": "set", "config": {"hostname_cmd": {"hostname": "ap-fourth-floor"}}}' >/tmp/small.json
commit /tmp/small.json
wait_applied "$message"
grep -E "load config $damaged.json failed" "$log" || fail "the log does not tell of the damaged file"
run cat "/tmp/cmessage_queue/bad/$damaged.txt"
run apconf get config/hostname_cmd
same '{"hostname":"ap-fourth-floor"}' "$(apconf get config/hostname_cmd | tr -d ' \n')" "the host name"

step "The server is killed with SIGKILL and started again: the configuration is back"
running >/tmp/before
stop_server KILL
start_server
running >/tmp/after
cmp /tmp/before /tmp/after || fail "the configuration after the restart is another one"
run apconf get config/hostname_cmd
echo "The running configuration is byte for byte what it was."

stop_server TERM
bold "The demo is done; every step was as it should be."
