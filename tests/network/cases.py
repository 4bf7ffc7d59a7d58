"""The ICMP probe against the loopback and against peers at the far end of a virtual cable.

usage: cases.py PROBE [WHY-THERE-ARE-NO-NAMESPACES]
"""

import collections
import concurrent.futures
import itertools
import re
import struct
import subprocess
import sys
import time

import forger

TRIES = 4
TIMEOUT_S = 3
SLACK_S = 1.5  # that a busy machine may take longer
LIFETIME_S = 30  # at most, of what runs beside a probe

# What the probe prints, in GBK.
NO_SUCH_HOST = bytes.fromhex("CAE4C8EBB5C4 4950 B5D8D6B7BBF2D3F2C3FBCEDED0A7 0A")
TIMED_OUT = bytes.fromhex("C7EBC7F3B3ACCAB1A1A3 0A")

# An empty label is refused before any name server is asked.
UNRESOLVABLE = "no..such..host"
HERE, THERE = "192.0.2.1", "192.0.2.2"
EVERY_REQUEST = "icmp type echo-request"

# Lengths in a capture, in bytes, and a place in the IPv4 header.
PCAP_HEADER, RECORD_HEADER, ETHERNET_HEADER, IPV4_HEADER = 24, 16, 14, 20
TIME_TO_LIVE_AT = 8

probe_program, *no_namespaces = sys.argv[1:]
tally = collections.Counter()


def report(verdict, text):
    tally[verdict] += 1
    sys.stdout.write(f"{verdict:7} {text}\n")
    sys.stdout.flush()


def check(name, good, detail):
    report("ok" if good else "FAILED", f"{name}: {detail}")


def probe(name, host, replies, within=(), tries=TRIES, complaint=b"", delay_s=0):
    """Probes a host and checks the count, the output and how long it took: the tries in vain wait
    for the whole time-out, and each try `delay_s` more. Returns the probe's process id."""
    due_s = (tries - replies) * TIMEOUT_S + tries * delay_s
    due_text = complaint + (tries - replies) * TIMED_OUT
    begun = time.monotonic()
    output = subprocess.run([*within, probe_program, host], stdout=subprocess.PIPE).stdout
    took_s = time.monotonic() - begun
    text, process, seen = re.fullmatch(rb"(.*)process (\d+) replies (\d)\n", output, re.S).groups()
    if (int(seen), text) == (replies, due_text) and due_s <= took_s < due_s + SLACK_S:
        check(name, True, f"{replies} ({took_s:.1f} s)")
    else:
        check(name, False, f"{output!r} after {took_s:.1f} s instead of {replies} after {due_s} s")
    return int(process)


serial = itertools.count(1)


def command(*words):
    subprocess.run(words, check=True)


def cable(dropped=None):
    """Two namespaces, the probe's and the peer's, as prefixes of the commands to run there. The
    peer's system answers every echo request but those that the filter drops."""
    number = next(serial)
    ends = f"probe{number}", f"peer{number}"
    for end in ends:
        command("ip", "netns", "add", end)
    command(*"ip link add cable type veth peer cable netns".split(), ends[1], "netns", ends[0])
    for end, address in zip(ends, (HERE, THERE)):
        command("ip", "-netns", end, "address", "add", f"{address}/24", "dev", "cable")
        command("ip", "-netns", end, "link", "set", "cable", "up")
    here, there = (["ip", "netns", "exec", end] for end in ends)
    if dropped:
        rules = f"type filter hook input priority filter; {dropped} drop;"
        command(*there, "nft", f"table ip peer {{ chain input {{ {rules} }}; }}")
    return here, there


def filtered(name, dropped, replies):
    here, _ = cable(dropped)
    probe(name, THERE, replies, here)


