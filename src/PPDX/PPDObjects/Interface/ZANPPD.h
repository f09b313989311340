// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Groups/GroupName.h"
#include "PPDX/PPDObjects/Groups/PPDXGroups.h"
#include "PPDX/PPDObjects/Groups/PPDXRollDown.h"
#include "PPDX/PPDObjects/Groups/PPDXScrollPane.h"
#include "PPDX/PPDObjects/Interface/PPDX.h"
#include "PPDX/PPDObjects/Interface/PostscriptStore.h"
#include "PPDX/PPDObjects/Properties/PPDXErrors.h"
#include "PPDX/PPDObjects/Properties/PPDXProperties.h"
#include "PPDX/PPDObjects/Properties/PPDXShortcuts.h"
#include "PPDX/Utilities/ModelState.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace torka {

class PPDLint;
class Settings;
enum class PPDLintKind;

// What a parse accepts; a combination of these bits.
using _PARSE_OPTIONS_ = std::uint32_t;
inline constexpr _PARSE_OPTIONS_ kAcceptOrphans = 1; // controls without a group
inline constexpr _PARSE_OPTIONS_ kAcceptHidden = 2;  // pages and groups that are not visible

// The part of the extension language that a description may use, 0 to 3.
using _EXTENSIONS_SUPPORT_ = int;
inline constexpr _EXTENSIONS_SUPPORT_ kAllExtensions = 3;

// The stored preferences of the popup job notes.
struct PopupJobNotePreferences {
    char enable = '0';
    char setting = '1';
    char showLast = '0';
    std::string values; // the remembered values, as the popup dialog wrote them
};

// The maximum content of a description, far above any real one. More is a fatal error: what a description
// takes in memory stays bounded.
struct DescriptionLimits {
    // Pages, groups, placements, controls and their flags, choices, shortcuts, constraints.
    std::size_t elements = 1'000'000;
    std::uint64_t bytes = std::uint64_t{256} * 1024 * 1024; // of the file
};

// One choice of a list supplied at run time.
struct SuppliedPopupItem {
    std::string keyword;
    CFStringRef localName; // null: use the keyword
};

// A printer description with the controller vendor's extension keywords: controls in groups on pages,
// shortcuts, constraints, and the defects found.
//
// Owns all of it, including the controls' PostScript bytes. Parsed once, by a constructor or Build().
// Errors() collects the defects, each with its line. Fatal defects (file, format, memory, limits) end the
// parse. Not thread-safe.
class ZANPPD : public PPDX {
public:
    // Makes an empty model. SetFile, SetExtensions, SetStopOnFirstError and SetLint may follow; Build() fills
    // it.
    explicit ZANPPD(_PARSE_OPTIONS_ options);
    // Parse a file. `pcFileNames` lists the supported descriptions by their "*PCFileName", or is null; see
    // IsSupported().
    ZANPPD(const CFURLRef& url, _PARSE_OPTIONS_ options, CFArrayRef pcFileNames);
    ~ZANPPD() override;

    void SetFile(const FSRef& reference) { file = reference; }
    // Null means none. The collector must outlive the parse.
    void SetLint(PPDLint* collector) { lint = collector; }
    // Discards the content and parses the file if there is one.
    void Build();

    // These never return null once the model is built.
    PPDXControls* GetControls() const { return controls.get(); }
    PPDXGroups* GetGroups() const { return groups.get(); }
    PPDXProperties* GetProperties() const { return properties.get(); }
    PPDXShortcuts* GetShortcuts() const { return shortcuts.get(); }
    UIConstraints* GetUIConstraints() const { return constraints.get(); }
    PPDXErrors* Errors() const { return errors.get(); }
    // Tells whether an error ended the parse.
    bool HasFatalError() const { return hasFatalError; }
    // The maximum number of kept errors. Further ones are dropped, except a fatal one.
    static constexpr std::size_t maximumErrors = 10000;
    // Groups without a page or pane, such as the installable options. Not owned here.
    PPDXRollDown* InstallableOptions() const { return installableOptions; }

