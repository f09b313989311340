// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/PPDXElement.h"
#include "PPDX/Utilities/PointerList.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class UIConstraints;

enum class CNTL_TYPE : std::int32_t {
    none = 0,
    jobNote = 1,
    range = 2,
    floatRange = 3,
    boolean = 4,
    popup = 5,
    specialOption = 6,
    customPageSize = 7
};

// The parser's data for a new control. The control copies keyword, name and flags. The parser keeps the
// PostScript bytes, which must outlive the control. So must the constraint store, which may be null.
struct ControlDefinition {
    const char* keyword = nullptr;
    CFStringRef localName;
    bool visible = true;
    std::span<const std::string_view> flags;
    UIConstraints* constraints = nullptr;
    const unsigned char* psData = nullptr; // no terminator
    long psLength = 0;                     // bytes; none when not positive
};

// Returns an empty view for null or a length that is not positive.
std::string_view bytesView(const unsigned char* bytes, long length);
// Returns the bytes of a text, without a terminator.
const unsigned char* bytesOf(const std::string& text);

// One option that the user can set. Subclasses hold the value and convert it to text and PostScript. Const
// members may cache results: not thread-safe.
//
// PostScript(null) returns the number of bytes. PostScript(out) writes them to a buffer of that size.
class PPDXControl : public PPDXElement {
public:
    PPDXControl(CNTL_TYPE type, const ControlDefinition& definition);
    ~PPDXControl() override;

    bool OkayToDisplay(const _DISPLAY_OPTIONS_& options) const override;
    // Stores everything needed to rebuild the control, under "Control<index>".
    virtual void Save(Settings& settings, const int& index) const;
    virtual void ResetToDefaultValue();
    virtual long PostScript(unsigned char* out) const;
    // Restores only the value that Save() stored.
    virtual void Restore(Settings& settings, int index);
    virtual CFStringRef CopyCurrentControlValueString() const;
    virtual void SetCurrentControlWithCFString(CFStringRef text);
    virtual CFStringRef CopyPresetValueString() const;
    virtual void SetPresetValueString(CFStringRef text);
    virtual bool IsInstallableOption() const;
    // Returns the default value in UTF-8, in the form of CopyCurrentControlValueString. A kind without a
    // default returns the current value.
    virtual std::string DefaultText() const;

    CNTL_TYPE Type() const { return type; }
    // Returns false for null and for the 30 keywords that no shortcut may name.
    static bool ValidKeyword(const char* keyword);

    // Iterate over a list of C strings. Return null at the end.
    static const char* FirstString(const PointerList& strings, ConstPointerListItr& cursor);
    static const char* NextString(const PointerList& strings, ConstPointerListItr& cursor);
    const char* FirstControlFlag();
    const char* NextControlFlag();
    bool FindControlFlag(const char* name) const;

    bool IsDynamic() const { return FindControlFlag("Dynamic"); }
    bool IsNoTorkaDriverUI() const {
        return FindControlFlag("NoTorkaDriverUI") || FindControlFlag("DriverUserDisplayHidden");
    }

    const unsigned char* PSData() const { return psData; }
    long PSLength() const { return psLength; }

    // Replaces every "<name>" of the template by `value`. A job note's value becomes a hex string or is
    // escaped as its place needs it (see the source). Does not search an inserted value again. Returns the
    // length of `out`, 0 when memory runs out or the result could exceed 64 MiB.
    long Inject(const char* name, const unsigned char* psTemplate, long templateLength, const char* value,
                std::string& out) const;
    // Writes "%%BeginFeature: KEYWORD OPTION", the bytes (a single line feed for none) and "%%EndFeature";
    // without `wrap` only the bytes. Returns the number of bytes. A null `out` only counts them.
    long GeneratePSOutputData(unsigned char* out, const unsigned char* ps, long length,
                              std::string_view option, bool wrap) const;
    // Reports the current selection to the constraint store. Does nothing without a store or a text.
    void UpdateKVCache(const char* keyword, const char* value) const;
    // Sets the store of a control rebuilt from settings, and reports the value to it.
    void SetConstraints(UIConstraints* store);

    // Given interface; no caller here
    PPDXControl(CNTL_TYPE type, Settings& settings, int index, const CString* prefix);
    std::size_t ControlFlagCount() const { return flags.Size(); }
    bool IsCommand() const { return FindControlFlag("Command"); }
    bool IsSpooler() const { return FindControlFlag("Spooler"); }
    bool IsSetup() const { return FindControlFlag("Setup"); }
    bool IsMacFJN() const { return FindControlFlag("MacFJN"); }
    bool IsMacImgShift() const { return FindControlFlag("MacIS"); }
    UIConstraints* Constraints() const { return constraints; }
    void UpdateKVCache(std::int64_t keyword, std::int64_t value) const;

protected:
    // Reports the current value to the store. Does nothing in controls whose values the store does not track.
    virtual void ReportValue() const;
    // Keeps bytes that came from settings and have no other owner.
    const unsigned char* KeepBytes(std::string_view bytes);

private:
    void SetFlags(std::span<const std::string_view> words);

    CNTL_TYPE type;
    PointerList flags; // of const char*, into `flagTexts`
    ConstPointerListItr flagCursor;
    const unsigned char* psData;
    long psLength;
    UIConstraints* constraints;

    std::unique_ptr<char[]> flagTexts;
    std::vector<std::unique_ptr<unsigned char[]>> keptBytes;
};

// Given interface; no caller here
// Return false for null.
bool IsSpoolerControl(const PPDXControl* control);
bool IsNoTorkaDriverUIControl(const PPDXControl* control);
bool IsSetupControl(const PPDXControl* control);

} // namespace torka
