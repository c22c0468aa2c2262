#include "world/World.h"

#include <algorithm>

#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Substitution.h"
#include "interpreter/Variables.h"
#include "world/RoomDescription.h"

namespace tarve {

namespace {

std::string_view KindWord(ThingKind kind) {
  return kind == ThingKind::kObject ? "object" : "character";
}

ThingIndex& IndexOf(Game& game, ThingKind kind) {
  return kind == ThingKind::kObject ? game.world.object_index : game.world.character_index;
}

void RebuildIndex(ThingIndex& index, const std::vector<Thing>& things) {
  index.by_name.clear();
  for (std::size_t i = 0; i < things.size(); ++i) index.by_name[LCase(things[i].name)].push_back(i);
  index.table_data = things.data();
  index.table_size = things.size();
  index.built = true;
}

// The lines of a thing's block up to its end define: a hidden or invisible line, startin (only
// for a thing outside every room), prefix and suffix. Other lines are tag lines, read on demand.
// The block ends at the first line that, trimmed, is "end define", wherever it stands: a block
// whose own end define was joined to a continued line runs on to the next one. Returns the line
// of the end define (or the last line of the game when there is none).
int ReadThingBlock(Game& game, int define_line, std::string_view room, ThingKind kind) {
  const int limit = game.text.LineCount();
  Thing thing;
  std::string_view name;
  if (CutParameter(game.text.Line(define_line), name)) thing.name = std::string(name);
  thing.room = std::string(room);
  thing.first_line = define_line;
  int i = define_line + 1;
  for (; i <= limit; ++i) {
    const std::string_view line = TrimView(game.text.Line(i));
    if (line == "end define") break;
    if (line == "hidden") {
      thing.exists = false;
    } else if (room == kUnknownRoom && BeginsWith(line, "startin ")) {
      thing.room = RetrieveParameter(game, line, true);
    } else if (BeginsWith(line, "prefix ")) {
      thing.prefix = RetrieveParameter(game, line, true) + " ";
    } else if (BeginsWith(line, "suffix ")) {
      thing.suffix = " " + RetrieveParameter(game, line, true);
    } else if (line == "invisible") {
      thing.visible = false;
    }
  }
  thing.last_line = std::min(i, limit);
  // A thing outside every room that names no start room is nowhere until a script moves it.
  if (thing.room == kUnknownRoom) thing.room.clear();
  const int end = thing.last_line;
  ThingsOf(game, kind).push_back(std::move(thing));
  return end;
}

// Reads a define line for a thing: which kind it opens, if any.
bool OpensThing(std::string_view line, ThingKind& kind) {
  if (BeginsWith(line, "define character ")) {
    kind = ThingKind::kCharacter;
    return true;
  }
  if (BeginsWith(line, "define object ")) {
    kind = ThingKind::kObject;
    return true;
  }
  return false;
}

void SplitReference(Game& game, std::string_view reference, std::string_view& name,
                    std::string_view& room) {
  const std::size_t at = reference.find('@');
  if (at == std::string_view::npos) {
    name = TrimView(reference);
    room = game.world.current_room;
  } else {
    name = TrimView(reference.substr(0, at));
    room = TrimView(reference.substr(at + 1));
  }
}

// The thing named by a tag lookup: `kind` is "object" or, for any other text, "character".
Thing* FindThingForTag(Game& game, std::string_view kind, std::string_view name) {
  const ThingKind k = kind == "object" ? ThingKind::kObject : ThingKind::kCharacter;
  return FindThing(game, k, name, game.world.current_room);
}

void LogNoSuchThing(Game& game, ThingKind kind, std::string_view name) {
  LogScriptError(game,
                 "Error: No such " + std::string(KindWord(kind)) + " '" + std::string(name) + "'.");
}

}  // namespace

void BuildWorldTables(Game& game) {
  World& world = game.world;
  world.characters.clear();
  world.objects.clear();
  world.character_index = ThingIndex();
  world.object_index = ThingIndex();

  const GameText& text = game.text;
  for (int b = 1; b <= text.BlockCount(); ++b) {
    const BlockRecord& block = text.blocks[static_cast<std::size_t>(b)];
    const int last = std::min(block.end, text.LineCount());
    const std::string& define_line = text.Line(block.start);
    ThingKind kind;
    if (OpensThing(define_line, kind)) {
      ReadThingBlock(game, block.start, kUnknownRoom, kind);
      continue;
    }
    if (!BeginsWith(define_line, "define room ")) continue;
    std::string_view room_name;
    CutParameter(define_line, room_name);
    const std::string room(room_name);
    for (int i = block.start + 1; i < last; ++i) {
      const std::string& line = text.Line(i);
      if (OpensThing(line, kind)) {
        i = ReadThingBlock(game, i, room, kind);
      } else if (BeginsWith(line, "define ")) {
        // Some other block inside the room (a text, say): its lines are not the room's things.
        while (i < last && !IsEndDefine(text.Line(i))) ++i;
      }
    }
  }
}

std::vector<Thing>& ThingsOf(Game& game, ThingKind kind) {
  return kind == ThingKind::kObject ? game.world.objects : game.world.characters;
}

std::vector<Thing*> ThingsNamed(Game& game, ThingKind kind, std::string_view name) {
  std::vector<Thing>& things = ThingsOf(game, kind);
  ThingIndex& index = IndexOf(game, kind);
  std::vector<Thing*> found;
  const std::string key = LCase(name);
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (!index.built || index.table_data != things.data() || index.table_size != things.size()) {
      RebuildIndex(index, things);
    }
    found.clear();
    bool stale = false;
    if (auto it = index.by_name.find(key); it != index.by_name.end()) {
      for (std::size_t i : it->second) {
        if (i >= things.size() || !EqualsNoCase(things[i].name, name)) {
          stale = true;
          break;
        }
        found.push_back(&things[i]);
      }
    }
    if (!stale) break;
    index.built = false;  // a record was changed in place: index the table again
  }
  return found;
}

