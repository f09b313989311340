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

// What the parser knows of a control when it makes one. Keyword, name and flags are copied; the PostScript
// bytes stay the parser's and must outlive the control, and so must the constraint store (which may be
// missing).
struct ControlDefinition {
    const char* keyword = nullptr;
    CFStringRef localName;
    bool visible = true;
    std::span<const std::string_view> flags;
    UIConstraints* constraints = nullptr;
    const unsigned char* psData = nullptr; // no terminator
    long psLength = 0;                     // bytes; none when not positive
};

// Empty for null or a length that is not positive.
std::string_view bytesView(const unsigned char* bytes, long length);
// The bytes of a text; no terminator counts.
const unsigned char* bytesOf(const std::string& text);

// One option that the user can set. Subclasses hold the value and say how it becomes text and PostScript.
//
// PostScript(out): with null the number of bytes that would be written, with a buffer of that size the bytes.
class PPDXControl : public PPDXElement {
public:
    PPDXControl(CNTL_TYPE type, const ControlDefinition& definition);
    PPDXControl(CNTL_TYPE type, Settings& settings, int index, const CString* prefix);
    ~PPDXControl() override;

    bool OkayToDisplay(const _DISPLAY_OPTIONS_& options) const override;
    // Everything needed to rebuild the control, under "Control<index>".
    virtual void Save(Settings& settings, const int& index) const;
    virtual void ResetToDefaultValue();
    virtual long PostScript(unsigned char* out);
    // The value alone, from what Save() stored.
    virtual void Restore(Settings& settings, int index);
    virtual CFStringRef CopyCurrentControlValueString();
    virtual void SetCurrentControlWithCFString(CFStringRef text);
    virtual CFStringRef CopyPresetValueString();
    virtual void SetPresetValueString(CFStringRef text);
    virtual bool IsInstallableOption() const;

    CNTL_TYPE Type() const { return type; }
    // False for null and for the 30 keywords that no shortcut may name.
    static bool ValidKeyword(const char* keyword);

    // The texts of a list of C strings in turn; null at its end.
    static const char* FirstString(const PointerList& strings, ConstPointerListItr& cursor);
    static const char* NextString(const PointerList& strings, ConstPointerListItr& cursor);
    const char* FirstControlFlag();
    const char* NextControlFlag();
    std::size_t ControlFlagCount() const { return flags.Size(); }
    bool FindControlFlag(const char* name) const;

    bool IsDynamic() const { return FindControlFlag("Dynamic"); }
    bool IsCommand() const { return FindControlFlag("Command"); }
    bool IsSpooler() const { return FindControlFlag("Spooler"); }
    bool IsNoTorkaDriverUI() const {
        return FindControlFlag("NoTorkaDriverUI") || FindControlFlag("DriverUserDisplayHidden");
    }
    bool IsSetup() const { return FindControlFlag("Setup"); }
    bool IsMacFJN() const { return FindControlFlag("MacFJN"); }
    bool IsMacImgShift() const { return FindControlFlag("MacIS"); }

    const unsigned char* PSData() const { return psData; }
    long PSLength() const { return psLength; }
    UIConstraints* Constraints() const { return constraints; }

    // Puts `value` for every "<name>" of the template; a job note's value goes in as a hex string, see the
    // source. Returns the length of `out`, 0 when memory is short or the result would pass 64 MiB. A value
    // that holds the placeholder is not looked at again.
    long Inject(const char* name, const unsigned char* psTemplate, long templateLength, const char* value,
                std::string& out) const;
    // "%%BeginFeature: KEYWORD OPTION", the bytes (a single line feed for none), "%%EndFeature"; without
    // `wrap` the bytes alone. Returns the byte count; a null `out` asks for it only.
    long GeneratePSOutputData(unsigned char* out, const unsigned char* ps, long length,
                              std::string_view option, bool wrap) const;
    // Tells the constraint store what is selected now; nothing without a store or a text.
    void UpdateKVCache(const char* keyword, const char* value) const;
    void UpdateKVCache(std::int64_t keyword, std::int64_t value) const;
    // Gives a control rebuilt from settings its store, and tells the store its value.
    void SetConstraints(UIConstraints* store);

protected:
    // Tells the store the current value; controls whose values it does not follow do nothing.
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

// False for null.
bool IsSpoolerControl(const PPDXControl* control);
bool IsNoTorkaDriverUIControl(const PPDXControl* control);
bool IsSetupControl(const PPDXControl* control);

} // namespace torka
