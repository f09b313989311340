#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "output/EmissionSource.h"
#include "output/ZANJobNoteList.h"
#include "output/ZANJobTicket.h"

#include <string>
#include <string_view>
#include <vector>

namespace torka {

class PPDXControls;

// Why the ticket is filled. Effects outside the ticket (a workflow job, the command that names the file
// destination) belong to a job that is printed, not to a dialog that closes and only keeps its settings.
enum class EmissionPurpose { printJob, keepSettings };

// Turns the state of every control and of the side lists into PostScript fragments and adds them to a job
// ticket, in one fixed order. Reads its source and the description, owns neither; lives for one emission.
//
// A fragment that does not fit its limit (1,024 bytes; 5,120 for a watermark) is left out, with a line in the
// log. Line breaks in values become blanks, so that no value can leave its line.
class FeatureEmission {
public:
    FeatureEmission(const EmissionSource& emissionSource, ZANJobTicket& jobTicket,
                    PMPrintSession printSession, EmissionPurpose emissionPurpose);

    // Always 0.
    OSStatus OutPostscriptData();
    // The fields that the job lacks because they could not be enciphered; for the person who prints.
    const std::vector<ZANJobNoteList::LeftOutNote>& LeftOutNotes() const { return leftOutNotes; }

private:
    void SuppressApplePostscript();
    void AddFirstControl(PPDXControl* control);
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
    // False when the fragment is too long and left out.
    bool AddFragment(const std::string& fragment);

    const EmissionSource& source;
    ZANJobTicket& ticket;
    PMPrintSession session;
    EmissionPurpose purpose;
    PPDXControls* controls;
    std::string controlBarValue;
    std::vector<ZANJobNoteList::LeftOutNote> leftOutNotes;
};

} // namespace torka
