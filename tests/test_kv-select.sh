#!/usr/bin/env bash
# test_kv-select.sh PROGRAM INSTALLER: kv-select with a private CUPS scheduler and independent SNMP agents: instances of
# net-snmp's snmpd, each in its own network namespace on the bridge lan0.
source "$(dirname "$0")/support/expect.sh"
tools=$(dirname "$0")/../tools
source "$tools/lib/background.sh"
program=("$1")
ip route del local 10.0.0.0/24 dev lo  # These addresses belong to other hosts here.
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

# Prints exit status, standard output and error, sorted as the hosts reply in any order, and KV.txt with its end marked;
# "old" before the run.
run() {
    local status=0
    mkdir -p "$documents"
    printf old >"$documents/KV.txt"
    touch -d '2023-11-04 08:05' "$documents/QzInstall.log"
    "${program[@]}" "$@" >"$HOME/output" 2>"$HOME/errors" || status=$?
    printf '[%s|%s|%s|' $status "$(sort "$HOME/output")" "$(sort "$HOME/errors")"
    cat "$documents/KV.txt" 2>/dev/null && echo '!'
}

unset XDG_RUNTIME_DIR  # Qt's warning about it must not be seen.
expect 0 '[2||kv-select: unknown model "kv260"; see --help|old!' run kv260
expect 0 '[2||kv-select: "10.0.0.256" is not an IPv4 address; see --help|old!' run KV260 10.0.0.256
expect 0 '[2||kv-select: too many arguments; see --help|old!' run --list KV260
add_host 2 $'LP\e[1m'
not_found='found; switch it on and connect it to this network, or use kv-select MODEL ADDRESS|'
expect 1 "[3||kv-select: no KV printer $not_found" run
expect 1 "[3||kv-select: no KV410 $not_found" run KV410
expect 0 "[3||kv-select: no KV printer ${not_found}old!" run --list
add_host 3 'TVK KV260N'
expect 0 '[0|KV260 10.0.0.3||KV260 10.0.0.3!' run
for number in 4 5; do add_host $number KV460; done
expect 0 $'[0|KV260 10.0.0.3\nKV460 10.0.0.4\nKV460 10.0.0.5||old!' run --list
expect 0 '[0|KV260 10.0.0.3||KV260 10.0.0.3!' run KV260
expect 1 $'[3||KV460 10.0.0.4\nKV460 10.0.0.5\nkv-select: more than one printer responded; use' run KV460
expect 1 '[1||kv-select: Selected Printer model is KV260|' run KV410 010.0.0.03
SUDO_USER=alice expect 0 "[0|KV410 192.168.1.40|kv-select: warning: under sudo, $documents/KV.txt will belong to root; to \
hand over as alice, run kv-select without sudo|KV410 192.168.1.40!" run KV410 192.168.1.40
expect 0 'shouldExitPane  :: Return' tail -n 1 "$documents/QzInstall.log"
expect 0 '' ls "$documents/QzInstall-2023-11-04-080500-9.log"  # The search has run nine times.
expect 1 "can't write to standard output" eval '"$program" KV260 >/dev/full'
expect 2 'No such file' ls "$documents/KV.txt"

# Replies can't send control characters to the terminal.
expect 0 'Searching for printers ...' script -qec "$program --list" "$HOME/typescript"
expect 0 $'PrinterInfo.szModel LP\\x1b[1m' cat "$HOME/typescript"

# A queue exists: refused for root, who gets a link to its PPD, and for an ordinary user, who gets a copy.
ppd=$HOME/cups/etc/ppd/Tovik-KV260-Ethernet-Printer-IP=10.0.0.3.ppd
mkdir -p "${ppd%/*}"
sed 's/@MODEL@/KV260/' "$tools/kv-series.ppd.in" >"$ppd"
refused='[1||kv-select: A Printer with this IP Address is already Installed, Please choose another Ethernet Printer|'
program=("$tools/private-cupsd" "$HOME/cups" "$1")
expect 1 "$refused" run KV260
expect 0 "PPD name is $ppd" grep 'PPD name' "$documents/QzInstall.log"
program=("$tools/private-cupsd" "$HOME/cups" "$tools/as-user" "$1")
expect 1 "$refused" run KV260
expect 0 "PPD name is $HOME/cups/tmp/quazel-installer-" grep 'PPD name' "$documents/QzInstall.log"
expect 0 '' rmdir "$HOME/cups/tmp"  # Nothing is left in it.
expect 0 "kv-select: wrote $documents/KV.txt" script -qec "$1 KV260" /dev/null