    // The management template: every line that contains "*DMT_Injection", each ended by a line feed.
    const std::string& DMTXmlData() const { return dmtXmlData; }

    // Returns false without a file.
    bool GetFileSpec(FSRef& reference) const;
    // Copies the last component of the file's path into `name`, which holds 256 bytes; cuts it to fit.
    // Returns false without a file.
    bool GetPPDFileName(char* name) const;

    // Access to values by key, the control's keyword with its asterisk. Display options have no effect.
    PPDXControl* GetPPDXControlForKey(const CFStringRef& key) const;
    CFStringRef CopyValueForKey(const CFStringRef& key) const; // null for an unknown key
    // Returns false, without a change, for special options, a null value and an unknown key.
    bool SetValueForKey(const CFStringRef& key, const CFStringRef& value);
    CFDictionaryRef CopyAllValues() const;
    // Sets each pair in order. Skips values that are not strings.
    void SetAllValues(const CFDictionaryRef& values);
    // Tells whether selecting the option would conflict with the current selections.
    bool IsKVConstrained(const char* keyword, const char* option) const;

    // Reads the preferences of the popup job notes. Called at the end of a build and when a pane restores
    // values.
    void ReadPUJNPrefs();
    const PopupJobNotePreferences& PUJNPrefs() const { return popupJobNotePreferences; }
    // Supplies those preferences: three characters (enable, setting, show-last) and the remembered values, or
    // nothing. The code that stores them sets one reader for the process. Without a reader nothing counts as
    // stored.
    using PUJNPrefsReader = std::function<std::optional<std::string>()>;
    static void SetPUJNPrefsReader(PUJNPrefsReader reader);

    // Puts a control in its group, else in the installable options when inside their section, else among the
    // orphans. `visible` false permits a group that is not a roll-down.
    void SetupControl(PPDXGroup* group, std::unique_ptr<PPDXControl> control, bool visible);

    bool ParsePSKeywords(PPDStream& stream, const char* keyword) override;

    // Given interface; no caller here
    // Parse a file. `pcFileNames` lists the supported descriptions by their "*PCFileName", or is null; see
    // IsSupported().
    ZANPPD(const FSRef& reference, _PARSE_OPTIONS_ options, CFArrayRef pcFileNames);
    // Rebuilds the description that Save() stored. Parses its file again and restores the stored values. When
    // the file cannot be read, rebuilds it from the settings alone, without constraints.
    ZANPPD(Settings& settings, const CFURLRef& url, CFArrayRef pcFileNames);
    void SetExtensions(_EXTENSIONS_SUPPORT_ level) { extensions = level; }
    _EXTENSIONS_SUPPORT_ GetExtensions() const { return extensions; }
    void SetStopOnFirstError(bool stop) { stopOnFirstError = stop; }
    // Values of "*%QVFileVersion", "*%QVVersion" and "*%QVVersionMac"; null until read.
    const CString* FileVersionQV() const { return fileVersionQV.get(); }
    const CString* VersionQV() const { return versionQV.get(); }
    const CString* VersionMacQV() const { return versionMacQV.get(); }
    // The lines as collected, whether or not ReadCustXmlData accepted them.
    const std::string& DMTInjection() const { return dmtInjection; }
    static _DISPLAY_OPTIONS_ Options() { return gDisplayOptions; }
    static void Options(_DISPLAY_OPTIONS_ options) { gDisplayOptions = options & 3U; }
    static void IncludeOrphans() { gDisplayOptions |= kDisplayOrphans; }
    static void IncludeHidden() { gDisplayOptions |= kDisplayHidden; }
    // Each of the two clears both bits.
    static void ExcludeOrphans() { gDisplayOptions = 0; }
    static void ExcludeHidden() { gDisplayOptions = 0; }
    // Replace a popup's list by choices supplied at run time. An item whose keyword the popup already had
    // keeps that choice's PostScript, and its name when none is supplied. Of items with the same keyword the
    // first counts. New choices are added to the constraint store.
    // Create selects the default. Reconcile keeps the current choice while it is still offered, else selects
    // the default. A default that names no item means the first item. Return false, with nothing changed,
    // when there is no popup of that keyword or no item.
    bool PPDCreatePopupMenu(const char* keyword, std::span<const SuppliedPopupItem> items,
                            const char* defaultKeyword);
    bool PPDReconcilePopupMenu(const char* keyword, std::span<const SuppliedPopupItem> items,
                               const char* defaultKeyword);
    // Stores values, controls, groups and pages for the constructor from settings.
    void Save(Settings& settings) const;
    // Adds every group to its parent: roll-downs to their scroll pane, scroll panes to their page.
    void ResolveHeirarchy();
    // Compares the file and the "*PCFileName".
    bool operator==(const ZANPPD& other) const;

