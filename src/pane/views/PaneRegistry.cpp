#include "pane/views/PaneRegistry.h"

namespace torka {

PaneRegistry& paneRegistry() {
    static PaneRegistry registry;
    return registry;
}

} // namespace torka
