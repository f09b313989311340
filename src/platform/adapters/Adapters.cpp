// SPDX-License-Identifier: Apache-2.0
#include "platform/adapters/Adapters.h"

#include "platform/cups/CupsSpooler.h"
#include "platform/posix/PosixLibraryLoader.h"
#include "platform/posix/PosixNetServices.h"

#include <memory>
#include <utility>

namespace torka::platform {

void chooseAdapters(AdapterOptions options) {
    setSystem(std::make_unique<PosixSystem>(std::move(options.system)));
    if (options.network) {
        setNetServices(std::make_unique<PosixNetServices>());
    }
    if (options.spooler) {
        setSpooler(std::make_unique<CupsSpooler>());
    }
    if (options.libraries) {
        setLibraryLoader(std::make_unique<PosixLibraryLoader>());
    }
}

} // namespace torka::platform
