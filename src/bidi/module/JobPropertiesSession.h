#pragma once

#include "bidi/module/JobPropertiesLibrary.h"

#include <string_view>

// One launch of the Job Properties module: JobPropertiesLibrary has loaded it, JobPropertiesState holds what
// is shared, and jobPropertiesHost() answers for the pane.

namespace torka {

// Runs one launch with the record in sharedList: builds the callback table, runs a session with its window,
// reads the module's answer back into the record and ends the module. 0; 1 when there is no record, or no
// module is loaded, and then the record is as it was.
int mainJP();

// The steps of a launch. LoadJPModule builds the callback table; 0.
int LoadJPModule();
// One session of the module: "jpOpenMainUI" opens its window, with any other name nothing is shown and counts
// as cancelled. The answer is in the record.
void OpenUI(std::string_view name);
// Ends the session that began, and the module. True when it was not loaded or JP1_1DllEnd returned 0.
bool UnloadJPModule();

// Finds the server language code for the user's first preferred language, and keeps it in gServerLanguage.
void getCurrentLocaleCode();
// The code for a language tag of BCP 47.
std::string_view serverLanguageCode(std::string_view languageTag);

bool isSandboxedApp();

} // namespace torka
