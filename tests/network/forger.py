"""Answers the echo requests that reach this namespace with the named kinds of datagram, all but one
of which a probe must not take for the reply.

It reads beside the packet filter, so the filter can keep the system itself from answering.
"""

import socket
import struct
import sys
import time

DELAY_S = 0.5  # before each answer, so that its arrival shows in how long the probe waits
REQUESTS = 4

ETHERTYPE_IPV4 = 0x0800
ECHO_REPLY, ECHO_REQUEST, TIME_EXCEEDED = 0, 8, 11
TYPE_AT = 20  # in a datagram without IP options
STRANGER = socket.inet_aton("192.0.2.3")


def checksum(message):
    """RFC 1071, as the two bytes on the wire."""
    total = sum(struct.unpack(f"!{len(message) // 2}H", message))
    while total > 0xFFFF:
        total = (total >> 16) + (total & 0xFFFF)
    return struct.pack("!H", 0xFFFF - total)


def icmp(kind, rest):
    return bytes([kind, 0]) + checksum(bytes([kind, 0, 0, 0]) + rest) + rest


# What a probe must not take for the reply, and hears: the system refuses other forgeries itself.
REFUSED = (
    "stranger's reply",
    "another process's reply",
    "another sequence's reply",
    "request sent back",
    "stranger's time exceeded",
    "cut quotation",
)


def answer(kind, request):
    """An answer to a request without IP options."""
    prober, peer = request[12:16], request[16:20]
    identifier, sequence = struct.unpack_from("!HH", request, 24)

    def datagram(source, message):
        # The system fills in the length and the checksum.
        header = struct.pack("!BxxxxxxxBBxx4s4s", 0x45, 64, socket.IPPROTO_ICMP, source, prober)
        return header + message

    def echo(kind, source=peer, identifier=identifier, sequence=sequence):
        numbers = struct.pack("!HH", identifier, sequence)
        return datagram(source, icmp(kind, numbers + request[28:]))

    def time_exceeded(source, quoted):
        return datagram(source, icmp(TIME_EXCEEDED, bytes(4) + quoted))

    return {
        "true reply": echo(ECHO_REPLY),
        "cut reply": echo(ECHO_REPLY)[:26],
        "stranger's reply": echo(ECHO_REPLY, source=STRANGER),
        "another process's reply": echo(ECHO_REPLY, identifier=identifier ^ 0x0100),
        "another sequence's reply": echo(ECHO_REPLY, sequence=sequence ^ 0x0100),
        "request sent back": echo(ECHO_REQUEST),
        "stranger's time exceeded": time_exceeded(STRANGER, request[:28]),
        "cut quotation": time_exceeded(peer, request[:26]),
    }[kind]


def main(kinds):
    receiver = socket.socket(socket.AF_PACKET, socket.SOCK_DGRAM, socket.htons(ETHERTYPE_IPV4))
    sender = socket.socket(socket.AF_INET, socket.SOCK_RAW, socket.IPPROTO_RAW)
    print("ready", file=sys.stderr, flush=True)
    answered = 0
    while answered < REQUESTS:
        request = receiver.recv(1024)
        if request[TYPE_AT] == ECHO_REQUEST:
            time.sleep(DELAY_S)
            for kind in kinds:
                sender.sendto(answer(kind, request), (socket.inet_ntoa(request[12:16]), 0))
            answered += 1


if __name__ == "__main__":
    main(sys.argv[1:])
