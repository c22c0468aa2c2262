// The player's settings in the settings store: reading and writing them, the first-run set-up
// of a new version, and the list of installed games.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "game/Settings.h"

namespace tarve {

struct Game;
class SettingsStore;

// The marker that the first-run set-up of this version has been done ("Init", "InstalledVer").
inline constexpr const char* kInstalledVersionMarker = "TARVE-210";

// The first-run set-up: the desktop program associates the player's document types with itself
// and says that set-up is complete. The terminal player leaves it to the desktop program (and
// leaves the marker alone), so `enabled` is off there.
struct FirstRunSetup {
  bool enabled = false;
  std::function<void(const std::string& description, const std::string& extension)>
      associate_file_type;
};

// Reads every "Options" and "Security" key into game.settings, with the defaults for absent
// keys, after the first-run set-up when it is enabled and not yet done for this version. True
// when the set-up ran.
bool LoadSettings(Game& game, SettingsStore& store, const FirstRunSetup& setup = {});

// The settings as the store reads them, without any set-up.
Settings ReadSettings(const SettingsStore& store);

// Writes every "Options" and "Security" key, as the options window does when confirmed. False
// when the store could not keep them.
bool SaveSettings(const Settings& settings, SettingsStore& store);

// The installed-games list (section "Games").
struct InstalledGame {
  std::string name;
  std::string file;
};

// The most installed games and custom file types read from a store: their counts are 16-bit
// numbers, and a damaged count must not make the player read for ever.
inline constexpr int kMaxListEntries = 32767;

// The installed games in list order. An entry without a file is skipped; one without a name is
// shown by its file's path.
std::vector<InstalledGame> ReadInstalledGames(const SettingsStore& store);

// Replaces the list with `games`, numbered from 1, and removes the keys of entries beyond it.
bool WriteInstalledGames(SettingsStore& store, const std::vector<InstalledGame>& games);

// The title a game file is listed under: a compiled game's path itself; else the parameter of
// its first "define game " field (substituted), "__CANTOPEN" when the file cannot be read, or
// "__NOTITLE" when it has no such field.
std::string GetGameTitle(Game& game, const std::string& path);

// Adds the game at `path` to the end of the installed list under its title. A file that cannot
// be read or has no title is not added; `error` then says why, as the box titled "Error" tells
// the player.
struct InstallResult {
  bool added = false;
  std::string error;
};
InstallResult InstallGame(Game& game, SettingsStore& store, const std::string& path);

// True when `path` names the same file as an entry of the installed list.
bool IsInstalledGame(const SettingsStore& store, const std::string& path);

}  // namespace tarve
