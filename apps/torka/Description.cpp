#include "apps/torka/Description.h"

#include "PPDX/PPDObjects/Controls/ColourKeywords.h"
#include "apps/torka/Command.h"

#include <algorithm>

namespace torka::tool {

namespace {

bool offers(PPDXPopupControl& popup, const std::string& option) {
    return popup.GetKeywordCFLocalName(option.c_str()) != nullptr;
}

bool takesValue(PPDXControl& control, const Setting& setting, std::string& error) {
    if (control.Type() == CNTL_TYPE::specialOption) {
        error = setting.key + " is given by the description and cannot be set";
        return false;
    }
    if (control.Type() == CNTL_TYPE::boolean && setting.value != "True" && setting.value != "False") {
        error = setting.key + " takes True or False, not " + setting.value;
        return false;
    }
    if (auto* popup = dynamic_cast<PPDXPopupControl*>(&control);
        popup != nullptr && !isOpenColourPopup(setting.key) && !offers(*popup, setting.value)) {
        error = setting.key + " offers no " + setting.value + " (torka show lists its choices)";
        return false;
    }
    return true;
}

} // namespace

std::unique_ptr<ZANPPD> readDescription(const std::string& path, PPDLint* lint) {
    auto description = std::make_unique<ZANPPD>(kAcceptOrphans | kAcceptHidden);
    description->SetFile(FSRef{path});
    description->SetLint(lint);
    description->Build();
    return description;
}

std::string fatalError(const ZANPPD& description, const std::string& path) {
    PPDXErrors* errors = description.Errors();
    for (const PPDXErrorObj* error = errors->First(); error != nullptr; error = errors->Next()) {
        if (*error == PPDErr_FileError) {
            return path + ": cannot be read as a file (" + ppdErrName(PPDErr_FileError) + ")";
        }
        if (*error == PPDErr_NotPPDFile) {
            return path + ": is not a PPD file of format 4.3 (" + ppdErrName(PPDErr_NotPPDFile) + ")";
        }
        if (error->IsFatal()) {
            return path + ": there is not memory enough to read it";
        }
    }
    return {};
}

std::unique_ptr<ZANPPD> readUsableDescription(const std::string& path) {
    auto description = readDescription(path);
    const std::string error = fatalError(*description, path);
    if (error.empty()) {
        return description;
    }
    warn(error);
    return nullptr;
}

bool parseSetting(const ZANPPD& description, const std::string& text, Setting& setting, std::string& error) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        error = "'" + text + "' is no setting: KEY=VALUE is meant";
        return false;
    }
    setting.key = (text.starts_with('*') ? "" : "*") + text.substr(0, equals);
    setting.value = text.substr(equals + 1);
    PPDXControl* control = description.GetPPDXControlForKey(cfString(setting.key));
    if (control == nullptr) {
        error = "the description has no option " + setting.key;
        return false;
    }
    return takesValue(*control, setting, error);
}

bool parseSettings(const ZANPPD& description, const std::vector<std::string>& texts,
                   std::vector<Setting>& settings) {
    for (const std::string& text : texts) {
        Setting setting;
        std::string error;
        if (!parseSetting(description, text, setting, error)) {
            warn(error);
            return false;
        }
        settings.push_back(setting);
    }
    return true;
}

void applySettings(ZANPPD& description, const std::vector<Setting>& settings) {
    for (const Setting& setting : settings) {
        description.SetValueForKey(cfString(setting.key), cfString(setting.value));
    }
}

std::string jsonText(const char* bytes) {
    return bytes == nullptr ? std::string() : utf8Text(cfString(bytes));
}

std::string jsonText(const CFStringRef& text) { return utf8Text(text); }

std::string jsonDocument(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace torka::tool
