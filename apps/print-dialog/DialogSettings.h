#pragma once

#include "platform/PrintDialogExtension.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"
#include "platform/memory/MemoryPrinting.h"

#include <QPrinter>
#include <memory>
#include <string>

// What the dialog's own tabs say, in the terms of the printing framework.
//
// A QPrinter holds what the person chose in the dialog's own tabs. The panel reads print settings, a page
// format and a printer; the classes here answer with them from the QPrinter, anew each time they are asked
// to.

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

// The callback object of one panel. Refers to the QPrinter; owns the settings, which live as long as the
// dialog and are shared by the panels that follow each other in it.
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

// Brings what the dialog's own tabs say into the print settings: paper, pages to a sheet, tray of the first
// page, job name and copies.
void takeOverDialogSettings(const QPrinter& printer, const std::string& jobName,
                            MemoryPrintSettings& settings);

// What goes to the print server with the job: the options of the dialog's own tabs that every queue knows.
// Options of the description go by the ticket and are not among them.
JobOptions standardJobOptions(const QPrinter& printer);

} // namespace torka::dialog