Thing* FindThing(Game& game, ThingKind kind, std::string_view name, std::string_view room) {
  for (Thing* thing : ThingsNamed(game, kind, name)) {
    if (EqualsNoCase(thing->room, room)) return thing;
  }
  return nullptr;
}

BlockRange FindThingBlock(Game& game, ThingKind kind, std::string_view name,
                          std::string_view room) {
  const Thing* thing = FindThing(game, kind, name, room);
  if (thing == nullptr) return {};
  return {thing->first_line, thing->last_line};
}

bool ThingExists(Game& game, ThingKind kind, std::string_view reference) {
  std::string_view name;
  std::string_view room;
  SplitReference(game, reference, name, room);
  const std::string wanted_room(room);  // `room` may view the current room, which scripts change
  bool exists = false;
  for (const Thing* thing : ThingsNamed(game, kind, name)) {
    if (!EqualsNoCase(thing->room, wanted_room)) continue;
    exists = thing->exists;
    // Characters: the first fitting record decides; objects: the last one.
    if (kind == ThingKind::kCharacter) break;
  }
  return exists;
}

std::string GetThingTag(Game& game, std::string_view kind, std::string_view name,
                        std::string_view tag) {
  const Thing* thing = FindThingForTag(game, kind, name);
  if (thing == nullptr) return kUndefinedThing;
  const int last = std::min(thing->last_line - 1, game.text.LineCount());
  const std::string* found = nullptr;
  for (int i = thing->first_line + 1; i <= last; ++i) {
    if (BeginsWith(game.text.Line(i), tag)) found = &game.text.Line(i);
  }
  return found == nullptr ? std::string(kUnfoundTag) : Trim(*found);
}

std::string FindThingTagWithParameter(Game& game, std::string_view kind, std::string_view name,
                                      std::string_view tag, std::string_view parameter) {
  const Thing* thing = FindThingForTag(game, kind, name);
  if (thing == nullptr) return kUndefinedThing;
  const int last = std::min(thing->last_line - 1, game.text.LineCount());
  const std::string* found = nullptr;
  for (int i = thing->first_line + 1; i <= last; ++i) {
    const std::string& line = game.text.Line(i);
    if (!BeginsWith(line, tag)) continue;
    std::string_view raw;
    if (!CutParameter(line, raw)) continue;
    const bool matches = raw.find_first_of("#%~$") == std::string_view::npos
                             ? EqualsNoCase(raw, parameter)
                             : EqualsNoCase(SubstituteAll(game, raw), parameter);
    if (matches) found = &line;
  }
  return found == nullptr ? std::string(kUnfoundTag) : Trim(*found);
}

void EnterRoom(Game& game, std::string_view room) {
  const std::string name(room);  // `room` may view text that the room's scripts change
  game.world.current_room = name;
  SetStringVariable(game, "tarve.currentroom", name);
  const int games_opened = game.games_opened;
  DescribeRoom(game, name);
  // A description script may have loaded a saved game, which has entered its own room.
  if (game.games_opened != games_opened) return;
  RefreshThingsHere(game);

  // The room's own script line (the first one; lines of things inside the room are theirs).
  const BlockRange block = FindBlockByName(game, "room", name);
  if (!block.Found()) return;
  std::string script;
  ForEachOwnLine(game.text, block, [&](const std::string& line) {
    if (!BeginsWith(line, "script ")) return false;
    script = TextAfterKeyword(line, "script ");
    return true;
  });
  ExecuteScript(game, script);
}

