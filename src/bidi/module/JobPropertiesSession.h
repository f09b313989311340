// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/module/JobPropertiesLibrary.h"

#include <string_view>

// Runs one launch of the Job Properties module. JobPropertiesLibrary loads the module, JobPropertiesState
// holds the shared state, and jobPropertiesHost() answers for the pane.

namespace torka {

// Runs one launch with the record in sharedList: builds the callback table, runs a session with its window,
// reads the module's answer back into the record and ends the module. Returns 0, or 1 with the record
// unchanged when there is no record, no module is loaded, or a session's window is open.
int mainJP();

// The steps of a launch. LoadJPModule builds the callback table and returns 0.
int LoadJPModule();
// Runs one session of the module and writes the answer into the record. The name "jpOpenMainUI" opens the
// module's window. Any other name shows nothing and counts as cancelled.
void OpenUI(std::string_view name);
// Ends the session and the module. True when no module was loaded or JP1_1DllEnd returned 0.
bool UnloadJPModule();

// Sets gServerLanguage to the server language code of the user's first preferred language.
void getCurrentLocaleCode();
// The server language code for a language tag (BCP 47).
std::string_view serverLanguageCode(std::string_view languageTag);

// Given interface; no caller here
bool isSandboxedApp();

} // namespace torka
