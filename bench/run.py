"""Runs the benchmarks and prints one table of ratios: what the library takes beside its peer.

A row's ratio is the median of the ratios of the repetitions; the quartiles follow it. The two sides
are repeated in turn, except different sizes, which have a process each. Where one thread does all
the work, its processor time counts, otherwise the elapsed time.
"""

import argparse
import dataclasses
import datetime
import json
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
BENCH = BUILD / "bench/lanvoss_bench"
MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else tempfile.gettempdir()
DISK = tempfile.gettempdir()
PROGRAM_RUNS = 21
FAULT_CASES = 1_000
# The far end of a virtual cable, in namespaces that are gone with their last process.
CABLE = """mount -t tmpfs none /run
ip link set lo up
ip netns add far
ip link add near type veth peer name end netns far
ip address add 192.0.2.1/24 dev near
ip link set near up
ip -n far address add 192.0.2.2/24 dev end
ip -n far link set end up
exec "$@"
"""
WITH_CABLE = ["unshare", "--mount", "--net", "sh", "-ec", CABLE, "cable"]


@dataclasses.dataclass
class Row:
    path: str
    ours: str
    beside: str
    peer: str  # what `beside` is, in words
    aim: float | None  # the greatest ratio; None: nothing is judged
    limit: str = ""
    cpu: bool = False
    place: str = MEMORY  # where the files are
    per: float = 1  # this number of the peer is one of ours
    most_more: float | None = None  # nanoseconds that ours may take longer
    big: bool = False  # takes seconds, so it is repeated less
    namespaces: bool = False


def size_rows(path, ours, beside, peer, aim, limits=("", "", ""), cpu=True, **more):
    sizes = (100, "100"), (10_000, "10 000"), (1_000_000, "1 000 000")
    return [
        Row(path.format(text), f"{ours}/{size}", f"{beside}/{size}", peer, aim, limit, cpu=cpu,
            **more)
        for (size, text), limit in zip(sizes, limits)
    ]


def scaling_row(path, ours, limit, aim=1.5):
    return Row(path, f"{ours}/1000000", f"{ours}/10000", "100 × 10 000 lines", aim, limit,
               cpu=True, per=100)


LINES_COST = "the maps, and a line of the log for each"
MAPS_COST = "two ordered maps and their texts on the heap, on both sides: see by hand"
PARSE_COST = "a fifth for `memchr`, a fifth for the heap, a third for the stamps: 17 digits, checked"
READING_COST = "a file that the caches cannot hold, and first touch of the memory for it"
NAMES_COST = "names come in random order: every level of the tree is a miss in the caches"
DIGITS_COST = "20 to 30 ns for the digits of each line"
FORM_COST = f"the records' own texts, and {DIGITS_COST}"
CONTENTION_COST = "the same locks, see above, and the events' share of them"
SYSCALLS = "five more system calls: the time to live before each request, and the send time-out"

