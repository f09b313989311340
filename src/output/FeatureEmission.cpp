// SPDX-License-Identifier: Apache-2.0
#include "output/FeatureEmission.h"

#include "MarkLetters.h"
#include "PPDX/PPDObjects/Controls/ColourKeywords.h"
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Interface/UTF8Level.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/Utilities/ModelState.h"
#include "PPDX/Utilities/PostScriptText.h"
#include "output/BundleIdentifier.h"
#include "output/DynamicOption.h"
#include "output/WorkflowUpload.h"
#include "output/ZANWatermark.h"
#include "platform/Log.h"
#include "platform/System.h"
#include "platform/TextCase.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <utility>

namespace torka {

EmissionSource::~EmissionSource() = default;

namespace {

constexpr std::size_t fragmentSize = 1024;
constexpr std::size_t watermarkSize = 5120;
constexpr std::size_t sideListTextSize = 256; // characters of a side list's fragment
constexpr std::size_t controlBarSize = 128;
constexpr std::size_t printSizeTextSize = 64;
constexpr std::size_t mailboxSize = 1024;
constexpr std::size_t versionTextSize = 128;

constexpr int firstVersionWithControlBarRule = 6;
constexpr int firstVersionWithUnicodeCatalogue = 3;
constexpr int lastHostVersionWithNUp = 5;

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
    return CFStringCompare(cfString(left), cfString(right), kCFCompareCaseInsensitive) == 0;
}

std::string cut(std::string text, std::size_t size) {
    if (text.size() >= size) {
        text.resize(size - 1);
    }
    return text;
}

std::string headerText(const CString* value) {
    return value == nullptr || value->Buffer() == nullptr ? std::string() : std::string(value->Buffer());
}

bool isKeyword(const PPDXControl* control, std::string_view keyword) {
    return control != nullptr && control->Keyword() != nullptr && keyword == control->Keyword();
}

std::string valueOf(const PPDXControl* control) {
    return control == nullptr ? std::string() : utf8Text(control->CopyCurrentControlValueString());
}

// Returns the text as the note's own code carries it: UTF-8 with that mark, else the note's bytes.
std::string textOf(const PPDXJobNote* note) {
    return note == nullptr || note->IsUTF8() ? valueOf(note) : note->GetNotes();
}

bool containsColourKeyword(std::string_view keyword) {
    for (std::size_t at = keyword.find('*'); at != std::string_view::npos; at = keyword.find('*', at + 1)) {
        const std::string_view rest = keyword.substr(at);
        if (std::ranges::any_of(dynamicColourKeywords,
                                [rest](std::string_view each) { return rest.starts_with(each); })) {
            return true;
        }
    }
    return false;
}

// Finds the first control with this keyword that is not a job note.
PPDXControl* findSetting(const PPDXControls& controls, const char* keyword) {
    if (PPDXControl* popup = controls.FindPopup(keyword, true)) {
        return popup;
    }
    if (PPDXControl* boolean = controls.FindBoolean(keyword, true)) {
        return boolean;
    }
    if (PPDXControl* range = controls.FindRangeControl(keyword, true)) {
        return range;
    }
    return controls.FindFloatRangeControl(keyword, true);
}

// Formats a number with two decimals, in the C locale.
std::string twoDecimals(double value) {
    std::array<char, 400> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 2);
    return {text.data(), end.ptr};
}

std::string_view withoutAsterisk(std::string_view keyword) {
    return keyword.starts_with('*') ? keyword.substr(1) : keyword;
}

} // namespace

FeatureEmission::FeatureEmission(const EmissionSource& emissionSource, ZANJobTicket& jobTicket,
                                 PMPrintSession printSession, EmissionPurpose emissionPurpose)
    : source(emissionSource)
    , ticket(jobTicket)
    , session(std::move(printSession))
    , purpose(emissionPurpose)
    , controls(source.Description()->GetControls()) {}

