#pragma once

#include "pane/views/PaneWords.h"

#include <array>

// The texts of the presets, of the quick-access dialog and of the watermarks; like those of PaneWords.h.

namespace torka::words {

inline constexpr PaneWord cancel{"CANCEL", "Cancel"};
inline constexpr PaneWord ok{"OK", "OK"};
inline constexpr PaneWord presetBadName{"PRESET_BAD_NAME", "A name has 1 to 120 characters."};
inline constexpr PaneWord presetChanged{"PRESET_CHANGED", "%1 (changed)"};
inline constexpr PaneWord presetDelete{"PRESET_DELETE", "&Delete “%1”…"};
inline constexpr PaneWord presetDeleteAsk{"PRESET_DELETE_ASK", "Delete the preset “%1”?"};
inline constexpr PaneWord presetDeleteButton{"PRESET_DELETE_BUTTON", "&Delete"};
inline constexpr PaneWord presetFull{"PRESET_FULL", "No more presets can be kept. Delete one first."};
inline constexpr PaneWord presetGone{"PRESET_GONE", "The preset “%1” is no longer there."};
inline constexpr PaneWord presetName{"PRESET_NAME", "&Name:"};
inline constexpr PaneWord presetNotKept{"PRESET_NOT_KEPT",
                                        "Passwords and protected notes are not kept in presets."};
inline constexpr PaneWord presetNotWritten{
    "PRESET_NOT_WRITTEN",
    "The presets could not be written to %1. Check the folder’s permissions and the free space."};
inline constexpr PaneWord presetRename{"PRESET_RENAME", "&Rename “%1”…"};
inline constexpr PaneWord presetRenameButton{"PRESET_RENAME_BUTTON", "&Rename"};
inline constexpr PaneWord presetRenameTitle{"PRESET_RENAME_TITLE", "Rename Preset"};
inline constexpr PaneWord presetReplaceButton{"PRESET_REPLACE_BUTTON", "&Replace"};
inline constexpr PaneWord presetReplaces{"PRESET_REPLACES", "There is a preset of this name. Replace it?"};
inline constexpr PaneWord presets{"PRESETS", "Presets"};
inline constexpr PaneWord presetSaveAs{"PRESET_SAVE_AS", "&Save As…"};
inline constexpr PaneWord presetSaveButton{"PRESET_SAVE_BUTTON", "&Save"};
inline constexpr PaneWord presetSaveTitle{"PRESET_SAVE_TITLE", "Save Preset"};
inline constexpr PaneWord presetTaken{"PRESET_TAKEN", "Another preset has this name."};
inline constexpr PaneWord presetTip{"PRESET_TIP", "Named sets of settings of this printer"};
inline constexpr PaneWord presetUpdate{"PRESET_UPDATE", "&Update “%1”"};
inline constexpr PaneWord quickAdd{"QUICK_ADD", "A&dd"};
inline constexpr PaneWord quickAvailable{"QUICK_AVAILABLE", "&Available settings:"};
inline constexpr PaneWord quickChosen{"QUICK_CHOSEN", "&Quick access:"};
inline constexpr PaneWord quickCount{"QUICK_COUNT", "%1 of %2"};
inline constexpr PaneWord quickEmpty{"QUICK_EMPTY",
                                     "While nothing is chosen, the printer’s own entries are shown."};
inline constexpr PaneWord quickFound{"QUICK_FOUND", "Search available settings"};
inline constexpr PaneWord quickMoveDown{"QUICK_MOVE_DOWN", "Move Do&wn"};
inline constexpr PaneWord quickMoveUp{"QUICK_MOVE_UP", "Move &Up"};
inline constexpr PaneWord quickNotSaved{
    "QUICK_NOT_SAVED",
    "The quick-access settings could not be saved. They are shown until the dialog closes."};
inline constexpr PaneWord quickRemove{"QUICK_REMOVE", "Re&move"};
inline constexpr PaneWord quickTitle{"QUICK_TITLE", "Customize Quick Access"};
inline constexpr PaneWord watermark{"WATERMARK", "Watermark"};
inline constexpr PaneWord watermarkAdd{"WATERMARK_ADD", "Add…"};
inline constexpr PaneWord watermarkAddTitle{"WATERMARK_ADD_TITLE", "Add Watermark"};
inline constexpr PaneWord watermarkAngle{"WATERMARK_ANGLE", "&Angle:"};
inline constexpr PaneWord watermarkBlack{"WATERMARK_BLACK", "Black"};
inline constexpr PaneWord watermarkBlue{"WATERMARK_BLUE", "Blue"};
inline constexpr PaneWord watermarkClear{"WATERMARK_CLEAR", "Clear ink or toner"};
inline constexpr PaneWord watermarkColor{"WATERMARK_COLOR", "&Color:"};
inline constexpr PaneWord watermarkDelete{"WATERMARK_DELETE", "Delete"};
inline constexpr PaneWord watermarkEdit{"WATERMARK_EDIT", "Edit…"};
inline constexpr PaneWord watermarkEditTitle{"WATERMARK_EDIT_TITLE", "Edit Watermark"};
inline constexpr PaneWord watermarkFirstPage{"WATERMARK_FIRST_PAGE", "First page only"};
inline constexpr PaneWord watermarkFont{"WATERMARK_FONT", "&Font:"};
inline constexpr PaneWord watermarkGray{"WATERMARK_GRAY", "Gray"};
inline constexpr PaneWord watermarkGreen{"WATERMARK_GREEN", "Green"};
inline constexpr PaneWord watermarkLightGray{"WATERMARK_LIGHT_GRAY", "Light gray"};
inline constexpr PaneWord watermarkNew{"WATERMARK_NEW", "Draft"};
inline constexpr PaneWord watermarkNone{"WATERMARK_NONE", "None"};
inline constexpr PaneWord watermarkOrange{"WATERMARK_ORANGE", "Orange"};
inline constexpr PaneWord watermarkOtherColor{"WATERMARK_OTHER_COLOR", "Other…"};
inline constexpr PaneWord watermarkPreview{"WATERMARK_PREVIEW", "Preview of the page: %1"};
inline constexpr PaneWord watermarkRed{"WATERMARK_RED", "Red"};
inline constexpr PaneWord watermarkRight{"WATERMARK_RIGHT", "To the &right:"};
inline constexpr PaneWord watermarks{"WATERMARKS", "Watermarks"};
inline constexpr PaneWord watermarkSize{"WATERMARK_SIZE", "Si&ze:"};
inline constexpr PaneWord watermarkText{"WATERMARK_TEXT", "&Text:"};
inline constexpr PaneWord watermarkUp{"WATERMARK_UP", "&Upwards:"};

} // namespace torka::words

