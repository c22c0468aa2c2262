#include "world/RoomDescription.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/Text.h"
#include "game/Game.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Substitution.h"
#include "interpreter/Variables.h"
#include "output/Output.h"

namespace tarve {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

// The <...> parameter of a tag line, substituted; "" for a line that only shares its first
// letters with the tag and has no parameter.
std::string TagParameter(Game& game, std::string_view line) {
  std::string_view parameter;
  if (!CutParameter(line, parameter)) return std::string();
  return SubstituteAll(game, parameter);
}

// Calls `visit` for every line strictly inside the block (none when there is no block).
template <typename Visit>
void ForEachInnerLine(const Game& game, BlockRange block, Visit visit) {
  if (!block.Found()) return;
  const int last = std::min(block.end - 1, game.text.LineCount());
  for (int i = block.start + 1; i <= last; ++i) visit(game.text.Line(i));
}

// A room's name as the player reads it: the last alias line of its block, or its own name.
std::string DisplayNameOf(Game& game, BlockRange block, std::string_view room) {
  std::string alias;
  ForEachInnerLine(game, block, [&](const std::string& line) {
    if (BeginsWith(line, "alias")) alias = TagParameter(game, line);
  });
  return alias.empty() ? std::string(room) : alias;
}

// "a, b, c" becomes "a, b" + joint + "c", the two sides trimmed.
std::string JoinLastComma(std::string_view list, std::string_view joint) {
  const std::size_t comma = list.rfind(',');
  if (comma == std::string_view::npos) return std::string(list);
  return Trim(list.substr(0, comma)) + std::string(joint) + Trim(list.substr(comma + 1));
}

void DropFinalSeparator(std::string& list) {
  if (list.size() >= 2) list.resize(list.size() - 2);
}

// The characters, objects and places of a room as the description and the things-here list
// show them.
struct ThingsHere {
  std::string characters;         // formatted, comma-separated
  std::string objects;            // prefix and name, comma-separated
  std::string formatted_objects;  // formatted, the last comma turned into " and "
  std::vector<GameWindow::ListedThing> listed;
};

// A thing is here when its room field is the room's name exactly and it is both shown and
// visible; a room field that differs only in case does not count.
ThingsHere CollectThingsHere(Game& game, std::string_view room, BlockRange room_block) {
  ThingsHere here;
  // Every change to a thing lists them again, so a loop of such changes must pay for the scan.
  ChargeStatements(game,
                   static_cast<long>(game.world.characters.size() + game.world.objects.size()) /
                       kScannedPerStatement);
  for (const Thing& thing : game.world.characters) {
    if (thing.room != room || !thing.exists || !thing.visible) continue;
    here.characters += thing.prefix + "|b" + thing.name + "|xb" + thing.suffix + ", ";
    here.listed.push_back({GameWindow::ThingType::kCharacter, thing.name});
  }
  std::string formatted;
  for (const Thing& thing : game.world.objects) {
    if (thing.room != room || !thing.exists || !thing.visible) continue;
    formatted += thing.prefix + "|b" + thing.name + "|xb" + thing.suffix + ", ";
    here.objects += thing.prefix + thing.name + ", ";
    here.listed.push_back({GameWindow::ThingType::kObject, thing.name});
  }
  DropFinalSeparator(here.characters);
  DropFinalSeparator(here.objects);
  DropFinalSeparator(formatted);
  if (const std::size_t comma = formatted.rfind(','); comma != std::string::npos) {
    // The text before the comma keeps its blanks here; only the whole is trimmed.
    formatted = Trim(formatted.substr(0, comma) + " and " + Trim(formatted.substr(comma + 1)));
  }
  here.formatted_objects = std::move(formatted);

  // Places are listed under the name that "go to" takes: the text after ";" when there is one.
  ForEachInnerLine(game, room_block, [&](const std::string& line) {
    if (!BeginsWith(line, "place")) return;
    const std::string parameter = TagParameter(game, line);
    const std::size_t semicolon = parameter.find(';');
    here.listed.push_back(
        {GameWindow::ThingType::kPlace,
         semicolon == std::string::npos ? parameter : Trim(parameter.substr(semicolon + 1))});
  });
  return here;
}

void PublishThingsHere(Game& game, const ThingsHere& here) {
  SetStringVariable(game, "tarve.characters", here.characters);
  SetStringVariable(game, "tarve.objects", here.objects);
  SetStringVariable(game, "tarve.formatobjects", here.formatted_objects);
  game.host.window.SetThingsHere(here.listed);
}

struct Direction {
  std::string_view keyword;  // the blank keeps "north " from taking a "northeast" line
  std::string_view entry;
  char letter;
};
constexpr Direction kDirections[] = {
    {"north ", "|bnorth|xb, ", 'n'},         {"south ", "|bsouth|xb, ", 's'},
    {"east ", "|beast|xb, ", 'e'},           {"west ", "|bwest|xb, ", 'w'},
    {"northeast ", "|bnortheast|xb, ", 'a'}, {"northwest ", "|bnorthwest|xb, ", 'b'},
    {"southeast ", "|bsoutheast|xb, ", 'c'}, {"southwest ", "|bsouthwest|xb, ", 'd'},
};

// The exits sentences (out, compass directions, places), their variables and the letters of
// the direction buttons.
void DescribeExits(Game& game, BlockRange block, std::string& description) {
  std::string letters;

  // The first out line is the way out, as it is the one that "out" follows.
  std::string out_name;
  bool has_out = false;
  ForEachInnerLine(game, block, [&](const std::string& line) {
    if (has_out || !BeginsWith(line, "out")) return;
    has_out = true;
    const std::string place = TagParameter(game, line);
    out_name = DisplayNameOf(game, FindBlockByName(game, "room", place), place);
  });
  if (has_out) description += "You can go out to " + out_name + "." + std::string(kLineBreak);
  SetStringVariable(game, "tarve.doorways.out", out_name);

  std::string directions;
  ForEachInnerLine(game, block, [&](const std::string& line) {
    for (const Direction& direction : kDirections) {
      if (!BeginsWith(line, direction.keyword)) continue;
      directions += direction.entry;
      letters.push_back(direction.letter);
      return;
    }
  });
  if (!directions.empty()) {
    DropFinalSeparator(directions);
    directions = JoinLastComma(directions, " or ");
    description += "You can go " + directions + "." + std::string(kLineBreak);
  }
  SetStringVariable(game, "tarve.doorways.dirs", directions);

  std::string places;
  ForEachInnerLine(game, block, [&](const std::string& line) {
    if (!BeginsWith(line, "place")) return;
    const std::string parameter = TagParameter(game, line);
    const std::size_t semicolon = parameter.find(';');
    if (semicolon == std::string::npos) {
      places += "|b" + parameter + "|xb, ";
    } else {
      places += Trim(std::string_view(parameter).substr(0, semicolon)) + " |b" +
                Trim(std::string_view(parameter).substr(semicolon + 1)) + "|xb, ";
    }
  });
  if (!places.empty()) {
    DropFinalSeparator(places);
    // Only the comma goes: the blank after it stays as it is.
    if (const std::size_t comma = places.rfind(','); comma != std::string::npos) {
      places = places.substr(0, comma) + " or" + places.substr(comma + 1);
    }
    description += "You can go to " + places + "." + std::string(kLineBreak);
  }
  SetStringVariable(game, "tarve.doorways.places", places);

  if (has_out) letters.push_back('o');
  game.host.window.SetDirections(letters);
}

// The text after "description " of the last such line strictly inside the block; nothing when
// the block has none.
bool FindDescriptionLine(Game& game, BlockRange block, std::string& script) {
  bool found = false;
  ForEachInnerLine(game, block, [&](const std::string& line) {
    if (!BeginsWith(line, "description ")) return;
    found = true;
    script = TextAfterKeyword(line, "description ");
  });
  return found;
}

}  // namespace