    // For the tests; no caller here
    void SetLimits(const DescriptionLimits& newLimits) { limits = newLimits; }
    // Groups without a page or pane, such as the installable options. Not owned here.
    const std::vector<PPDXGroup*>& OrphanGroups() const { return orphanGroups; }
    // Tells whether "*PCFileName" is one of the supported names, regardless of letter case; true without a
    // list.
    bool IsSupported() const;

protected:
    virtual void Parse();
    virtual void ReadCustXmlData(const std::string& text) { dmtXmlData = text; }

private:
    // What the lines before a control have defined.
    struct ControlDraft {
        std::string keyword;
        std::string flagTexts;
        std::vector<std::string_view> flags; // into flagTexts
        PPDXGroup* group = nullptr;
        long line = 0; // of "*%ZANFlags"
    };
    // A keyword and the name after its "/"; both are views of the line.
    struct NamedToken {
        std::string_view token;
        std::string_view name;
        bool hasName = false;
    };
    struct PostscriptBytes {
        const unsigned char* bytes = nullptr; // in `postscript`
        long length = 0;
    };
    struct BlockStyle;
    struct ChoiceBlock;
    struct CollectedShortcut {
        std::string keyword;
        long line;
    };

    // Dispatch (ZANPPD.cpp)
    void Reset();
    bool TestPPDFile();
    void ParseLines();
    void ParseLine(std::string_view line);
    bool TakeElements(std::size_t count);
    void Report(PPDErr code, std::string_view keyword, long line);
    long Line() const { return static_cast<long>(LineNumber()); }
    void Note(PPDLintKind kind, long line, std::string_view keyword, std::string_view text = {}) const;

    // Tokens (ZANPPDTokens.cpp)
    static std::string_view TakeMainKeyword(PPDStream& line);
    static std::string_view TakeWord(PPDStream& line);
    static NamedToken TakeNamedToken(PPDStream& line, bool trimName = true);
    CFStringRef LocalName(const NamedToken& token, long line);
    CFStringRef Localized(std::string_view text, std::string_view keyword, long line);
    void CheckText(std::string_view text, std::string_view keyword, long line);
    ChoiceName NameOfChoice(const NamedToken& token, long line);
    std::string_view Keep(std::string_view text);
    PostscriptBytes TakePostscript(PPDStream& line);

