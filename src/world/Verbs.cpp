#include "world/Verbs.h"

#include <algorithm>

#include "base/Text.h"
#include "game/Game.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "output/Output.h"
#include "script/CommonCode.h"
#include "world/Items.h"
#include "world/PlayerMessages.h"
#include "world/RoomDescription.h"
#include "world/World.h"

namespace tarve {

namespace {

bool IsSentinel(std::string_view answer) {
  return answer == kUndefinedThing || answer == kUnfoundTag;
}

std::string_view DropLeadingThe(std::string_view name) {
  return name.starts_with("the ") ? name.substr(4) : name;
}

// The thing of that name is in the current room and has not been hidden.
bool IsHere(Game& game, ThingKind kind, std::string_view name) {
  if (FindThing(game, kind, name, game.world.current_room) == nullptr) return false;
  std::string reference(name);
  reference += '@';
  reference += game.world.current_room;
  return ThingExists(game, kind, reference);
}

std::string_view KindText(ThingKind kind) {
  return kind == ThingKind::kObject ? "object" : "character";
}

// A thing's tag line, or "<undefined>" also when the thing is here but hidden.
std::string TagOfThingHere(Game& game, ThingKind kind, std::string_view name,
                           std::string_view tag) {
  if (!IsHere(game, kind, name)) return kUndefinedThing;
  return GetThingTag(game, KindText(kind), name, tag);
}

std::string TagWithParameterOfThingHere(Game& game, ThingKind kind, std::string_view name,
                                        std::string_view tag, std::string_view parameter) {
  if (!IsHere(game, kind, name)) return kUndefinedThing;
  return FindThingTagWithParameter(game, KindText(kind), name, tag, parameter);
}

// The text after a tag word of a tag line, which the lookups give trimmed.
std::string_view AfterTag(std::string_view line, std::string_view tag) {
  return line.substr(std::min(line.size(), ByteOffsetOfChar(line, CharCount(tag))));
}

// The script after the parameter of a line such as "give <lamp> msg <Thanks.>".
std::string_view ScriptAfterParameter(std::string_view line) {
  const std::size_t close = line.find('>');
  return close == std::string_view::npos ? std::string_view() : TrimView(line.substr(close + 1));
}

// "look <text>" and "speak <text>" print their text; anything else after the tag word is a
// script line.
void PrintOrRun(Game& game, std::string_view text, bool quoted) {
  if (!text.starts_with('<')) {
    ExecuteScript(game, text);
    return;
  }
  const std::string parameter = RetrieveParameter(game, text, true);
  PrintText(game, quoted ? "\"" + parameter + "\"" : parameter);
}

// The character's gender word with its first letter upper-cased, trimmed: "It" for a
// character without a gender line.
std::string CapitalisedGender(Game& game, std::string_view character) {
  std::string word = "it ";
  const std::string line = GetThingTag(game, "character", character, "gender");
  std::string_view parameter;
  if (!IsSentinel(line) && CutParameter(line, parameter)) {
    word = RetrieveParameter(game, line, true) + " ";
  }
  const std::size_t first = ByteOffsetOfChar(word, 1);
  return Trim(UCase(std::string_view(word).substr(0, first)) + word.substr(first));
}

bool Holds(Game& game, std::string_view item) {
  const Item* found = FindItem(game, item);
  return found != nullptr && found->held;
}

}  // namespace

void TakeVerb(Game& game, std::string_view what) {
  std::string_view name = what;
  if (!IsHere(game, ThingKind::kObject, name) && name.starts_with("the ")) name = name.substr(4);
  if (!IsHere(game, ThingKind::kObject, name)) {
    PrintPlayerMessage(game, kBadItem);
    return;
  }
  // The first take line runs; the verb itself gives nothing: the game's script does that.
  const BlockRange block = FindThingBlock(game, ThingKind::kObject, name, game.world.current_room);
  const int last = std::min(block.end - 1, game.text.LineCount());
  for (int i = block.start + 1; i <= last; ++i) {
    if (!BeginsWith(game.text.Line(i), "take")) continue;
    const std::string line = Trim(game.text.Line(i));
    ExecuteScript(game, AfterTag(line, "take"));
    return;
  }
  PrintPlayerMessage(game, kDefaultTake);
}

void GiveVerb(Game& game, std::string_view what) {
  const std::size_t to = what.find(" to ");
  if (to == std::string_view::npos) {
    PrintPlayerMessage(game, kBadGive);
    return;
  }
  const std::string_view item = what.substr(0, to);
  const std::string_view who = what.substr(to + 4);
  const Thing* character = FindThing(game, ThingKind::kCharacter, who, game.world.current_room);
  if (character == nullptr || !IsHere(game, ThingKind::kCharacter, who)) {
    PrintPlayerMessage(game, kBadCharacter);
    return;
  }
  if (!Holds(game, item)) {
    PrintPlayerMessage(game, kNoItem);
    return;
  }
  const std::string line = FindThingTagWithParameter(game, "character", who, "give", item);
  if (!IsSentinel(line)) {
    ExecuteScript(game, ScriptAfterParameter(line));
    return;
  }
  // The message names the character as the game writes it, not as the player typed it.
  SetStringVariable(game, "tarve.error.charactername", character->name);
  SetStringVariable(game, "tarve.error.gender", CapitalisedGender(game, who));
  PrintPlayerMessage(game, kItemUnwanted);
}

void SpeakVerb(Game& game, std::string_view who) {
  const std::string_view name = DropLeadingThe(who);
  const std::string line = TagOfThingHere(game, ThingKind::kCharacter, name, "speak");
  if (line == kUndefinedThing) {
    PrintPlayerMessage(game, kBadCharacter);
    return;
  }
  if (line == kUnfoundTag) {
    SetStringVariable(game, "tarve.error.gender", CapitalisedGender(game, name));
    SetStringVariable(game, "tarve.error.charactername", name);
    PrintPlayerMessage(game, kDefaultSpeak);
    return;
  }
  PrintOrRun(game, TrimView(AfterTag(line, "speak ")), /*quoted=*/true);
}

void LookVerb(Game& game, std::string_view command) {
  if (TrimView(command) == "look") {
    if (game.settings.detailed_look) {
      DescribeRoom(game, game.world.current_room);
      return;
    }
    // The short form: only what the room looks like; who and what is here and the ways out
    // stay in the window's lists and buttons.
    const std::string look =
        FindTagInBlock(game, FindBlockByName(game, "room", game.world.current_room), "look");
    if (look.empty()) {
      PrintPlayerMessage(game, kDefaultLook);
    } else {
      PrintText(game, look);
    }
    return;
  }
  const std::size_t at = command.find("at");
  if (at == std::string_view::npos) {
    PrintPlayerMessage(game, kBadLook);
    return;
  }
  // "look at" with nothing after it names no thing here.
  const std::string_view name = DropLeadingThe(TrimView(command.substr(at + 2)));
  if (name.empty()) {
    PrintPlayerMessage(game, kBadThing);
    return;
  }
  // The object's look line wins over the character's; a thing that is here without one
  // answers "nothing out of the ordinary" rather than "what's that?".
  std::string line = TagOfThingHere(game, ThingKind::kObject, name, "look");
  const bool object_here = line != kUndefinedThing;
  if (IsSentinel(line)) {
    line = TagOfThingHere(game, ThingKind::kCharacter, name, "look");
    if (line == kUndefinedThing && object_here) line = kUnfoundTag;
  }
  if (line == kUndefinedThing) {
    PrintPlayerMessage(game, kBadThing);
  } else if (line == kUnfoundTag) {
    PrintPlayerMessage(game, kDefaultLook);
  } else {
    PrintOrRun(game, TrimView(AfterTag(line, "look ")), /*quoted=*/false);
  }
}

void UseVerb(Game& game, std::string_view command) {
  const std::string_view rest = AfterTag(TrimLeftView(command), "use ");
  std::string_view item = rest;
  std::string_view target;
  bool has_target = false;
  for (std::string_view word : {std::string_view(" on "), std::string_view(" with ")}) {
    if (const std::size_t at = rest.find(word); at != std::string_view::npos) {
      item = rest.substr(0, at);
      target = rest.substr(at + word.size());
      has_target = true;
      break;
    }
  }
  if (!Holds(game, item)) {
    PrintPlayerMessage(game, kNoItem);
    return;
  }
  if (!has_target) {
    // Using an item on its own: the room's use line for it, else the game's.
    std::string line = FindLineWithTagAndParameter(
        game, FindBlockByName(game, "room", game.world.current_room), "use", item);
    if (line.empty())
      line = FindLineWithTagAndParameter(game, FindBlock(game, "game"), "use", item);
    if (line.empty()) {
      PrintPlayerMessage(game, kDefaultUse);
    } else {
      ExecuteScript(game, ScriptAfterParameter(line));
    }
    return;
  }
  std::string line = TagWithParameterOfThingHere(game, ThingKind::kObject, target, "use", item);
  const bool object_here = line != kUndefinedThing;
  if (IsSentinel(line)) {
    line = TagWithParameterOfThingHere(game, ThingKind::kCharacter, target, "use", item);
    if (line == kUndefinedThing && object_here) line = kUnfoundTag;
  }
  if (line == kUndefinedThing) {
    PrintPlayerMessage(game, kBadThing);
  } else if (line == kUnfoundTag) {
    PrintPlayerMessage(game, kDefaultUse);
  } else {
    ExecuteScript(game, ScriptAfterParameter(line));
  }
}

}  // namespace tarve