ROWS = [
    Row("`GetDeviceIp`, device found by the watcher", "found/library", "found/by_hand",
        "the platform's calls by hand", 1.5, "wake-ups of the platform's two threads",
        most_more=100_000),
    Row("`GetDeviceIp`, direct by id", "direct/library", "direct/by_hand",
        "the platform's calls by hand", 1.5, "seven lines of the log: see the next line",
        most_more=100_000),
    Row("`GetDeviceIp`, direct by id", "direct/library", "direct/by_hand_with_log",
        "the same calls, and the same lines of the log", 1.5),
    Row("from the completed open request to the return", "return/library", "return/wake_up",
        "one event wake-up", 1.2, "the platform's calls for the addresses, and its own threads on the"
        " same cores: see the next line"),
    Row("from the completed open request to the return", "return/library", "return/by_hand",
        "the platform's calls by hand", 1.2, "the same calls, and then the wake-up"),
    Row("`WriteLog` with a callback", "log/library", "log/printf", "one `printf` of the bytes", 1.1,
        cpu=True),
    Row("`WriteLog` with a callback", "log/library", "log/spdlog", "spdlog's file sink", 1.0,
        cpu=True),
    *size_rows("load of {} lines, log to nowhere", "load/object", "load/sqlite_table",
               "SQLite into the same table", 0.2, (LINES_COST,) * 3),
    *size_rows("load of {} lines, no log", "load/table", "load/sqlite_table",
               "SQLite into the same table", 0.2, (MAPS_COST,) * 3),
    *size_rows("load of {} lines, no log", "load/table", "load/by_hand",
               "`memchr` and the same maps by hand", None),
    *size_rows("parsing of {} lines", "load/parse", "load/sqlite_rows", "SQLite's rows", 0.2,
               (PARSE_COST,) * 3),
    *size_rows("parsing of {} lines", "load/parse", "load/split", "reading and `memchr`", 3.0,
               ("", PARSE_COST, PARSE_COST)),
    scaling_row("parsing grows with the lines", "load/parse", READING_COST),
    scaling_row("reading and `memchr` grow with the lines", "load/split", READING_COST, aim=None),
    scaling_row("loading grows with the lines", "load/table", NAMES_COST),
    scaling_row("loading by hand grows with the lines", "load/by_hand", NAMES_COST, aim=None),
    *size_rows("cache write of {} lines, on disk", "write/library", "write/bare", "one `fwrite`",
               1.5, ("", FORM_COST, FORM_COST), cpu=False, place=DISK),
    *size_rows("cache write of {} lines, in memory", "write/library", "write/bare", "one `fwrite`",
               1.5, ("", FORM_COST, FORM_COST)),
    *size_rows("cache write of {} lines, in memory", "write/library", "write/copied",
               "the texts copied, and one `fwrite`", None, (DIGITS_COST,) * 3),
    Row("1 000 new devices in one pass, on disk", "burst/library", "burst/bare",
        "the same 1 000 writes bare", 2.0, place=DISK, big=True),
    Row("1 000 new devices in one pass, in memory", "burst/library", "burst/bare",
        "the same 1 000 writes bare", 2.0,
        f"{FORM_COST}; the simulated radio's reports"),
    Row("id of a name among 1 000 000", "look_up/name/library", "look_up/name/find",
        "`std::map::find`", 1.1, "the same find in the same map: misses in the caches",
        cpu=True),
    Row("name of an id among 1 000 000", "look_up/id/library", "look_up/id/find",
        "`std::map::find`", 1.1, "the copy that the caller needs, from a record not in the cache",
        cpu=True),
    *[
        Row(f"{what} {where}", f"ping/{place}/{ours}", f"ping/{place}/{beside}", peer, aim, limit,
            namespaces=True)
        for place, where in (("loopback", "on the loopback"), ("cable", "across a virtual cable"))
        for what, ours, beside, peer, aim, limit in (
            ("`PingHost`", "library", "bare", "`sendto` and `recvfrom` alone", 1.1, SYSCALLS),
            ("`PingHost`", "library", "liboping", "liboping", 1.0, ""),
            ("probe program", "program", "fping", "fping, with its pauses", 1.0, ""),
            ("probe program", "program", "fping_once", "fping, one request for four", None,
             "starting a program"),
        )
    ],
    Row("a switch on virtual time, and back", "switch/virtual_time", "switch/hand_over",
        "a condition variable's hand-over", 2.0),
    *[
        Row(f"{what} of three threads against events", f"contention/{name}/threads:3",
            f"contention/{name}/threads:1", "of one thread", None, why)
        for what, name, why in (
            ("a loop that shares nothing,", "nothing",
             f"{os.cpu_count()} cores for all these threads"),
            ("three locks of a mutex,", "locks", "nearly all of the time it is held"))
    ],
    *[
        Row(f"`{operation}` of three threads against events", f"contention/{operation}/threads:3",
            f"contention/{operation}/threads:1", "of one thread", 3.0, CONTENTION_COST)
        for operation in ("AbortConnect", "DisConnect", "Unpair", "PingCheck", "StartWatch")
    ],
]


def own_name(entry):
    """The name under which a benchmark was registered."""
    return re.sub("/(real|manual)_time", "", entry["run_name"])


