// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/CupsSupplies.h"

#include "platform/OpenFile.h"
#include "platform/cups/CupsHandles.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <fcntl.h>
#include <future>
#include <mutex>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace torka::platform {

namespace {

const std::vector<const char*> asked{"marker-names",           "marker-types",
                                     "marker-colors",          "marker-levels",
                                     "marker-low-levels",      "marker-high-levels",
                                     "printer-supply",         "printer-supply-description",
                                     "printer-input-tray",     "media-col-ready",
                                     "printer-name",           "printer-info",
                                     "printer-make-and-model", "printer-firmware-string-version"};

// The values of an attribute of texts or octet strings, without NULs.
std::vector<std::string> words(ipp_t* message, const char* name) {
    ipp_attribute_t* attribute = ippFindAttribute(message, name, IPP_TAG_ZERO);
    if (ippGetValueTag(attribute) != IPP_TAG_STRING) {
        return attributeTexts(message, name);
    }
    std::vector<std::string> texts;
    for (int i = 0; i < ippGetCount(attribute); ++i) {
        int length = 0;
        const auto* bytes = static_cast<const char*>(ippGetOctetString(attribute, i, &length));
        texts.emplace_back(bytes == nullptr ? "" : bytes,
                           bytes == nullptr ? 0 : static_cast<std::size_t>(length));
        std::erase(texts.back(), '\0');
    }
    return texts;
}

std::string word(ipp_t* message, const char* name) {
    const std::vector<std::string> texts = words(message, name);
    return texts.empty() ? "" : texts.front();
}

std::vector<int> numbers(ipp_t* message, const char* name) {
    ipp_attribute_t* attribute = ippFindAttribute(message, name, IPP_TAG_INTEGER);
    std::vector<int> values;
    values.reserve(static_cast<std::size_t>(ippGetCount(attribute)));
    for (int i = 0; i < ippGetCount(attribute); ++i) {
        values.push_back(ippGetInteger(attribute, i));
    }
    return values;
}

LoadedMedia loadedMedia(ipp_t* members) {
    LoadedMedia media;
    media.source = word(members, "media-source");
    media.type = word(members, "media-type");
    media.color = word(members, "media-color");
    if (ipp_attribute_t* size = ippFindAttribute(members, "media-size", IPP_TAG_BEGIN_COLLECTION)) {
        media.width = std::max(attributeInteger(ippGetCollection(size, 0), "x-dimension"), 0);
        media.height = std::max(attributeInteger(ippGetCollection(size, 0), "y-dimension"), 0);
    }
    return media;
}

PrinterFacts factsIn(ipp_t* message) {
    PrinterFacts facts;
    facts.markerNames = words(message, "marker-names");
    facts.markerTypes = words(message, "marker-types");
    facts.markerColors = words(message, "marker-colors");
    facts.markerLevels = numbers(message, "marker-levels");
    facts.markerLowLevels = numbers(message, "marker-low-levels");
    facts.markerHighLevels = numbers(message, "marker-high-levels");
    facts.supplies = words(message, "printer-supply");
    facts.supplyDescriptions = words(message, "printer-supply-description");
    facts.inputTrays = words(message, "printer-input-tray");
    ipp_attribute_t* ready = ippFindAttribute(message, "media-col-ready", IPP_TAG_BEGIN_COLLECTION);
    for (int i = 0; i < ippGetCount(ready); ++i) {
        facts.mediaReady.push_back(loadedMedia(ippGetCollection(ready, i)));
    }
    facts.name = word(message, "printer-info");
    if (facts.name.empty()) {
        facts.name = word(message, "printer-name");
    }
    facts.makeAndModel = word(message, "printer-make-and-model");
    facts.firmware = word(message, "printer-firmware-string-version");
    return facts;
}

struct Device {
    std::array<char, 32> scheme{};
    std::array<char, 256> user{};
    std::array<char, 256> host{};
    std::array<char, 1024> resource{};
    int port = 0;
};

bool takeApart(const std::string& uri, Device& device) {
    const auto room = [](const auto& text) { return static_cast<int>(text.size()); };
    const http_uri_status_t status =
        httpSeparateURI(HTTP_URI_CODING_ALL, uri.c_str(), device.scheme.data(), room(device.scheme),
                        device.user.data(), room(device.user), device.host.data(), room(device.host),
                        &device.port, device.resource.data(), room(device.resource));
    const std::string_view scheme = device.scheme.data();
    return status >= HTTP_URI_STATUS_OK && (scheme == "ipp" || scheme == "ipps");
}

// libcups looks up a host name and opens an enciphered connection without a time limit. A thread does both,
// and continues alone when it is late. `limit` holds for each of the two.
HttpConnection connectionTo(const Device& device, std::chrono::milliseconds limit) {
    std::packaged_task<HttpConnection()> connect([device, limit] {
        const bool isEnciphered = std::string_view(device.scheme.data()) == "ipps";
        return HttpConnection(
            httpConnect2(device.host.data(), device.port, nullptr, AF_UNSPEC,
                         isEnciphered ? HTTP_ENCRYPTION_ALWAYS : HTTP_ENCRYPTION_IF_REQUESTED, 1,
                         static_cast<int>(limit.count()), nullptr));
    });
    std::future<HttpConnection> connected = connect.get_future();
    std::thread(std::move(connect)).detach();
    return connected.wait_for(2 * limit) == std::future_status::ready ? connected.get() : nullptr;
}

// Shuts down a connection after the limit: a device could otherwise send single bytes for ever. Has a
// descriptor of its own: libcups may close the connection's, whose number then could stand for another file.
class Deadline {
public:
    Deadline(int descriptor, std::chrono::milliseconds limit)
        : own(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0)) {
        if (own) {
            watch = std::thread([this, limit] {
                std::unique_lock lock(mutex);
                if (!ended.wait_for(lock, limit, [this] { return isOver; })) {
                    ::shutdown(own.Descriptor(), SHUT_RDWR);
                }
            });
        }
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;
    ~Deadline() {
        {
            const std::lock_guard lock(mutex);
            isOver = true;
        }
        ended.notify_one();
        if (watch.joinable()) {
            watch.join();
        }
    }
    // Without descriptors to spare no limit can hold.
    bool Holds() const { return static_cast<bool>(own); }

private:
    OpenFile own;
    std::mutex mutex; // guards isOver
    std::condition_variable ended;
    bool isOver = false;
    std::thread watch; // asks for no memory of its own: nobody could catch the exception
};

struct BoundedBody {
    http_t* http;
    std::size_t left = std::size_t{1024} * 1024; // bytes
};

ssize_t readBounded(void* context, ipp_uchar_t* buffer, std::size_t size) {
    auto& body = *static_cast<BoundedBody*>(context);
    if (body.left < size) {
        return -1;
    }
    const ssize_t count = httpRead2(body.http, reinterpret_cast<char*>(buffer), size);
    body.left -= static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    return count;
}

IppMessage readAnswer(http_t* http) {
    http_status_t status = HTTP_STATUS_CONTINUE;
    while (status == HTTP_STATUS_CONTINUE) {
        status = httpUpdate(http);
    }
    IppMessage answer(status == HTTP_STATUS_OK ? ippNew() : nullptr);
    BoundedBody body{http};
    ipp_state_t state = IPP_STATE_IDLE;
    while (answer && state != IPP_STATE_DATA) {
        state = ippReadIO(&body, readBounded, 1, nullptr, answer.get());
        if (state == IPP_STATE_ERROR) {
            answer.reset();
        }
    }
    return answer;
}

} // namespace

