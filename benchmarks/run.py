#!/usr/bin/env python3
"""Measures the build of the preset "bench" and prints one table; run it by ./bench.

Every value except the stall is the median of ratios between two operations measured in the same run. Needs a private
network and desktop (tools/private-network, tools/desktop).
"""

import argparse
import contextlib
import json
import os
import pathlib
import socket
import statistics
import subprocess
import sys
import tempfile
from typing import NamedTuple

TOP = pathlib.Path(__file__).resolve().parent.parent
BIN = TOP / "build/release/bin"
DEVICE_ID = "MFG:Tovik;CMD:KVL;MDL:TVK KV410;CLS:PRINTER;DES:Tovik KV410;SERN:%d;"
COUNTS = (1, 16, 64, 255)  # With 256 the table is full, and collection ends without the quiet second.


class Row(NamedTuple):
    what: str
    against: str
    values: list  # one per repetition
    target: float

    def median(self):
        return statistics.median(self.values)

    def is_missed(self, short):
        """A short run is noisier, so its limit exceeds the target by the target's distance from 1."""
        return self.median() > self.target + (abs(self.target - 1) if short else 0)

    def __str__(self):
        met = "yes" if self.median() <= self.target else "NO"
        return (f"| {self.what:36} | {self.against:22} | {self.median():6.3f} | {min(self.values):6.3f} .."
                f" {max(self.values):6.3f} | {self.target:6g} | {met:3} |")


def environment(folder, **more):
    (folder / "Documents").mkdir(exist_ok=True)
    kept = {name: value for name, value in os.environ.items() if not name.startswith("XDG_") or "RUNTIME" in name}
    return {**kept, "HOME": str(folder), "LC_ALL": "C.UTF-8", **more}


def run(command, env):
    """Returns standard output; raises RuntimeError with standard error on failure."""
    done = subprocess.run(command, env=env, capture_output=True, text=True, timeout=300, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"{command[0]} ended with {done.returncode}:\n{done.stderr}")
    return done.stdout


@contextlib.contextmanager
def background(command, env, ready):
    """Runs a program in the background once it has printed a line that starts with `ready`."""
    process = subprocess.Popen(command, env=env, stdout=subprocess.PIPE, text=True)
    try:
        if not any(line.startswith(ready) for line in process.stdout):
            raise RuntimeError(f"{command[0]} did not start")
        yield
    finally:
        process.terminate()
        process.wait(timeout=10)


def virtual_printers(folder, count):
    listing = folder / "printers"
    listing.write_text("".join(f"127.0.{2 + number // 200}.{1 + number % 200} answers {DEVICE_ID % number}\n"
                               for number in range(count)))
    return background([TOP / "tools/virtual-printers", listing], None, "ready")


def google_benchmark(folder, name, repetitions, wrapper=(), **more):
    """Returns a pair of entries, product and bare, per repetition; they run in random order."""
    out = folder / "benchmark.json"
    run([*wrapper, BIN / "bench-functions", f"--benchmark_filter=^{name}/", f"--benchmark_repetitions={repetitions}",
         "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.02", f"--benchmark_out={out}"],
        environment(folder, **more))
    sides = {"product": {}, "bare": {}}
    for entry in json.loads(out.read_text())["benchmarks"]:
        if entry.get("error_occurred"):
            raise RuntimeError(f"{entry['name']}: {entry['error_message']}")
        if entry["run_type"] == "iteration":
            sides[entry["run_name"].split("/")[1]][entry["repetition_index"]] = entry
    return [(sides["product"][index], sides["bare"][index]) for index in sorted(sides["bare"])]


def ratios(pairs, key="real_time"):
    return [product[key] / bare[key] for product, bare in pairs]


def measure_discovery(folder, short):
    pairs = {}
    for count in COUNTS:
        with virtual_printers(folder, count):
            pairs[count] = google_benchmark(folder, "discovery", 5 if short else 15, BENCH_PRINTERS=str(count))

    def growth(side, without):
        """Uses the fastest rounds, as load can only slow a round down."""
        least = {count: min(pair[side]["beyond_the_waits"] for turn, pair in enumerate(pairs[count]) if turn != without)
                 for count in COUNTS}
        return (least[255] - least[64]) / (255 - 64) / ((least[64] - least[16]) / (64 - 16))

    # Leave out each round once (jackknife). If the bare loop's cost grows too, the cause is load.
    flatness = [growth(0, without) / max(1, growth(1, without)) for without in range(len(pairs[1]))]
    return [*(Row(f"discovery, {count} printer(s)", "bare C loop", ratios(pairs[count]), 1.02) for count in COUNTS),
            Row("cost per printer, 64 to 255", "16 to 64", flatness, 1.1)]


