// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PrintDialogExtension.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"
#include "platform/memory/MemoryPrinting.h"

#include <QPrinter>
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

// The callback object of one panel. Refers to the QPrinter. Shares the settings, which live as long as the
// dialog, with the panels before and after it.
class DialogCallback final : public PDEPlugInCallback {
public:
    DialogCallback(const QPrinter& qtPrinter, std::shared_ptr<MemoryPrintSettings> dialogSettings,
                   const std::string& queue);

    PMPrintSession printSession() const override { return session; }
    PMPrintSettings printSettings() const override { return settings; }
    PMPageFormat pageFormat() const override { return format; }
    std::shared_ptr<Printer> PMPrinter() const override;

private:
    std::shared_ptr<CupsSession> session;
    std::shared_ptr<MemoryPrintSettings> settings;
    PMPageFormat format;
};

// Copies the choices of the dialog's own tabs into the print settings: paper, pages per sheet, tray of the
// first page, job name and copies.
void takeOverDialogSettings(const QPrinter& printer, const std::string& jobName,
                            MemoryPrintSettings& settings);

// The options that go to the print server with the job: those of the dialog's own tabs that every queue
// knows. The description's options travel in the ticket instead.
JobOptions standardJobOptions(const QPrinter& printer);

} // namespace torka::dialog
