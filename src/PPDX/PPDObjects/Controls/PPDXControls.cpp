// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXControls.h"

#include "PPDX/PPDObjects/Groups/PPDXGroups.h"
#include "PPDX/PPDObjects/Groups/PPDXRollDown.h"
#include "PPDX/PPDObjects/StoredRecord.h"

#include <algorithm>
#include <limits>

namespace torka {

namespace {

constexpr const char* controlCount = "Controls.count";

bool isShown(const PPDXControl* control) { return control->OkayToDisplay(gDisplayOptions); }

CNTL_TYPE typeOf(const PPDXControl* control) { return control ? control->Type() : CNTL_TYPE::none; }

int storedCount(const Settings& settings) {
    const std::int64_t count = settings.GetInteger(controlCount).value_or(0);
    return static_cast<int>(std::clamp<std::int64_t>(count, 0, std::numeric_limits<int>::max()));
}

// Null for a type that is none.
std::unique_ptr<PPDXControl> makeStored(Settings& settings, int index) {
    const int type = StoredRecord(settings, "Control", index).Index("type");
    if (type > static_cast<int>(CNTL_TYPE::customPageSize)) {
        return nullptr;
    }
    return withControlClass(static_cast<CNTL_TYPE>(type), [&]<class T>() -> std::unique_ptr<PPDXControl> {
        if constexpr (std::is_same_v<T, PPDXControl>) {
            return std::make_unique<T>(CNTL_TYPE::none, settings, index, nullptr);
        } else {
            return std::make_unique<T>(settings, index, nullptr);
        }
    });
}

} // namespace

PPDXControls::PPDXControls(Ownership newOwnership)
    : ownership(newOwnership) {}

PPDXControls::PPDXControls(Settings& settings, UIConstraints* constraints, const PPDXGroups* groups)
    : ownership(Ownership::owns) {
    const int count = storedCount(settings);
    for (int index = 0; index < count; ++index) {
        const StoredRecord record(settings, "Control", index);
        if (!record.Has("type")) {
            break;
        }
        std::unique_ptr<PPDXControl> control = makeStored(settings, index);
        if (!control) {
            continue;
        }
        const auto parent = groups ? record.Text("parent") : std::nullopt;
        auto* rollDown = parent ? dynamic_cast<PPDXRollDown*>(groups->Find(parent->c_str(), true)) : nullptr;
        if (rollDown) {
            control->SetParent(rollDown);
            rollDown->Controls().Add(control.get());
        }
        control->SetConstraints(constraints);
        Add(control.release());
    }
}

PPDXControls::~PPDXControls() {
    if (ownership == Ownership::owns) {
        all.ForEach([](PPDXControl* control) { const std::unique_ptr<PPDXControl> owned(control); });
    }
}

void PPDXControls::Add(PPDXControl* control) {
    if (!control) {
        return;
    }
    all.Add(control);
    if (!kinds) {
        kinds = std::make_unique<Kinds>();
    }
    CountArray& counts = (*kinds)[static_cast<std::size_t>(control->Type())].counts;
    ++counts.total;
    counts.orphans += std::uint32_t{control->IsOrphan()};
    counts.hidden += std::uint32_t{!control->IsVisible()};
    counts.hiddenOrphans += std::uint32_t{control->IsOrphan() && !control->IsVisible()};
}

std::size_t PPDXControls::Count(CNTL_TYPE type) const {
    const CountArray counts = Counts(type);
    switch (gDisplayOptions) {
    case 0:
        return counts.total - counts.orphans - counts.hidden + counts.hiddenOrphans;
    case kDisplayOrphans:
        return counts.total - counts.hidden;
    case kDisplayHidden:
        return counts.total - counts.orphans;
    case kDisplayOrphans | kDisplayHidden:
        return counts.total;
    default:
        return 0;
    }
}

template <class T>
T* PPDXControls::FirstOf() {
    if (kinds) {
        (*kinds)[static_cast<std::size_t>(typeOfControl<T>)].cursor = 0;
    }
    return NextOf<T>();
}

template <class T>
T* PPDXControls::NextOf() {
    if (!kinds) {
        return nullptr;
    }
    ElementCursor& cursor = (*kinds)[static_cast<std::size_t>(typeOfControl<T>)].cursor;
    return static_cast<T*>(all.Next(cursor, [](const PPDXControl* control) {
        return control->Type() == typeOfControl<T> && isShown(control);
    }));
}

template <class T>
T* PPDXControls::FindOf(const char* keyword, bool exact) const {
    const auto isOfKind = [](const PPDXControl* control) { return control->Type() == typeOfControl<T>; };
    return Counts(typeOfControl<T>).total == 0 ? nullptr
                                               : static_cast<T*>(all.Find(keyword, exact, isOfKind));
}

std::size_t PPDXControls::ControlCount() const {
    return PopupCount() + BooleanCount() + RangeCount() + FloatRangeCount() + JobNoteCount() +
           CustomPageSizeCount();
}

PPDXControl* PPDXControls::First(CNTL_TYPE& type) {
    PPDXControl* control = all.First(isShown);
    type = typeOf(control);
    return control;
}

PPDXControl* PPDXControls::Next(CNTL_TYPE& type) {
    PPDXControl* control = all.Next(isShown);
    type = typeOf(control);
    return control;
}

PPDXPopupControl* PPDXControls::FirstPopupControl() { return FirstOf<PPDXPopupControl>(); }
PPDXPopupControl* PPDXControls::NextPopupControl() { return NextOf<PPDXPopupControl>(); }
PPDXBooleanControl* PPDXControls::FirstBooleanControl() { return FirstOf<PPDXBooleanControl>(); }
PPDXBooleanControl* PPDXControls::NextBooleanControl() { return NextOf<PPDXBooleanControl>(); }
PPDXRangeControl* PPDXControls::FirstRangeControl() { return FirstOf<PPDXRangeControl>(); }
PPDXRangeControl* PPDXControls::NextRangeControl() { return NextOf<PPDXRangeControl>(); }
PPDXFloatRangeControl* PPDXControls::FirstFloatRangeControl() { return FirstOf<PPDXFloatRangeControl>(); }
PPDXFloatRangeControl* PPDXControls::NextFloatRangeControl() { return NextOf<PPDXFloatRangeControl>(); }
PPDXJobNote* PPDXControls::FirstJobNote() { return FirstOf<PPDXJobNote>(); }
PPDXJobNote* PPDXControls::NextJobNote() { return NextOf<PPDXJobNote>(); }
PPDXCustomPageSizeControl* PPDXControls::FirstCustomPageSizeControl() {
    return FirstOf<PPDXCustomPageSizeControl>();
}
PPDXCustomPageSizeControl* PPDXControls::NextCustomPageSizeControl() {
    return NextOf<PPDXCustomPageSizeControl>();
}
PPDXSpecialOption* PPDXControls::FirstSpecialOption() { return FirstOf<PPDXSpecialOption>(); }
PPDXSpecialOption* PPDXControls::NextSpecialOption() { return NextOf<PPDXSpecialOption>(); }

PPDXControl* PPDXControls::Find(const char* keyword, CNTL_TYPE& type, bool exact) const {
    PPDXControl* control = all.Find(keyword, exact);
    type = typeOf(control);
    return control;
}

PPDXControl* PPDXControls::FindDisplayed(const char* keyword, CNTL_TYPE& type, bool exact) const {
    PPDXControl* control = all.Find(keyword, exact, isShown);
    type = typeOf(control);
    return control;
}

PPDXPopupControl* PPDXControls::FindPopup(const char* keyword, bool exact) const {
    return FindOf<PPDXPopupControl>(keyword, exact);
}
PPDXBooleanControl* PPDXControls::FindBoolean(const char* keyword, bool exact) const {
    return FindOf<PPDXBooleanControl>(keyword, exact);
}
PPDXRangeControl* PPDXControls::FindRangeControl(const char* keyword, bool exact) const {
    return FindOf<PPDXRangeControl>(keyword, exact);
}
PPDXFloatRangeControl* PPDXControls::FindFloatRangeControl(const char* keyword, bool exact) const {
    return FindOf<PPDXFloatRangeControl>(keyword, exact);
}
PPDXJobNote* PPDXControls::FindJobNote(const char* keyword, bool exact) const {
    return FindOf<PPDXJobNote>(keyword, exact);
}
PPDXCustomPageSizeControl* PPDXControls::FindCustomPageSizeControl(const char* keyword, bool exact) const {
    return FindOf<PPDXCustomPageSizeControl>(keyword, exact);
}
PPDXSpecialOption* PPDXControls::FindSpecialOption(const char* keyword, bool exact) const {
    return FindOf<PPDXSpecialOption>(keyword, exact);
}

void PPDXControls::Save(Settings& settings) const {
    int index = 0;
    ForEach([&](const PPDXControl* control) { control->Save(settings, index++); });
    settings.SetInteger(controlCount, index);
}

void PPDXControls::Restore(Settings& settings) {
    const int count = storedCount(settings);
    for (int index = 0; index < count; ++index) {
        const StoredRecord record(settings, "Control", index);
        const auto keyword = record.Text("keyword");
        if (!record.Has("type")) {
            break;
        }
        const auto type = static_cast<CNTL_TYPE>(record.Index("type"));
        PPDXControl* control =
            !keyword ? nullptr : all.Find(keyword->c_str(), true, [type](const PPDXControl* own) {
                return own->Type() == type;
            });
        if (control) {
            control->Restore(settings, index);
        }
    }
}

} // namespace torka