def measure_peer(folder, short):
    """Runs net-snmp's agent as a printer that CUPS also recognises, with an open raw print port."""
    (folder / "snmp.conf").write_text("Address 127.0.0.1\nCommunity public\n")
    (folder / "snmpd.conf").write_text(
        "agentaddress udp:0.0.0.0:161\nrocommunity public\n"
        "override 1.3.6.1.2.1.25.3.2.1.2.1 object_id 1.3.6.1.2.1.25.3.1.5\n"
        'override 1.3.6.1.2.1.25.3.2.1.3.1 octet_str "Tovik KV410"\n'
        "override 1.3.6.1.2.1.43.5.1.1.1.1 integer 1\n"
        f'override 1.3.6.1.4.1.2699.1.2.1.2.1.1.3.1 octet_str "{DEVICE_ID % 1}"\n')
    env = environment(folder, CUPS_SERVERROOT=str(folder), MIBS="", SNMP_PERSISTENT_DIR=str(folder / "agent"),
                      PATH="/usr/sbin:" + os.environ["PATH"])
    agent = ["snmpd", "-f", "-Lo", "-C", "-c", folder / "snmpd.conf"]
    # Without the printer, grep fails, and so does hyperfine.
    commands = [f"{BIN}/kv-select --list | grep 'KV410 127.0.0.1'",
                "/usr/lib/cups/backend/snmp | grep socket://127.0.0.1"]
    out = folder / "hyperfine.json"
    with background(agent, env, "NET-SNMP version"), socket.create_server(("127.0.0.1", 9100)):
        run(["hyperfine", "--runs", "2" if short else "5", "--export-json", out, *commands], env)
    ours, theirs = (result["times"] for result in json.loads(out.read_text())["results"])
    return [Row("one printer, the whole program", "CUPS's SNMP backend", [a / b for a, b in zip(ours, theirs)], 0.5)]


def measure_records(folder, short):
    pairs = google_benchmark(folder, "record", 21 if short else 61)
    return [Row("one log record", "open, write, close", ratios(pairs), 1.15)]


def measure_queues(folder, short):
    ppd = (TOP / "tools/kv-series.ppd.in").read_text().replace("@MODEL@", "KV410")
    rows = []
    for count, repetitions in ((10, 41), (100, 41), (1000, 15)):
        scheduler = folder / f"cups{count}"
        queues = scheduler / "etc/ppd"
        queues.mkdir(parents=True)
        for number in range(count):
            (queues / f"office-{number:04}.ppd").write_text(ppd)
        pairs = google_benchmark(folder, "check", repetitions // 2 if short and count == 1000 else 2 * repetitions,
                                 [TOP / "tools/private-cupsd", scheduler])
        rows.append(Row(f"installed-printer check, {count} queues", "libcups and log calls", ratios(pairs), 1.05))
    return rows


def measure_stall(folder, short):
    with virtual_printers(folder, 256):
        results = [run([BIN / "bench-stall"], environment(folder)).split()[-2:] for _ in range(3 if short else 7)]
    if any(printers != "256" for printers, _ in results):
        raise RuntimeError(f"bench-stall did not find 256 printers: {results}")
    return [Row("longest stall in ms, 256 printers", "one frame", [float(stall) for _, stall in results], 16)]


GROUPS = {"discovery": measure_discovery, "peer": measure_peer, "records": measure_records, "queues": measure_queues,
          "stall": measure_stall}


def measured(name, short):
    print(f"Measuring: {name} ...", file=sys.stderr, flush=True)
    with tempfile.TemporaryDirectory(prefix="bench.") as folder:
        return GROUPS[name](pathlib.Path(folder), short)


def main():
    parser = argparse.ArgumentParser(prog="bench", description="Measures the installer's costs. Exit status: 1 if "
                                                               "a target is missed twice in a row.")
    parser.add_argument("--short", action="store_true",
                        help="fewer repetitions and wider limits")
    parser.add_argument("--only", choices=GROUPS, action="append", help="measure only this group (may be repeated)")
    arguments = parser.parse_args()

    rows = []
    for name in arguments.only or GROUPS:
        group = measured(name, arguments.short)
        if any(row.is_missed(arguments.short) for row in group):
            group = measured(name, arguments.short)
        rows += group
    print(f"| {'operation':36} | {'compared with':22} | median | {'spread':16} | target | met |")
    print(f"|-{'-' * 36}-|-{'-' * 22}-|--------|-{'-' * 16}-|--------|-----|", *rows, sep="\n")
    missed = [row.what for row in rows if row.is_missed(arguments.short)]
    if missed:
        sys.exit(f"Missed twice: {', '.join(missed)}")


if __name__ == "__main__":
    main()
