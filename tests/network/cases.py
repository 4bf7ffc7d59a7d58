"""The ICMP probe against the loopback and against peers at the far end of a virtual cable.

usage: cases.py PROBE [WHY-THERE-ARE-NO-NAMESPACES]
"""

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

PROBE, *NO_NAMESPACES = sys.argv[1:]
verdicts = []
cable_number = itertools.count(1)


def report(verdict, text):
    verdicts.append(verdict)
    sys.stdout.write(f"{verdict:7} {text}\n")
    sys.stdout.flush()


def check(name, good, detail):
    report("ok" if good else "FAILED", f"{name}: {detail}")


def probe(name, host, replies, within=(), tries=TRIES, complaint=b"", delay_s=0, ended=0):
    """Checks the count, the output and the duration: a try in vain waits for the whole time-out
    unless it is one of the `ended`, every try for `delay_s` besides. Returns the probe's process
    id."""
    due_text = complaint + (tries - ended - replies) * TIMED_OUT
    due_s = (tries - ended - replies) * TIMEOUT_S + tries * delay_s
    begun = time.monotonic()
    output = subprocess.run([*within, PROBE, host], stdout=subprocess.PIPE).stdout
    took_s = time.monotonic() - begun
    text, process, seen = re.fullmatch(rb"(.*)process (\d+) replies (\d)\n", output, re.S).groups()
    if (int(seen), text) == (replies, due_text) and due_s <= took_s < due_s + SLACK_S:
        check(name, True, f"{replies} ({took_s:.1f} s)")
    else:
        check(name, False, f"{output} after {took_s:.1f} s, due {replies} after {due_s} s")
    return int(process)


def cable(dropped):
    """Lays one between two new namespaces, the probe's and the peer's, and returns the prefixes of
    commands in them. The peer's system answers every echo request but those that are dropped."""
    number = next(cable_number)
    here, there = f"here{number}", f"there{number}"
    filtering = f"type filter hook input priority filter; {dropped} drop;"
    script = f"""
        ip netns add {here}
        ip netns add {there}
        ip -n {here} link add cable type veth peer name cable netns {there}
        ip -n {here} address add {HERE}/24 dev cable
        ip -n {there} address add {THERE}/24 dev cable
        ip -n {here} link set cable up
        ip -n {there} link set cable up
        ip netns exec {there} nft 'table ip peer {{ chain input {{ {filtering} }}; }}'
    """
    subprocess.run(["sh", "-ec", script], check=True)
    return ["ip", "netns", "exec", here], ["ip", "netns", "exec", there]


def filtered(name, dropped, replies):
    here, _ = cable(dropped)
    probe(name, THERE, replies, here)


def started(within, words):
    """A program that runs beside a probe and has said on standard error that it is ready."""
    bounded = [*within, "timeout", str(LIFETIME_S), *words]
    running = subprocess.Popen(bounded, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    running.stderr.readline()
    return running


def forged(name, kinds, replies):
    """A peer that answers with these kinds of datagram, one after the other. Since what is refused
    starts a fresh wait, the forger's delay shows in the duration that the probe did receive it."""
    here, there = cable(EVERY_REQUEST)
    with started(there, ["python3", "-B", forger.__file__, *kinds]):
        probe(name, THERE, replies, here, delay_s=forger.DELAY_S)


def too_long(name):
    """A reply that does not fit into what the probe receives ends its try at once."""
    here, there = cable(EVERY_REQUEST)
    with started(there, ["python3", "-B", forger.__file__, name]):
        probe(name, THERE, 0, here, delay_s=forger.DELAY_S, ended=TRIES)


def read_capture(capture):
    """The time to live and the ICMP message of each packet."""
    at = PCAP_HEADER
    while at < len(capture):
        (length,) = struct.unpack_from("=I", capture, at + 8)
        at += RECORD_HEADER + length
        datagram = capture[at - length + ETHERNET_HEADER : at]
        yield datagram[TIME_TO_LIVE_AT], datagram[IPV4_HEADER:]


def read_by_tcpdump(capture):
    """How many echo requests it sees, and how many wrong checksums."""
    read = subprocess.run("tcpdump -nvvv -r -".split(), input=capture, capture_output=True)
    return read.stdout.count(b"ICMP echo request"), read.stdout.count(b"wrong icmp cksum")


def request_due(process, sequence):
    numbers = bytes([process & 0xFF, process >> 8 & 0xFF, 0, sequence])
    return 64, forger.icmp(8, numbers + 32 * b"\x45")


def captured(name):
    """The requests as they arrive. The last time-out gives the capture the time to be written."""
    here, there = cable(EVERY_REQUEST)
    with started(there, "tcpdump -i cable --immediate-mode -Uw - icmp".split()) as running:
        process = probe(name, THERE, 0, here)
        running.terminate()
        capture = running.stdout.read()
    sent = list(read_capture(capture))
    due = [request_due(process, sequence) for sequence in range(TRIES)]
    check("time to live and bytes of the requests", sent == due, f"{len(sent)} compared")
    seen = read_by_tcpdump(capture)
    check("requests and wrong checksums, says tcpdump", seen == (TRIES, 0), seen)
    seen = read_by_tcpdump(capture[:-1] + bytes([capture[-1] ^ 1]))
    check("the same after one bit has changed", seen == (TRIES, 1), seen)


ON_THE_LOOPBACK = {
    "loopback address": lambda name: probe(name, "127.0.0.1", 4),
    "host name": lambda name: probe(name, "localhost", 4),
    "no such host": lambda name: probe(name, UNRESOLVABLE, 0, tries=0, complaint=NO_SUCH_HOST),
}
OVER_A_CABLE = {
    "peer answers all": lambda name: filtered(name, "icmp sequence 4", 4),
    "peer answers all but 0": lambda name: filtered(name, "icmp sequence 0", 3),
    "peer answers 0 and 2": lambda name: filtered(name, "icmp sequence { 1, 3 }", 2),
    "peer answers 3": lambda name: filtered(name, "icmp sequence < 3", 1),
    "peer answers none": captured,
    **{kind: lambda name: forged(name, [name], 0) for kind in forger.FORGERIES},
    "reply too long": too_long,
    "reply after all of these": lambda name: forged(name, [*forger.FORGERIES, "reply"], 4),
}


def run(case, name):
    try:
        case(name)
    except Exception as error:
        check(name, False, repr(error))


cases = ON_THE_LOOPBACK if NO_NAMESPACES else ON_THE_LOOPBACK | OVER_A_CABLE
with concurrent.futures.ThreadPoolExecutor(len(cases)) as side_by_side:
    side_by_side.map(run, cases.values(), cases)
for name in OVER_A_CABLE:
    if name not in cases:
        report("skipped", f"{name}: {NO_NAMESPACES[0]}")
passed, failed, skipped = map(verdicts.count, ("ok", "FAILED", "skipped"))
print(f"{passed} passed, {failed} failed, {skipped} skipped")
sys.exit(failed > 0)