namespace torka {

// Every word above, for checking the tables.
inline constexpr std::array extraWords{words::cancel,
                                       words::ok,
                                       words::presetBadName,
                                       words::presetChanged,
                                       words::presetDelete,
                                       words::presetDeleteAsk,
                                       words::presetDeleteButton,
                                       words::presetFull,
                                       words::presetGone,
                                       words::presetName,
                                       words::presetNotKept,
                                       words::presetNotWritten,
                                       words::presetRename,
                                       words::presetRenameButton,
                                       words::presetRenameTitle,
                                       words::presetReplaceButton,
                                       words::presetReplaces,
                                       words::presets,
                                       words::presetSaveAs,
                                       words::presetSaveButton,
                                       words::presetSaveTitle,
                                       words::presetTaken,
                                       words::presetTip,
                                       words::presetUpdate,
                                       words::quickAdd,
                                       words::quickAvailable,
                                       words::quickChosen,
                                       words::quickCount,
                                       words::quickEmpty,
                                       words::quickFound,
                                       words::quickMoveDown,
                                       words::quickMoveUp,
                                       words::quickNotSaved,
                                       words::quickRemove,
                                       words::quickTitle,
                                       words::watermark,
                                       words::watermarkAdd,
                                       words::watermarkAddTitle,
                                       words::watermarkAngle,
                                       words::watermarkBlack,
                                       words::watermarkBlue,
                                       words::watermarkClear,
                                       words::watermarkColor,
                                       words::watermarkDelete,
                                       words::watermarkEdit,
                                       words::watermarkEditTitle,
                                       words::watermarkFirstPage,
                                       words::watermarkFont,
                                       words::watermarkGray,
                                       words::watermarkGreen,
                                       words::watermarkLightGray,
                                       words::watermarkNew,
                                       words::watermarkNone,
                                       words::watermarkOrange,
                                       words::watermarkOtherColor,
                                       words::watermarkPreview,
                                       words::watermarkRed,
                                       words::watermarkRight,
                                       words::watermarks,
                                       words::watermarkSize,
                                       words::watermarkText,
                                       words::watermarkUp};

} // namespace torka
