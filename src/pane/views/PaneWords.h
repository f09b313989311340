#pragma once

#include <QString>

#include <array>
#include <functional>

// The texts of the pane's own widgets. What they are in the person's language stands in the bundle's table
// "Pane"; the English ones here serve where a table lacks a key. "%1", "%2" and "%3" are places for names.

namespace torka {

struct PaneWord {
    const char* key;
    const char* english;
};

// The text of a key in the person's language, or the English one.
using PaneText = std::function<QString(const PaneWord& word)>;

namespace words {

inline constexpr PaneWord addressLabel{"ADDRESS_LABEL", "Address:"};
inline constexpr PaneWord allowedCharacters{"ALLOWED_CHARACTERS", "Allowed: %1."};
inline constexpr PaneWord allowedDigits{"ALLOWED_DIGITS", "digits"};
inline constexpr PaneWord allowedLetters{"ALLOWED_LETTERS", "letters"};
inline constexpr PaneWord allowedSpaces{"ALLOWED_SPACES", "spaces"};
inline constexpr PaneWord atLeast{"AT_LEAST", "At least %1 characters."};
inline constexpr PaneWord atMost{"AT_MOST", "At most %1 characters."};
inline constexpr PaneWord backTo{"BACK_TO", "Back to %1"};
inline constexpr PaneWord changed{"CHANGED", "Changed: %1"};
inline constexpr PaneWord chooseSeveral{"CHOOSE_SEVERAL", "None chosen"};
inline constexpr PaneWord close{"CLOSE", "Close"};
inline constexpr PaneWord configure{"CONFIGURE", "C&onfigure…"};
inline constexpr PaneWord closedGroup{"CLOSED_GROUP", "Closed"};
inline constexpr PaneWord conflict{"CONFLICT", "%1 does not go together with %2."};
inline constexpr PaneWord conflictPage{"CONFLICT_PAGE", "%1, holds settings in conflict"};
inline constexpr PaneWord conflictsMore{"CONFLICTS_MORE", "More conflicts: %1."};
inline constexpr PaneWord customize{"CUSTOMIZE", "Custo&mize…"};
inline constexpr PaneWord defaultColumn{"DEFAULT_COLUMN", "Default"};
inline constexpr PaneWord defaults{"DEFAULTS", "De&faults"};
inline constexpr PaneWord exactly{"EXACTLY", "Exactly %1 characters."};
inline constexpr PaneWord found{"FOUND", "Found: %1"};
inline constexpr PaneWord foundMore{"FOUND_MORE", "%1 more settings match. Type more to narrow the search."};
inline constexpr PaneWord foundNone{"FOUND_NONE", "No setting matches “%1”."};
inline constexpr PaneWord fullProperties{"FULL_PROPERTIES", "F&ull Properties…"};
inline constexpr PaneWord height{"HEIGHT", "Height"};
inline constexpr PaneWord inches{"INCHES", "in"};
inline constexpr PaneWord installed{"INSTALLED_OPTIONS", "Installed Options"};
inline constexpr PaneWord installedHint{
    "INSTALLED_HINT",
    "What is built into the printer. Change this only when the printer itself was changed."};
inline constexpr PaneWord lengthOf{"LENGTH_OF", "%1 of %2 characters"};
inline constexpr PaneWord lockedByAdministrator{"LOCKED_BY_ADMINISTRATOR",
                                                "Your administrator has fixed this setting."};
inline constexpr PaneWord lockedBySystem{"LOCKED_BY_SYSTEM",
                                         "Chosen on the print dialog's own pages; follows them."};
inline constexpr PaneWord matches{"MATCHES", "%1 › %2"};
inline constexpr PaneWord millimetres{"MILLIMETRES", "mm"};
inline constexpr PaneWord moreReasons{"MORE_REASONS", "and %1 more"};
inline constexpr PaneWord noDifferences{"NO_DIFFERENCES", "Every setting has its default value."};
inline constexpr PaneWord noResolution{"NO_RESOLUTION",
                                       "No way out was found. Change one of the two settings."};
inline constexpr PaneWord notAvailableWith{"NOT_AVAILABLE_WITH", "%1 is not available with %2."};
inline constexpr PaneWord off{"OFF", "Off"};
inline constexpr PaneWord on{"ON", "On"};
inline constexpr PaneWord onlyWith{"ONLY_WITH", "Used with %1 only."};
inline constexpr PaneWord pages{"PAGES", "Pages of settings"};
inline constexpr PaneWord openGroup{"OPEN_GROUP", "Open"};
inline constexpr PaneWord printerLabel{"PRINTER_LABEL", "Printer:"};
inline constexpr PaneWord quickAccess{"QUICK_ACCESS", "Quick Access"};
inline constexpr PaneWord quickAccessLabel{"QUICK_ACCESS_LABEL", "Quick access:"};
inline constexpr PaneWord redo{"REDO", "Redo"};
inline constexpr PaneWord required{"REQUIRED", "required"};
inline constexpr PaneWord resetSelected{"RESET_SELECTED", "Back to &Default"};
inline constexpr PaneWord resolve{"RESOLVE", "&Resolve"};
inline constexpr PaneWord resolveChanges{"RESOLVE_CHANGES", "Changes %1"};
inline constexpr PaneWord search{"SEARCH", "Search settings"};
inline constexpr PaneWord settingColumn{"SETTING_COLUMN", "Setting"};
inline constexpr PaneWord settingIs{"SETTING_IS", "“%1: %2”"};
inline constexpr PaneWord setTo{"SET_TO", "%1 to %2"};
inline constexpr PaneWord show{"SHOW", "&Show"};
inline constexpr PaneWord summary{"SUMMARY", "Summary"};
inline constexpr PaneWord summaryCount{"SUMMARY_COUNT", "Settings that differ from their defaults: %1"};
inline constexpr PaneWord twoWay{"TWO_WAY", "Two-way communication: %1"};
inline constexpr PaneWord twoWayCheckBox{"TWO_WAY_CHECK_BOX", "&Two-way communication"};
inline constexpr PaneWord twoWayFailed{"TWO_WAY_FAILED", "Printer does not answer"};
inline constexpr PaneWord twoWayFailedHint{
    "TWO_WAY_FAILED_HINT",
    "Two-way communication is on, but the controller does not answer. Settings work as before."};
inline constexpr PaneWord undo{"UNDO", "U&ndo"};
inline constexpr PaneWord undoOf{"UNDO_OF", "Undo: %1"};
inline constexpr PaneWord valueColumn{"VALUE_COLUMN", "Value"};
inline constexpr PaneWord whyForbidden{"WHY_FORBIDDEN", "Why some choices are not available"};
inline constexpr PaneWord width{"WIDTH", "Width"};

} // namespace words

// Every word above, for checking the tables.
inline constexpr std::array paneWords{words::addressLabel,
                                      words::allowedCharacters,
                                      words::allowedDigits,
                                      words::allowedLetters,
                                      words::allowedSpaces,
                                      words::atLeast,
                                      words::atMost,
                                      words::backTo,
                                      words::changed,
                                      words::chooseSeveral,
                                      words::close,
                                      words::closedGroup,
                                      words::configure,
                                      words::conflict,
                                      words::conflictPage,
                                      words::conflictsMore,
                                      words::customize,
                                      words::defaultColumn,
                                      words::defaults,
                                      words::exactly,
                                      words::found,
                                      words::foundMore,
                                      words::foundNone,
                                      words::fullProperties,
                                      words::height,
                                      words::inches,
                                      words::installed,
                                      words::installedHint,
                                      words::lengthOf,
                                      words::lockedByAdministrator,
                                      words::lockedBySystem,
                                      words::matches,
                                      words::millimetres,
                                      words::moreReasons,
                                      words::noDifferences,
                                      words::noResolution,
                                      words::notAvailableWith,
                                      words::off,
                                      words::on,
                                      words::onlyWith,
                                      words::openGroup,
                                      words::pages,
                                      words::printerLabel,
                                      words::quickAccess,
                                      words::quickAccessLabel,
                                      words::redo,
                                      words::required,
                                      words::resetSelected,
                                      words::resolve,
                                      words::resolveChanges,
                                      words::search,
                                      words::settingColumn,
                                      words::settingIs,
                                      words::setTo,
                                      words::show,
                                      words::summary,
                                      words::summaryCount,
                                      words::twoWay,
                                      words::twoWayCheckBox,
                                      words::twoWayFailed,
                                      words::twoWayFailedHint,
                                      words::undo,
                                      words::undoOf,
                                      words::valueColumn,
                                      words::whyForbidden,
                                      words::width};

} // namespace torka
