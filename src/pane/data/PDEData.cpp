// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PDEData.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "connection/ConnectionType.h"
#include "connection/ZANCorvianPrinterPList.h"
#include "output/FeatureEmission.h"
#include "pane/data/ControlTables.h"
#include "platform/System.h"

#include <algorithm>
#include <cstring>
#include <utility>

// Construction, the controller's address, and questions about single controls.

namespace torka {

namespace {

constexpr std::size_t pathSize = 512;
constexpr std::size_t descriptionLimit = std::size_t{256} * 1024 * 1024;
constexpr unsigned copyMode = 0600;
constexpr int firstVersionWithPrivateCopy = 7;
constexpr int firstVersionWithTicketTray = 6;

constexpr std::array<const wchar_t*, 4> accountKeys = {L"*QVPCMID", L"*QVPCName", L"*QVCoverSizePCMID",
                                                       L"*QVCoverSizePCName"};

std::string cutPath(std::string path) {
    path.resize(std::min(path.size(), pathSize - 1));
    return path;
}

// Writes the whole file at once, so that no reader gets a part of a description. False when no copy is left.
bool copyFile(const std::string& from, const std::filesystem::path& to) {
    std::string content;
    const platform::WipeGuard<std::string> guard(content);
    return !platform::system().ReadFile(from, descriptionLimit, content) &&
           !platform::system().WriteFile(to, content, copyMode);
}

} // namespace

PDEData::PDEData(ZANPPD* ppd, CFStringRef printerName, QueueAccess access)
    : PDEData(ppd, std::move(printerName), std::move(access), nullptr) {}

PDEData::PDEData(ZANPPD* ppd, CFStringRef printerName, QueueAccess access, AddressStoreMaker addressStore)
    : mPPDModel(ppd)
    , queue(std::move(access))
    , makeAddressStore(std::move(addressStore))
    , mPrinterName(std::move(printerName)) {
    CopyDescription();
    ResetCorvianPrinterList();
    bool ipEnabled = false;
    mPrinterAddress = GetCorvianPrinterAddress(&ipEnabled);
    // A new printer gets an entry with the address of its queue.
    SetCorvianPrinterAddress(mPrinterAddress, ipEnabled);
    ResetAccountPairs();
}

PDEData::~PDEData() = default;

void PDEData::CopyDescription() {
    FSRef file;
    if (mPPDModel == nullptr || !mPPDModel->GetFileSpec(file)) {
        return;
    }
    const std::string ownPath = cutPath(file.path);
    std::array<char, 256> name{};
    mPPDModel->GetPPDFileName(name.data());
    const bool isPrivate = platform::system().MinorVersion() >= firstVersionWithPrivateCopy;
    std::string copyPath;
    if (isPrivate) {
        const std::filesystem::path folder = platform::system().PrivateFolder();
        if (!folder.empty() && copyFile(ownPath, folder / "zancopy.ppd")) {
            copyPath = (folder / "zancopy.ppd").string();
        }
    }
    if (std::strstr(name.data(), ".ppd") == nullptr) {
        mPPDCopyPath = cutPath(std::string("/tmp/") + name.data() + ".ppd");
    } else if (isPrivate) {
        mPPDCopyPath = cutPath(copyPath.size() < 2 ? ownPath : copyPath);
    } else {
        mPPDCopyPath = cutPath(std::string("/tmp/") + name.data());
    }
    if (!isPrivate) {
        copyFile(ownPath, platform::system().Resolve(mPPDCopyPath));
    }
}

void PDEData::ResetAccountPairs() {
    for (std::size_t i = 0; i < accountKeys.size(); ++i) {
        mAccountPairs[i] = {accountKeys[i], L"-1"};
    }
}

CFStringRef PDEData::GetPrinterAddress() const {
    CFStringRef none = cfString("");
    PMPrinter printer;
    CFURLRef uri;
    if (PMSessionGetCurrentPrinter(queue.session, printer) != noErr ||
        PMPrinterCopyDeviceURI(printer, uri) != noErr || isAppleTalkPrinterConnection(queue.session) ||
        isDiscoveredServiceConnection(queue.session)) {
        return none;
    }
    CFStringRef host = CFURLCopyHostName(uri);
    return host ? host : none;
}

CFStringRef PDEData::GetCorvianPrinterAddress() { return GetCorvianPrinterAddress(nullptr); }

CFStringRef PDEData::GetCorvianPrinterAddress(bool* ipEnabled) {
    if (!mCorvianList) {
        return nullptr;
    }
    mPrinterAddress = mCorvianList->Find(mPrinterName);
    bool isFound = false;
    mCorvianList->Exists(mPrinterName, isFound);
    if (ipEnabled != nullptr && isFound) {
        *ipEnabled = mCorvianList->getIPEnabled(mPrinterName);
    }
    mAddressFromQueue = !isFound || CFStringGetLength(mPrinterAddress) == 0;
    return mAddressFromQueue ? GetPrinterAddress() : mPrinterAddress;
}

bool PDEData::SetCorvianPrinterAddress(const CFStringRef& address, bool ipEnabled) {
    return mCorvianList && mCorvianList->Add(mPrinterName, address, ipEnabled) != 0 && mCorvianList->Save();
}

std::string PDEData::AddressListReason() const {
    return mCorvianList ? mCorvianList->Reason() : std::string();
}

bool PDEData::ResetCorvianPrinterList() {
    mCorvianList = makeAddressStore ? std::make_unique<ZANCorvianPrinterPList>(makeAddressStore())
                                    : std::make_unique<ZANCorvianPrinterPList>(queue);
    return mCorvianList->Loaded();
}

bool PDEData::SetIPAddressEnabled(bool enabled) {
    if (!mPrinterName) {
        return enabled;
    }
    return mCorvianList && mCorvianList->setIPEnabled(mPrinterName, enabled) && mCorvianList->Save();
}

bool PDEData::isBIDIEnabled() {
    if (!mCorvianList) {
        return false;
    }
    bool isFound = false;
    mCorvianList->Exists(mPrinterName, isFound);
    if (isFound) {
        mPrinterAddress = mCorvianList->Find(mPrinterName);
    }
    return isFound && mCorvianList->getIPEnabled(mPrinterName);
}

std::uint32_t PDEData::GetNumCopiesFromOS() const {
    std::uint32_t copies = 1;
    PMGetCopies(mPrintSettings, copies);
    return copies;
}

std::uint16_t PDEData::GetPageOrientationFromOS() const {
    std::uint16_t orientation = kPMPortrait;
    return PMGetOrientation(mPageFormat, orientation) == noErr ? orientation : kPMPortrait;
}

std::int32_t PDEData::GetPrimayPaperFeedFromOS(char* buffer, std::int64_t size) {
    if (buffer == nullptr || size < 1) {
        return 0;
    }
    buffer[0] = '\0';
    CFStringRef tray;
    if (platform::system().MinorVersion() < firstVersionWithTicketTray) {
        const auto feed = cfCast<CFArray>(ReadSetting("com.apple.print.PrintSettings.PMPrimaryPaperFeed"));
        tray = cfCast<CFString>(CFArrayGetValueAtIndex(feed, 1));
    } else {
        const auto chosen = cfCast<CFString>(ReadSetting("AP_FIRSTPAGE_InputSlot"));
        tray = chosen ? chosen : cfCast<CFString>(ReadSetting("InputSlot"));
    }
    const std::string text = utf8Text(tray);
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = '\0';
    const std::size_t kept = std::min(length, mPrimaryPaperFeed.size() - 1);
    std::copy_n(buffer, kept, mPrimaryPaperFeed.data());
    mPrimaryPaperFeed[kept] = '\0';
    return 0;
}

bool PDEData::IsValidBasicPanelControl(const PPDXControl* control) {
    if (curveAdjust == CurveAdjust::unknown) {
        CNTL_TYPE type{};
        curveAdjust = mPPDModel->GetControls()->Find("*QVCurveAdjust", type, true) != nullptr
                          ? CurveAdjust::present
                          : CurveAdjust::absent;
    }
    if (control == nullptr) {
        return false;
    }
    const PPDXElement* parent = control->GetParent();
    if (parent != nullptr && *parent == "QVPPInstallableOptions") {
        return false;
    }
    const char* keyword = control->Keyword();
    return !isBidiKeyword(keyword) && !isExpertHueKeeperControl(keyword) && !control->IsNoTorkaDriverUI() &&
           !(*control == "*QVColorMode" && curveAdjust == CurveAdjust::present) &&
           !isHiddenFromBasicPanel(keyword);
}

std::int32_t PDEData::OutPostscriptData(ZANJobTicket& ticket, const PMPrintSession& session,
                                        EmissionPurpose purpose) {
    twoWayEnabled = isBIDIEnabled();
    FeatureEmission emission(*this, ticket, session, purpose);
    const OSStatus status = emission.OutPostscriptData();
    leftOutNotes = emission.LeftOutNotes();
    leftOutSettings = emission.LeftOutSettings();
    return status;
}

} // namespace torka