std::optional<PrinterFacts> queueFacts(const std::string& queueName) {
    const IppMessage answer = printerAttributes(queueName, asked);
    return answer ? std::optional(factsIn(answer.get())) : std::nullopt;
}

std::optional<PrinterFacts> deviceFacts(const std::string& uri, std::chrono::milliseconds limit) {
    Device device;
    if (!takeApart(uri, device)) {
        return std::nullopt;
    }
    const HttpConnection http = connectionTo(device, limit);
    if (!http) {
        return std::nullopt;
    }
    const Deadline deadline(httpGetFd(http.get()), limit);
    if (!deadline.Holds()) {
        return std::nullopt;
    }
    const IppMessage request(ippNewRequest(IPP_OP_GET_PRINTER_ATTRIBUTES));
    // Leaves out the user and password of the device's URI, which are no part of the printer's name.
    std::array<char, HTTP_MAX_URI> printer{};
    httpAssembleURI(HTTP_URI_CODING_ALL, printer.data(), HTTP_MAX_URI, device.scheme.data(), nullptr,
                    device.host.data(), device.port, device.resource.data());
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, printer.data());
    ippAddStrings(request.get(), IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "requested-attributes",
                  static_cast<int>(asked.size()), nullptr, asked.data());
    if (cupsSendRequest(http.get(), request.get(), device.resource.data(), ippLength(request.get())) !=
        HTTP_STATUS_CONTINUE) {
        return std::nullopt;
    }
    const IppMessage answer = readAnswer(http.get());
    if (!answer || ippGetStatusCode(answer.get()) > IPP_STATUS_OK_CONFLICTING) {
        return std::nullopt;
    }
    return factsIn(answer.get());
}

} // namespace torka::platform
