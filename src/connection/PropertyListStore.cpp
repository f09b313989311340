// SPDX-License-Identifier: Apache-2.0
#include "connection/PropertyListStore.h"

#include "bidi/commands/CommandJob.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"

#include <cerrno>

namespace torka {

namespace {

constexpr std::size_t maximumFileBytes = 0x1000000;
constexpr unsigned fileMode = 0600;
constexpr int firstVersionWithRecord = 7;
constexpr int versionThatSavesFile = 6;
constexpr std::string_view recordMessage = "DriverPreference";

std::string readRecord(const std::string& ppdPath) {
    return utf8FromWide(CPPDMsgHdlr(ppdPath, recordMessage).GetStringData());
}

// Loads from one store and saves to another. The source never gets what was saved, so that Load returns it
// from then on.
class SplitPropertyListStore final : public PropertyListStore {
public:
    SplitPropertyListStore(std::unique_ptr<PropertyListStore> loadFrom,
                           std::unique_ptr<PropertyListStore> saveTo)
        : source(std::move(loadFrom))
        , target(std::move(saveTo)) {}
    std::string Load() override { return saved.empty() ? source->Load() : saved; }
    OSStatus LoadError() const override { return source->LoadError(); }
    SaveResult Save(std::string_view xml) override {
        SaveResult result = target->Save(xml);
        saved = result.confirmed ? xml : saved;
        return result;
    }

private:
    std::string saved;
    std::unique_ptr<PropertyListStore> source;
    std::unique_ptr<PropertyListStore> target;
};

} // namespace

PropertyListStore::~PropertyListStore() = default;

FilePropertyListStore::FilePropertyListStore(std::filesystem::path file)
    : path(std::move(file)) {}

std::string FilePropertyListStore::Load() {
    std::string xml;
    const std::error_code failure = system().ReadFile(path, maximumFileBytes, xml);
    loadError = failure == std::errc::no_such_file_or_directory ? noErr : failure.value();
    return failure ? std::string() : xml;
}

SaveResult FilePropertyListStore::Save(std::string_view xml) {
    const std::error_code failure = system().WriteFile(path, xml, fileMode);
    return {failure.value(), !failure};
}

DescriptionPropertyListStore::DescriptionPropertyListStore(std::string ppd)
    : ppdPath(std::move(ppd)) {}

std::string DescriptionPropertyListStore::Load() { return readRecord(ppdPath); }

SaveResult DescriptionPropertyListStore::Save(std::string_view /*xml*/) { return {EROFS, false}; }

QueuePropertyListStore::QueuePropertyListStore(QueueAccess queueAccess)
    : queue(std::move(queueAccess)) {}

std::string QueuePropertyListStore::Load() {
    PMPrinter printer;
    CFURLRef url;
    loadError = PMSessionGetCurrentPrinter(queue.session, printer);
    if (loadError == noErr) {
        loadError = PMPrinterCopyDescriptionURL(printer, cfString("PMPPDDescriptionType"), url);
    }
    return loadError == noErr ? readRecord(CFURLCopyFileSystemPath(url)) : std::string();
}

SaveResult QueuePropertyListStore::Save(std::string_view xml) {
    PMPrinter printer;
    if (const OSStatus error = PMSessionGetCurrentPrinter(queue.session, printer)) {
        return {error, false};
    }
    CommandEnd end;
    switch (sendCommandAndWait(printer, xml, commandTitle(SpoolerCommand::zanPrefs), queue.observer, &end)) {
    case CommandOutcome::completed:
        return {noErr, true};
    case CommandOutcome::ended:
        return {noErr, readRecord(destinationPPD()) == xml};
    case CommandOutcome::notCompleted:
        return {noErr, false, end.reason};
    case CommandOutcome::queueNotReady:
    case CommandOutcome::notSent:
        break;
    }
    return {kPMGeneralError, false};
}

std::unique_ptr<PropertyListStore> makePropertyListStore(std::string_view path, QueueAccess queue) {
    const int version = system().MinorVersion();
    auto queueStore = std::make_unique<QueuePropertyListStore>(std::move(queue));
    if (version >= firstVersionWithRecord) {
        return queueStore;
    }
    auto file = std::make_unique<FilePropertyListStore>(system().HomeFolder().string() + std::string(path));
    if (version == versionThatSavesFile) {
        return file;
    }
    return std::make_unique<SplitPropertyListStore>(std::move(file), std::move(queueStore));
}

} // namespace torka
