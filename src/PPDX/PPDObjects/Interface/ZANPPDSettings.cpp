// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include "PPDX/PPDObjects/StoredRecord.h"
#include "Settings.h"

#include <array>

// The description in stored settings: header values under "Description0.", elements in their own format.

namespace torka {

namespace {

constexpr const char* descriptionRecord = "Description";
constexpr const char* shortcutPrefix = "Shortcut";

struct StoredHeader {
    const char* field;
    const char* keyword;
    bool isQuoted;
    const CString* (PPDX::*value)() const;
};

constexpr std::array<StoredHeader, 7> storedHeaders{
    {{"formatVersion", "*FormatVersion", true, &PPDX::FormatVersion},
     {"fileVersion", "*FileVersion", true, &PPDX::FileVersion},
     {"pcFileName", "*PCFileName", true, &PPDX::PCFileName},
     {"languageVersion", "*LanguageVersion", false, &PPDX::LanguageVersion},
     {"languageEncoding", "*LanguageEncoding", false, &PPDX::LanguageEncoding},
     {"modelName", "*ModelName", true, &PPDX::ModelName},
     {"dialogExtension", "*APDialogExtension", true, &PPDX::DialogExtension}}};

const char* textOf(const CString* value) { return value ? value->Buffer() : nullptr; }

} // namespace

void ZANPPD::Save(Settings& settings) const {
    StoredRecord record(settings, descriptionRecord, 0);
    for (const StoredHeader& header : storedHeaders) {
        record.SetText(header.field, textOf((this->*header.value)()));
    }
    record.SetText("fileVersionQV", textOf(fileVersionQV.get()));
    record.SetText("versionQV", textOf(versionQV.get()));
    record.SetText("versionMacQV", textOf(versionMacQV.get()));
    record.SetText("template", std::string_view(dmtInjection));
    record.SetInteger("parseOptions", parseOptions);
    record.SetInteger("extensions", extensions);
    groups->Save(settings);
    properties->Save(settings);
    controls->Save(settings);
    int count = 0;
    for (PPDXControl* control = shortcuts->First(); control; control = shortcuts->Next()) {
        StoredRecord(settings, shortcutPrefix, count++).SetText("keyword", control->Keyword());
    }
}

ZANPPD::ZANPPD(Settings& settings, const CFURLRef& url, CFArrayRef pcFileNames)
    : file(FSRef{})
    , parseOptions(kAcceptOrphans | kAcceptHidden)
    , supportedFileNames(std::move(pcFileNames)) {
    const StoredRecord record(settings, descriptionRecord, 0);
    parseOptions = static_cast<_PARSE_OPTIONS_>(record.Integer("parseOptions", parseOptions)) & 3U;
    extensions = static_cast<_EXTENSIONS_SUPPORT_>(record.Integer("extensions", kAllExtensions) & 3);
    CFURLGetFSRef(url, *file);
    Build();
    if (hasFatalError) {
        RestoreElements(settings);
    } else {
        controls->Restore(settings);
    }
}

void ZANPPD::RestoreElements(Settings& settings) {
    const StoredRecord record(settings, descriptionRecord, 0);
    for (const StoredHeader& header : storedHeaders) {
        if (const auto value = record.Text(header.field)) {
            const std::string text = header.isQuoted ? '"' + *value + '"' : *value;
            PPDStream stream{std::string_view(text)};
            PPDX::ParsePSKeywords(stream, header.keyword);
        }
    }
    const auto takeVersion = [&](const char* field, std::initializer_list<HeaderValue*> targets) {
        if (const auto value = record.Text(field)) {
            for (HeaderValue* target : targets) {
                *target = std::make_unique<CString>(value->c_str());
            }
        }
    };
    takeVersion("fileVersionQV", {&fileVersionQV});
    takeVersion("versionQV", {&versionQV, &makerVersion});
    takeVersion("versionMacQV", {&versionMacQV, &makerVersionMac});
    dmtInjection = record.Text("template").value_or("");
    if (!dmtInjection.empty()) {
        // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): a constructor reads with its own class
        ReadCustXmlData(dmtInjection);
    }

    shortcuts = std::make_unique<PPDXShortcuts>();
    controls.reset();
    constraints = std::make_unique<UIConstraints>();
    groups = std::make_unique<PPDXGroups>(settings);
    properties = std::make_unique<PPDXProperties>(settings, groups.get());
    controls = std::make_unique<PPDXControls>(settings, constraints.get(), groups.get());
    installableOptions = dynamic_cast<PPDXRollDown*>(groups->Find("QVPPInstallableOptions", true));
    RecordOptions();
    ResolveHeirarchy();
    CollectOrphanGroups();
    for (int index = 0;; ++index) {
        const auto keyword = StoredRecord(settings, shortcutPrefix, index).Text("keyword");
        CNTL_TYPE type{};
        if (!keyword) {
            break;
        }
        if (PPDXControl* control = controls->Find(keyword->c_str(), type, true)) {
            shortcuts->Add(control);
        }
    }
}

// Records the options of each key in the constraint store, as a parse does when it reads the choices.
void ZANPPD::RecordOptions() {
    controls->ForEach([this](PPDXControl* control) {
        if (!control->Keyword()) {
            return;
        }
        if (control->Type() == CNTL_TYPE::boolean) {
            constraints->KVSInsert(control->Keyword(), "True");
            constraints->KVSInsert(control->Keyword(), "False");
        } else if (control->Type() == CNTL_TYPE::popup) {
            auto* popup = static_cast<PPDXPopupControl*>(control);
            for (_PopupItem* item = popup->FirstItem(); item; item = popup->NextItem()) {
                constraints->KVSInsert(control->Keyword(), item->keyword.View());
            }
        }
    });
}

} // namespace torka
