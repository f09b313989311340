// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/TicketJson.h"

#include "ZANUtils/QVCFBase64.h"
#include "apps/torka/Command.h"
#include "output/InjectionSite.h"
#include "platform/TextEncoding.h"

namespace torka::tool {

namespace {

std::string_view siteName(std::int32_t number) {
    const InjectionSite* site = findInjectionSite(number);
    return site == nullptr ? "unknown site" : site->name;
}

} // namespace

Json entryJson(std::int32_t site, std::string_view bytes) {
    Json json = Json::object();
    json["site"] = site;
    if (decodeText(bytes, kCFStringEncodingUTF8)) {
        json["text"] = std::string(bytes);
    } else {
        json["base64"] = utf8Text(QVCFBase64CreateEncodedString(CFDataCreate(bytes.data(), bytes.size())));
    }
    return json;
}

void printEntry(std::int32_t site, std::string_view bytes) {
    print(std::to_string(site) + " (" + std::string(siteName(site)) + ")\n");
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        print("    " + printable(utf8Text(cfString(bytes.substr(0, end)))) + "\n");
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
}

} // namespace torka::tool
