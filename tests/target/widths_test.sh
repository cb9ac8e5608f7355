#!/bin/bash
# A 32-bit and a 64-bit build as one system: each serves the other's clients, applies the messages that the other queued,
# and starts from the files that the other left.
# Usage: private_namespace.sh widths_test.sh TARGET-BUILD NATIVE-BUILD [EMULATOR ...]
set -euo pipefail

[ "${APCONF_PRIVATE_NAMESPACE:-}" = inside ] || {
    echo "widths_test.sh: run it through tests/support/private_namespace.sh" >&2
    exit 1
}
source=$(cd "$(dirname "$0")/../.." && pwd)
queue=/tmp/cmessage_queue

# A folder of commands for each width; the target's go through the emulator.
make_commands() {
    mkdir -p "/tmp/$1"
    for program in apconfd apconf; do
        printf '#!/bin/sh\nexec %s %s "$@"\n' "${*:3}" "$(realpath "$2")/host/$program" >"/tmp/$1/$program"
        chmod +x "/tmp/$1/$program"
    done
}
make_commands target "$1" "${@:3}"
make_commands native "$2"

server=
fail() {
    echo "widths_test.sh: $*" >&2
    tail -n 5 /tmp/server.log >&2
    exit 1
}
end_server() {
    [ -z "$server" ] || { kill "$server" && wait "$server"; } || true
    server=
}
trap end_server EXIT

# Starts the server of a width and waits until it answers a client of the other.
start_server() {
    "/tmp/$1/apconfd" --foreground --verbose >>/tmp/server.log 2>&1 &
    server=$!
    for _ in $(seq 200); do
        if "/tmp/$2/apconf" get config/hostname_cmd >/dev/null 2>&1; then return; fi
        sleep 0.05
    done
    fail "the $1 server does not answer the $2 client"
}
wait_applied() {
    for _ in $(seq 200); do
        if [ -f "$queue/old/$1.json" ]; then return; fi
        sleep 0.05
    done
    fail "message $1 is not applied"
}
running() { "/tmp/$1/apconf" get / --json --secrets >"$2"; }

fresh_machine() {
    rm -rf "$queue" /etc/config
    mkdir -p /etc/config
    cp "$source"/etc/config_cmd_tree.xml "$source"/etc/cmd_tree_help.txt /etc/
    cp "$source"/etc/start_config.json /etc/config/
}

# The server of one width, everything else of the other.
one_way() {
    local server_width=$1 client_width=$2
    local client=/tmp/$client_width/apconf
    echo "$server_width server, $client_width client"
    fresh_machine
    start_server "$server_width" "$client_width"
    wait_applied 1

    "$client" set 'config/radio[1]/bss[3]/ssid_cmd' ssid="other width"
    running "$client_width" /tmp/seen
    grep -q "other width" /tmp/seen || fail "what the client set is not in force"

    local message
    message=$("$client" commit "$source/host/demo/batch.json")
    wait_applied "$message"
    cp "$queue/old/$message.json" "/tmp/archived-by-$server_width"
    running "$client_width" /tmp/seen
    "$source"/host/demo/contains.py "$source/host/demo/batch.json" /tmp/seen || fail "the batch is not in force"
    end_server

    # Queued while nobody serves, by one width; the other comes up on it and on the files of the first.
    message=$("$client" commit - 2>/dev/null <<<'{"ACTION": "set", "config": {"hostname_cmd": {"hostname": "both-widths"}}}')
    cp "$queue/new/$message.json" "/tmp/queued-by-$client_width"
    start_server "$client_width" "$server_width"
    wait_applied "$message"
    running "$server_width" /tmp/after
    sed -i 's/"hostname": *"[^"]*"/"hostname": "both-widths"/' /tmp/seen
    sed -i 's/"hostname": *"[^"]*"/"hostname": "both-widths"/' /tmp/after
    cmp /tmp/seen /tmp/after || fail "the $client_width server came up with another configuration"
    "/tmp/$server_width/apconf" get config/hostname_cmd | grep -q both-widths || fail "message $message is not in force"
    end_server
}

one_way target native
one_way native target
cmp /tmp/queued-by-native /tmp/queued-by-target || fail "the widths queue different bytes"
cmp /tmp/archived-by-native /tmp/archived-by-target || fail "the widths archive different bytes"
echo "Both widths work together."
