// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Description.h"

#include "apps/torka/Command.h"
#include "apps/torka/SettingText.h"
#include "jobsettings/SettingCheck.h"
#include "platform/System.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>

namespace torka::tool {

namespace {

Result<Setting> parseSetting(const ZANPPD& description, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        return Fault{"'" + text + "' is no setting: KEY=VALUE is meant"};
    }
    Setting setting;
    setting.key = (text.starts_with('*') ? "" : "*") + text.substr(0, equals);
    PPDXControl* control = description.GetPPDXControlForKey(cfString(setting.key));
    if (control == nullptr) {
        return Fault{"the description has no option " + setting.key};
    }
    const std::string_view given = std::string_view(text).substr(equals + 1);
    const Result<SettingText> value = readSettingText(given);
    if (!value) {
        return value.Why().In(setting.key);
    }
    if (!apps::isUtf8(value->bytes)) {
        return Fault{setting.key + " has a value that is no UTF-8"};
    }
    setting.shown = value->isHidden        ? "the text of " + std::string(given)
                    : value->bytes.empty() ? "an empty value"
                                           : value->bytes;
    setting.value = controlText(*control, value->bytes);
    const Result<void> checked = checkSettingValue(*control, value->bytes, setting.shown);
    if (!checked) {
        const bool isList = control->Type() == CNTL_TYPE::popup;
        return Fault{checked.Why().text + (isList ? " (torka show lists its choices)" : "")};
    }
    return setting;
}

// Why the system does not read the file; "" when it does now.
std::string unreadableReason(const std::string& path) {
    std::string text;
    const std::error_code error = platform::system().ReadFile(path, maximumDescription, text);
    std::error_code unknown;
    if (error == std::errc::invalid_argument && std::filesystem::exists(path, unknown)) {
        return "not a regular file";
    }
    return error && error != std::errc::file_too_large ? error.message() : "";
}

} // namespace

std::string markedEncoding(const std::string& path) {
    std::string text;
    platform::system().ReadFile(path, maximumDescription, text); // an unreadable file has no mark
    if (text.starts_with("\xEF\xBB\xBF")) {
        return "UTF-8";
    }
    return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF") ? "UTF-16" : "";
}

std::unique_ptr<ZANPPD> readDescription(const std::string& path, PPDLint* lint) {
    auto description = std::make_unique<ZANPPD>(kAcceptOrphans | kAcceptHidden);
    description->SetFile(FSRef{path});
    description->SetLint(lint);
    description->Build();
    return description;
}

Result<void> checkUsable(const ZANPPD& description, const std::string& path) {
    PPDXErrors* errors = description.Errors();
    for (const PPDXErrorObj* error = errors->First(); error != nullptr; error = errors->Next()) {
        const std::int16_t code = error->Code();
        if (code == PPDErr_FileError) {
            const std::string reason = unreadableReason(path);
            return Fault{"cannot be read as a file" + (reason.empty() ? reason : ": " + reason) + " (" +
                             ppdErrName(PPDErr_FileError) + ")",
                         path};
        }
        if (code == PPDErr_NotPPDFile) {
            const std::string marked = markedEncoding(path);
            const std::string text =
                marked.empty() ? "is not a PPD file of format 4.3"
                               : "is not a PPD file of format 4.3: it begins with the byte-order mark of " +
                                     marked + "; save it as UTF-8 without the mark";
            return Fault{text + " (" + ppdErrName(PPDErr_NotPPDFile) + ")", path};
        }
        if (code == PPDErr_TooManyElements || code == PPDErr_TooManyBytes) {
            const bool isElements = code == PPDErr_TooManyElements;
            return Fault{std::string("holds more than ") + (isElements ? "1,000,000 elements" : "256 MiB") +
                             " (" + ppdErrName(code) + ")",
                         path};
        }
        if (error->IsFatal()) {
            return Fault{"there is not memory enough to read it", path};
        }
    }
    return {};
}

Result<std::unique_ptr<ZANPPD>> readUsableDescription(const std::string& path) {
    auto description = readDescription(path);
    if (const Result<void> checked = checkUsable(*description, path); !checked) {
        return checked.Why();
    }
    return description;
}

Result<std::vector<Setting>> parseSettings(const ZANPPD& description, const std::vector<std::string>& texts) {
    const auto isOnStandardInput = [](const std::string& text) {
        const std::size_t equals = text.find('=');
        return equals != std::string::npos && readsStandardInput(std::string_view(text).substr(equals + 1));
    };
    if (std::ranges::count_if(texts, isOnStandardInput) > 1) {
        return Fault{"standard input can hold the text of one setting only: KEY=@- is given twice"};
    }
    std::vector<Setting> settings;
    for (const std::string& text : texts) {
        Result<Setting> setting = parseSetting(description, text);
        if (!setting) {
            return setting.Why();
        }
        settings.push_back(*std::move(setting));
    }
    return settings;
}

std::vector<std::string> applySettings(ZANPPD& description, const std::vector<Setting>& settings) {
    std::vector<std::string> changes;
    for (const Setting& setting : settings) {
        const CFStringRef key = cfString(setting.key);
        description.SetValueForKey(key, cfString(setting.value));
        const PPDXControl* control = description.GetPPDXControlForKey(key);
        std::string change = control == nullptr ? "" : changedNumber(*control, setting.value, setting.shown);
        if (!change.empty()) {
            changes.push_back(std::move(change));
        }
    }
    return changes;
}

std::string jsonText(const char* bytes) {
    return bytes == nullptr ? std::string() : utf8Text(cfString(bytes));
}

std::string jsonText(const CFStringRef& text) { return utf8Text(text); }

std::string jsonDocument(const Json& json) {
    return apps::printableJson(json.dump(2, ' ', false, Json::error_handler_t::replace)) + "\n";
}

} // namespace torka::tool
