// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXBooleanControl.h"
#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "PPDX/PPDObjects/Controls/PPDXCustomPageSizeControl.h"
#include "PPDX/PPDObjects/Controls/PPDXFloatRangeControl.h"
#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "PPDX/PPDObjects/Controls/PPDXPopupControl.h"
#include "PPDX/PPDObjects/Controls/PPDXRangeControl.h"
#include "PPDX/PPDObjects/Controls/PPDXSpecialOption.h"
#include "PPDX/PPDObjects/ElementList.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

namespace torka {

class PPDXGroups;

// Calls use.operator()<T>() with T the class of controls of that type, or PPDXControl for `none`.
template <class Use>
constexpr decltype(auto) withControlClass(CNTL_TYPE type, Use&& use) {
    switch (type) {
    case CNTL_TYPE::jobNote:
        return use.template operator()<PPDXJobNote>();
    case CNTL_TYPE::range:
        return use.template operator()<PPDXRangeControl>();
    case CNTL_TYPE::floatRange:
        return use.template operator()<PPDXFloatRangeControl>();
    case CNTL_TYPE::boolean:
        return use.template operator()<PPDXBooleanControl>();
    case CNTL_TYPE::popup:
        return use.template operator()<PPDXPopupControl>();
    case CNTL_TYPE::specialOption:
        return use.template operator()<PPDXSpecialOption>();
    case CNTL_TYPE::customPageSize:
        return use.template operator()<PPDXCustomPageSizeControl>();
    case CNTL_TYPE::none:
        break;
    }
    return use.template operator()<PPDXControl>();
}

// Calls `visit` with the control cast to its class.
template <class Control, class Visit>
decltype(auto) visitControl(Control& control, Visit&& visit) {
    return withControlClass(control.Type(), [&]<class T>() -> decltype(auto) {
        return visit(static_cast<std::conditional_t<std::is_const_v<Control>, const T, T>&>(control));
    });
}

inline constexpr std::size_t numberOfControlTypes = static_cast<std::size_t>(CNTL_TYPE::customPageSize) + 1;

// The type of the controls of class T.
template <class T>
constexpr CNTL_TYPE typeOfControl = [] {
    for (std::size_t i = 1; i < numberOfControlTypes; ++i) {
        const auto type = static_cast<CNTL_TYPE>(i);
        if (withControlClass(type, []<class Each>() { return std::is_same_v<Each, T>; })) {
            return type;
        }
    }
    return CNTL_TYPE::none;
}();

// Numbers of controls of one kind. A control is counted when it is added.
struct CountArray {
    std::uint32_t total = 0;
    std::uint32_t orphans = 0;
    std::uint32_t hidden = 0;
    std::uint32_t hiddenOrphans = 0;
};

// Holds controls in the order of addition, in one list with a cursor for each kind. The description's main
// collection owns its controls and deletes them; a roll-down's collection refers to them.
//
// Counts and First/Next obey the current display options; Find does not. Set a control's parent before adding
// it.
class PPDXControls {
public:
    enum class Ownership { owns, refers };

    explicit PPDXControls(Ownership ownership = Ownership::owns);
    PPDXControls(const PPDXControls&) = delete;
    PPDXControls& operator=(const PPDXControls&) = delete;
    ~PPDXControls();

    // Adds a control. An owning collection takes ownership. Ignores null.
    void Add(PPDXControl* control);

    std::size_t PopupCount() const { return Count(typeOfControl<PPDXPopupControl>); }
    std::size_t BooleanCount() const { return Count(typeOfControl<PPDXBooleanControl>); }
    std::size_t RangeCount() const { return Count(typeOfControl<PPDXRangeControl>); }
    std::size_t FloatRangeCount() const { return Count(typeOfControl<PPDXFloatRangeControl>); }
    std::size_t JobNoteCount() const { return Count(typeOfControl<PPDXJobNote>); }
    std::size_t CustomPageSizeCount() const { return Count(typeOfControl<PPDXCustomPageSizeControl>); }
    // Counts all kinds except special options.
    std::size_t ControlCount() const;

    // These include every control that was added.
    bool Empty() const { return all.Empty(); }

