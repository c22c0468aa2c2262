// The options window without its widgets: the values its controls show, taken from the
// player's settings when it opens and, on OK, copied back and written to the settings store;
// the custom list of file types that the security level "custom" checks; and the default files
// for the script log and the output copy.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "game/Settings.h"

namespace tarve {

class SettingsStore;

// The folder of the player's own files: $XDG_DATA_HOME/Tarve, or ~/.local/share/Tarve when
// XDG_DATA_HOME is unset or not an absolute path. Empty when neither gives a folder.
std::string UserDataFolder(const char* xdg_data_home, const char* home);
// The same, from this process's environment.
std::string UserDataFolder();

// The files that logging and the output copy use when the player turns them on without naming
// a file.
inline constexpr const char* kDefaultLogFileName = "TARVELOG.LOG";
inline constexpr const char* kDefaultOutputFileName = "GAMELOG.LOG";

// The custom security list as frmAdvancedSecurity edits it.
class CustomSecurityList {
 public:
  explicit CustomSecurityList(std::vector<std::string> entries) : entries_(std::move(entries)) {}

  // What an extension the player types is kept as: the file type that the security check
  // compares, so that ".txt", "txt" and " TXT " all stand for the same type: blanks and leading
  // dots go, only the part after a last inner dot counts, and the rest is upper-cased and cut
  // to its first three characters. Empty when nothing is left.
  static std::string EntryFor(std::string_view typed);

  // Adds what the player typed; false (nothing added) when it names no type or one already on
  // the list.
  bool Add(std::string_view typed);
  bool Remove(int index);
  const std::vector<std::string>& entries() const { return entries_; }

 private:
  std::vector<std::string> entries_;
};

class OptionsForm {
 public:
  // What the window shows when it opens: the player's settings as they stand. Default files
  // are made in `data_folder`.
  OptionsForm(const Settings& current, std::string data_folder);

  // The controls' values. The security level is 1 (no file), 2 (every file) or 3 (the list);
  // colours are six hexadecimal digits.
  Settings values;

  // OK: copies the form into `settings` and writes every key of the "Options" and "Security"
  // sections. Logging or the output copy turned on without a file name gets its default file,
  // which the form then shows; a file name is only taken while its switch is on. A colour that
  // is not six hexadecimal digits keeps the colour the settings had. False when the store could
  // not keep the keys; `settings` has changed either way.
  bool Confirm(Settings& settings, SettingsStore& store);

  // Whether a colour box's text is a colour the main window can show.
  static bool IsColour(std::string_view text);

 private:
  std::string DefaultFile(const char* name) const;

  std::string data_folder_;
};

}  // namespace tarve
