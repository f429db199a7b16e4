#!/usr/bin/env bash
# test_kv-select.sh PROGRAM: kv-select with independent SNMP agents: instances of net-snmp's snmpd, each in its own network
# namespace on the bridge lan0; and with a private CUPS scheduler.
source "$(dirname "$0")/support/expect.sh"
tools=$(dirname "$0")/../tools
source "$tools/background.sh"
program=("$1")
ip route del local 10.0.0.0/24 dev lo  # The printers are other hosts here.
export PATH=$PATH:/usr/sbin
documents=$HOME/Documents
export LC_ALL=C

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

# Prints exit status, standard output and error, sorted as the hosts reply in any order, and KV.txt, which exists before.
run() {
    local status=0
    mkdir -p "$documents"
    printf old >"$documents/KV.txt"
    "${program[@]}" "$@" >"$HOME/output" 2>"$HOME/errors" || status=$?
    printf '[%s|%s|%s|%s]' $status "$(sort "$HOME/output")" "$(sort "$HOME/errors")" "$(cat "$documents/KV.txt" 2>&1 | sed s,.*such.*,-,)"
}

expect 0 '[2||kv-select: unknown model "kv260"; see --help|old]' run kv260
expect 0 '[2||kv-select: "10.0.0.256" is not an IPv4 address; see --help|old]' run KV260 10.0.0.256
expect 0 '[2||kv-select: too many arguments; see --help|old]' run --list KV260
add_host 2 $'LP\e[1m'
advice='use kv-select MODEL ADDRESS'
expect 0 "[3||kv-select: no printer responded; for one on another network, $advice|-]" run
add_host 3 'TVK KV260N'
expect 0 '[0|KV260 10.0.0.3||KV260 10.0.0.3]' run
add_host 4 KV460
add_host 5 KV460
expect 0 $'[0|KV260 10.0.0.3\nKV460 10.0.0.4\nKV460 10.0.0.5||old]' run --list
expect 0 '[0|KV260 10.0.0.3||KV260 10.0.0.3]' run KV260
expect 0 $'[3||KV460 10.0.0.4\nKV460 10.0.0.5\nkv-select: more than one printer responded; '"$advice:|-]" run KV460
expect 0 '[1||kv-select: Selected Printer model is KV260|-]' run KV410 10.0.0.3
expect 0 '[0|KV410 192.168.1.40||KV410 192.168.1.40]' run KV410 192.168.1.40
expect 0 'shouldExitPane  :: Return' tail -n 1 "$documents/QzInstall.log"
expect 0 '' ls "$documents"/QzInstall-*.log

# Replies can't send control characters to the terminal.
expect 0 $'PrinterInfo.szModel LP\\x1b[1m' script -qec "${program[*]} --list" /dev/null

mkdir -p "$HOME/cups/etc/ppd"
sed 's/@MODEL@/KV260/' "$tools/kv-series.ppd.in" >"$HOME/cups/etc/ppd/Tovik-KV260-Ethernet-Printer-IP=10.0.0.3.ppd"
program=("$tools/private-cupsd" "$HOME/cups" "$1")
expect 0 '[1||kv-select: A Printer with this IP Address is already Installed, Please choose another Ethernet Printer|-]' \
    run KV260
program=(timeout --preserve-status 1 "$1")
expect 0 '[143|||-]' run KV260
HOME=$HOME/output expect 1 "/output/Documents can't be written to" "$1" KV260
