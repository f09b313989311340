# SPDX-License-Identifier: Apache-2.0
"""A name server on port 53 for IPv4: names.py FILE. FILE gets the names that were asked for, one a line.

A name that begins with "silent" gets no answer. Any other name that ends in ".test" is 10.77.0.2; no other is known.
"""

import socket
import sys

ADDRESS = bytes([10, 77, 0, 2])
NAME_ERROR = 3  # RFC 1035, 4.1.1
A = 1


def question(message):
    """Its name, its type and where it ends."""
    labels, at = [], 12
    while message[at] != 0:
        labels.append(message[at + 1:at + 1 + message[at]].decode("latin-1"))
        at += 1 + message[at]
    return ".".join(labels).lower(), int.from_bytes(message[at + 1:at + 3], "big"), at + 5


def answer(message):
    name, kind, end = question(message)
    is_known = name.endswith(".test")
    record = b"\xc0\x0c\x00\x01\x00\x01\x00\x00\x00\x00\x00\x04" + ADDRESS if is_known and kind == A else b""
    flags = (0x8580 | (0 if is_known else NAME_ERROR)).to_bytes(2, "big")
    counts = b"\x00\x01" + (b"\x00\x01" if record else b"\x00\x00") + b"\x00\x00\x00\x00"
    return name, message[:2] + flags + counts + message[12:end] + record


server = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
server.bind(("", 53))
with open(sys.argv[1], "a", encoding="latin-1", buffering=1) as asked:
    while True:
        query, sender = server.recvfrom(4096)
        name, reply = answer(query)
        asked.write(name + "\n")
        if not name.startswith("silent"):
            server.sendto(reply, sender)
