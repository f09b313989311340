// SPDX-License-Identifier: Apache-2.0
#include "connection/BonjourModuleController.h"

#include "connection/AddressText.h"
#include "connection/BonjourIPDiscovery.h"
#include "connection/ServiceTypes.h"
#include "platform/Alert.h"
#include "platform/System.h"

#include <algorithm>
#include <utility>

namespace torka {

namespace {

constexpr EventTimerInterval progressTime{15.0};
constexpr EventTimerInterval reloadPause{0.1};
constexpr EventTimerInterval searchAgainPause{5.0};
constexpr std::chrono::milliseconds moduleResolveTimeout{15000}; // equals progressTime

CFStringRef withoutServiceDomain(const CFStringRef& text) {
    for (const std::string_view type : {printerService, dataStreamService}) {
        const std::string suffix = serviceSuffix(type);
        const std::u16string domain(suffix.begin(), suffix.end());
        if (CFStringHasSuffix(text, domain)) {
            return CFStringCreateWithCharacters(
                std::u16string_view(text->units).substr(0, text->units.size() - domain.size()));
        }
    }
    return text ? text : cfString("");
}

bool isNumeric(const CFStringRef& text) {
    HostAddress ignored;
    return parseNumericAddress(utf8Text(text), ignored);
}

// Replaces the marks in a text of the bundle by the addresses. Marks inside an address are not replaced.
std::string withAddresses(const std::string& text, const std::string& before, const std::string& after) {
    constexpr std::string_view oldMark = "{old}";
    constexpr std::string_view newMark = "{new}";
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view rest = std::string_view(text).substr(at);
        if (rest.starts_with(oldMark)) {
            result += before;
            at += oldMark.size();
        } else if (rest.starts_with(newMark)) {
            result += after;
            at += newMark.size();
        } else {
            result += text[at++];
        }
    }
    return result;
}

// The device URI of a service. Bytes of its name that are not allowed in a host are escaped.
CFURLRef serviceUrl(const CFStringRef& instanceName) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string url = "mdns://";
    for (const char c : utf8Text(instanceName)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 && isAddressCharacter(byte)) {
            url += c;
        } else {
            url += {'%', digits[byte >> 4U], digits[byte & 15U]};
        }
    }
    return CFURLCreateWithString(cfString(url + serviceSuffix(printerService) + "/"));
}

// Compares two controllers in ascending order: −1, 0 or 1.
int compareControllers(ControllerColumn column, const FoundController& left, const FoundController& right) {
    if (column == ControllerColumn::name) {
        return CFStringCompare(left.name, right.name, kCFCompareCaseInsensitive);
    }
    if (left.number && right.number) {
        return intSort(*left.number, *right.number);
    }
    return CFStringCompare(left.address, right.address, kCFCompareCaseInsensitive);
}

} // namespace

BonjourModuleViewDelegate::~BonjourModuleViewDelegate() = default;
BonjourModuleView::~BonjourModuleView() = default;
BonjourModuleOwner::~BonjourModuleOwner() = default;

int intSort(std::int64_t left, std::int64_t right) {
    return left < right ? -1 : static_cast<int>(left > right);
}

std::shared_ptr<BonjourModuleController> BonjourModuleController::init(BonjourModuleOwner& owner,
                                                                       BonjourModuleView& view) {
    if (BonjourModuleController* kept = owner.GetsBonjourModuleController()) {
        return kept->shared_from_this();
    }
    std::shared_ptr<BonjourModuleController> controller(new BonjourModuleController(owner, view));
    owner.setsBonjourModuleController(controller.get());
    return controller;
}

BonjourModuleController::BonjourModuleController(BonjourModuleOwner& panelModel, BonjourModuleView& widgets)
    : owner(panelModel)
    , view(widgets)
    , printerAddress(cfString("")) {
    view.setDelegate(this);
    view.setBidiState(false);
    view.setBidiCheckBoxEnabled(true);
    view.setConfigureButtonEnabled(false);
}

BonjourModuleController::~BonjourModuleController() {
    if (sessionRunning) {
        CloseSheet();
    }
    view.setDelegate(nullptr);
    owner.setsBonjourModuleController(nullptr);
}

