// Every game state that save writes loads back equal: random states of a game (variables with
// separators, quotes, accents and blanks in their values, things moved, hidden and concealed,
// items, collectables, the room) saved through the Save As menu and loaded into a fresh player,
// and the largest state the variables may hold.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "player/Player.h"
#include "player/SavedGames.h"
#include "support/TestSupport.h"
#include "world/Items.h"
#include "world/World.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

constexpr const char* kManor =
    "define game <Manor>\n"
    "  start <hall>\n"
    "  possitems <lamp, key, map>\n"
    "  collectables <gold num=0, luck num=3>\n"
    "  startscript setstring <greeting; hello>\n"
    "end define\n"
    "define room <hall>\n"
    "  north <library>\n"
    "  define object <vase>\n"
    "  end define\n"
    "  define character <Butler>\n"
    "  end define\n"
    "end define\n"
    "define room <library>\n"
    "  south <hall>\n"
    "  define object <book>\n"
    "  end define\n"
    "end define\n"
    "define room <cellar>\n"
    "  define object <wine>\n"
    "  end define\n"
    "  define character <Cook>\n"
    "  end define\n"
    "end define\n";

// Everything a saved game keeps, written out so that two states can be compared.
Lines StateOf(const Game& game) {
  Lines state = {"room " + game.world.current_room, "file " + game.game_file};
  for (const Collectable& c : game.inventory.collectables) {
    state.push_back("collectable " + c.name + "=" + std::to_string(c.amount));
  }
  for (const Item& item : game.inventory.items) {
    state.push_back("item " + item.name + (item.held ? " held" : " not held"));
  }
  for (const auto* table : {&game.world.objects, &game.world.characters}) {
    for (const Thing& thing : *table) {
      state.push_back("thing " + thing.name + " in " + thing.room +
                      (thing.exists ? " exists" : " gone") +
                      (thing.visible ? " visible" : " concealed"));
    }
  }
  for (const VariableEntry& entry : game.variables.strings.entries) {
    state.push_back("string " + entry.name + "=" + entry.value);
  }
  for (const VariableEntry& entry : game.variables.numerics.entries) {
    state.push_back("number " + entry.name + "=" + entry.value);
  }
  return state;
}

// A random text of what a value can hold: anything but a line break.
std::string RandomValue(std::mt19937& random) {
  static constexpr const char* kPieces[] = {"a", "Z", "7", " ", ";", ",", "\"",     "!",      "!e",
                                            "<", ">", "#", "%", "$", "|", "\u00e9", "\u65e5", "\t"};
  std::string value;
  const int length = std::uniform_int_distribution<int>(0, 12)(random);
  for (int i = 0; i < length; ++i) {
    value += kPieces[std::uniform_int_distribution<std::size_t>(0, std::size(kPieces) - 1)(random)];
  }
  return value;
}

// A variable name as a script writes one: no ";", no blanks at either end.
std::string RandomName(std::mt19937& random) {
  static constexpr const char kLetters[] = "abcXYZ09._ ";
  std::string name(1, "pqrs"[std::uniform_int_distribution<int>(0, 3)(random)]);
  const int length = std::uniform_int_distribution<int>(0, 6)(random);
  for (int i = 0; i < length; ++i) {
    name += kLetters[std::uniform_int_distribution<std::size_t>(0, sizeof kLetters - 2)(random)];
  }
  while (name.back() == ' ') name.pop_back();
  return name;
}

