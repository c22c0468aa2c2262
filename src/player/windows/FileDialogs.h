// The file-open dialogs of the launcher and its list editor: their filters as the player has
// always written them, turned into the toolkit's form, and a chooser that the windows ask for a
// file, so that tests can answer in place of a dialog.
#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

class QWidget;

namespace tarve {

// "Description|patterns|Description|patterns...", patterns separated by ";".
inline constexpr const char* kGameFileFilter =
    "All Tarve games|*.gwl;*.cgw|Tarve script files (*.gwl)|*.gwl|Compiled Tarve script "
    "(*.cgw)|*.cgw|Text files (*.txt)|*.txt|All files (*.*)|*.*";
inline constexpr const char* kSavedGameFileFilter =
    "Tarve saved game (*.tsg)|*.tsg|All files (*.*)|*.*";

// The same filter as the file dialog takes it: "Description (patterns);;...". Each
// description keeps its words; the patterns it names in parentheses give way to the patterns of
// its pair, and "*.*" becomes "*", since a Linux file need not have a dot to be among all files.
QString DialogFilter(std::string_view filter);

// Asks the player for a file to open: the path, or nothing when the player cancelled.
using FileChooser = std::function<std::optional<std::string>(
    QWidget* parent, const QString& caption, const QString& filter)>;

// The chooser that shows the toolkit's file-open dialog.
std::optional<std::string> ChooseFileWithDialog(QWidget* parent, const QString& caption,
                                                const QString& filter);

}  // namespace tarve
