// The world model: the characters and objects of the game with where they are and the two
// flags scripts change, the current room, and the lookups of their tag lines.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "script/CommonCode.h"

namespace tarve {

struct Game;

enum class ThingKind { kCharacter, kObject };

// Answers of the tag lookups: the thing is not in the current room / it has no such tag.
inline constexpr const char* kUndefinedThing = "<undefined>";
inline constexpr const char* kUnfoundTag = "<unfound>";

struct Thing {
  std::string name;
  std::string room;
  bool exists = true;  // cleared by a "hidden" line and by hideobject/hidechar
  std::string prefix;  // with its trailing blank
  std::string suffix;  // with its leading blank
  int first_line = 0;
  int last_line = 0;
  bool visible = true;  // cleared by an "invisible" line and by concealobject/concealchar
};

// Lower-cased names to the positions of the records that carry them, so that a lookup by name
// neither walks nor lower-cases the whole table. Names never change once the tables are built;
// the index is made again whenever its table has grown, shrunk or moved in memory.
struct ThingIndex {
  std::unordered_map<std::string, std::vector<std::size_t>> by_name;
  const Thing* table_data = nullptr;
  std::size_t table_size = 0;
  bool built = false;
};

struct World {
  std::vector<Thing> characters;
  std::vector<Thing> objects;
  std::string current_room;
  ThingIndex character_index;
  ThingIndex object_index;
};

// The room of a thing defined outside every room block, until its startin line is read.
inline constexpr const char* kUnknownRoom = "__UNKNOWN";

// Builds both tables from the game text (at game opening).
void BuildWorldTables(Game& game);

std::vector<Thing>& ThingsOf(Game& game, ThingKind kind);
// Every record of that name (ignoring case), in table order.
std::vector<Thing*> ThingsNamed(Game& game, ThingKind kind, std::string_view name);
// The records a statement or test means by `reference`: "name@room" names the things of that
// name in that room; a bare name the ones in the current room when there are any there, else
// those in the room of the first record of that name. Empty when no record fits.
std::vector<Thing*> SelectThings(Game& game, ThingKind kind, std::string_view reference);
// The first thing of that name in that room (both compared ignoring case), or nullptr.
Thing* FindThing(Game& game, ThingKind kind, std::string_view name, std::string_view room);
BlockRange FindThingBlock(Game& game, ThingKind kind, std::string_view name, std::string_view room);
// `reference` is a name (in the current room) or "name@room".
bool ThingExists(Game& game, ThingKind kind, std::string_view reference);
// `kind` is "object" or (anything else) "character".
std::string GetThingTag(Game& game, std::string_view kind, std::string_view name,
                        std::string_view tag);
std::string FindThingTagWithParameter(Game& game, std::string_view kind, std::string_view name,
                                      std::string_view tag, std::string_view parameter);

// Sets the current room, describes it, refreshes the lists and runs the room's script.
void EnterRoom(Game& game, std::string_view room);

// The statements that change things: moveobject/movechar <name; room>, hide/show (exists) and
// conceal/reveal (visible) <name>.
void MoveThing(Game& game, ThingKind kind, std::string_view parameter);
void SetThingExists(Game& game, ThingKind kind, std::string_view name, bool exists);
void SetThingVisible(Game& game, ThingKind kind, std::string_view name, bool visible);

// Tests of the if statement: here <name>, exists <name; report>, real <name; report>.
bool TestHere(Game& game, std::string_view name);
bool TestExists(Game& game, std::string_view parameter, bool real);
// The room the object or character of that name is in ("" when none): the locationof function.
std::string LocationOf(Game& game, std::string_view name);

}  // namespace tarve
