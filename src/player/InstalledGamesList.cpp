#include "player/InstalledGamesList.h"

#include <algorithm>
#include <utility>

#include "base/Text.h"
#include "player/SettingsStore.h"

namespace tarve {

InstalledGamesList::InstalledGamesList(SettingsStore& store) : store_(store) { Reload(); }

void InstalledGamesList::Reload() { games_ = ReadInstalledGames(store_); }

InstalledGamesList::AddResult InstalledGamesList::Add(Game& game, const std::string& path) {
  InstallResult installed = InstallGame(game, store_, path);
  // The store numbers a new game after the stored count, whatever this list held; reading it
  // back shows exactly what was kept.
  if (installed.added) Reload();
  return {installed.added, std::move(installed.error)};
}

bool InstalledGamesList::Rename(int index, const std::string& name) {
  // A blank name would leave a button with nothing on it, which no player could tell apart.
  if (!Valid(index) || TrimView(name).empty()) return false;
  std::string& current = games_[static_cast<std::size_t>(index)].name;
  if (current == name) return false;
  current = name;
  return true;
}

bool InstalledGamesList::ChangeFile(int index, const std::string& file) {
  if (!Valid(index) || file.empty()) return false;
  std::string& current = games_[static_cast<std::size_t>(index)].file;
  if (current == file) return false;
  current = file;
  return true;
}

int InstalledGamesList::MoveUp(int index) {
  if (!Valid(index)) return -1;
  if (index == 0) {
    std::rotate(games_.begin(), games_.begin() + 1, games_.end());
    return size() - 1;
  }
  std::swap(games_[static_cast<std::size_t>(index)], games_[static_cast<std::size_t>(index - 1)]);
  return index - 1;
}

int InstalledGamesList::MoveDown(int index) {
  if (!Valid(index)) return -1;
  if (index == size() - 1) {
    std::rotate(games_.rbegin(), games_.rbegin() + 1, games_.rend());
    return 0;
  }
  std::swap(games_[static_cast<std::size_t>(index)], games_[static_cast<std::size_t>(index + 1)]);
  return index + 1;
}

bool InstalledGamesList::Remove(int index) {
  if (!Valid(index)) return false;
  games_.erase(games_.begin() + index);
  return true;
}

bool InstalledGamesList::WriteBack() { return WriteInstalledGames(store_, games_); }

}  // namespace tarve