    // Control definitions (ZANPPDControls.cpp)
    void ParseControlFlags(PPDStream& line);
    void ParseGroupLine(PPDStream& line, ControlDraft& draft);
    void ParseOpenUI(PPDStream& line, ControlDraft& draft, const BlockStyle& style);
    void ReadBlock(const std::string& keyword, ChoiceBlock& block);
    void ReadDefaultLine(PPDStream& line, std::string_view token, const std::string& keyword,
                         ChoiceBlock& block);
    void ReadOptionLine(PPDStream& line, ChoiceBlock& block);
    void FinishBoolean(ControlDraft& draft, ChoiceBlock& block, const CFStringRef& name, long line);
    void FinishPopup(ControlDraft& draft, ChoiceBlock& block, const CFStringRef& name, long line);
    void ParseRange(PPDStream& line, ControlDraft& draft, bool isFloat);
    bool HasPlace(const ControlDraft& draft, std::string_view keyword, bool visible);
    ControlDefinition Define(const ControlDraft& draft, const std::string& keyword,
                             const CFStringRef& name) const;

    // Pages, groups, shortcuts (ZANPPDGroups.cpp)
    enum class Placement { inRollDown, asOrphan, inControlsOnly, noParent, invalidParent };
    Placement PlacementFor(PPDXGroup*& group, bool visible) const;
    void ParsePropPage(PPDStream& line);
    void ParseGroupName(PPDStream& line, PPDErr missingName);
    void ParseParent(PPDStream& line);
    void PlaceScrollPane(const GroupName& child, const std::string& parentName, bool visible);
    void PlaceRollDown(const GroupName& child, const std::string& parentName, bool visible);
    void ParseShortcut(PPDStream& line);
    void ResolveShortcuts();
    void CollectOrphanGroups();
    void OpenInstallableOptions(const NamedToken& group);

    // Job notes (ZANPPDJobNotes.cpp)
    void ParseJobNote(PPDStream& line, ControlDraft* draft);
    bool ReadNoteFlags(PPDStream& line, std::string_view keyword, JobNoteFlagReader& flags);
    void CheckDefaultNote(const PPDXJobNote& note, long line);

    // Constraints and special options (ZANPPDConstraints.cpp)
    void ParseConstraint(PPDStream& line, bool isRequirement);
    void ParseCustomPrintSize(PPDStream& line);
    void ParseSpecialOption(PPDStream& line);
    void SkipTemplateBlock();

    bool ReplacePopupItems(const char* keyword, std::span<const SuppliedPopupItem> items,
                           const char* defaultKeyword, bool keepsCurrent);
    void RestoreElements(Settings& settings);
    void RecordOptions();

    std::optional<FSRef> file;
    std::unique_ptr<PPDXErrors> errors;
    bool stopOnFirstError = false;
    // Declared before the members that point into it: controls are destroyed first.
    PostscriptStore postscript;
    std::unique_ptr<UIConstraints> constraints;
    std::unique_ptr<PPDXProperties> properties;
    std::unique_ptr<PPDXGroups> groups;
    std::unique_ptr<PPDXControls> controls;
    std::unique_ptr<PPDXShortcuts> shortcuts;
    _PARSE_OPTIONS_ parseOptions;
    _EXTENSIONS_SUPPORT_ extensions = kAllExtensions;
    bool inInstallableOptions = false;
    PPDXRollDown* installableOptions = nullptr;      // in `groups`
    PPDXCustomPageSizeControl* customSize = nullptr; // in `controls`
    HeaderValue fileVersionQV;
    HeaderValue versionQV;
    HeaderValue versionMacQV;
    std::unordered_map<std::string, GroupName> groupNames; // while parsing: the first of each name
    std::vector<CollectedShortcut> collectedShortcuts;     // while parsing
    PopupItems choiceRoom; // empty; kept between choice blocks for its capacity
    std::string dmtInjection;
    std::string dmtXmlData;
    std::vector<PPDXGroup*> orphanGroups;
    CFArrayRef supportedFileNames;
    PopupJobNotePreferences popupJobNotePreferences;

    DescriptionLimits limits;
    std::size_t elementsTaken = 0; // by this parse
    PPDLint* lint = nullptr;
    bool hasFatalError = false;
};

// Returns the stored preferences of the popup job notes from the reader set by ZANPPD::SetPUJNPrefsReader.
std::optional<std::string> QVPDEDataRead();

} // namespace torka