OSStatus FeatureEmission::OutPostscriptData() {
    SuppressApplePostscript();
    if (PPDXPopupControl* controlBar = controls->FindPopup("*QVControlBar", true)) {
        controlBarValue = cut(valueOf(controlBar), controlBarSize);
    }
    if (purpose == EmissionPurpose::printJob && source.IsTwoWayEnabled() &&
        controls->FindSpecialOption("*Rondure", true) != nullptr) {
        UploadKestrelXMLFiles(*source.Description(), source.Settings(), 2);
    }
    refreshUTF8Level(controls);

    CNTL_TYPE type{};
    PPDXControl* control = controls->First(type);
    AddFirstControl(control);
    AddNUpForHost();
    AddSourceApplication();
    while (control != nullptr) {
        control = controls->Next(type);
        AddFurtherControl(control, type);
    }
    AddSideLists();
    AddColourSettings();
    AddCurveAdjustment();
    AddControlBar();
    AddJobNotes();
    AddWatermark();
    AddScale();
    AddPaperCatalogue();
    AddCustomPrintSize();
    AddPrintSize();
    AddFileDestination();
    AddEndMarkers();
    LeaveToTheSystem();
    return noErr;
}

void FeatureEmission::SuppressApplePostscript() {
    CNTL_TYPE type{};
    for (PPDXControl* control = controls->First(type); control != nullptr; control = controls->Next(type)) {
        if (control->Keyword() != nullptr && !isKeyword(control, "*PageSize")) {
            ticket.Add(siteSuppressedKeyword, std::string_view(control->Keyword()));
        }
    }
}

// Adds the first control of any kind, except a note that leaves only enciphered: the notes' step adds that.
void FeatureEmission::AddFirstControl(PPDXControl* control) {
    if (!leavesEncipheredOnly(*source.Description(), control)) {
        AddControl(control);
    }
}

// A note's own step adds it whatever its length.
void FeatureEmission::AddControl(PPDXControl* control) {
    const std::size_t tooLong = ticket.Add(siteDocumentSetup, control);
    if (control != nullptr && tooLong > 0 && dynamic_cast<PPDXJobNote*>(control) == nullptr) {
        LeaveOut({control->Keyword() == nullptr ? "" : control->Keyword(), tooLong, maximumControlText});
    }
}

// For an old layout application that turns non-upright pages itself.
void FeatureEmission::AddNUpForHost() {
    const platform::HostApplication host = platform::system().Host();
    if (host.bundleIdentifier.find("InDesign") == std::string::npos) {
        return;
    }
    const std::string major = host.shortVersionString.substr(0, host.shortVersionString.find('.'));
    const std::uint16_t orientation = source.PageOrientation();
    if (CFStringGetIntValue(cfString(major)) > lastHostVersionWithNUp || orientation == kPMPortrait ||
        orientation == kPMReversePortrait) {
        return;
    }
    AddFragment("",
                "%%ZAN Begin N-Up_Setting\r\nuserdict /TorkaRMdict known\r\n{\r\nTorkaRMdict /ZANDoing_N_Up "
                "known\r\n{ 1 false TorkaRMdict /ZANDoing_N_Up get exec } if\r\n} if\r\n%%ZAN End\r\n");
}

void FeatureEmission::AddSourceApplication() {
    const std::string name =
        withoutLineBreaks(platform::upperCaseUtf8(platform::system().Host().processName));
    AddFragment("*QVSourceAppType", "%%BeginFeature: *QVSourceAppType " + name + "\n\n%%EndFeature\n");
}

void FeatureEmission::AddFurtherControl(PPDXControl* control, CNTL_TYPE type) {
    if (control == nullptr || control->Keyword() == nullptr) {
        return;
    }
    if (source.IsPageSizeSuppressed() && isKeyword(control, "*PageSize")) {
        return;
    }
    if (gQVUTF8Version >= firstVersionWithControlBarRule && isKeyword(control, "*QVControlBar") &&
        controlBarValue != "True") {
        return;
    }
    if (type != CNTL_TYPE::jobNote && !containsColourKeyword(control->Keyword())) {
        const bool hasOwnStep = isKeyword(control, "*QVScale") || isKeyword(control, "*QVPrintSize") ||
                                isKeyword(control, "*QVOrientation") || isKeyword(control, "*Collate");
        if (!hasOwnStep) {
            AddControl(control);
            return;
        }
    }
    if (isKeyword(control, "*QVOrientation") && !control->IsNoTorkaDriverUI()) {
        AddFragment("*QVOrientation", "%%BeginFeature: *QVOrientation False\n%%EndFeature\n");
    }
}

