"""Answers each echo request that reaches this namespace with datagrams of the kinds named.

It reads beside the packet filter, which can thus keep the system from answering.
"""

import socket
import struct
import sys
import time

DELAY_S = 0.5  # before each answer
REQUESTS = 4

ETHERTYPE_IPV4 = 0x0800
ECHO_REPLY, ECHO_REQUEST, TIME_EXCEEDED = 0, 8, 11
TYPE_AT, NUMBERS_AT, DATA_AT = 20, 24, 28  # in a request, which comes without IP options
STRANGER = socket.inet_aton("192.0.2.3")


def icmp(kind, rest):
    """A message with its checksum (RFC 1071)."""
    total = (kind << 8) + sum(struct.unpack(f"!{len(rest) // 2}H", rest))
    while total > 0xFFFF:
        total = (total >> 16) + (total & 0xFFFF)
    return struct.pack("!BBH", kind, 0, 0xFFFF - total) + rest


def datagram(request, message, source=None):
    """What takes a message back to the prober. The system fills in the length and the checksum."""
    prober, peer = request[12:16], request[16:20]
    return struct.pack("!B7xBBxx4s4s", 0x45, 64, 1, source or peer, prober) + message


def reply(request, kind=ECHO_REPLY, changed=0, source=None):
    """Changed are bits of the identifier (the upper half) or the sequence (the lower)."""
    (numbers,) = struct.unpack_from("!I", request, NUMBERS_AT)
    message = icmp(kind, struct.pack("!I", numbers ^ changed) + request[DATA_AT:])
    return datagram(request, message, source)


def time_exceeded(request, quoted_length, source=None):
    return datagram(request, icmp(TIME_EXCEEDED, bytes(4) + request[:quoted_length]), source)


# What a probe must not take for the reply. Messages below 8 bytes the system does not deliver.
FORGERIES = {
    "stranger's reply": lambda request: reply(request, source=STRANGER),
    "another process's reply": lambda request: reply(request, changed=0x0100_0000),
    "another sequence's reply": lambda request: reply(request, changed=0x0000_0100),
    "request sent back": lambda request: reply(request, kind=ECHO_REQUEST),
    "stranger's time exceeded": lambda request: time_exceeded(request, DATA_AT, STRANGER),
    "cut quotation": lambda request: time_exceeded(request, DATA_AT - 2),
}
TOO_LONG = 1025  # bytes, one more than a probe receives
ANSWERS = FORGERIES | {
    "reply": reply,
    "reply too long": lambda request: reply(request).ljust(TOO_LONG, b"E"),
}


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
                sender.sendto(ANSWERS[kind](request), (socket.inet_ntoa(request[12:16]), 0))
            answered += 1


if __name__ == "__main__":
    main(sys.argv[1:])
