// A management template of any bytes: every search in it ends, answers for a keyword the same with and
// without its asterisk, and what is taken over stays within the lists.

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "bidi/CUtil.h"
#include "pane/PDEData.h"
#include "platform/Log.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/memory/MemorySystem.h"

#include <unistd.h>

#include <cstdlib>

namespace {

using namespace torka;

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

class NoLog : public LogSink {
    void Line(std::string_view) override {}
};

class NoStore final : public PropertyListStore {
public:
    std::string Load() override { return {}; }
    SaveResult Save(std::string_view) override { return {}; }
};

// A description that is nothing but its template.
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
    static const bool once = [] {
        setLogSink(std::make_shared<NoLog>());
        setSystem(std::make_unique<MemorySystem>());
        return true;
    }();
    require(once);
    const std::string xml(reinterpret_cast<const char*>(bytes), size);
    TemplateOnly model(xml);
    const auto settings = std::make_shared<MemoryPrintSettings>();
    PDEData data(&model, cfString("Press"), QueueAccess{}, [] { return std::make_unique<NoStore>(); });
    data.SetPrintSettings(settings);
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
    require(data.MixedMedia().size() <= 2048 && data.PadCovers().size() <= 16 &&
            data.SlipSheets().size() <= 16 && data.CoverPages().size() <= 16);
    for (const WideSetting& pair : data.PaperCatalogue()) {
        require(pair.key.size() < accountKeySize && pair.value.size() < accountValueSize);
    }
    data.SaveNonPSSettings();
    return 0;
}
