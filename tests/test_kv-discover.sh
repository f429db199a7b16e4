#!/usr/bin/env bash
# test_kv-discover.sh PROGRAM: kv-discover with independent SNMP agents: instances of net-snmp's snmpd, each in its own
# network namespace on the bridge lan0.
source "$(dirname "$0")/support/expect.sh"
source "$(dirname "$0")/../tools/background.sh"
program=$1
ip route del local 10.0.0.0/24 dev lo  # The printers are other hosts here.
export PATH=$PATH:/usr/sbin
mkdir "$HOME/Documents"

add_host() {  # NUMBER MODEL
    ip netns add "host$1"
    ip link add "port$1" type veth peer name eth0 netns "host$1"
    ip link set "port$1" master lan0 up
    ip -n "host$1" link set eth0 up
    ip -n "host$1" address add "10.0.0.$1/24" dev eth0
    printf 'rocommunity public\noverride .1.3.6.1.4.1.2699.1.2.1.2.1.1.3.1 octet_str "%s"\n' \
        "MFG:Tovik;CMD:X;MDL:$2;CLS:PRINTER;DES:card printer;SERN:A1" >"$HOME/snmpd$1.conf"
    # Wait for its socket. A request instead would already fill the bridge's forwarding table.
    background "ip netns exec host$1 grep -q :00A1 /proc/net/udp" \
        ip netns exec "host$1" snmpd -f -Lo -C -c "$HOME/snmpd$1.conf" udp:161
}

search() {  # Sorted, as the hosts reply in any order.
    local status=0
    "$program" >"$HOME/output" 2>"$HOME/errors" || status=$?
    sort "$HOME/output"
    sort "$HOME/errors"
    return $status
}

add_host 2 $'LP\e[1m'
expect 1 $'PrinterInfo.szModel LP\e[1m' search
add_host 3 'TVK KV260N'
add_host 4 'KV460'
expect 0 $'Tovik KV260 @10.0.0.3\nTovik KV460 @10.0.0.4
PrinterInfo.szModel KV460\nPrinterInfo.szModel LP\e[1m\nPrinterInfo.szModel TVK KV260N' search
expect 0 '' ls "$HOME"/Documents/QzInstall-*.log

# Replies can't send control characters to the terminal.
expect 0 $'PrinterInfo.szModel LP\\x1b[1m' script -qec "$program >/dev/null" /dev/null
expect 2 'takes no arguments' "$program" 10.0.0.3
