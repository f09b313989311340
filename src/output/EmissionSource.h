// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

#include <cstdint>
#include <span>
#include <string>

namespace torka {

class ZANPPD;
class ZANWatermark;

// One setting without a control of its own: a keyword and its value, as wide text.
struct WideSetting {
    std::wstring key; // with or without its leading asterisk
    std::wstring value;

    bool operator==(const WideSetting&) const = default;
};

// What the emission reads from a print dialog's pane. The pane's data object implements it. The reader owns
// nothing. Nothing may change while an emission runs.
class EmissionSource {
public:
    EmissionSource() = default;
    EmissionSource(const EmissionSource&) = delete;
    EmissionSource& operator=(const EmissionSource&) = delete;
    virtual ~EmissionSource();

    virtual ZANPPD* Description() const = 0;
    virtual PMPrintSettings Settings() const = 0;
    virtual std::uint16_t PageOrientation() const = 0; // kPMPortrait to kPMReverseLandscape
    // True when the page size comes from the system's page setup: "*PageSize" itself is then not emitted.
    virtual bool IsPageSizeSuppressed() const = 0;
    virtual bool IsTwoWayEnabled() const = 0;

    // The side lists, in the order in which they were filled.
    virtual std::span<const WideSetting> MixedMedia() const = 0;
    virtual std::span<const WideSetting> PadCovers() const = 0;
    virtual std::span<const WideSetting> SlipSheets() const = 0;
    virtual std::span<const WideSetting> CoverPages() const = 0;
    // The four pairs of the paper catalogue; a value of "-1" is unset.
    virtual std::span<const WideSetting> PaperCatalogue() const = 0;
    // Null when none is selected.
    virtual ZANWatermark* SelectedWatermark() const = 0;
};

} // namespace torka
