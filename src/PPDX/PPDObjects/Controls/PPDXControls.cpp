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

std::unique_ptr<PPDXControl> makeStored(Settings& settings, int index) {
    switch (static_cast<CNTL_TYPE>(StoredRecord(settings, "Control", index).Index("type"))) {
    case CNTL_TYPE::none:
        return std::make_unique<PPDXControl>(CNTL_TYPE::none, settings, index, nullptr);
    case CNTL_TYPE::jobNote:
        return std::make_unique<PPDXJobNote>(settings, index, nullptr);
    case CNTL_TYPE::range:
        return std::make_unique<PPDXRangeControl>(settings, index, nullptr);
    case CNTL_TYPE::floatRange:
        return std::make_unique<PPDXFloatRangeControl>(settings, index, nullptr);
    case CNTL_TYPE::boolean:
        return std::make_unique<PPDXBooleanControl>(settings, index, nullptr);
    case CNTL_TYPE::popup:
        return std::make_unique<PPDXPopupControl>(settings, index, nullptr);
    case CNTL_TYPE::specialOption:
        return std::make_unique<PPDXSpecialOption>(settings, index, nullptr);
    case CNTL_TYPE::customPageSize:
        return std::make_unique<PPDXCustomPageSizeControl>(settings, index, nullptr);
    }
    return nullptr;
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

template <class T>
void PPDXControls::AddTo(Kind<T>& kind, PPDXControl* control) {
    auto* own = static_cast<T*>(control);
    kind.list.Add(own);
    ++kind.counts.total;
    kind.counts.orphans += std::size_t{own->IsOrphan()};
    kind.counts.hidden += std::size_t{!own->IsVisible()};
    kind.counts.hiddenOrphans += std::size_t{own->IsOrphan() && !own->IsVisible()};
}

void PPDXControls::Add(PPDXControl* control) {
    if (!control) {
        return;
    }
    all.Add(control);
    switch (control->Type()) {
    case CNTL_TYPE::none:
        return;
    case CNTL_TYPE::jobNote:
        return AddTo(jobNotes, control);
    case CNTL_TYPE::range:
        return AddTo(ranges, control);
    case CNTL_TYPE::floatRange:
        return AddTo(floatRanges, control);
    case CNTL_TYPE::boolean:
        return AddTo(booleans, control);
    case CNTL_TYPE::popup:
        return AddTo(popups, control);
    case CNTL_TYPE::specialOption:
        return AddTo(specialOptions, control);
    case CNTL_TYPE::customPageSize:
        return AddTo(customPageSizes, control);
    }
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

PPDXPopupControl* PPDXControls::FirstPopupControl() { return popups.list.First(isShown); }
PPDXPopupControl* PPDXControls::NextPopupControl() { return popups.list.Next(isShown); }
PPDXBooleanControl* PPDXControls::FirstBooleanControl() { return booleans.list.First(isShown); }
PPDXBooleanControl* PPDXControls::NextBooleanControl() { return booleans.list.Next(isShown); }
PPDXRangeControl* PPDXControls::FirstRangeControl() { return ranges.list.First(isShown); }
PPDXRangeControl* PPDXControls::NextRangeControl() { return ranges.list.Next(isShown); }
PPDXFloatRangeControl* PPDXControls::FirstFloatRangeControl() { return floatRanges.list.First(isShown); }
PPDXFloatRangeControl* PPDXControls::NextFloatRangeControl() { return floatRanges.list.Next(isShown); }
PPDXJobNote* PPDXControls::FirstJobNote() { return jobNotes.list.First(isShown); }
PPDXJobNote* PPDXControls::NextJobNote() { return jobNotes.list.Next(isShown); }
PPDXCustomPageSizeControl* PPDXControls::FirstCustomPageSizeControl() {
    return customPageSizes.list.First(isShown);
}
PPDXCustomPageSizeControl* PPDXControls::NextCustomPageSizeControl() {
    return customPageSizes.list.Next(isShown);
}
PPDXSpecialOption* PPDXControls::FirstSpecialOption() { return specialOptions.list.First(isShown); }
PPDXSpecialOption* PPDXControls::NextSpecialOption() { return specialOptions.list.Next(isShown); }

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
    return popups.list.Find(keyword, exact);
}
PPDXBooleanControl* PPDXControls::FindBoolean(const char* keyword, bool exact) const {
    return booleans.list.Find(keyword, exact);
}
PPDXRangeControl* PPDXControls::FindRangeControl(const char* keyword, bool exact) const {
    return ranges.list.Find(keyword, exact);
}
PPDXFloatRangeControl* PPDXControls::FindFloatRangeControl(const char* keyword, bool exact) const {
    return floatRanges.list.Find(keyword, exact);
}
PPDXJobNote* PPDXControls::FindJobNote(const char* keyword, bool exact) const {
    return jobNotes.list.Find(keyword, exact);
}
PPDXCustomPageSizeControl* PPDXControls::FindCustomPageSizeControl(const char* keyword, bool exact) const {
    return customPageSizes.list.Find(keyword, exact);
}
PPDXSpecialOption* PPDXControls::FindSpecialOption(const char* keyword, bool exact) const {
    return specialOptions.list.Find(keyword, exact);
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
