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

namespace torka {

class PPDXGroups;

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
    // Rebuilds the controls that Save() stored, owns them, and reports them to the constraint store. Puts
    // each into its roll-down in `groups`. Both may be null.
    PPDXControls(Settings& settings, UIConstraints* constraints, const PPDXGroups* groups);
    PPDXControls(const PPDXControls&) = delete;
    PPDXControls& operator=(const PPDXControls&) = delete;
    ~PPDXControls();

    // Adds a control. An owning collection takes ownership. Ignores null.
    void Add(PPDXControl* control);

    std::size_t PopupCount() const { return Count(popups.counts); }
    std::size_t BooleanCount() const { return Count(booleans.counts); }
    std::size_t RangeCount() const { return Count(ranges.counts); }
    std::size_t FloatRangeCount() const { return Count(floatRanges.counts); }
    std::size_t JobNoteCount() const { return Count(jobNotes.counts); }
    std::size_t CustomPageSizeCount() const { return Count(customPageSizes.counts); }
    std::size_t SpecialOptionsCount() const { return Count(specialOptions.counts); }
    // Counts all kinds except special options.
    std::size_t ControlCount() const;

    // These include every control that was added.
    bool Empty() const { return all.Empty(); }
    bool NoPopups() const { return popups.list.Empty(); }
    bool NoBooleanControls() const { return booleans.list.Empty(); }
    bool NoRangeControls() const { return ranges.list.Empty(); }
    bool NoFloatRangeControls() const { return floatRanges.list.Empty(); }
    bool NoJobNotes() const { return jobNotes.list.Empty(); }
    bool NoSpecialOptions() const { return specialOptions.list.Empty(); }

    // Each kind has its own cursor. Return null at the end, with the type `none`.
    PPDXControl* First(CNTL_TYPE& type);
    PPDXControl* Next(CNTL_TYPE& type);
    PPDXPopupControl* FirstPopupControl();
    PPDXPopupControl* NextPopupControl();
    PPDXBooleanControl* FirstBooleanControl();
    PPDXBooleanControl* NextBooleanControl();
    PPDXRangeControl* FirstRangeControl();
    PPDXRangeControl* NextRangeControl();
    PPDXFloatRangeControl* FirstFloatRangeControl();
    PPDXFloatRangeControl* NextFloatRangeControl();
    PPDXJobNote* FirstJobNote();
    PPDXJobNote* NextJobNote();
    PPDXCustomPageSizeControl* FirstCustomPageSizeControl();
    PPDXCustomPageSizeControl* NextCustomPageSizeControl();
    PPDXSpecialOption* FirstSpecialOption();
    PPDXSpecialOption* NextSpecialOption();

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
    static void AddTo(Kind<T>& kind, PPDXControl* control);
    static std::size_t Count(const CountArray& counts);

    Ownership ownership;
    ElementList<PPDXControl> all;
    Kind<PPDXJobNote> jobNotes;
    Kind<PPDXBooleanControl> booleans;
    Kind<PPDXPopupControl> popups;
    Kind<PPDXRangeControl> ranges;
    Kind<PPDXFloatRangeControl> floatRanges;
    Kind<PPDXCustomPageSizeControl> customPageSizes;
    Kind<PPDXSpecialOption> specialOptions;
};

} // namespace torka
