// SPDX-License-Identifier: Apache-2.0
#include "output/WorkflowUpload.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "platform/LibraryLoader.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>

namespace torka {

namespace {

constexpr std::string_view libraryPath = "/Library/Application Support/ZAN/lib/libks2client.dylib";
constexpr std::size_t credentialTextSize = 128;

using OpenSession = int (*)(const char*, const char*, const char*, const char*, void**, int);
using CreateNewJob = int (*)(void*, const char*, const char*, const char*, char*);
using CloseSession = int (*)(void*);

// Returns the value, cut so that it fits `size` bytes with its terminator.
std::string controlText(const ZANPPD& description, const char* keyword, std::size_t size) {
    std::string text = utf8Text(description.CopyValueForKey(cfString(keyword)));
    if (text.size() >= size) {
        text.resize(size - 1);
    }
    return text;
}

// A note stores text in the description's encoding. An identifier that this encoding lacks stays in UTF-8, as
// the library returned it: without it nobody can find the workflow's job again.
void storeIdentifier(ZANPPD& description, const char* keyword, const CFStringRef& identifier) {
    const CFStringRef key = cfString(keyword);
    description.SetValueForKey(key, identifier);
    auto* const note = dynamic_cast<PPDXJobNote*>(description.GetPPDXControlForKey(key));
    if (note != nullptr && *note->GetNotes() == '\0') {
        note->SetUTF8Notes(identifier);
    }
}

template <typename Function>
Function lookUp(const LoadedLibrary& library, const char* name) {
    return reinterpret_cast<Function>(library.Symbol(name));
}

// Null where the library is not installed; one that does not load is logged.
std::unique_ptr<LoadedLibrary> loadLibrary() {
    LibraryLoader* const loader = libraryLoader();
    const std::filesystem::path path = platform::system().Resolve(libraryPath);
    if (loader == nullptr || !loader->Exists(path)) {
        return nullptr;
    }
    auto library = loader->Load(path);
    if (!library) {
        myNSLogC("The workflow library does not load: %s", library.Why().Line().c_str());
        return nullptr;
    }
    return std::move(*library);
}

} // namespace

void UploadKestrelXMLFiles(ZANPPD& description, const PMPrintSettings& settings, int mode) {
    const std::unique_ptr<LoadedLibrary> library = loadLibrary();
    if (!library || description.GetPPDXControlForKey(cfString("*QVUserName")) == nullptr) {
        return;
    }
    const auto openSession = lookUp<OpenSession>(*library, "KSOpenSession");
    const auto createNewJob = lookUp<CreateNewJob>(*library, "KSCreateNewJobEx");
    const auto closeSession = lookUp<CloseSession>(*library, "KSCloseSession");
    if (openSession == nullptr || createNewJob == nullptr || closeSession == nullptr) {
        myNSLogC("The workflow library lacks one of its calls; no workflow job is made.");
        return;
    }
    const std::string user = controlText(description, "*QVUserName", credentialTextSize);
    std::string password = controlText(description, "*QVUserPassword", credentialTextSize);
    const std::string address = controlText(description, "*QVIP", credentialTextSize);
    const std::string workflow = controlText(description, "*QVWorkflowName", workflowTextSize);
    const std::string folder = controlText(description, "*QVWorkflowFolder", workflowTextSize);
    const std::string xmlPath = "/tmp/" + workflow + ".xml";

    void* session = nullptr;
    openSession(address.c_str(), user.c_str(), password.c_str(), "english", &session, 0);
    explicit_bzero(password.data(), password.size());
    if (session == nullptr) {
        return;
    }
    CFTypeRef stored;
    PMPrintSettingsGetValue(settings, cfString("com.apple.print.JobInfo.PMJobName"), stored);
    std::string jobName = utf8Text(cfCast<CFString>(stored));
    jobName.resize(std::min(jobName.size(), workflowTextSize - 1));
    if (mode == 2) {
        std::array<char, workflowTextSize> identifier{};
        createNewJob(session, folder.c_str(), jobName.c_str(), xmlPath.c_str(), identifier.data());
        identifier.back() = '\0';
        const CFStringRef text = cfString(identifier.data());
        storeIdentifier(description, "*QVKestrelJobId", text);
        storeIdentifier(description, "*QVKSNewJobID", text);
    }
    closeSession(session);
}

} // namespace torka
