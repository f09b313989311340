// SPDX-License-Identifier: Apache-2.0
#include "pane/exchange/ServerGauges.h"

#include "bidi/JobPropertiesModule.h"
#include "bidi/records/RecordText.h"
#include "bidi/serverdata/ServerRecords.h"
#include "platform/TextEncoding.h"

#include <algorithm>

namespace torka {

namespace {

constexpr std::size_t maximumGauges = 64;
constexpr std::size_t maximumCharacters = 200;

std::string shortText(std::wstring_view text) { return utf8FromWide(text.substr(0, maximumCharacters)); }

template <typename View>
std::vector<View> readRecord(const RecordText& records, const char* name, std::wstring& text,
                             RecordResult<View> (*read)(std::wstring_view)) {
    std::size_t size = 0;
    const RecordBlock payload = records.Read(name, &size);
    if (payload == nullptr || size % sizeof(wchar_t) != 0) {
        return {};
    }
    text = wideFromPayload({payload.get(), size});
    RecordResult<View> views = read(text);
    if (!views) {
        return {};
    }
    views->resize(std::min(views->size(), maximumGauges));
    return *std::move(views);
}

TrayGauge gaugeOf(const TrayView& tray) {
    enum { name, key, mediaName, mediaSize };
    TrayGauge gauge;
    const auto text = [&](std::size_t place) {
        const auto& given = tray.texts[place];
        return given && *given != absentTrayText ? shortText(*given) : std::string();
    };
    gauge.name = text(name).empty() ? text(key) : text(name);
    gauge.media = text(mediaName);
    if (const std::string size = text(mediaSize); !size.empty()) {
        gauge.media += (gauge.media.empty() ? "" : ", ") + size;
    }
    if (tray.level >= 0 && tray.capacity > 0) {
        gauge.percent =
            static_cast<int>(std::min<std::int64_t>(std::int64_t{tray.level} * 100 / tray.capacity, 100));
    } else if (tray.level == 0) {
        gauge.percent = 0;
    }
    gauge.hasSome = tray.level == SDM_LEVEL_SOME;
    return gauge;
}

std::string colorOf(std::wstring_view text) {
    constexpr std::size_t length = 7;
    const bool isColor = text.size() == length && text.front() == L'#' &&
                         text.find_first_not_of(L"0123456789abcdefABCDEF", 1) == std::wstring_view::npos;
    return isColor ? utf8FromWide(text) : std::string();
}

SupplyGauge gaugeOf(const TonerView& toner) {
    SupplyGauge gauge;
    gauge.name = shortText(toner.name);
    gauge.color = colorOf(toner.color.value_or(std::wstring_view()));
    if (toner.level >= 0) {
        gauge.percent = std::min(toner.level, 100);
    }
    gauge.needsAttention = needsAttention(toner);
    return gauge;
}

} // namespace

ServerGauges gaugesOf(std::string_view dataFile) {
    const RecordText records(dataFile);
    ServerGauges gauges;
    std::wstring trayText;
    for (const TrayView& tray : readRecord(records, "TrayInfo", trayText, readTrays)) {
        gauges.trays.push_back(gaugeOf(tray));
    }
    std::wstring tonerText;
    for (const TonerView& toner : readRecord(records, "TonerInfo", tonerText, readToners)) {
        gauges.supplies.push_back(gaugeOf(toner));
    }
    return gauges;
}

} // namespace torka
