// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/JobPropertiesLibrary.h"

#include "platform/LibraryLoader.h"

#include <memory>
#include <optional>

namespace torka {

namespace {

struct LoadedModule {
    std::filesystem::path path;
    std::unique_ptr<LoadedLibrary> library;
    JobPropertiesFunctions functions{};
};

std::optional<LoadedModule>& currentModule() {
    static std::optional<LoadedModule> module;
    return module;
}

template <typename Function>
void lookUp(const LoadedLibrary& library, const char* name, Function& function, std::string& missing) {
    function = reinterpret_cast<Function>(library.Symbol(name));
    if (!function) {
        missing += missing.empty() ? name : std::string(", ") + name;
    }
}

// The names of the entry points that the library lacks; "" for none.
std::string lookUpAll(const LoadedLibrary& library, JobPropertiesFunctions& functions) {
    std::string missing;
    lookUp(library, "JP1_1BeginSession", functions.BeginSession, missing);
    lookUp(library, "JP1_1IsServerReady", functions.IsServerReady, missing);
    lookUp(library, "JP1_1SetJobKeyValues", functions.SetJobKeyValues, missing);
    lookUp(library, "JPSetJobReadOnlyKeys", functions.SetJobReadOnlyKeys, missing);
    lookUp(library, "JP1_1SetJobVeiledKeys", functions.SetJobVeiledKeys, missing);
    lookUp(library, "JP1_1SetWatermarks", functions.SetWatermarks, missing);
    lookUp(library, "JP1_1OpenUI", functions.OpenUI, missing);
    lookUp(library, "JP1_1GetJobKeyValues", functions.GetJobKeyValues, missing);
    lookUp(library, "JP1_1GetWatermarks", functions.GetWatermarks, missing);
    lookUp(library, "JP1_1Free", functions.Free, missing);
    lookUp(library, "JP1_1EndSession", functions.EndSession, missing);
    lookUp(library, "JP1_1DllEnd", functions.DllEnd, missing);
    lookUp(library, "SDMAllocMemory", functions.AllocMemory, missing);
    lookUp(library, "SDMTerminate", functions.Terminate, missing);
    lookUp(library, "SDMDllEnd", functions.SDMEnd, missing);
    return missing;
}

} // namespace

std::filesystem::path moduleBesideBundle(const std::filesystem::path& bundle) {
    // A path that ends in "/" has an empty file name.
    const std::filesystem::path folder = bundle.has_filename() ? bundle : bundle.parent_path();
    return folder.parent_path() / moduleFileName;
}

ModuleAvailability loadJobPropertiesLibrary(const std::filesystem::path& path) {
    std::optional<LoadedModule>& module = currentModule();
    if (module && module->path == path) {
        return {ModuleStatus::loaded, {}};
    }
    module.reset();
    if (!libraryLoader() || !libraryLoader()->Exists(path)) {
        return {ModuleStatus::notInstalled, {}};
    }
    auto library = libraryLoader()->Load(path);
    if (!library) {
        return {ModuleStatus::doesNotLoad, library.Why().Line()};
    }
    LoadedModule loaded{path, std::move(*library), {}};
    const std::string missing = lookUpAll(*loaded.library, loaded.functions);
    if (!missing.empty()) {
        return {ModuleStatus::doesNotLoad, path.string() + ": has no " + missing};
    }
    module = std::move(loaded);
    return {ModuleStatus::loaded, {}};
}

void unloadJobPropertiesLibrary() { currentModule().reset(); }

const JobPropertiesFunctions* jobPropertiesFunctions() {
    return currentModule() ? &currentModule()->functions : nullptr;
}

ModuleMemory moduleMemory(SDMHANDLE handle) {
    const JobPropertiesFunctions& functions = *jobPropertiesFunctions();
    return {functions.AllocMemory, functions.Free, handle};
}

} // namespace torka
