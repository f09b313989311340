// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/PersonsLanguage.h"

#include "platform/System.h"
#include "platform/posix/InstalledSystem.h"
#include "platform/posix/Sentences.h"
#include "platform/posix/StringTables.h"

namespace torka::tool {

std::string inPersonsLanguage(std::string_view english) {
    if (!platform::hasSystem()) { // memory ran out at the start
        return std::string(english);
    }
    static const Sentences sentences = [] {
        const platform::StringTables tables(
            platform::installedBundle(platform::programFolder()) / "Contents" / "Resources", "en");
        return Sentences(tables.Whole("Tool"));
    }();
    return sentences.Say(english);
}

} // namespace torka::tool
