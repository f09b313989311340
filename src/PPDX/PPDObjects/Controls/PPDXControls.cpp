// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXControls.h"

#include "PPDX/PPDObjects/Groups/PPDXGroups.h"
#include "PPDX/PPDObjects/Groups/PPDXRollDown.h"
#include "PPDX/PPDObjects/StoredRecord.h"

#include <algorithm>
#include <limits>

namespace torka {

namespace {

constexpr const char* countKey = "Controls.count";

bool isShown(const PPDXControl* control) { return control->OkayToDisplay(gDisplayOptions); }

CNTL_TYPE typeOf(const PPDXControl* control) { return control ? control->Type() : CNTL_TYPE::none; }

int storedCount(const Settings& settings) {
    const std::int64_t count = settings.GetInteger(countKey).value_or(0);
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
    visitControl(*control, [this]<class T>(T& own) {
        if constexpr (!std::is_same_v<T, PPDXControl>) {
            Kind<T>& kind = Of<T>();
            kind.list.Add(&own);
            ++kind.counts.total;
            kind.counts.orphans += std::size_t{own.IsOrphan()};
            kind.counts.hidden += std::size_t{!own.IsVisible()};
            kind.counts.hiddenOrphans += std::size_t{own.IsOrphan() && !own.IsVisible()};
        }
    });
}

std::size_t PPDXControls::Count(const CountArray& counts) {
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

PPDXPopupControl* PPDXControls::FirstPopupControl() { return Of<PPDXPopupControl>().list.First(isShown); }
PPDXPopupControl* PPDXControls::NextPopupControl() { return Of<PPDXPopupControl>().list.Next(isShown); }
PPDXBooleanControl* PPDXControls::FirstBooleanControl() {
    return Of<PPDXBooleanControl>().list.First(isShown);
}
PPDXBooleanControl* PPDXControls::NextBooleanControl() { return Of<PPDXBooleanControl>().list.Next(isShown); }
PPDXRangeControl* PPDXControls::FirstRangeControl() { return Of<PPDXRangeControl>().list.First(isShown); }
PPDXRangeControl* PPDXControls::NextRangeControl() { return Of<PPDXRangeControl>().list.Next(isShown); }
PPDXFloatRangeControl* PPDXControls::FirstFloatRangeControl() {
    return Of<PPDXFloatRangeControl>().list.First(isShown);
}
PPDXFloatRangeControl* PPDXControls::NextFloatRangeControl() {
    return Of<PPDXFloatRangeControl>().list.Next(isShown);
}
PPDXJobNote* PPDXControls::FirstJobNote() { return Of<PPDXJobNote>().list.First(isShown); }
PPDXJobNote* PPDXControls::NextJobNote() { return Of<PPDXJobNote>().list.Next(isShown); }
PPDXCustomPageSizeControl* PPDXControls::FirstCustomPageSizeControl() {
    return Of<PPDXCustomPageSizeControl>().list.First(isShown);
}
PPDXCustomPageSizeControl* PPDXControls::NextCustomPageSizeControl() {
    return Of<PPDXCustomPageSizeControl>().list.Next(isShown);
}
PPDXSpecialOption* PPDXControls::FirstSpecialOption() { return Of<PPDXSpecialOption>().list.First(isShown); }
PPDXSpecialOption* PPDXControls::NextSpecialOption() { return Of<PPDXSpecialOption>().list.Next(isShown); }

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
    return Of<PPDXPopupControl>().list.Find(keyword, exact);
}
PPDXBooleanControl* PPDXControls::FindBoolean(const char* keyword, bool exact) const {
    return Of<PPDXBooleanControl>().list.Find(keyword, exact);
}
PPDXRangeControl* PPDXControls::FindRangeControl(const char* keyword, bool exact) const {
    return Of<PPDXRangeControl>().list.Find(keyword, exact);
}
PPDXFloatRangeControl* PPDXControls::FindFloatRangeControl(const char* keyword, bool exact) const {
    return Of<PPDXFloatRangeControl>().list.Find(keyword, exact);
}
PPDXJobNote* PPDXControls::FindJobNote(const char* keyword, bool exact) const {
    return Of<PPDXJobNote>().list.Find(keyword, exact);
}
PPDXCustomPageSizeControl* PPDXControls::FindCustomPageSizeControl(const char* keyword, bool exact) const {
    return Of<PPDXCustomPageSizeControl>().list.Find(keyword, exact);
}
PPDXSpecialOption* PPDXControls::FindSpecialOption(const char* keyword, bool exact) const {
    return Of<PPDXSpecialOption>().list.Find(keyword, exact);
}

void PPDXControls::Save(Settings& settings) const {
    int index = 0;
    ForEach([&](const PPDXControl* control) { control->Save(settings, index++); });
    settings.SetInteger(countKey, index);
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
