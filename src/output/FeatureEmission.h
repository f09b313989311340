// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "output/EmissionSource.h"
#include "output/LeftOutSetting.h"
#include "output/ZANJobNoteList.h"
#include "output/ZANJobTicket.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class PPDXControls;

// Why the ticket is filled. Effects outside the ticket (a workflow job, the command that names the file
// destination) happen only for a job that is printed. A dialog that closes and keeps its settings has none.
enum class EmissionPurpose { printJob, keepSettings };

// Turns the state of every control and of the side lists into PostScript fragments and adds them to a job
// ticket, in one fixed order. Reads the source and the description, owns neither. Lives for one emission.
//
// Omits what exceeds its maximum (1,024 bytes; 5,120 for a watermark), and a scale below 0, writes a line to
// the log and lists it.
// The keyword of such a setting is not suppressed, and a popup's or boolean's choice goes into the print
// settings (systemChoicesSetting), so that the system's own code prints it. Replaces line breaks in values by
// blanks, so that no value can leave its line.
class FeatureEmission {
public:
    FeatureEmission(const EmissionSource& emissionSource, ZANJobTicket& jobTicket,
                    PMPrintSession printSession, EmissionPurpose emissionPurpose);

    // Always returns 0.
    OSStatus OutPostscriptData();
    // The fields that the job lacks because they could not be enciphered, and a protected mailbox name
    // without which the job has no file destination. The caller shows them to the user.
    const std::vector<ZANJobNoteList::LeftOutNote>& LeftOutNotes() const { return leftOutNotes; }
    // What the job lacks because it is too long or below 0.
    const std::vector<LeftOutSetting>& LeftOutSettings() const { return leftOutSettings; }

private:
    void SuppressApplePostscript();
    void AddFirstControl(PPDXControl* control);
    void AddControl(PPDXControl* control);
    void AddFurtherControl(PPDXControl* control, CNTL_TYPE type);
    void AddNUpForHost();
    void AddSourceApplication();
    void AddSideLists();
    void AddColourSettings();
    void AddColourSetting(const char* keyword);
    void AddCurveAdjustment();
    void AddControlBar();
    void AddJobNotes();
    void AddWatermark();
    void AddScale();
    void AddPaperCatalogue();
    void AddCustomPrintSize();
    void AddPrintSize();
    void AddFileDestination();
    void AddEndMarkers();
    void AddFeature(std::string_view keyword, std::string_view value);
    void AddDynamicOption(std::string_view keyword, std::string_view text, bool escapesParentheses);
    // Returns false when the fragment is too long and omitted.
    bool AddFragment(std::string_view keyword, const std::string& fragment);
    void LeaveOut(const LeftOutSetting& setting);
    void LeaveToTheSystem();

    const EmissionSource& source;
    ZANJobTicket& ticket;
    PMPrintSession session;
    EmissionPurpose purpose;
    PPDXControls* controls;
    std::string controlBarValue;
    std::vector<ZANJobNoteList::LeftOutNote> leftOutNotes;
    std::vector<LeftOutSetting> leftOutSettings;
};

} // namespace torka
