# SPDX-License-Identifier: Apache-2.0
"""A printer that speaks IPP: printer.py HOST PORT. It gives one answer to everything, written as RFC 8010 has it.

At port 0 it takes a free one, prints the port and its process's number, and goes into the background, for five minutes at
most.
"""

import http.server
import os
import signal
import struct
import sys


def attribute(tag, name, *values):
    out = b""
    for value in values:
        out += bytes([tag]) + struct.pack(">H", len(name)) + name + struct.pack(">H", len(value)) + value
        name = b""
    return out


def member(name, tag, value):
    return attribute(0x4a, b"", name) + attribute(tag, b"", value)


def number(value):
    return struct.pack(">i", value)


END_OF_COLLECTION = attribute(0x37, b"", b"")
SIZE = (member(b"x-dimension", 0x21, number(21000)) + member(b"y-dimension", 0x21, number(29700)) + END_OF_COLLECTION)
MEDIA = (attribute(0x34, b"media-col-ready", b"") +
         attribute(0x4a, b"", b"media-size") + attribute(0x34, b"", b"") + SIZE +
         member(b"media-source", 0x44, b"tray-1") + member(b"media-type", 0x44, b"stationery") +
         member(b"media-color", 0x44, b"light-blue") + END_OF_COLLECTION)
HEAD = (b"\x02\x00\x00\x00\x00\x00\x00\x01\x01" + attribute(0x47, b"attributes-charset", b"utf-8") +
        attribute(0x48, b"attributes-natural-language", b"en") + b"\x04")
ANSWER = HEAD + (
    attribute(0x41, b"printer-make-and-model", b"Torka Fly") + attribute(0x41, b"printer-info", "Büro: 2".encode()) +
    attribute(0x41, b"printer-firmware-string-version", b"4.2") +
    attribute(0x30, b"printer-supply",
              b"index=1;class=supplyThatIsConsumed;type=toner;unit=impressions;maxcapacity=20000;level=5000;"
              b"colorantname=cyan;",
              b"index=2;class=receptacleThatIsFilled;type=wasteToner;unit=percent;maxcapacity=100;level=90;"
              b"colorantname=none;") +
    attribute(0x41, b"printer-supply-description", b"Cyan", b"Waste Box") +
    attribute(0x30, b"printer-input-tray",
              b"type=sheetFeedAutoRemovableTray;mediafeed=29700;mediaxfeed=21000;maxcapacity=500;level=120;status=0;"
              b"name=Tray 1;",
              b"type=sheetFeedManual;maxcapacity=-2;level=-3;status=0;name=Bypass Tray;") + MEDIA) + b"\x03"


class Printer(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_POST(self):
        self.rfile.read(int(self.headers["Content-Length"]))
        self.send_response(200)
        self.send_header("Content-Type", "application/ipp")
        self.send_header("Content-Length", str(len(ANSWER)))
        self.end_headers()
        self.wfile.write(ANSWER)

    def log_message(self, format, *args):
        pass


server = http.server.HTTPServer((sys.argv[1], int(sys.argv[2])), Printer)
if sys.argv[2] == "0":
    background = os.fork()
    if background != 0:
        print(server.server_port, background, flush=True)
        os._exit(0)
    signal.alarm(300)
server.serve_forever()