void FeatureEmission::AddSideLists() {
    for (const auto list :
         {source.MixedMedia(), source.PadCovers(), source.SlipSheets(), source.CoverPages()}) {
        for (const WideSetting& setting : list) {
            const std::string key = utf8FromWide(setting.key);
            const std::wstring_view bareKey =
                std::wstring_view(setting.key).substr(setting.key.starts_with(L'*') ? 1 : 0);
            if (bareKey.empty()) {
                continue; // a slot in use without content
            }
            // The limit counts the characters of the whole fragment, as wide text.
            static const std::size_t frame = std::strlen("%%BeginFeature: * \n%%EndFeature\n");
            if (bareKey.size() + setting.value.size() + frame > sideListTextSize) {
                LeaveOut({key.starts_with('*') ? key : "*" + key,
                          bareKey.size() + setting.value.size() + frame, sideListTextSize});
                continue;
            }
            AddFeature(key, utf8FromWide(setting.value));
        }
    }
}

void FeatureEmission::AddFeature(std::string_view keyword, std::string_view value) {
    const std::string name = "*" + withoutLineBreaks(withoutAsterisk(keyword));
    AddFragment(name, "%%BeginFeature: " + name + " " + withoutLineBreaks(value) + "\n%%EndFeature\n");
}

void FeatureEmission::AddColourSettings() {
    for (const std::string_view keyword : dynamicColourKeywords) {
        AddColourSetting(keyword.data());
    }
}

void FeatureEmission::AddColourSetting(const char* keyword) {
    PPDXControl* control = findSetting(*controls, keyword);
    PPDXJobNote* note = controls->FindJobNote(keyword, true);
    if (note != nullptr && source.IsTwoWayEnabled()) {
        if (!leavesEncipheredOnly(*source.Description(), note)) {
            AddDynamicOption(keyword, textOf(note), true);
        }
        return;
    }
    if (control != nullptr && note != nullptr) {
        note->SetNotes("");
    }
    if (control != nullptr) {
        AddControl(control);
    }
}

void FeatureEmission::AddDynamicOption(std::string_view keyword, std::string_view text,
                                       bool escapesParentheses) {
    std::string shown = withoutLineBreaks(text);
    std::string string = shown;
    if (shown.find(markLetters) != std::string::npos) {
        shown = withByteOrderMarks(shown);
        string = shown;
        if (escapesParentheses) {
            string = replaceWithBackslashIfNeeded(")", replaceWithBackslashIfNeeded("(", std::move(string)));
        }
    }
    std::string fragment = "%%BeginFeature: ";
    fragment += keyword;
    fragment += " " + shown + "\n /RMXsetDynamicOption where\n        { pop (";
    fragment += keyword;
    fragment += ") (" + asStringBody(string) + ") RMXsetDynamicOption } if\n%%EndFeature\n";
    AddFragment(keyword, fragment);
}

void FeatureEmission::AddCurveAdjustment() {
    CNTL_TYPE type{};
    PPDXControl* control = controls->Find("*QVCurveAdjust", type, true);
    if (control != nullptr && !leavesEncipheredOnly(*source.Description(), control)) {
        AddDynamicOption("*QVCurveAdjust", valueOf(control), false);
    }
}

void FeatureEmission::AddControlBar() {
    if (gQVUTF8Version < firstVersionWithControlBarRule || controlBarValue == "True" ||
        !source.IsTwoWayEnabled()) {
        return;
    }
    PPDXPopupControl* control = controls->FindPopup("*QVControlBar", true);
    if (control == nullptr || control->GetDefaultKeyword() == nullptr) {
        return;
    }
    const std::string value = valueOf(control);
    if (value == control->GetDefaultKeyword()) {
        return;
    }
    PPDXJobNote* note = controls->FindJobNote("*QVControlBar", true);
    const std::string noteText =
        leavesEncipheredOnly(*source.Description(), note) ? std::string() : textOf(note);
    AddDynamicOption("*QVControlBar", noteText.empty() ? value : noteText, false);
}

void FeatureEmission::AddJobNotes() {
    ZANJobNoteList notes(*source.Description());
    notes.SetPageOrientation(source.PageOrientation());
    notes.outInjectionData(&ticket, source.Settings());
    leftOutNotes = notes.LeftOut();
}