def started(within, words):
    """A program that runs beside a probe and has said on standard error that it is ready."""
    running = subprocess.Popen(
        [*within, "timeout", str(LIFETIME_S), *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE
    )
    running.stderr.readline()
    return running


def forged(name, kinds, replies, delay_s=forger.DELAY_S):
    """A peer that answers with these kinds of datagram only, one after the other. The forger's
    delay adds to the time of each try: a fresh wait shows that the forgery did reach the probe."""
    here, there = cable(EVERY_REQUEST)
    with started(there, ["python3", "-B", forger.__file__, *kinds]):
        probe(name, THERE, replies, here, delay_s=delay_s)


def requests_due(process):
    for sequence in range(TRIES):
        numbers = bytes([process & 0xFF, process >> 8 & 0xFF, 0, sequence])
        yield forger.icmp(8, numbers + 32 * b"\x45")


def datagrams(capture):
    at = PCAP_HEADER
    while at < len(capture):
        (length,) = struct.unpack_from("=I", capture, at + 8)
        at += RECORD_HEADER + length
        yield capture[at - length + ETHERNET_HEADER : at]


def read_by_tcpdump(capture):
    """How many echo requests it sees, and how many wrong checksums."""
    read = subprocess.run("tcpdump -nvvv -r -".split(), input=capture, capture_output=True)
    return read.stdout.count(b"ICMP echo request"), read.stdout.count(b"wrong icmp cksum")


def captured(name):
    """The requests as they arrive. That the peer is silent gives them time to be written."""
    here, there = cable(EVERY_REQUEST)
    with started(there, "tcpdump -i cable --immediate-mode -Uw - icmp".split()) as running:
        process = probe(name, THERE, 0, here)
        running.terminate()
        capture = running.stdout.read()
    sent = list(datagrams(capture))
    as_due = [each[IPV4_HEADER:] for each in sent] == list(requests_due(process))
    check("requests as due, byte for byte", as_due, len(sent))
    hops = [each[TIME_TO_LIVE_AT] for each in sent]
    check("their time to live", hops == TRIES * [64], hops)
    requests, wrong = read_by_tcpdump(capture)
    check("their checksums, read by tcpdump", (requests, wrong) == (TRIES, 0), f"{wrong} wrong")
    _, wrong = read_by_tcpdump(capture[:-1] + bytes([capture[-1] ^ 1]))
    check("the same with one bit turned over", wrong == 1, f"{wrong} wrong")


ON_THE_LOOPBACK = [
    ("loopback address", lambda name: probe(name, "127.0.0.1", 4)),
    ("host name", lambda name: probe(name, "localhost", 4)),
    ("no such host", lambda name: probe(name, UNRESOLVABLE, 0, tries=0, complaint=NO_SUCH_HOST)),
]
OVER_A_CABLE = [
    ("peer answers all", lambda name: filtered(name, None, 4)),
    ("peer answers all but 0", lambda name: filtered(name, "icmp sequence 0", 3)),
    ("peer answers 0 and 2", lambda name: filtered(name, "icmp sequence { 1, 3 }", 2)),
    ("peer answers 3", lambda name: filtered(name, "icmp sequence < 3", 1)),
    ("peer answers none", captured),
    *((kind, lambda name: forged(name, [name], 0)) for kind in forger.REFUSED),
    ("cut reply", lambda name: forged(name, [name], 0, delay_s=0)),
    ("true reply after all of these", lambda name: forged(name, [*forger.REFUSED, "true reply"], 4)),
]


def run(name, case):
    try:
        case(name)
    except Exception as error:
        check(name, False, repr(error))


def main():
    cases = ON_THE_LOOPBACK + OVER_A_CABLE
    if no_namespaces:
        cases = ON_THE_LOOPBACK
        for name, _ in OVER_A_CABLE:
            report("skipped", f"{name}: {no_namespaces[0]}")
    with concurrent.futures.ThreadPoolExecutor(len(cases)) as side_by_side:
        for name, case in cases:
            side_by_side.submit(run, name, case)
    print(f"{tally['ok']} passed, {tally['FAILED']} failed, {tally['skipped']} skipped")
    sys.exit(tally["FAILED"] > 0)


main()