void BonjourModuleController::setprinterIPField(const CFStringRef& address) {
    printerAddress = withoutServiceDomain(address);
    isServiceName =
        CFStringGetLength(printerAddress) < CFStringGetLength(address) || NamesService(printerAddress);
    if (!sessionRunning) { // keeps the text that the person is typing
        view.setAddressField(printerAddress);
    }
    owner.showPrinterAddress(printerAddress);
}

void BonjourModuleController::setIPAddress() {
    const CFStringRef stored = owner.storedPrinterAddress();
    setprinterIPField(stored);
    if (!isServiceName) {
        discovery.reset();
        return;
    }
    discovery = BonjourIPDiscovery::initWithPrinterBonjourURL(serviceUrl(printerAddress), [this] {
        const auto ended = std::move(discovery);
        UseFoundAddress(ended->didResolve() ? ended->printAddress() : std::string());
    });
}

void BonjourModuleController::UseFoundAddress(const std::string& address) {
    const bool isQueues = CFEqual(printerAddress, owner.queueServiceName());
    const CFStringRef found = address.empty() && isQueues ? owner.foundPrinterAddress() : cfString(address);
    if (CFStringGetLength(found) > 0) {
        setprinterIPField(found);
        owner.storePrinterAddress(printerAddress, twoWay);
    }
}

void BonjourModuleController::setBIDIStatusON(bool on) {
    twoWay = on;
    view.setBidiState(on);
    view.setConfigureButtonEnabled(on);
}

void BonjourModuleController::setBIDICheckBoxEnabled(bool enabled) { view.setBidiCheckBoxEnabled(enabled); }

void BonjourModuleController::setConfigureButtonEnabled(bool enabled) {
    view.setConfigureButtonEnabled(enabled);
}

bool BonjourModuleController::validatePrinterAddress() {
    if (!view.bidiState()) {
        return true;
    }
    const CFStringRef text = view.addressField();
    const AddressProblem problem = addressProblem(text);
    if (problem.key.empty()) {
        return true;
    }
    Alert(problem.key, problem.english);
    return false;
}

void BonjourModuleController::Alert(std::string_view key, std::string_view english) {
    if (!hasAlerts()) {
        return;
    }
    AlertText text;
    text.title = utf8Text(owner.bidiString(key, english));
    text.informative =
        utf8Text(owner.bidiString("PRESS_OKAY", "Press OK to enter a new IP Address or DNS Name."));
    text.defaultButton = utf8Text(owner.bidiString("OK", "OK"));
    alerts().RunModal(text);
}

bool BonjourModuleController::NamesService(const CFStringRef& text) const {
    return CFStringGetLength(text) > 0 && !isNumeric(text) &&
           (!isAddress(text) || CFEqual(text, owner.queueServiceName()));
}

CFStringRef BonjourModuleController::AddressNamedBy(const CFStringRef& text) const {
    CFStringRef name = withoutServiceDomain(text);
    const bool isChosen = selectedService && !isAddressSelected && CFEqual(text, selectedText);
    if (!isChosen && CFStringGetLength(name) == CFStringGetLength(text) && !NamesService(name)) {
        return name;
    }
    const std::string alias = isChosen ? selectedService->name : utf8Text(name);
    for (const FoundController& controller : shown) {
        const auto& aliases = controller.aliases;
        if (std::find(aliases.begin(), aliases.end(), alias) != aliases.end() ||
            CFEqual(controller.name, name)) {
            return CFStringGetLength(controller.address) > 0 ? controller.address : name;
        }
    }
    return name;
}

void BonjourModuleController::OKClicked() {
    if (!sessionRunning) {
        return;
    }
    const auto lives = shared_from_this(); // stays alive while an alert runs its event loop
    const CFStringRef address = AddressNamedBy(view.addressField());
    view.setAddressField(address);
    if (!validatePrinterAddress()) {
        if (sessionRunning) {
            view.focusAddressField();
        }
        return;
    }
    const bool on = view.bidiState();
    CloseSheet();
    setprinterIPField(address);
    setBIDIStatusON(on);
    owner.storePrinterAddress(address, on);
}

void BonjourModuleController::clickedCancel() {
    if (!sessionRunning) {
        return;
    }
    CloseSheet();
    view.setAddressField(printerAddress);
    setBIDIStatusON(twoWay);
}

void BonjourModuleController::configureButtonClicked() {
    if (!sessionRunning) {
        OpenSheet();
    }
}