# The steps of the installation. Their failure has a status of its own, and KV.txt stays.
program=("$tools/private-cupsd" "$HOME/cups" "$1" --install)
expect 0 '[4|KV410 10.9.9.9|No driver for the Tovik KV410 is installed. Install the package with its driver, then try again.
kv-select: not set up: No driver for the Tovik KV410' run KV410 10.9.9.9
sed 's/@MODEL@/KV410/' "$tools/kv-series.ppd.in" >"$HOME/cups/share/model/KV410.ppd"
expect 0 '[0|KV410 10.9.9.9|The print queue is Tovik-KV410-Ethernet-Printer-IP=10.9.9.9.|KV410 10.9.9.9!' run KV410 10.9.9.9
expect 1 "$refused" run KV260
expect 2 "no steps in $HOME/steps" "$1" --install --steps "$HOME/steps"

# A pipe in place of KV.txt blocks the program where it writes the file, and the signal removes the pipe. A second run
# changes nothing. After SIGKILL, the next run ignores the lock.
mkdir "$HOME/tmp"
export TMPDIR=$HOME/tmp
for signal in KILL INT TERM HUP; do
    rm -f "$documents"/{KV.txt,QzInstall*.log}
    env --default-signal "$1" KV260 192.168.1.40 &
    until grep -qs 'Before Get' "$documents/QzInstall.log"; do sleep 0.02; done
    mkfifo "$documents/KV.txt"
    until grep -q 'writeToTextFile KV' "$documents/QzInstall.log"; do sleep 0.02; done
    expect 1 "kv-select (process $! on $HOSTNAME) is already running; close it first" "$1" --list
    kill -$signal $!
    status=0
    wait $! || status=$?
    expect 0 "$signal" kill -l $status
    if [[ $signal == KILL ]]; then
        rm -r "$TMPDIR"/*
    else
        diff <(cd "$HOME" && find Documents tmp) - <<<$'Documents\nDocuments/QzInstall.log\ntmp'
    fi
done
# A signal ends the running step, then the program.
mkdir "$HOME/steps"
install /dev/stdin "$HOME/steps/1" <<<$'#!/bin/sh\necho $$ >$0.group\nsleep 99 & sleep 99'
env --default-signal "$1" --install --steps "$HOME/steps" KV260 192.168.1.40 &
until [[ -s $HOME/steps/1.group ]]; do sleep 0.02; done
kill -INT $!
status=0
wait $! || status=$?
expect 0 INT kill -l $status
expect 1 'No such process' kill -0 -- "-$(cat "$HOME/steps/1.group")"
diff <(cd "$HOME" && find tmp Documents -name '*.lock' -o -name KV.txt -o -path 'tmp*') - <<<$'tmp\nDocuments/KV.txt'
# During the search, this run has not written the file.
rm "$documents/QzInstall.log"
"$1" KV260 &
until grep -qs 'Before Get' "$documents/QzInstall.log"; do sleep 0.02; done
printf old >"$documents/KV.txt"
kill $!
wait $! || true
expect 0 old cat "$documents/KV.txt"
rm "$documents/QzInstall.log"
QT_QPA_PLATFORM=offscreen "$2" 2>/dev/null &
until grep -qs Initializing "$documents/QzInstall.log"; do sleep 0.02; done
expect 1 "quazel-installer (process $! on $HOSTNAME) is already running" "$1" --list
kill $!
wait $!
printf old >"$documents/KV.txt"
mount --bind "$documents/KV.txt" "$documents/KV.txt"
expect 1 "KV.txt can't be removed" "$1" KV260
umount "$documents/KV.txt"
HOME=$HOME/output expect 1 "/output/Documents can't be written to" "$1" KV260

# Without HOME, the passwd entry counts. A name service may know root without an entry.
echo 'passwd: files' >"$HOME/nsswitch"
echo "root:x:0:0::$HOME/output:/bin/sh" >"$HOME/passwd"
mount --bind "$HOME/nsswitch" /etc/nsswitch.conf
mount --bind "$HOME/passwd" /etc/passwd
expect 1 "$HOME/output/Documents can't be written to" env -u HOME "$1"
: >"$HOME/passwd"
expect 1 'no home folder: HOME is not set, and user 0 has no passwd entry' env -u HOME "$1"