void DescribeRoom(Game& game, std::string_view room_view) {
  const std::string room(room_view);  // the caller's text may change while scripts run
  const BlockRange game_block = FindBlock(game, "game");
  const BlockRange room_block = FindBlockByName(game, "room", room);

  const std::string display_name = DisplayNameOf(game, room_block, room);
  const std::string prefix = room_block.Found() ? FindTagInBlock(game, room_block, "prefix") : "";
  std::string coloured_room = "|cr" + display_name + "|cb";
  std::string plain_room = display_name;
  if (!prefix.empty()) {
    coloured_room = prefix + " " + coloured_room;
    plain_room = prefix + " " + display_name;
  }

  // The opening sentence: a game may replace it, or keep the room's name after its own words
  // by ending them with a colon.
  std::string description;
  bool has_indescription = false;
  std::string indescription;
  ForEachInnerLine(game, room_block, [&](const std::string& line) {
    if (!BeginsWith(line, "indescription")) return;
    has_indescription = true;
    indescription = Trim(TagParameter(game, line));
  });
  if (!has_indescription) {
    description = "You are in " + coloured_room + ".";
  } else if (!indescription.empty() && indescription.back() == ':') {
    indescription.pop_back();
    description = indescription + " " + coloured_room + ".";
  } else {
    description = indescription;
  }
  description += kLineBreak;

  game.host.window.SetLocation("  " + display_name);
  SetStringVariable(game, "tarve.formatroom", plain_room);

  const ThingsHere here = CollectThingsHere(game, room, room_block);
  SetStringVariable(game, "tarve.characters", here.characters);
  if (here.characters.empty()) {
    description += "There is nobody here.";
  } else {
    description += "You can see " + JoinLastComma(here.characters, " and ") + " here.";
  }
  description += kLineBreak;

  SetStringVariable(game, "tarve.objects", here.objects);
  SetStringVariable(game, "tarve.formatobjects", here.formatted_objects);
  if (!here.formatted_objects.empty()) {
    description += "There is " + here.formatted_objects + " here." + std::string(kLineBreak);
  }

  DescribeExits(game, room_block, description);

  // A description line of the room, or else of the game, replaces the standard text; it can
  // rebuild it from the variables published above.
  std::string custom;
  const int games_opened = game.games_opened;
  if (FindDescriptionLine(game, room_block, custom) ||
      FindDescriptionLine(game, game_block, custom)) {
    if (!custom.empty() && custom.front() == '<') {
      PrintText(game, RetrieveParameter(game, custom, true));
    } else {
      ExecuteScript(game, custom);
    }
  } else {
    description.resize(description.size() - kLineBreak.size());
    PrintText(game, description);
  }

  // A description script that loaded a saved game has described that game's room already.
  if (game.games_opened != games_opened) return;
  PublishThingsHere(game, CollectThingsHere(game, room, room_block));

  if (room_block.Found()) {
    const std::string look = FindTagInBlock(game, room_block, "look");
    if (!look.empty()) PrintText(game, look);
  }
}

void RefreshThingsHere(Game& game) {
  const std::string room = game.world.current_room;
  PublishThingsHere(game, CollectThingsHere(game, room, FindBlockByName(game, "room", room)));
}

}  // namespace tarve