void BonjourModuleController::BIDICheckBoxClicked() {
    const bool on = view.bidiState();
    if (sessionRunning || on == twoWay) {
        return; // in the sheet, OK applies the state
    }
    if (on && !isAddress(printerAddress)) {
        OpenSheet();
        return;
    }
    setBIDIStatusON(on);
    owner.storePrinterAddress(printerAddress, on);
}

void BonjourModuleController::OpenSheet() {
    sessionRunning = true;
    firstCallOfTable = true;
    resolutionFailed = false;
    rows.clear();
    view.setAddressField(printerAddress);
    view.setRows({}, std::nullopt);
    view.setProgress(false);
    Search();
    view.openSheet();
    view.focusAddressField();
}

void BonjourModuleController::CloseSheet() {
    sessionRunning = false;
    EndResolution();
    reloadTimer.reset();
    searchTimer.reset();
    list.reset();
    shown.clear();
    rows.clear();
    selectedService.reset();
    tableNeedsReload = false;
    view.closeSheet();
}

void BonjourModuleController::Search() {
    list.reset();
    if (ServiceDirectory* directory = serviceDirectory()) {
        ControllerListObserver& observer = *this;
        list = std::make_unique<ControllerList>(*directory, observer);
    }
    ShowStatus();
}

void BonjourModuleController::ShowStatus() {
    CFStringRef text;
    if (!list || !list->Failure().empty()) {
        text = owner.bidiString("DISCOVERY_UNAVAILABLE",
                                "Controllers on the local network cannot be searched for at the moment.");
    } else if (resolutionFailed) {
        text = owner.bidiString("DISCOVERY_NO_ANSWER", "The selected controller does not answer.");
    } else if (resolution) {
        text = owner.bidiString("RESOLVING", "Asking the selected controller for its address");
    } else if (const CFStringRef change = ChangeText(); CFStringGetLength(change) > 0) {
        text = change;
    } else if (list->LeftOut()) {
        text = owner.bidiString("DISCOVERY_TOO_MANY", "More controllers are announced than can be shown.");
    } else if (shown.empty()) {
        text = owner.bidiString("DISCOVERY_SEARCHING", "Looking for controllers on the local network\u2026");
    }
    view.setStatus(text ? text : cfString(""));
}

CFStringRef BonjourModuleController::ChangeText() const {
    const std::string before = utf8Text(printerAddress);
    const std::string after = selectedService ? utf8Text(selectedText) : std::string();
    if (before.empty() || after.empty() || !isAddressSelected || isSameAddress(before, after) ||
        !CFEqual(view.addressField(), selectedText)) {
        return cfString("");
    }
    return cfString(withAddresses(
        utf8Text(owner.bidiString("ADDRESS_CHANGES", "The stored address {old} becomes {new} with OK.")),
        before, after));
}

void BonjourModuleController::listDidChange() {
    tableNeedsReload = true;
    if (reloadTimer) {
        return;
    }
    // Services arrive in bursts. The timer fills the table once for many.
    const auto reload = [this](const EventLoopTimerRef&) {
        reloadTimer.reset();
        if (std::exchange(tableNeedsReload, false)) {
            ReloadTable();
            ShowStatus();
        }
    };
    InstallEventLoopTimer(GetMainEventLoop(), reloadPause, kEventDurationForever, reload, reloadTimer);
    if (!list->Failure().empty() && !searchTimer) {
        InstallEventLoopTimer(
            GetMainEventLoop(), searchAgainPause, kEventDurationForever,
            [this](const EventLoopTimerRef&) {
                searchTimer.reset();
                Search();
            },
            searchTimer);
    }
}

void BonjourModuleController::SortShown() {
    if (!sortColumn) {
        return;
    }
    const auto isBefore = [this](const FoundController& left, const FoundController& right) {
        const bool hasNone = CFStringGetLength(left.address) == 0;
        const bool otherHasNone = CFStringGetLength(right.address) == 0;
        if (*sortColumn == ControllerColumn::addresses && hasNone != otherHasNone) {
            return otherHasNone; // unknown addresses stay at the end in both directions
        }
        const int order = compareControllers(*sortColumn, left, right);
        return ascendingSort ? order < 0 : order > 0;
    };
    std::stable_sort(shown.begin(), shown.end(), isBefore);
}

