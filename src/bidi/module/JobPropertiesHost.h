// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/Wait.h"
#include "platform/Printing.h"

#include <memory>
#include <string>

namespace torka {

// The interface through which the module's session and callbacks ask the pane. The pane implements it. The
// session refers to it and owns nothing.
class JobPropertiesHost {
public:
    JobPropertiesHost() = default;
    JobPropertiesHost(const JobPropertiesHost&) = delete;
    JobPropertiesHost& operator=(const JobPropertiesHost&) = delete;
    virtual ~JobPropertiesHost() = default;

    // The last text read from the queue's two-way data file (BidiDataFile); null or empty for none.
    virtual std::shared_ptr<const std::string> getBidiDataCopy() const = 0;
    // Null without a printer.
    virtual PMPrinter CurrentPrinter() const = 0;
    // The administrator's template, UTF-8; "" without one.
    virtual std::string TemplateText() const = 0;
    // The window's title in UTF-8: the key "Printing Preferences" of the bundle's table "BidiStrings".
    virtual std::string WindowTitle() const = 0;
    // Called about ten times a second during a wait for the module or the spooler. It shows the wait and lets
    // a person stop it: platform::System's sleeps then return false.
    virtual WaitObserver Observer() { return {}; }
};

// The host of the panel shown at present; null without a pane. The panel sets it at its start and sets null
// at its end.
JobPropertiesHost* jobPropertiesHost();
void setJobPropertiesHost(JobPropertiesHost* host);

} // namespace torka
