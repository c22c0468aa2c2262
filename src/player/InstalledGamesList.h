// The installed games as the launcher shows them and its list editor changes them: read from
// the settings store, added to under each game's title, renamed, pointed at another file,
// moved, removed, and written back numbered from 1.
#pragma once

#include <string>
#include <vector>

#include "player/Settings.h"

namespace tarve {

struct Game;
class SettingsStore;

class InstalledGamesList {
 public:
  // Reads the list from `store`, which must outlive the list.
  explicit InstalledGamesList(SettingsStore& store);

  // Reads the list again, dropping edits that were not written back.
  void Reload();

  const std::vector<InstalledGame>& games() const { return games_; }
  int size() const { return static_cast<int>(games_.size()); }

  // Adding a game from the launcher goes to the store at once, under the game's title (a
  // compiled game's path, else the title of its game block with `game`'s variables substituted).
  // A file that cannot be read or has no game block is not added.
  struct AddResult {
    bool added = false;
    std::string error;  // why not, in the words of the "Error" box
  };
  AddResult Add(Game& game, const std::string& path);

  // The list editor's changes, kept until WriteBack. Each is false when `index` (from 0) names
  // no entry or the change would change nothing; a blank name or an empty file changes nothing.
  bool Rename(int index, const std::string& name);
  bool ChangeFile(int index, const std::string& file);
  // Moves an entry one place up; the first one goes to the end, so that the one move can bring
  // an entry to any place. Returns the entry's new index, or -1.
  int MoveUp(int index);
  // Moves an entry one place down; the last one goes to the top.
  int MoveDown(int index);
  bool Remove(int index);

  // Replaces the stored list with this one, numbered from 1, with the new count. False when the
  // store could not keep it.
  bool WriteBack();

 private:
  bool Valid(int index) const { return index >= 0 && index < size(); }

  SettingsStore& store_;
  std::vector<InstalledGame> games_;
};

}  // namespace tarve
