// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/Wait.h"
#include "platform/Printing.h"

#include <functional>
#include <string>
#include <string_view>

namespace torka {

// Looks up a key in a strings table of the pane's bundle, in the person's language. Returns the default when
// the table lacks the key.
using StringLookup =
    std::function<std::string(std::string_view table, std::string_view key, std::string_view defaultText)>;

// The person's choice after two-way communication failed.
enum class BidiChoice { cancel = 0, continueBidiOff = 1, printerStayedBusy = 2 };

// Tells a person that two-way communication failed, and keeps the person's choice.
class BidiFailure {
public:
    // Without a look-up, shows the default texts.
    explicit BidiFailure(StringLookup lookup = {})
        : strings(std::move(lookup)) {}

    // While quiet, showBiDiError shows and counts nothing, and the choice is cancel.
    void SetQuiet(bool on) { quiet = on; }
    // Shows the message. The choice is continueBidiOff when the person presses the default button, else
    // cancel. `badAddress` is an address at which nothing answers; the message names it behind the
    // informative text.
    void showBiDiError(std::string_view badAddress = {});
    // Looks at the printer that gets the requests: the first one of a class. False when it is idle. True at
    // once, with nothing shown, when it is neither idle nor processing. A printer that processes a job and
    // has no state message gets 18 seconds to become idle. After that, or with a state message, the choice
    // becomes printerStayedBusy and the result is true; showBiDiError then asks the person, unless the
    // override file exists. A cancelled wait shows nothing, and the choice is cancel.
    bool isPrinterBusyWithPrinting(const PMPrinter& sessionPrinter, const WaitObserver& observer = {});
    BidiChoice printerInBusyState_ContinueBiDiOFF() const { return choice; }
    int TimesShown() const { return timesShown; } // how often the message was shown

private:
    std::string Text(std::string_view key, std::string_view defaultText) const;

    StringLookup strings;
    BidiChoice choice = BidiChoice::cancel;
    int timesShown = 0;
    bool quiet = false;
};

} // namespace torka
