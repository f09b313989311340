// SPDX-License-Identifier: Apache-2.0
// Searches a management template of arbitrary bytes. Every search ends and gives the same result for a
// keyword with and without its asterisk. The values taken over stay within the capacities of the lists.

#include "bidi/serverdata/CUtil.h"
#include "fuzz/PaneFuzzing.h"

#include <unistd.h>

namespace {

using namespace torka;
using namespace torka::fuzz;

// A description that consists only of its template.
class TemplateOnly final : public ZANPPD {
public:
    explicit TemplateOnly(const std::string& xml)
        : ZANPPD(kAcceptOrphans) {
        Build();
        ReadCustXmlData(xml);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    quietPane();
    const std::string xml(reinterpret_cast<const char*>(bytes), size);
    TemplateOnly model(xml);
    const auto settings = std::make_shared<MemoryPrintSettings>();
    const std::unique_ptr<PDEData> owned = paneData(model, settings);
    PDEData& data = *owned;
    std::vector<std::string> keys;
    const bool isReadable = data.fetchHiddenKeysFromDMTXML(keys);
    require(isReadable || keys.empty());
    keys.emplace_back("*QVDuplex");
    keys.emplace_back("");
    for (const std::string& key : keys) {
        const std::string bare = key.substr(key.empty() ? 0 : 1);
        if (bare.find('*') == std::string::npos) {
            require(data.dmtHides(key) == data.dmtHides(bare) && data.dmtLocks(key) == data.dmtLocks(bare));
        }
    }
    data.RestoreNonPSSettings();
    requireWithinCapacities(data);
    for (const WideSetting& pair : data.PaperCatalogue()) {
        require(pair.key.size() < accountKeySize && pair.value.size() < accountValueSize);
    }
    data.SaveNonPSSettings();
    return 0;
}
