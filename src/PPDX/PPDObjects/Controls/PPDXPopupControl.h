// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "PPDX/PPDObjects/Controls/PopupItem.h"

namespace torka {

class StoredRecord;

// A list of choices with one (PickOne) or several (PickMany) selected. Owns its items.
class PPDXPopupControl final : public PPDXControl {
public:
    // Selects the first item with the default keyword.
    PPDXPopupControl(const ControlDefinition& definition, bool multiSelect, bool installable,
                     PopupItems items, const char* defaultKeyword);

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override;
    long PostScript(unsigned char* out) const override;
    void Restore(Settings& settings, int index) override;
    // Returns the keyword of the first selected item, "" when none is selected.
    CFStringRef CopyCurrentControlValueString() const override;
    void SetCurrentControlWithCFString(CFStringRef text) override;
    bool IsInstallableOption() const override { return installable; }
    // Returns "" without a default.
    std::string DefaultText() const override;

    std::size_t ItemCount() const { return items.size(); }
    // Return null at the end. An item is valid until one is appended or the list is rebuilt.
    _PopupItem* FirstItem();
    _PopupItem* NextItem();
    // Calls visit(const _PopupItem&) for every item in order. Does not move the cursor.
    template <class Visit>
    void ForEachItem(Visit visit) const {
        for (const _PopupItem& item : items) {
            visit(item);
        }
    }
    // Indexes count from 1; 0 means none.
    int GetValue() const;
    void SetValue(int index);
    int DefaultValue() const;
    const char* GetDefaultKeyword() const;
    // Return null when no item has the keyword or the index.
    CFStringRef GetKeywordCFLocalName(const char* keyword) const;
    CFStringRef CopyCurrentControlValueStringUTF8() const;
    void AppendPopupItem(_PopupItem item);
    bool IsKeywordSelected(const char* keyword) const;
    bool CanSelectMultipleItems() const { return multiSelect != 0; }
    // The keyword of the one choice whose code PostScript returns; "" for none. Of several selected choices
    // it is the one selected or deselected last.
    std::string_view EmittedKeyword() const;
    // Returns whether an item has the keyword.
    bool SetKeywordSelect(const char* keyword, bool select);
    // Writes the feature block of the first item with that keyword; 0 bytes when there is none.
    long GetKeywordPSData(const char* keyword, unsigned char* out) const;

    // Given interface; no caller here
    PPDXPopupControl(Settings& settings, int index, const CString* prefix);
    void SetDefaultValue(int index) { defaultIndexOverride = index; }
    // Return null when no item has the keyword or the index.
    const char* GetKeywordLocalName(const char* keyword) const;
    const char* GetKeywordLocalNameAtIndex(int index) const;
    // Takes a new list of items and selects its default. Returns false and changes nothing when `keyword` is
    // not the control's own or the list is empty.
    bool Rebuild(const char* keyword, PopupItems newItems, const char* newDefault);

private:
    void ReportValue() const override;
    // Returns the position of the first item with that keyword, `none` without one.
    std::size_t PlaceOf(std::string_view keyword) const;
    const _PopupItem* FindItem(const char* keyword) const;
    const _PopupItem* ItemAt(int index) const;
    void TakeItems(PopupItems newItems, const char* newDefault);
    // `isFirstOfKeyword`: no earlier item has the same keyword.
    void SelectNumber(int index, bool isFirstOfKeyword);
    void RestoreSelection(const StoredRecord& record);
    // Takes UTF-8. Selects the item alone or, with `keepOthers`, in addition to the selected ones.
    void SetCurrentControlWithText(const std::string& text, bool keepOthers);
    long ItemPostScript(const _PopupItem* item, unsigned char* out) const;

    std::int32_t multiSelect;
    bool installable;
    std::int32_t defaultIndexOverride = 0;
    // Positions in `items`; `none` means no item.
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    std::size_t cursor = 0;
    std::size_t current = none;         // the item last selected
    mutable std::size_t emitted = none; // the item whose PostScript stands for `current`, none when not known
    std::size_t defaultItem = none;     // the first item with the default keyword

    PopupItems items;
    std::unique_ptr<CString> strayDefault; // a default keyword that no item has
};

} // namespace torka