    // Each kind has its own cursor. Return null at the end, with the type `none`.
    PPDXControl* First(CNTL_TYPE& type);
    PPDXControl* Next(CNTL_TYPE& type);
    PPDXJobNote* FirstJobNote();
    PPDXJobNote* NextJobNote();

    // Calls visit(PPDXControl*) for every control in order, regardless of the display options.
    template <class Visit>
    void ForEach(Visit visit) const {
        all.ForEach(visit);
    }

    // Returns the first control in list order whose keyword equals (exact) or contains the argument. Returns
    // null, with the type `none`, for null or no match.
    PPDXControl* Find(const char* keyword, CNTL_TYPE& type, bool exact) const;
    // Does the same among the controls that the current display options show.
    PPDXControl* FindDisplayed(const char* keyword, CNTL_TYPE& type, bool exact) const;
    PPDXPopupControl* FindPopup(const char* keyword, bool exact) const;
    PPDXBooleanControl* FindBoolean(const char* keyword, bool exact) const;
    PPDXRangeControl* FindRangeControl(const char* keyword, bool exact) const;
    PPDXFloatRangeControl* FindFloatRangeControl(const char* keyword, bool exact) const;
    PPDXJobNote* FindJobNote(const char* keyword, bool exact) const;
    PPDXCustomPageSizeControl* FindCustomPageSizeControl(const char* keyword, bool exact) const;
    PPDXSpecialOption* FindSpecialOption(const char* keyword, bool exact) const;

    // Given interface; no caller here
    // Rebuilds the controls that Save() stored, owns them, and reports them to the constraint store. Puts
    // each into its roll-down in `groups`. Both may be null.
    PPDXControls(Settings& settings, UIConstraints* constraints, const PPDXGroups* groups);
    std::size_t SpecialOptionsCount() const { return Count(typeOfControl<PPDXSpecialOption>); }
    bool NoPopups() const { return Counts(typeOfControl<PPDXPopupControl>).total == 0; }
    bool NoBooleanControls() const { return Counts(typeOfControl<PPDXBooleanControl>).total == 0; }
    bool NoRangeControls() const { return Counts(typeOfControl<PPDXRangeControl>).total == 0; }
    bool NoFloatRangeControls() const { return Counts(typeOfControl<PPDXFloatRangeControl>).total == 0; }
    bool NoJobNotes() const { return Counts(typeOfControl<PPDXJobNote>).total == 0; }
    bool NoSpecialOptions() const { return Counts(typeOfControl<PPDXSpecialOption>).total == 0; }
    PPDXPopupControl* FirstPopupControl();
    PPDXPopupControl* NextPopupControl();
    PPDXBooleanControl* FirstBooleanControl();
    PPDXBooleanControl* NextBooleanControl();
    PPDXRangeControl* FirstRangeControl();
    PPDXRangeControl* NextRangeControl();
    PPDXFloatRangeControl* FirstFloatRangeControl();
    PPDXFloatRangeControl* NextFloatRangeControl();
    PPDXCustomPageSizeControl* FirstCustomPageSizeControl();
    PPDXCustomPageSizeControl* NextCustomPageSizeControl();
    PPDXSpecialOption* FirstSpecialOption();
    PPDXSpecialOption* NextSpecialOption();
    void Save(Settings& settings) const;
    // Restores the values that Save() stored, for the controls with the same keyword and type.
    void Restore(Settings& settings);

private:
    struct Kind {
        ElementCursor cursor = noElement;
        CountArray counts;
    };
    using Kinds = std::array<Kind, numberOfControlTypes>;

    template <class T>
    T* FirstOf();
    template <class T>
    T* NextOf();
    template <class T>
    T* FindOf(const char* keyword, bool exact) const;
    CountArray Counts(CNTL_TYPE type) const {
        return kinds ? (*kinds)[static_cast<std::size_t>(type)].counts : CountArray{};
    }
    std::size_t Count(CNTL_TYPE type) const;

    Ownership ownership;
    ElementList<PPDXControl> all;
    std::unique_ptr<Kinds> kinds; // made with the first control
};

} // namespace torka
