// The turns a player can take back: for each turn, only the rows of the game's tables that the
// turn changed, as they were before it. One copy of the tables as they stood after the last turn
// is kept to find those rows, so a turn costs one pass over the tables and a few rows of memory.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "interpreter/Variables.h"
#include "world/Items.h"
#include "world/World.h"

namespace tarve {

struct Game;

// The rows of one table that a turn changed, as they were before it, and the table's length
// then (rows a turn added are dropped again on undo).
template <typename Row>
struct ChangedRows {
  std::size_t old_size = 0;
  std::vector<std::pair<std::size_t, Row>> rows;
};

// What a turn can change of a thing and of an item; the rest is set once, when the game opens.
struct ThingState {
  std::string room;
  bool exists = true;
  bool visible = true;
};
struct ItemState {
  bool held = false;
};

// What one turn changed, as it was before the turn.
struct TurnChanges {
  std::string command;
  ChangedRows<VariableEntry> strings;
  ChangedRows<VariableEntry> numerics;
  std::size_t variable_bytes = 0;
  ChangedRows<ThingState> characters;
  ChangedRows<ThingState> objects;
  ChangedRows<ItemState> items;
  ChangedRows<Collectable> collectables;
  bool room_changed = false;
  std::string room;
  // Something besides the variables the player publishes changed: the turn counts.
  bool any = false;
};

// Every table a turn can change: the variables, where each thing is and whether it exists and
// shows, the items held, the collectables and the current room.
struct TableCopy {
  std::vector<VariableEntry> strings;
  std::vector<VariableEntry> numerics;
  std::size_t variable_bytes = 0;
  std::vector<ThingState> characters;
  std::vector<ThingState> objects;
  std::vector<ItemState> items;
  std::vector<Collectable> collectables;
  std::string room;
};

class TurnHistory {
 public:
  // The player can take back this many turns.
  static constexpr std::size_t kMaxTurns = 100;

  // Forgets every turn and starts again from the game as it stands (a game opened or loaded).
  void Reset(const Game& game);
  // Forgets every turn and the copy of the tables (no game is open).
  void Clear();
  // A turn has ended: keeps what it changed, under the command that ran it. A turn that changed
  // nothing of the game (looking, an unknown command) is not kept, so that undo always takes
  // back something the player can see. True when it was kept.
  bool Record(const Game& game, std::string command);
  // Takes what the game changed outside a turn (a room described again) into the copy, so that
  // the next turn is not charged with it.
  void Absorb(const Game& game);
  bool CanUndo() const { return !turns_.empty(); }
  std::size_t size() const { return turns_.size(); }
  // Puts back the tables as they were before the last kept turn; the command of that turn, or
  // nothing when no turn is kept.
  bool Undo(Game& game, std::string& command);

 private:
  TurnChanges Compare(const Game& game);

  bool active_ = false;
  TableCopy copy_;
  std::deque<TurnChanges> turns_;
};

}  // namespace tarve
