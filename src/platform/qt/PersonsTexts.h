// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Bundle.h"

#include <string_view>

// The texts of the windows that are no pane: the hosts' and the Job Properties module's. Their code calls
// Qt's tr() with the English text. The bundle's table "Windows" has the text in the person's language, with
// the English one as its key.

namespace torka::platform {

// Contexts of tr() and QCoreApplication::translate() that begin so are ours; the table does not tell them
// apart.
inline constexpr std::string_view ownTextContext = "torka";
// The context of messages that other floors made in English, such as the reason behind a colon. Their
// sentences are in the table "Tool" (posix/Sentences.h).
inline constexpr const char* messageContext = "torkaMessages";

// Lets every tr() of ours in this process give the text in the person's language, until the application
// object ends. Texts that a program's own translators give stay theirs, and its windows do not notice: Qt
// tells them of no change of language. Only the first call in a process has an effect. REQUIRES: an
// application object, its thread.
void sayInPersonsLanguage(const BundleRef& bundle);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