void FeatureEmission::AddWatermark() {
    ZANWatermark* watermark = source.SelectedWatermark();
    if (watermark == nullptr) {
        return;
    }
    const std::string resource =
        watermark->Resource(headerText(source.Description()->LanguageVersion()), source.PageOrientation());
    if (resource.size() < watermarkSize) {
        ticket.Add(siteDocumentSetup, resource);
    } else {
        LeaveOut({"watermark", resource.size(), watermarkSize - 1});
    }
}

void FeatureEmission::AddScale() {
    PPDXRangeControl* control = controls->FindRangeControl("*QVScale", true);
    if (control == nullptr) {
        return;
    }
    const auto scale = control->GetValue();
    if (scale < 0) { // the factor has no sign
        LeaveOut({"*QVScale", 0, 0, true});
        return;
    }
    const std::string factor =
        std::to_string(scale / 100) + "." + std::to_string(scale / 10 % 10) + std::to_string(scale % 10);
    AddFragment("*QVScale", "%%BeginFeature: *QVScale " + std::to_string(scale) +
                                "\n userdict /RMXZANsetpageproperties known {  << /RMXSetQVScale [ " +
                                factor + " ] >> RMXZANsetpageproperties } { /RMXSetQVScale where { pop " +
                                factor + " RMXSetQVScale } if } ifelse \n%%EndFeature\n");
}

void FeatureEmission::AddPaperCatalogue() {
    if (!source.IsTwoWayEnabled()) {
        return;
    }
    const ZANPPD& description = *source.Description();
    const bool isMacJapanese = headerText(description.LanguageVersion()) == "Japanese" &&
                               gQVUTF8Version < firstVersionWithUnicodeCatalogue;
    bool isAnyAdded = false;
    for (const WideSetting& setting : source.PaperCatalogue()) {
        if (std::wcstol(setting.value.c_str(), nullptr, 10) == -1) {
            continue;
        }
        const std::string key = withoutLineBreaks(utf8FromWide(setting.key));
        std::string text = "%%BeginFeature: *" + std::string(withoutAsterisk(key)) + " " +
                           withoutLineBreaks(utf8FromWide(setting.value)) + "\n%%EndFeature\n";
        if (isMacJapanese) {
            const CFStringRef units = cfString(text);
            text = encodeText(units->units, kCFStringEncodingMacJapanese).value_or(text);
        }
        isAnyAdded |= AddFragment(key, text);
    }
    PPDXControl* printSize = findSetting(*controls, "*QVPrintSize");
    if (!isAnyAdded || printSize == nullptr || !headerText(description.MakerVersion()).starts_with('3')) {
        return;
    }
    const std::string size = valueOf(printSize);
    AddFeature("*QVPCPPDSize", equalsIgnoringCase(size, "CustomPrintSize") ? "CustomPageSize0"
                                                                           : cut(size, printSizeTextSize));
}

void FeatureEmission::AddCustomPrintSize() {
    const PPDXCustomPageSizeControl* control = controls->FindCustomPageSizeControl("*CustomPrintSize", true);
    if (control == nullptr ||
        !equalsIgnoringCase(valueOf(findSetting(*controls, "*QVPrintSize")), "CustomPrintSize")) {
        return;
    }
    double width = control->GetWidth();
    double height = control->GetHeight();
    if (controls->FindSpecialOption("*QVCustomPgSzRoundingOff", true) != nullptr) {
        width = std::floor(width + 0.5);
        height = std::floor(height + 0.5);
    }
    const std::string size = twoDecimals(width) + " " + twoDecimals(height);
    AddFragment("*CustomPrintSize",
                "%%BeginFeature: *CustomPrintSize " + size +
                    "\n   userdict /RMXZANsetpageproperties known\n   {<< /RMXsetPrintSize [ " + size +
                    " 0 0 1 ] >> RMXZANsetpageproperties} if\n%%EndFeature\n");
}

void FeatureEmission::AddPrintSize() {
    PPDXPopupControl* printSize = controls->FindPopup("*QVPrintSize", true);
    PPDXPopupControl* pageSize = controls->FindPopup("*PageSize", true);
    if (printSize == nullptr || pageSize == nullptr) {
        return;
    }
    const char* defaultChoice = printSize->GetDefaultKeyword();
    const bool followsPageSize =
        defaultChoice == nullptr || std::strcmp(defaultChoice, "QVPrintSizeDEF") != 0;
    if (followsPageSize && !source.IsPageSizeSuppressed() &&
        equalsIgnoringCase(valueOf(printSize), valueOf(pageSize))) {
        AddFragment("*QVPrintSize", "%%BeginFeature: *QVPrintSize SameAsPageSize\n\n%%EndFeature\n");
    } else {
        AddControl(printSize);
    }
}