void BonjourModuleController::ReloadTable() {
    shown = list->Controllers();
    SortShown();
    const std::optional<std::size_t> selected = SelectedPlace();
    std::vector<ControllerRow> newRows;
    newRows.reserve(shown.size());
    for (const FoundController& controller : shown) {
        newRows.push_back({controller.name, controller.addresses});
    }
    if (newRows != rows || selected != view.selectedRow()) {
        rows = std::move(newRows);
        view.setRows(rows, selected);
    }
}

// The row of the selected controller. Before the first selection, selects the controller with the printer's
// address.
std::optional<std::size_t> BonjourModuleController::SelectedPlace() {
    const std::string current = utf8Text(printerAddress);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const auto& aliases = shown[i].aliases;
        const auto isCalled = [&aliases](const std::string& name) {
            return std::find(aliases.begin(), aliases.end(), name) != aliases.end();
        };
        if (selectedService) {
            if (isCalled(selectedService->name)) {
                return i;
            }
        } else if (firstCallOfTable && !current.empty() &&
                   (isSameAddress(utf8Text(shown[i].address), current) ||
                    (isServiceName && isCalled(current)))) {
            // Keeps a text that the person has typed since.
            if (CFEqual(view.addressField(), printerAddress)) {
                Select(shown[i]);
            }
            return i;
        }
    }
    return std::nullopt;
}

void BonjourModuleController::Select(const FoundController& controller) {
    firstCallOfTable = false;
    resolutionFailed = false;
    selectedService = controller.service;
    const bool isKnown = CFStringGetLength(controller.address) > 0;
    isAddressSelected = isKnown;
    selectedText = isKnown ? controller.address : controller.name;
    view.setAddressField(selectedText);
    if (isKnown) {
        EndResolution();
    } else {
        InitServiceResolve();
    }
}

void BonjourModuleController::UpOrDownArrowKeySelection() {
    const std::optional<std::size_t> row = view.selectedRow();
    if (!sessionRunning || !row || *row >= shown.size()) {
        return;
    }
    Select(shown[*row]);
    ShowStatus();
}

void BonjourModuleController::didClickTableColumn(ControllerColumn column) {
    ascendingSort = sortColumn != column || !ascendingSort;
    sortColumn = column;
    const ControllerColumn other =
        column == ControllerColumn::name ? ControllerColumn::addresses : ControllerColumn::name;
    view.setIndicatorImage(other, SortIndicator::none);
    view.setIndicatorImage(column, ascendingSort ? SortIndicator::NSAscendingSortIndicator
                                                 : SortIndicator::NSDescendingSortIndicator);
    if (list) {
        ReloadTable();
    }
}

void BonjourModuleController::InitServiceResolve() {
    if (hasNetServices() && netServices().isHostCacheEnabled()) {
        netServices().flushHostCache();
    }
    EndResolution();
    if (system().MinorVersion() >= 4) {
        view.setProgress(true);
        InstallEventLoopTimer(
            GetMainEventLoop(), progressTime, kEventDurationForever,
            [this](const EventLoopTimerRef&) { timerFireMethod(); }, progressTimer);
    }
    if (ServiceDirectory* directory = serviceDirectory()) {
        resolution = directory->Resolve(*selectedService, moduleResolveTimeout, *this);
    }
}

void BonjourModuleController::timerFireMethod() {
    progressTimer.reset();
    if (view.isSheetVisible()) {
        view.setProgress(false);
    }
}

void BonjourModuleController::EndResolution() {
    resolution.reset();
    progressTimer.reset();
    view.setProgress(false);
}

void BonjourModuleController::netServiceDidResolveAddress(const NetService& service,
                                                          const ResolvedService& resolved) {
    EndResolution();
    list->Learn(service, resolved);
    ReloadTable();
    const std::optional<std::size_t> place = SelectedPlace();
    // Keeps a text that the person has typed during the resolution.
    if (place && CFEqual(view.addressField(), selectedText) && CFStringGetLength(shown[*place].address) > 0) {
        isAddressSelected = true;
        selectedText = shown[*place].address;
        view.setAddressField(selectedText);
    }
    ShowStatus();
}

void BonjourModuleController::didNotResolve(const NetService& /*service*/, const std::string& /*reason*/) {
    EndResolution();
    resolutionFailed = true;
    ShowStatus();
}

} // namespace torka