@dataclasses.dataclass(frozen=True)
class Group:
    """What is run in one process. Each subject, and each number of lines, has its own: everything
    takes longer in the heap that a million records have left, and beside their log."""
    place: str
    namespaces: bool
    big: bool
    subject: str
    lines: str


def group_of(row, name):
    lines = re.search(r"(/\d+)?$", name).group()
    return Group(row.place, row.namespaces, lines == "/1000000" or row.big and not lines,
                 name.split("/")[0], lines)


def run_group(group, names, quick):
    """Runs some benchmarks, and returns what was measured in every repetition."""
    names = {re.sub("/threads:.*", "", name) for name in names}
    # Who gets a lock that is wanted all the time can stay the same for milliseconds.
    seconds = 0.2 if group.subject == "contention" else 0.02
    command = [BENCH, f"--benchmark_filter=^({'|'.join(sorted(names))})(/(real|manual)_time.*)?$",
               f"--benchmark_min_time={0.001 if quick else seconds}",
               f"--benchmark_repetitions={1 if quick else 5 if group.big else 21}",
               "--benchmark_enable_random_interleaving=true"]
    if group.namespaces:
        command = [*WITH_CABLE, *command]
    with tempfile.TemporaryDirectory(dir=group.place) as scratch:
        out = pathlib.Path(scratch) / "json"
        log_path = os.devnull if group.subject == "load" else pathlib.Path(scratch) / "log"
        with open(log_path, "wb") as log:
            subprocess.run([*command, f"--benchmark_out={out}"], stdout=log, check=True,
                           stderr=subprocess.PIPE, env={**os.environ, "TMPDIR": scratch})
        return json.loads(out.read_text())["benchmarks"]


def why_no_cable():
    """Why the probe cannot be measured here; an empty text when it can."""
    if os.geteuid() != 0:
        return "needs root"
    trial = subprocess.run([*WITH_CABLE, "true"], stderr=subprocess.PIPE, text=True)
    return trial.stderr.strip() if trial.returncode else ""


def run_benchmarks(rows, quick):
    groups = {}
    for row in rows:
        for name in (row.ours, row.beside):
            groups.setdefault(group_of(row, name), set()).add(name)
    return {group: run_group(group, names, quick) for group, names in groups.items()}


def values_of(row, name, entries):
    """What the row counts of each repetition of a benchmark."""
    key = "cpu_time" if row.cpu else "real_time"
    runs = [entry for entry in entries
            if own_name(entry) == name and entry["run_type"] == "iteration"]
    for entry in runs:
        if entry.get("error_occurred"):
            sys.exit(f"{name}: {entry['error_message']}")
    return [entry[key] * entry["threads"] for entry in runs]


def time_text(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def size_text(size):
    for unit, factor in (("MiB", 1 << 20), ("KiB", 1 << 10)):
        if size >= factor:
            return f"{size / factor:.3g} {unit}"
    return f"{size:.0f} B"


def print_row(path, ours, beside, peer, aim, limit, text, most_more=None):
    """One line of the table, from the values of both sides."""
    spread = sorted(a / b for a, b in zip(ours, beside))
    ratio = statistics.median(spread)
    quarter = len(spread) // 4
    more = statistics.median(ours) - statistics.median(beside)
    met = aim is None or (ratio <= aim and (most_more is None or more < most_more))
    print(f"| {path} | {text(statistics.median(ours))} | {text(statistics.median(beside))}: {peer} "
          f"| {ratio:.2f} ({spread[quarter]:.2f} to {spread[-1 - quarter]:.2f}) "
          f"| {'' if aim is None else f'{aim:g}'}{'' if most_more is None else ', 100 µs more'} "
          f"| {'' if aim is None else 'yes' if met else 'no'} | {limit} |", flush=True)


def print_benchmarks(rows, measured, no_cable):
    for row in rows:
        if row.namespaces and no_cable:
            print(f"| {row.path} | | {row.peer} | skipped: {no_cable} | | | |")
            continue
        ours, beside = (values_of(row, name, measured[group_of(row, name)])
                        for name in (row.ours, row.beside))
        print_row(row.path, ours, [value * row.per for value in beside], row.peer, row.aim,
                  row.limit, time_text, row.most_more)


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=True,
                          text=True).stdout


