#pragma once

#include "bidi/commands/Wait.h"
#include "platform/Printing.h"

#include <memory>
#include <string>

namespace torka {

// What the Job Properties module's session and callbacks ask of the pane. The pane implements it; the session
// looks at it and owns nothing of it.
class JobPropertiesHost {
public:
    JobPropertiesHost() = default;
    JobPropertiesHost(const JobPropertiesHost&) = delete;
    JobPropertiesHost& operator=(const JobPropertiesHost&) = delete;
    virtual ~JobPropertiesHost() = default;

    // The text of the queue's two-way data file as it was read last (BidiDataFile); null or empty for none.
    virtual std::shared_ptr<const std::string> getBidiDataCopy() const = 0;
    // Null without one.
    virtual PMPrinter CurrentPrinter() const = 0;
    // The administrator's template, UTF-8; "" without one.
    virtual std::string TemplateText() const = 0;
    // The window's title: "Printing Preferences" of the table "BidiStrings" of the pane's bundle, UTF-8.
    virtual std::string WindowTitle() const = 0;
    // Called about ten times a second while the module or the spooler is waited for, so that a person sees it
    // and can stop it: platform::System's sleeps then end with false.
    virtual WaitObserver Observer() { return {}; }
};

// The host of the panel on show. Written by the panel, at its start and with null at its end; null: no pane.
JobPropertiesHost* jobPropertiesHost();
void setJobPropertiesHost(JobPropertiesHost* host);

} // namespace torka
