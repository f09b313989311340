// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/EmissionSource.h"
#include "output/ZANWatermark.h"
#include "platform/memory/MemoryPrinting.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace torka {

class PPDXControl;
class PPDXCustomPageSizeControl;
class PPDXJobNote;
class PPDXPopupControl;

// A job's options by name.
using OptionMap = std::map<std::string, std::string, std::less<>>;
// The choices that the print server's own code prints: main keyword without asterisk, and choices.
using ServerChoices = std::map<std::string, std::vector<std::string>, std::less<>>;

// What the queue keeps for its jobs.
struct QueueFacts {
    bool isTwoWay = false;
    std::vector<std::string> watermarks; // definitions
    // The print server's own filters have laid out the pages and put their feature code into the document.
    bool isLaidOut = true;
};

// What becomes of a job whose settings are in conflict, or whose options cannot be followed.
enum class ConflictPolicy {
    print,   // it prints as asked
    resolve, // it prints with the change that ends all conflicts
    stop
};

// The settings that a job's options name. docs/options.md describes the options.
//
// Puts them into the description's controls and supplies the rest of an emission. Names of options, choices
// and truth values compare without regard to the case of ASCII letters, as libcups compares them. Refers to
// the description, which must outlive it and have its default values. Texts are UTF-8 and repeat texts of the
// job.
class OptionSettings final : public EmissionSource {
public:
    OptionSettings(ZANPPD& model, QueueFacts queueFacts);
    ~OptionSettings() override;

    // Whether the name is one that the print server gives every job or uses itself, and no setting has.
    static bool IsServersOwn(std::string_view name);
    // Whether a name that the description does not have was meant as one of its settings.
    static bool LooksLikeSetting(std::string_view name);
    // Whether an option of this name alone never makes NamesSettings true, whatever the description.
    static bool IsLeftAlone(std::string_view name);
    // Whether an option names a setting that is ours to print, or asks for something else than printing in
    // spite of conflicts. The page size and the collation alone are the print server's.
    bool NamesSettings(const OptionMap& options) const;

    // Empties every note that is protected or only masked, and takes none from options.
    void LeaveSecretsOut();
    // Takes the options: first what the server prints, then what each option says.
    void Take(const OptionMap& options, const ServerChoices& server);

    ConflictPolicy Policy() const { return policy; }
    // The keywords of the protected notes that options gave. Nothing of them was taken.
    const std::vector<std::string>& ProtectedNotes() const { return protectedNotes; }
    // What the options ask and the job does not follow, one sentence each.
    const std::vector<std::string>& Remarks() const { return remarks; }
    // Changes the settings so that all conflicts end. Never changes the page size, installable options, or
    // what the pane does not offer. Keeps what options gave where it can. Returns the changes, one text each;
    // none when there is no conflict or no way out.
    std::vector<std::string> Resolve();
    // Whether the server's own code prints the present value of this keyword.
    bool IsPrintedByServer(std::string_view keyword) const;
    // Whether it does so alone: for the page size and the collation, which its filters decide, and for what
    // our code cannot say.
    bool IsLeftToServer(std::string_view keyword) const;

    // EmissionSource
    ZANPPD* Description() const override { return &description; }
    PMPrintSettings Settings() const override { return settings; }
    std::uint16_t PageOrientation() const override { return orientation; }
    bool IsPageSizeSuppressed() const override { return facts.isLaidOut; }
    bool IsTwoWayEnabled() const override { return facts.isTwoWay; }
    std::span<const WideSetting> MixedMedia() const override { return {}; }
    std::span<const WideSetting> PadCovers() const override { return {}; }
    std::span<const WideSetting> SlipSheets() const override { return {}; }
    std::span<const WideSetting> CoverPages() const override { return {}; }
    std::span<const WideSetting> PaperCatalogue() const override { return {}; }
    ZANWatermark* SelectedWatermark() const override { return watermark.get(); }

private:
    PPDXControl* Find(std::string_view name) const;
    PPDXControl* FindSetting(std::string_view name) const;
    bool ChangesSides(std::string_view sides) const;
    void TakeServerChoices();
    void TakeOwnOption(std::string_view name, const std::string& value);
    void TakeLayout(const OptionMap& options);
    bool IsLost(const PPDXControl& control, std::string_view name, const std::string& value);
    void TakeValue(PPDXControl& control, const std::string& value);
    void TakeChoice(PPDXPopupControl& popup, const std::string& value);
    bool IsRefused(const PPDXJobNote& note, const std::string& text);
    void TakeNote(PPDXJobNote& note, const std::string& text);
    void TakeSize(PPDXCustomPageSizeControl& control, std::string_view value);
    void TakeWatermark(const std::string& name);
    void Remark(std::string text) { remarks.push_back(std::move(text)); }

    ZANPPD& description;
    QueueFacts facts;
    ServerChoices serverChoices;
    std::unordered_map<std::string, PPDXControl*> byName; // lower case, without asterisk
    std::shared_ptr<platform::MemoryPrintSettings> settings;
    std::uint16_t orientation = kPMPortrait;
    std::unique_ptr<ZANWatermark> watermark;
    ConflictPolicy policy = ConflictPolicy::print;
    bool takesSecrets = true;
    std::set<const PPDXControl*> given;   // by an option of their own
    std::set<const PPDXControl*> changed; // by Resolve
    std::vector<std::string> protectedNotes;
    std::vector<std::string> remarks;
};

} // namespace torka
