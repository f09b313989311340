#pragma once

#include "bidi/commands/Wait.h"
#include "platform/Printing.h"

#include <functional>
#include <string>
#include <string_view>

namespace torka {

// The text of a key in a strings table of the pane's bundle, in the person's language; the default when the
// table lacks the key.
using StringLookup =
    std::function<std::string(std::string_view table, std::string_view key, std::string_view defaultText)>;

// What the person chose when two-way communication failed.
enum class BidiChoice { cancel = 0, continueBidiOff = 1, printerStayedBusy = 2 };

// The failure of two-way communication, as a person meets it: the message, and the choice made then.
class BidiFailure {
public:
    // Without a look-up the default texts are shown.
    explicit BidiFailure(StringLookup lookup = {})
        : strings(std::move(lookup)) {}

    // While quiet nobody is asked: nothing is shown or counted, and the choice is cancel.
    void SetQuiet(bool on) { quiet = on; }
    // Shows the message; the choice is continueBidiOff when its default button was pressed, else cancel. An
    // address at which nothing answers is named behind the informative text.
    void showBiDiError(std::string_view badAddress = {});
    // False when the printer is idle. A printer that processes a job without telling anything about it gets
    // 18 seconds to become idle. Otherwise the choice is printerStayedBusy, the message is shown (unless the
    // override file exists), and the answer is true. A cancelled wait shows nothing: the choice is cancel.
    bool isPrinterBusyWithPrinting(const PMPrinter& printer, const WaitObserver& observer = {});
    BidiChoice printerInBusyState_ContinueBiDiOFF() const { return choice; }
    int TimesShown() const { return timesShown; } // of the message

private:
    std::string Text(std::string_view key, std::string_view defaultText) const;

    StringLookup strings;
    BidiChoice choice = BidiChoice::cancel;
    int timesShown = 0;
    bool quiet = false;
};

} // namespace torka
