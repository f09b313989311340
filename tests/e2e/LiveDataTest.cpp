// SPDX-License-Identifier: Apache-2.0
#include "pane/exchange/ServerExchange.h"
#include "platform/posix/PosixNetServices.h"
#include "tests/e2e/ServerData.h"
#include "tests/support/Neighbours.h"

#include <algorithm>
#include <cstdlib>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

// Trays and toner as reported by a real server's queue, or by its printer, on this machine and on another
// one.

namespace torka::tests {

namespace {

// A printer that speaks IPP: one answer to everything, written by hand as RFC 8010 has it. It serves at HOST
// and PORT, which are set in front.
constexpr const char* ippPrinter = R"PY(
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
std::string ippPrinterProgram(const std::string& host, int port) {
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

TEST_F(LiveData, AQueuesMarkersAreItsToner) {
    AddBackend("marks", R"(echo "ATTR: marker-names='\"Cyan Toner\",\"Black @ 2\",Waste' )"
                        R"(marker-colors=#00FFFF,#000000,none marker-levels=40,-3,12 )"
                        R"(marker-types=toner,toner,waste-toner marker-low-levels=5,5,0 )"
                        R"(marker-high-levels=100,100,90" >&2)");
    const PMPrinter printer = AddQueue("Marked", "marks:/");
    ASSERT_EQ(runTool({"command", "send", "Marked", "Command_LocaleCode", "de"}).status, 0);
    ASSERT_EQ(Ask(printer, ""), ServerDataOutcome::read);
    EXPECT_EQ(Record("TonerInfo"), "3\nCyan Toner@40@5@#00FFFF@100@-1@1\nBlack   2@-3@5@#000000@100@-1@1\n"
                                   "Waste@12@0@NULL@90@-1@3\n");
    EXPECT_TRUE(Record("TrayInfo").starts_with("7\nTray 1@Tray1@EMPTY@EMPTY@EMPTY@EMPTY@-1@-1\n"))
        << Record("TrayInfo");
    EXPECT_EQ(Record("ServerInfo"), "Marked:ServerName\nTorka Production 90, controller 4.2:ProductFamily\n");
    // Stored records replace live ones.
    Give("10.0.0.30", "data", "TrayInfo", "stored");
    ASSERT_EQ(Ask(printer, "10.0.0.30"), ServerDataOutcome::read);
    EXPECT_EQ(Record("TrayInfo"), "stored");
    EXPECT_TRUE(Record("TonerInfo").starts_with("3\n"));
}

TEST_F(LiveData, AnIppPrinterIsAskedItself) {
    AddBackend("ipp", "");
    IppPrinter device;
    const PMPrinter printer = AddQueue("Direct", device.Uri());
    ASSERT_EQ(Ask(printer, "127.0.0.1"), ServerDataOutcome::read) << "the device's host under another name";
    EXPECT_EQ(Record("TonerInfo"), "2\nCyan@25@-1@#00ffff@-1@20000@1\nWaste Box@10@-1@NULL@-1@-1@3\n");
    EXPECT_EQ(Record("TrayInfo"), "2\nTray 1@Tray1@Plain@A4@Plain@Light blue@120@500\n"
                                  "Bypass Tray@Bypass@EMPTY@EMPTY@EMPTY@EMPTY@-3@-1\n");
    EXPECT_EQ(Record("ServerInfo"), "Büro  2:ServerName\n4.2:ServerVersion\nTorka Fly:ProductFamily\n");
    EXPECT_EQ(Ask(printer, "192.0.2.1"), ServerDataOutcome::connectionError) << "another's address";
    device.End();
    EXPECT_EQ(Ask(printer, ""), ServerDataOutcome::connectionError);
    EXPECT_EQ(CPPDMsgHdlr(ppdPath, "InvalidPrinterAddress").GetCStringData(), "yes");
}

// Queues of printers on another machine, with the server's filter between them and the pane.

class Neighbours : public LiveData {
protected:
    void SetUp() override {
        if (hasNeighbour()) {
            LiveData::SetUp();
            setNetServices(std::make_unique<platform::PosixNetServices>());
        }
    }
    void TearDown() override {
        setNetServices(nullptr);
        LiveData::TearDown();
    }
    // What the request of the last command took along beside its address.
    std::string NumbersSent() const {
        std::filesystem::path last;
        for (const auto& file : std::filesystem::directory_iterator(*sandbox / "spool")) {
            if (file.path().filename().string().starts_with('d') && file.path() > last) {
                last = file.path();
            }
        }
        const auto request = parseUpdateRequest(readFile(last));
        EXPECT_TRUE(request) << last;
        return request ? std::string(valueOf(*request, "address")) : "";
    }
    static ServerExchange::Answer Fetch(ServerExchange& pane, const PMPrinter& printer,
                                        const std::string& address) {
        return pane.FetchServerData(printer, address, "", {}, ServerExchange::Failures::quiet);
    }
};

TEST_F(Neighbours, ADiscoveredQueueAnswersForTheAddressThatIsStored) {
    if (!hasNeighbour()) {
        return runWithNeighbour({"_ipp._tcp 631 - Office Printer"});
    }
    AddBackend("dnssd", R"(echo "ATTR: marker-names=Cyan marker-types=toner marker-levels=40" >&2)");
    const PMPrinter printer = AddQueue("Found", "dnssd://Office%20Printer._ipp._tcp.local/?uuid=1");
    ASSERT_EQ(runTool({"command", "send", "Found", "Command_LocaleCode", "de"}).status, 0);
    ServerExchange pane({});
    pane.SetQueue(ppdPath, "Found", "Office Printer");
    for (const auto& [address, numbers] :
         {std::pair("10.77.0.2", ""), std::pair("::FFFF:10.77.0.2", ""), std::pair("press.test", "10.77.0.2"),
          std::pair("Office Printer", "10.77.0.2")}) {
        EXPECT_EQ(Fetch(pane, printer, address), ServerExchange::Answer::read) << address;
        EXPECT_EQ(NumbersSent(), numbers) << address;
    }
    const std::filesystem::path found = twoWayPlace("Found", bonjourFileSuffix);
    EXPECT_EQ(readFile(found), "10.77.0.2\n");
    EXPECT_EQ(pane.FoundAddress(), "10.77.0.2");
    std::ofstream(found) << "press.test\n";
    EXPECT_EQ(pane.FoundAddress(), "") << "numbers alone are taken";

    AddBackend("mdns", "");
    const PMPrinter lost = AddQueue("Lost", "mdns://Nobody._ipp._tcp.local/?uuid=2");
    const std::filesystem::path stale = twoWayPlace("Lost", bonjourFileSuffix);
    std::ofstream(stale) << "10.0.0.5\n";
    EXPECT_EQ(Ask(lost, ""), ServerDataOutcome::connectionError);
    EXPECT_FALSE(std::filesystem::exists(stale)) << "a service that is gone has no address";
}

TEST_F(Neighbours, TheFilterLooksUpItsDevicesHostAloneAndNotWithoutEnd) {
    if (!hasNeighbour()) {
        return runWithNeighbour({}, ippPrinterProgram(neighbourAddress, 8631));
    }
    AddBackend("ipp", "");
    const PMPrinter printer = AddQueue("Direct", "ipp://press.test:8631/ipp/print");
    ServerExchange pane({});
    pane.SetQueue(ppdPath, "Direct");
    for (const auto& [address, numbers] :
         {std::pair("10.77.0.2", ""), std::pair("alias.test", "10.77.0.2")}) {
        EXPECT_EQ(Fetch(pane, printer, address), ServerExchange::Answer::read) << address;
        EXPECT_EQ(NumbersSent(), numbers) << address;
    }
    const std::size_t asked = namesAsked().size();
    // The same name in a request without numbers, and with those of another machine.
    for (const char* line : {"", "address=10.77.0.9\n"}) {
        const ServerDataRequests::Request request = requests.Compose("other.test", line, "", {});
        BidiDataFile file(paths, failure);
        EXPECT_EQ(fetchServerData(printer, request.title, request.text, requests.randomStringForBIDIFile(),
                                  paths, file),
                  ServerDataOutcome::connectionError)
            << line;
    }
    std::vector<std::string> names = namesAsked();
    EXPECT_EQ(std::ranges::count(names, "other.test"), 0);
    EXPECT_GT(std::ranges::count(names, "press.test"), 0);
    EXPECT_GT(names.size(), asked) << "the second request's numbers are held against the device's";

    // A host that the name server is silent about, for minutes: the command ends before the pane gives up.
    const PMPrinter silent = AddQueue("Silent", "ipp://silent.test/ipp/print");
    EXPECT_EQ(Ask(silent, "10.77.0.2"), ServerDataOutcome::connectionError);
    EXPECT_EQ(Ask(silent, ""), ServerDataOutcome::connectionError);
    names = namesAsked();
    EXPECT_GT(std::ranges::count(names, "silent.test"), 0);
}

} // namespace

} // namespace torka::tests