def stripped_size(library):
    with tempfile.NamedTemporaryFile() as copy:
        strip = "x86_64-w64-mingw32-strip" if library.suffix == ".dll" else "strip"
        subprocess.run([strip, "-o", copy.name, library], check=True)
        return os.path.getsize(copy.name)


def print_programs(quick, raw):
    """What is measured as whole processes."""
    library, empty = BUILD / "src/liblanvoss.so", BUILD / "bench/liblanvoss_bench_empty.so"
    loads = [[int(output_of(BUILD / "bench/lanvoss_bench_load", each)) for each in (library, empty)]
             for _ in range(3 if quick else PROGRAM_RUNS)]
    raw.append({"name": "load_and_unload", "library_and_empty_ns": loads})
    print_row("loading and unloading the library", *map(list, zip(*loads)), "an empty C++ library",
              None, "relocations", time_text)
    sizes = stripped_size(library), stripped_size(empty)
    print_row("size of the stripped library", [sizes[0]], [sizes[1]], "an empty C++ library", None,
              "with the simulated radio", size_text)
    dll = ROOT / "build/windows/src/lanvoss.dll"
    if dll.exists():
        print_row("size of the stripped DLL", [stripped_size(dll)], [sizes[1]],
                  "an empty C++ library", None, "", size_text)
    else:
        print("| size of the stripped DLL | not built: `scripts/package-windows` does | | | | | |")
    for measure, path, peer, aim, limit in (
            ("records", "memory of 1 000 000 records", "their texts", 3.0,
             "320 bytes a record: map nodes of 160 and 80, and 80 for the texts of id and address"),
            ("idle", "resident size of an idle object", "what it may be", 1.0, ""),
            ("rewrites", "resident size after 10 000 rewrites", "after 100", 1.05, "")):
        text = output_of(BUILD / "bench/lanvoss_bench_memory", measure).splitlines()[-1]
        ours, beside = map(int, text.split())
        raw.append({"name": f"memory_{measure}", "bytes": [ours, beside]})
        print_row(path, [ours], [beside], peer, aim, limit, size_text)
    cases = 100 if quick else FAULT_CASES
    begun = time.monotonic()
    text = output_of(BUILD / "fault_search/lanvoss_fault_search", "--seeds", str(cases))
    hours = int(re.search(r"(\d+) virtual hours", text).group(1))
    speed = hours / (time.monotonic() - begun) * 3600
    raw.append({"name": "fault_search", "virtual_hours_an_hour": speed})
    print(f"| virtual hours an hour in the fault search | {speed:.0f} | | | | | |")


def machine_text():
    model = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    load = ", ".join(f"{value:.1f}" for value in os.getloadavg())
    return (f"{model.group(1) if model else platform.machine()}, {os.cpu_count()} cores, "
            f"{datetime.date.today()}, load {load} at the start")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--json", help="keep what was measured in this file")
    parser.add_argument("--quick", action="store_true", help="run each case once, to see it run")
    parser.add_argument("--filter", default="", help="only rows of such benchmarks, say log/")
    options = parser.parse_args()
    rows = [row for row in ROWS if re.search(options.filter, row.ours)]
    no_cable = why_no_cable()
    print(machine_text() + "\n")
    print("| Path | Ours | Beside | Ratio (quartiles) | Aim | Met | Limit |")
    print("|---|---|---|---|---|---|---|")
    measured = run_benchmarks([row for row in rows if not (row.namespaces and no_cable)],
                              options.quick)
    raw = [entry for entries in measured.values() for entry in entries]
    print_benchmarks(rows, measured, no_cable)
    if not options.filter:
        print_programs(options.quick, raw)
    if options.json:
        pathlib.Path(options.json).write_text(json.dumps(raw, indent=1))


main()
