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

#include <tuple>
#include <type_traits>

namespace torka {

class PPDXGroups;

// Calls use.operator()<T>() with T the class of controls of that type, or PPDXControl for `none`.
template <class Use>
decltype(auto) withControlClass(CNTL_TYPE type, Use&& use) {
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

// Numbers of controls of one kind. A control is counted when it is added.
struct CountArray {
    std::size_t total = 0;
    std::size_t orphans = 0;
    std::size_t hidden = 0;
    std::size_t hiddenOrphans = 0;
};

// Holds controls in the order of addition, together and by kind. The description's main collection owns its
// controls and deletes them; a roll-down's collection refers to them.
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

    std::size_t PopupCount() const { return Count(Of<PPDXPopupControl>().counts); }
    std::size_t BooleanCount() const { return Count(Of<PPDXBooleanControl>().counts); }
    std::size_t RangeCount() const { return Count(Of<PPDXRangeControl>().counts); }
    std::size_t FloatRangeCount() const { return Count(Of<PPDXFloatRangeControl>().counts); }
    std::size_t JobNoteCount() const { return Count(Of<PPDXJobNote>().counts); }
    std::size_t CustomPageSizeCount() const { return Count(Of<PPDXCustomPageSizeControl>().counts); }
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
    std::size_t SpecialOptionsCount() const { return Count(Of<PPDXSpecialOption>().counts); }
    bool NoPopups() const { return Of<PPDXPopupControl>().list.Empty(); }
    bool NoBooleanControls() const { return Of<PPDXBooleanControl>().list.Empty(); }
    bool NoRangeControls() const { return Of<PPDXRangeControl>().list.Empty(); }
    bool NoFloatRangeControls() const { return Of<PPDXFloatRangeControl>().list.Empty(); }
    bool NoJobNotes() const { return Of<PPDXJobNote>().list.Empty(); }
    bool NoSpecialOptions() const { return Of<PPDXSpecialOption>().list.Empty(); }
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
    template <class T>
    struct Kind {
        ElementList<T> list;
        CountArray counts;
    };

    template <class T>
    Kind<T>& Of() {
        return std::get<Kind<T>>(kinds);
    }
    template <class T>
    const Kind<T>& Of() const {
        return std::get<Kind<T>>(kinds);
    }
    static std::size_t Count(const CountArray& counts);

    Ownership ownership;
    ElementList<PPDXControl> all;
    std::tuple<Kind<PPDXJobNote>, Kind<PPDXBooleanControl>, Kind<PPDXPopupControl>, Kind<PPDXRangeControl>,
               Kind<PPDXFloatRangeControl>, Kind<PPDXCustomPageSizeControl>, Kind<PPDXSpecialOption>>
        kinds;
};

} // namespace torka