std::vector<Thing*> SelectThings(Game& game, ThingKind kind, std::string_view reference) {
  std::vector<Thing*> named;
  std::string room;
  const std::size_t at = reference.find('@');
  if (at != std::string_view::npos) {
    named = ThingsNamed(game, kind, TrimView(reference.substr(0, at)));
    room = std::string(TrimView(reference.substr(at + 1)));
  } else {
    named = ThingsNamed(game, kind, TrimView(reference));
    if (named.empty()) return named;
    room = game.world.current_room;
    const bool any_here = std::any_of(named.begin(), named.end(), [&](const Thing* thing) {
      return EqualsNoCase(thing->room, room);
    });
    if (!any_here) room = named.front()->room;
  }
  std::erase_if(named, [&](const Thing* thing) { return !EqualsNoCase(thing->room, room); });
  return named;
}

void MoveThing(Game& game, ThingKind kind, std::string_view parameter) {
  const std::size_t semicolon = parameter.find(';');
  if (semicolon == std::string_view::npos) {
    LogScriptError(game, "Error: Expected a name and a room separated by ';' in '" +
                             std::string(parameter) + "'.");
    return;
  }
  const std::string_view name = TrimView(parameter.substr(0, semicolon));
  const std::string room = Trim(parameter.substr(semicolon + 1));
  const std::vector<Thing*> things = SelectThings(game, kind, name);
  if (things.empty()) {
    LogNoSuchThing(game, kind, name);
    return;
  }
  for (Thing* thing : things) thing->room = room;
  RefreshThingsHere(game);
}

void SetThingExists(Game& game, ThingKind kind, std::string_view name, bool exists) {
  const std::vector<Thing*> things = SelectThings(game, kind, name);
  if (things.empty()) {
    LogNoSuchThing(game, kind, TrimView(name));
    return;
  }
  for (Thing* thing : things) thing->exists = exists;
  RefreshThingsHere(game);
}

void SetThingVisible(Game& game, ThingKind kind, std::string_view name, bool visible) {
  const std::vector<Thing*> things = SelectThings(game, kind, name);
  if (things.empty()) {
    LogNoSuchThing(game, kind, TrimView(name));
    return;
  }
  for (Thing* thing : things) thing->visible = visible;
  RefreshThingsHere(game);
}

bool TestHere(Game& game, std::string_view name) {
  const std::string_view wanted = TrimView(name);
  bool known = false;
  for (ThingKind kind : {ThingKind::kObject, ThingKind::kCharacter}) {
    for (const Thing* thing : ThingsNamed(game, kind, wanted)) {
      known = true;
      if (EqualsNoCase(thing->room, game.world.current_room)) return true;
    }
  }
  if (!known) LogScriptError(game, "No such character/object '" + std::string(wanted) + "'.");
  return false;
}

bool TestExists(Game& game, std::string_view parameter, bool real) {
  std::string_view reference = parameter;
  bool report = false;
  if (const std::size_t semicolon = parameter.find(';'); semicolon != std::string_view::npos) {
    reference = parameter.substr(0, semicolon);
    report = EqualsNoCase(TrimView(parameter.substr(semicolon + 1)), "report");
  }
  reference = TrimView(reference);
  // A bare name means the thing in the current room, "name @ room" the thing in that room.
  const std::size_t at = reference.find('@');
  const std::string_view name = TrimView(reference.substr(0, at));
  const std::string_view room = at == std::string_view::npos
                                    ? std::string_view(game.world.current_room)
                                    : TrimView(reference.substr(at + 1));
  for (ThingKind kind : {ThingKind::kObject, ThingKind::kCharacter}) {
    // Of several characters that fit, the first decides; of several objects, the last.
    const Thing* deciding = nullptr;
    for (const Thing* thing : ThingsNamed(game, kind, name)) {
      if (!EqualsNoCase(thing->room, room)) continue;
      deciding = thing;
      if (kind == ThingKind::kCharacter) break;
    }
    if (deciding != nullptr) return deciding->exists && (!real || deciding->visible);
  }
  if (report) LogScriptError(game, "No such character/object '" + std::string(reference) + "'.");
  return false;
}

std::string LocationOf(Game& game, std::string_view name) {
  for (ThingKind kind : {ThingKind::kObject, ThingKind::kCharacter}) {
    const std::vector<Thing*> things = SelectThings(game, kind, name);
    if (!things.empty()) return things.front()->room;
  }
  return std::string();
}

}  // namespace tarve
