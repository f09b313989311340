// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/DescribedOptions.h"
#include "platform/PrintDialogExtension.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"
#include "platform/memory/MemoryPrinting.h"

#include <QPrinter>
#include <QStringList>
#include <array>
#include <functional>
#include <memory>
#include <string>

// Translates the choices of the dialog's own tabs into the terms of the printing framework.
//
// A QPrinter holds these choices. The panel reads print settings, a page format and a printer; the classes
// and functions here derive them from the QPrinter at each call.

namespace torka::dialog {

class QtPageFormat final : public PageFormat {
public:
    // Refers to the printer.
    explicit QtPageFormat(const QPrinter& qtPrinter)
        : printer(qtPrinter) {}
    std::uint16_t Orientation() const override;

private:
    const QPrinter& printer;
};

// The print settings of the dialog, in memory. They tell when the panel, not the dialog, sets the number of
// copies.
class DialogPrintSettings final : public PrintSettings {
public:
    CFTypeRef Value(const CFStringRef& key) const override { return kept.Value(key); }
    OSStatus SetValue(const CFStringRef& key, const CFTypeRef& value, bool locked) override {
        return kept.SetValue(key, value, locked);
    }
    CFDictionaryRef CopyAsDictionary() const override { return kept.CopyAsDictionary(); }
    std::uint32_t Copies() const override { return kept.Copies(); }
    OSStatus SetCopies(std::uint32_t copies) override;

    // The number that the dialog's own field shows.
    void TakeCopies(int copies);
    // Called with a number that the panel sets.
    std::function<void(int)> whenCopiesChange;

private:
    MemoryPrintSettings kept;
};

// The callback object of one panel. Refers to the QPrinter. Shares the settings, which live as long as the
// dialog, with the panels before and after it.
class DialogCallback final : public PDEPlugInCallback {
public:
    DialogCallback(const QPrinter& qtPrinter, std::shared_ptr<DialogPrintSettings> dialogSettings,
                   const std::string& queue);

    PMPrintSession printSession() const override { return session; }
    PMPrintSettings printSettings() const override { return settings; }
    PMPageFormat pageFormat() const override { return format; }
    std::shared_ptr<Printer> PMPrinter() const override;

private:
    std::shared_ptr<CupsSession> session;
    std::shared_ptr<DialogPrintSettings> settings;
    PMPageFormat format;
};

// The options that Qt's CUPS plug-in sends with a job of the QPrinter, besides those that QPrinter has
// members for: names and values in turn. Empty for an engine without such a list.
QStringList engineOptions(const QPrinter& printer);
// False when the engine does not keep them.
bool setEngineOptions(QPrinter& printer, const QStringList& options);
// Replaces one option; "" removes it.
void setEngineOption(QPrinter& printer, const QString& name, const QString& value);

// The values of "number-up-layout", by the numbers behind the entries of Qt's list. The entries themselves
// stand in another order.
inline constexpr std::array sheetOrders{"lrtb", "lrbt", "rlbt", "rltb", "btlr", "btrl", "tblr", "tbrl"};

// The options for a job that another program sends: of those that Qt has written for the program the ones
// that every queue knows, and the layout as the person accepted it. The description's options travel in the
// ticket.
QStringList guestJobOptions(const QStringList& program, const QPrinter& accepted,
                            const DescribedOptions& decidedByPane);

// Copies the choices of the dialog's own tabs into the print settings: paper, collation, pages per sheet, job
// name and copies. What the pane decides counts as not chosen.
void takeOverDialogSettings(const QPrinter& printer, const DescribedOptions& decidedByPane,
                            const std::string& jobName, DialogPrintSettings& settings);

// The options that go to the print server with the job: those of the dialog's own tabs that every queue
// knows and the pane does not decide. With a pane, the description's options travel in the ticket instead;
// without one, those that the person changed in the properties go along, and so does the colour mode.
JobOptions standardJobOptions(const QPrinter& printer, const DescribedOptions& decidedByPane, bool hasPane);

} // namespace torka::dialog
