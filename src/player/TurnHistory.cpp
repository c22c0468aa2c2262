#include "player/TurnHistory.h"

#include <algorithm>

#include "base/Text.h"
#include "game/Game.h"

namespace tarve {

namespace {

// How a kept row compares with the game's row, what is kept of a row, and how a kept row is
// put back. Variables and collectables are kept whole; of things and items only what a turn can
// change, so that the copy stays small and quick to walk.
bool Same(const VariableEntry& kept, const VariableEntry& now) {
  return kept.value == now.value && kept.name == now.name;
}
bool Same(const Collectable& kept, const Collectable& now) {
  return kept.amount == now.amount && kept.flag == now.flag && kept.display == now.display &&
         kept.name == now.name && kept.type == now.type;
}
bool Same(const ThingState& kept, const Thing& now) {
  return kept.exists == now.exists && kept.visible == now.visible && kept.room == now.room;
}
bool Same(const ItemState& kept, const Item& now) { return kept.held == now.held; }

const VariableEntry& Kept(const VariableEntry& row) { return row; }
const Collectable& Kept(const Collectable& row) { return row; }
ThingState Kept(const Thing& row) { return {row.room, row.exists, row.visible}; }
ItemState Kept(const Item& row) { return {row.held}; }

template <typename Row>
void Put(Row& row, const Row& kept) {
  row = kept;
}
void Put(Thing& row, const ThingState& kept) {
  row.room = kept.room;
  row.exists = kept.exists;
  row.visible = kept.visible;
}
void Put(Item& row, const ItemState& kept) { row.held = kept.held; }

// Brings `copy` up to `now`, keeping in `changed` the rows of `copy` that differed. True when
// anything differed.
template <typename KeptRow, typename Row>
bool CompareRows(std::vector<KeptRow>& copy, const std::vector<Row>& now,
                 ChangedRows<KeptRow>& changed) {
  changed.old_size = copy.size();
  const std::size_t common = std::min(copy.size(), now.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (Same(copy[i], now[i])) continue;
    changed.rows.emplace_back(i, std::move(copy[i]));
    copy[i] = Kept(now[i]);
  }
  for (std::size_t i = common; i < copy.size(); ++i) {
    changed.rows.emplace_back(i, std::move(copy[i]));
  }
  copy.resize(common);
  for (std::size_t i = common; i < now.size(); ++i) copy.push_back(Kept(now[i]));
  return !changed.rows.empty() || changed.old_size != now.size();
}

// The variables the player publishes for scripts ("tarve." and a name) follow from the command
// and the state: every turn sets the command's, every look the room's. A turn that changed
// only them changed nothing of the game.
bool Published(const std::string& name) {
  return name.size() > 6 && LCase(name.substr(0, 6)) == "tarve.";
}

bool OwnVariablesChanged(const ChangedRows<VariableEntry>& changed,
                         const std::vector<VariableEntry>& now) {
  for (const auto& [i, row] : changed.rows) {
    if (!Published(row.name)) return true;
  }
  for (std::size_t i = changed.old_size; i < now.size(); ++i) {
    if (!Published(now[i].name)) return true;
  }
  return false;
}

template <typename KeptRow, typename Row>
void RestoreRows(std::vector<Row>& table, const ChangedRows<KeptRow>& changed) {
  table.resize(changed.old_size);
  for (const auto& [i, row] : changed.rows) Put(table[i], row);
}

// Variables are found through their index as well: names a turn added leave it again.
void RestoreVariables(VariableTable& table, const ChangedRows<VariableEntry>& changed) {
  for (std::size_t i = changed.old_size; i < table.entries.size(); ++i) {
    const auto it = table.index.find(table.entries[i].name);
    if (it != table.index.end() && it->second == i) table.index.erase(it);
  }
  RestoreRows(table.entries, changed);
  for (const auto& [i, row] : changed.rows) {
    if (table.index.find(row.name) == table.index.end()) table.index.emplace(LCase(row.name), i);
  }
  // The rows a turn added are gone, so a name looked up lately may point past the table's end.
  table.recent.fill({});
}

void Restore(const TurnChanges& changes, TableCopy& copy) {
  RestoreRows(copy.strings, changes.strings);
  RestoreRows(copy.numerics, changes.numerics);
  copy.variable_bytes = changes.variable_bytes;
  RestoreRows(copy.characters, changes.characters);
  RestoreRows(copy.objects, changes.objects);
  RestoreRows(copy.items, changes.items);
  RestoreRows(copy.collectables, changes.collectables);
  if (changes.room_changed) copy.room = changes.room;
}

void Restore(const TurnChanges& changes, Game& game) {
  RestoreVariables(game.variables.strings, changes.strings);
  RestoreVariables(game.variables.numerics, changes.numerics);
  game.variables.bytes = changes.variable_bytes;
  RestoreRows(game.world.characters, changes.characters);
  RestoreRows(game.world.objects, changes.objects);
  RestoreRows(game.inventory.items, changes.items);
  RestoreRows(game.inventory.collectables, changes.collectables);
  if (changes.room_changed) game.world.current_room = changes.room;
}

}  // namespace

void TurnHistory::Reset(const Game& game) {
  turns_.clear();
  copy_ = TableCopy();
  active_ = true;
  Compare(game);
}

void TurnHistory::Clear() {
  turns_.clear();
  copy_ = TableCopy();
  active_ = false;
}

TurnChanges TurnHistory::Compare(const Game& game) {
  TurnChanges changes;
  // Every table is compared, whatever an earlier one gave.
  bool variables = CompareRows(copy_.strings, game.variables.strings.entries, changes.strings);
  variables |= CompareRows(copy_.numerics, game.variables.numerics.entries, changes.numerics);
  changes.any |= CompareRows(copy_.characters, game.world.characters, changes.characters);
  changes.any |= CompareRows(copy_.objects, game.world.objects, changes.objects);
  changes.any |= CompareRows(copy_.items, game.inventory.items, changes.items);
  changes.any |= CompareRows(copy_.collectables, game.inventory.collectables, changes.collectables);
  if (variables && !changes.any) {
    changes.any = OwnVariablesChanged(changes.strings, copy_.strings) ||
                  OwnVariablesChanged(changes.numerics, copy_.numerics);
  }
  changes.variable_bytes = copy_.variable_bytes;
  copy_.variable_bytes = game.variables.bytes;
  if (copy_.room != game.world.current_room) {
    changes.room_changed = changes.any = true;
    changes.room = std::move(copy_.room);
    copy_.room = game.world.current_room;
  }
  return changes;
}

bool TurnHistory::Record(const Game& game, std::string command) {
  if (!active_) return false;
  TurnChanges changes = Compare(game);
  if (!changes.any) return false;
  changes.command = std::move(command);
  turns_.push_back(std::move(changes));
  if (turns_.size() > kMaxTurns) turns_.pop_front();
  return true;
}

void TurnHistory::Absorb(const Game& game) {
  if (active_) Compare(game);
}

bool TurnHistory::Undo(Game& game, std::string& command) {
  if (turns_.empty()) return false;
  // The copy must match the game before the same rows are put back in both.
  Absorb(game);
  const TurnChanges& changes = turns_.back();
  Restore(changes, game);
  Restore(changes, copy_);
  command = changes.command;
  turns_.pop_back();
  return true;
}

}  // namespace tarve