void FeatureEmission::AddFileDestination() {
    PPDXControl* mailbox = source.Description()->GetPPDXControlForKey(cfString("*QVMailboxName"));
    if (mailbox == nullptr ||
        !equalsIgnoringCase(valueOf(findSetting(*controls, "*QVDestination")), "File")) {
        return;
    }
    // Site and command carry the name in plain.
    if (leavesEncipheredOnly(*source.Description(), mailbox)) {
        leftOutNotes.push_back(
            {mailbox->Keyword(), utf8Text(mailbox->CFStringUserName()), LeftOutReason::plainDestination});
        myNSLogC("The job names no file destination: %s is marked for protection.", mailbox->Keyword());
        return;
    }
    const std::string path = "Library/Caches/ZAN/" + cut(valueOf(mailbox), mailboxSize);
    ticket.Add(siteFileDestination, path);
    PMPrinter printer;
    if (purpose == EmissionPurpose::printJob && PMSessionGetCurrentPrinter(session, printer) == noErr) {
        PMPrinterSendCommand(printer, cfString("/" + path), cfString("Command_PSQVDestination"), nullptr);
    }
}

void FeatureEmission::AddEndMarkers() {
    ticket.Add(siteDriverComment, std::string_view("%%ZANDriver\n"));
    ticket.Add(siteSetupEnd,
               std::string_view("%%EndTorkaPreparse1: True\n/RMXPPDInsertionComplete where { pop "
                                "RMXPPDInsertionComplete } if\n"));
    if (PPDXSpecialOption* version = controls->FindSpecialOption("*QVUTF8_Version", true)) {
        const std::string text = withoutLineBreaks(cut(valueOf(version), versionTextSize));
        ticket.Add(siteDriverComment, "%%QVUTF8_Version: " + text + " \n");
    }
}

bool FeatureEmission::AddFragment(std::string_view keyword, const std::string& fragment) {
    if (fragment.size() < fragmentSize) {
        ticket.Add(siteDocumentSetup, fragment);
        return true;
    }
    LeaveOut({std::string(keyword), fragment.size(), fragmentSize - 1});
    return false;
}

// A setting that two steps leave out counts once.
void FeatureEmission::LeaveOut(const LeftOutSetting& setting) {
    if (std::ranges::find(leftOutSettings, setting.keyword, &LeftOutSetting::keyword) !=
        leftOutSettings.end()) {
        return;
    }
    leftOutSettings.push_back(setting);
    const char* const keyword = setting.keyword.c_str();
    if (setting.isBelowZero) {
        myNSLogC("The setting %s is below 0, and is left out.", keyword);
    } else {
        myNSLogC("The setting %s needs %zu bytes in the job, where %zu have room, and is left out.", keyword,
                 setting.bytes, setting.maximum);
    }
}

// The system's own code prints the settings that are left out: their keywords are not suppressed, and the
// choices go along as job options. The text of a note never does.
void FeatureEmission::LeaveToTheSystem() {
    const CFStringRef place = cfString(systemChoicesSetting);
    std::vector<CFDictionary::Pair> choices;
    for (const LeftOutSetting& setting : leftOutSettings) {
        const char* const keyword = setting.keyword.c_str();
        ticket.Withdraw(siteSuppressedKeyword, keyword);
        PPDXControl* control = controls->FindPopup(keyword, true);
        if (control == nullptr) {
            control = controls->FindBoolean(keyword, true);
        }
        if (control != nullptr) {
            choices.emplace_back(cfString(withoutAsterisk(setting.keyword)),
                                 control->CopyCurrentControlValueString());
        }
    }
    CFTypeRef former;
    if (!choices.empty() || PMPrintSettingsGetValue(source.Settings(), place, former) == noErr) {
        PMPrintSettingsSetValue(source.Settings(), place, CFDictionaryCreate(choices), false);
    }
}

} // namespace torka