// Plays the statements a game could run to reach a random state.
void PlayRandomly(Game& game, std::mt19937& random) {
  static constexpr const char* kThings[] = {"vase", "book", "wine"};
  static constexpr const char* kCharacters[] = {"Butler", "Cook"};
  static constexpr const char* kRooms[] = {"hall", "library", "cellar"};
  static constexpr const char* kItems[] = {"lamp", "key", "map"};
  const auto pick = [&](const auto& list) {
    return std::string(
        list[std::uniform_int_distribution<std::size_t>(0, std::size(list) - 1)(random)]);
  };
  const auto number = [&](int from, int to) {
    return std::to_string(std::uniform_int_distribution<int>(from, to)(random));
  };
  const int steps = std::uniform_int_distribution<int>(1, 40)(random);
  for (int step = 0; step < steps; ++step) {
    switch (std::uniform_int_distribution<int>(0, 9)(random)) {
      case 0:
        SetStringVariable(game, RandomName(random), RandomValue(random));
        break;
      case 1:
        ExecuteScript(game, "setvar <" + RandomName(random) + "; " + number(-32768, 32767) + ">");
        break;
      case 2:
        ExecuteScript(game, "moveobject <" + pick(kThings) + "; " + pick(kRooms) + ">");
        break;
      case 3:
        ExecuteScript(game, "movechar <" + pick(kCharacters) + "; " + pick(kRooms) + ">");
        break;
      case 4:
        ExecuteScript(game, pick(std::vector{"hideobject <", "showobject <", "concealobject <",
                                             "revealobject <"}) +
                                pick(kThings) + ">");
        break;
      case 5:
        ExecuteScript(
            game, pick(std::vector{"hidechar <", "showchar <", "concealchar <", "revealchar <"}) +
                      pick(kCharacters) + ">");
        break;
      case 6:
        ExecuteScript(game, pick(std::vector{"give <", "lose <"}) + pick(kItems) + ">");
        break;
      case 7:
        ExecuteScript(game, "set <" + pick(std::vector{"gold", "luck"}) +
                                "; =" + number(-30000, 30000) + ">");
        break;
      case 8:
        ExecuteScript(game, "goto <" + pick(kRooms) + ">");
        break;
      default:
        SetStringVariable(game, RandomName(random), std::string());
        break;
    }
  }
}

TEST(SaveRoundTrip, EveryStateSaveWritesLoadsBackEqual) {
  TempDir dir;
  const std::string game_file = dir.Write("manor.gwl", kManor);
  for (unsigned seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    TestGame played(dir);
    ASSERT_TRUE(played.player.OpenGame(game_file));
    PlayRandomly(played.game, random);
    const std::string path = dir.path() + "/state" + std::to_string(seed) + ".tsg";
    played.host.file_dialog_answers.push_back(path);
    played.player.MenuSaveAs();
    ASSERT_TRUE(std::filesystem::exists(path)) << "seed " << seed;

    TestGame loaded(dir);
    ASSERT_TRUE(loaded.player.LoadSavedGame(path)) << "seed " << seed;
    EXPECT_EQ(StateOf(loaded.game), StateOf(played.game)) << "seed " << seed;
  }
}

// Variables filled up to what they may hold, longest values first: the saved game stays within
// what loading accepts and gives back every variable.
TEST(SaveRoundTrip, TheLargestStateTheVariablesMayHoldLoadsBack) {
  TempDir dir;
  const std::string game_file = dir.Write("manor.gwl", kManor);
  TestGame played(dir);
  ASSERT_TRUE(played.player.OpenGame(game_file));
  const std::string longest(kMaxVariableValueBytes, 'x');
  for (int i = 0; played.game.variables.bytes + longest.size() + 4096 < kMaxVariablesBytes; ++i) {
    SetStringVariable(played.game, "v" + std::to_string(i), longest);
  }
  // The last bytes with short variables, until a write is refused.
  const std::size_t refusals = played.host.log.size();
  for (int i = 0; played.host.log.size() == refusals; ++i) {
    SetStringVariable(played.game, "w" + std::to_string(i), std::string(1000, 'y'));
  }
  const std::string path = dir.path() + "/full.tsg";
  played.host.file_dialog_answers.push_back(path);
  played.player.MenuSaveAs();
  ASSERT_TRUE(std::filesystem::exists(path));
  EXPECT_GT(std::filesystem::file_size(path), std::size_t{60} << 20);

  TestGame loaded(dir);
  ASSERT_TRUE(loaded.player.LoadSavedGame(path)) << loaded.host.messages.back();
  EXPECT_TRUE(StateOf(loaded.game) == StateOf(played.game));
}

}  // namespace
}  // namespace tarve
