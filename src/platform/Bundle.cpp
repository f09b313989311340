// SPDX-License-Identifier: Apache-2.0
#include "platform/Bundle.h"

#include <map>

namespace torka::platform {

namespace {

std::map<std::string, BundleRef, std::less<>>& knownBundles() {
    static std::map<std::string, BundleRef, std::less<>> bundles;
    return bundles;
}

} // namespace

Bundle::~Bundle() = default;

BundleRef bundleWithIdentifier(std::string_view identifier) {
    const auto place = knownBundles().find(identifier);
    return place == knownBundles().end() ? nullptr : place->second;
}

void registerBundle(const BundleRef& bundle) {
    if (bundle) {
        knownBundles()[utf8Text(bundle->Identifier())] = bundle;
    }
}

void forgetBundle(std::string_view identifier) {
    const auto place = knownBundles().find(identifier);
    if (place != knownBundles().end()) {
        knownBundles().erase(place);
    }
}

} // namespace torka::platform
