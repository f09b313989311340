// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/e2e/ServerData.h"

#include <cstdlib>
#include <memory>
#include <signal.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

// Queues whose backend or printer tells trays and toner.

namespace torka::tests {

// A printer that speaks IPP: one answer to everything, written by hand as RFC 8010 has it. It serves at HOST
// and PORT, which are set in front.
inline constexpr const char* ippPrinter = R"PY(
import http.server, struct, sys
def attribute(tag, name, *values):
    out = b''
    for value in values:
        out += bytes([tag]) + struct.pack('>H', len(name)) + name + struct.pack('>H', len(value)) + value
        name = b''
    return out
def member(name, tag, value):
    return attribute(0x4a, b'', name) + attribute(tag, b'', value)
def collection(*members):
    return b''.join(members) + attribute(0x37, b'', b'')
number = lambda n: struct.pack('>i', n)
size = collection(member(b'x-dimension', 0x21, number(21000)), member(b'y-dimension', 0x21, number(29700)))
media = (attribute(0x34, b'media-col-ready', b'') +
         attribute(0x4a, b'', b'media-size') + attribute(0x34, b'', b'') + size +
         member(b'media-source', 0x44, b'tray-1') + member(b'media-type', 0x44, b'stationery') +
         member(b'media-color', 0x44, b'light-blue') + attribute(0x37, b'', b''))
head = (b'\x02\x00\x00\x00\x00\x00\x00\x01\x01' + attribute(0x47, b'attributes-charset', b'utf-8') +
        attribute(0x48, b'attributes-natural-language', b'en') + b'\x04')
answer = head + (
    attribute(0x41, b'printer-make-and-model', b'Torka Fly') + attribute(0x41, b'printer-info', 'Büro: 2'.encode()) +
    attribute(0x41, b'printer-firmware-string-version', b'4.2') +
    attribute(0x30, b'printer-supply',
              b'index=1;class=supplyThatIsConsumed;type=toner;unit=impressions;maxcapacity=20000;level=5000;colorantname=cyan;',
              b'index=2;class=receptacleThatIsFilled;type=wasteToner;unit=percent;maxcapacity=100;level=90;colorantname=none;') +
    attribute(0x41, b'printer-supply-description', b'Cyan', b'Waste Box') +
    attribute(0x30, b'printer-input-tray',
              b'type=sheetFeedAutoRemovableTray;mediafeed=29700;mediaxfeed=21000;maxcapacity=500;level=120;status=0;name=Tray 1;',
              b'type=sheetFeedManual;maxcapacity=-2;level=-3;status=0;name=Bypass Tray;') + media) + b'\x03'
class Printer(http.server.BaseHTTPRequestHandler):
    protocol_version = 'HTTP/1.1'
    def do_POST(self):
        self.rfile.read(int(self.headers['Content-Length']))
        self.send_response(200)
        self.send_header('Content-Type', 'application/ipp')
        self.send_header('Content-Length', str(len(answer)))
        self.end_headers()
        self.wfile.write(answer)
    def log_message(self, *a): pass
server = http.server.HTTPServer((HOST, PORT), Printer)
print(server.server_port, flush=True)
server.serve_forever()
)PY";

// In Python; at port 0 a free one, which it prints.
inline std::string ippPrinterProgram(const std::string& host, int port) {
    return "HOST, PORT = '" + host + "', " + std::to_string(port) + "\n" + ippPrinter;
}

class IppPrinter {
public:
    IppPrinter() {
        int pipes[2];
        EXPECT_EQ(pipe(pipes), 0);
        process = fork();
        if (process == 0) {
            dup2(pipes[1], STDOUT_FILENO);
            execlp("python3", "python3", "-c", ippPrinterProgram("127.0.0.1", 0).c_str(), nullptr);
            _exit(127);
        }
        close(pipes[1]);
        char text[16]{};
        EXPECT_GT(read(pipes[0], text, sizeof text - 1), 0);
        close(pipes[0]);
        port = std::atoi(text);
    }
    IppPrinter(const IppPrinter&) = delete;
    IppPrinter& operator=(const IppPrinter&) = delete;
    ~IppPrinter() { End(); }
    void End() {
        if (process > 0) {
            kill(process, SIGTERM);
            waitpid(process, nullptr, 0);
        }
        process = 0;
    }
    std::string Uri() const { return "ipp://localhost:" + std::to_string(port) + "/ipp/print"; }

private:
    pid_t process = 0;
    int port = 0;
};

class LiveData : public ServerData {
protected:
    void AddBackend(const std::string& name, const std::string& says) const {
        const TemporaryFolder folder;
        const std::filesystem::path backend = *sandbox / ("lib/backend/" + name);
        std::filesystem::copy_file(
            folder.Write("b", "#!/bin/sh\n[ $# -eq 0 ] && exit 0\n" + says + "\nexec cat > /dev/null\n"),
            backend, std::filesystem::copy_options::overwrite_existing);
        std::filesystem::permissions(backend, std::filesystem::perms(0755));
    }
    ServerDataOutcome Ask(const PMPrinter& printer, const std::string& address) {
        const ServerDataRequests::Request request = requests.Compose(address, "", "", {});
        BidiDataFile file(paths, failure);
        const ServerDataOutcome outcome = fetchServerData(printer, request.title, request.text,
                                                          requests.randomStringForBIDIFile(), paths, file);
        text = file.getBidiDataCopy();
        return outcome;
    }
    std::string Record(const std::string& name) const {
        std::size_t size = 0;
        const RecordBlock block = RecordText(*text).Read(name, &size);
        return wideTextOf(block, size);
    }
    std::shared_ptr<const std::string> text;
};

} // namespace torka::tests
