#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "base/Text.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "player/OpenGame.h"
#include "player/Player.h"
#include "player/SavedGames.h"
#include "support/TestSupport.h"
#include "world/Items.h"
#include "world/World.h"

namespace tarve {
namespace {

namespace fs = std::filesystem;
using test::ReadFile;
using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

constexpr const char* kDamaged =
    "[File format error] This saved game is damaged or incomplete, so it cannot be loaded.";
constexpr const char* kTooLarge = "[File format error] This file is too large to be a saved game.";

constexpr const char* kFarm =
    "define game <Farm>\n"
    "  gwl-version <217>\n"
    "  start <yard>\n"
    "  possitems <lamp, key>\n"
    "  startitems <key>\n"
    "  collectables <gold num=2.5, debt num=-1>\n"
    "  startscript setvar <visits; 1>\n"
    "end define\n"
    "define room <yard>\n"
    "  north <barn>\n"
    "  define object <pail>\n"
    "  end define\n"
    "  define object <hay>\n"
    "    invisible\n"
    "  end define\n"
    "end define\n"
    "define room <barn>\n"
    "  define character <Horse>\n"
    "    hidden\n"
    "  end define\n"
    "end define\n";

std::string JoinCrLf(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

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

// A farm game in progress: the lamp taken, the key dropped, the pail moved to the barn, a
// string with separators and quotes, and play in the barn.
struct FarmInProgress {
  FarmInProgress() {
    game_file = dir.Write("farm.gwl", kFarm);
    EXPECT_TRUE(OpenGame(t.game, game_file));
    ExecuteScript(t.game, "give <lamp>");
    ExecuteScript(t.game, "lose <key>");
    ExecuteScript(t.game, "moveobject <pail; barn>");
    ExecuteScript(t.game, "setstring <motto; a;b,c \"quoted\">");
    ExecuteScript(t.game, "setvar <score; -12>");
    t.player.SubmitCommand("north");
  }
  TempDir dir;
  TestGame t{dir};
  std::string game_file;
};

TEST(SaveGame, WritesEveryTableInOrderWithCrLfAndSignedNumbers) {
  FarmInProgress farm;
  ExecuteScript(farm.t.game, "set <gold; =2.5>");
  const std::string path = farm.dir.path() + "/farm.tsg";
  ASSERT_TRUE(SaveGame(farm.t.game, path));
  EXPECT_EQ(farm.t.game.run.current_saved_game_path, path);

  const std::string text = ReadFile(path);
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    ASSERT_TRUE(line.ends_with("\r")) << line;  // every line ends in CR LF
    line.pop_back();
    lines.push_back(line);
  }
  // The string section holds the room description's variables before the game's own.
  const auto strings = std::find(lines.begin(), lines.end(), "!s");
  const auto numerics = std::find(lines.begin(), lines.end(), "!n");
  ASSERT_NE(strings, lines.end());
  const Lines head(lines.begin(), strings + 1);
  EXPECT_EQ(head, (Lines{"TARVE200.1", farm.game_file, "Farm", "barn", "!c", "gold; 2.5", "debt;-1",
                         "!i", "lamp;Yes", "key;No", "!o", "pail;Yes;Yes;barn", "hay;Yes;No;yard",
                         "!p", "Horse;No;Yes;barn", "!s"}));
  EXPECT_NE(std::find(strings, numerics, "tarve.currentroom;barn"), numerics);
  EXPECT_NE(std::find(strings, numerics, "motto; a;b,c \"quoted\""), numerics);
  EXPECT_EQ(Lines(numerics, lines.end()), (Lines{"!n", "visits; 1", "score;-12", "!e"}));
}

TEST(SaveGame, FailureKeepsThePreviousFileAndPathAndTellsThePlayer) {
  FarmInProgress farm;
  const std::string good = farm.dir.path() + "/good.tsg";
  ASSERT_TRUE(SaveGame(farm.t.game, good));
  const std::string saved = ReadFile(good);

  const std::string nowhere = farm.dir.path() + "/no/such/folder/x.tsg";
  EXPECT_FALSE(SaveGame(farm.t.game, nowhere));
  EXPECT_EQ(farm.t.host.messages.back(), "[Error] Unable to save the game to " + nowhere);
  EXPECT_EQ(farm.t.game.run.current_saved_game_path, good);
  // A folder standing where the file should go is not replaced.
  fs::create_directory(farm.dir.path() + "/folder.tsg");
  EXPECT_FALSE(SaveGame(farm.t.game, farm.dir.path() + "/folder.tsg"));
  EXPECT_TRUE(fs::is_directory(farm.dir.path() + "/folder.tsg"));
  EXPECT_EQ(ReadFile(good), saved);
  for (const auto& entry : fs::directory_iterator(farm.dir.path())) {
    EXPECT_FALSE(entry.path().string().ends_with("~")) << "left behind: " << entry.path();
  }

  TempDir empty;
  TestGame nothing_open(empty);
  EXPECT_FALSE(SaveGame(nothing_open.game, empty.path() + "/x.tsg"));
  EXPECT_FALSE(fs::exists(empty.path() + "/x.tsg"));
}

// Every game the tests play, saved in the middle of play and loaded back, comes back as it was;
// saved again, it gives the same file.
TEST(LoadSavedGame, EveryTestGameComesBackAsItWasSaved) {
  std::vector<fs::path> games = {
      (fs::path(TARVE_SOURCE_DATA) / "../examples/demo.gwl").lexically_normal()};
  for (const auto& entry : fs::recursive_directory_iterator(TARVE_TEST_GAMES)) {
    if (entry.path().extension() == ".gwl") games.push_back(entry.path());
  }
  int played = 0;
  for (const fs::path& game_file : games) {
    SCOPED_TRACE(game_file.string());
    TempDir dir;
    TestGame t(dir);
    t.game.program_folder = TARVE_SOURCE_DATA;
    if (!OpenGame(t.game, game_file.string())) continue;  // the games that must not open
    // A saved game knows things by their names: things of one name that differ cannot each
    // come back as they were.
    const auto differ_under_one_name = [&](ThingKind kind) {
      std::map<std::string, const Thing*> first_of;
      for (const Thing& thing : ThingsOf(t.game, kind)) {
        const Thing*& first = first_of[LCase(thing.name)];
        if (first == nullptr) first = &thing;
        if (first->exists != thing.exists || first->visible != thing.visible ||
            first->room != thing.room) {
          return true;
        }
      }
      return false;
    };
    if (differ_under_one_name(ThingKind::kObject) || differ_under_one_name(ThingKind::kCharacter)) {
      continue;
    }
    ++played;
    // Play a little: change one of everything a saved game keeps. Whole amounts, so that the
    // rounding of collectables on loading changes nothing.
    Game& game = t.game;
    ExecuteScript(game, "setstring <saved.text; a;b,c \"q\" é>");
    ExecuteScript(game, "setvar <saved.number; -123>");
    for (std::size_t i = 0; i < game.inventory.collectables.size(); ++i) {
      game.inventory.collectables[i].amount = static_cast<float>(i) * 3 - 2;
    }
    if (!game.inventory.items.empty()) {
      game.inventory.items.front().held = !game.inventory.items.front().held;
    }
    for (ThingKind kind : {ThingKind::kObject, ThingKind::kCharacter}) {
      std::vector<Thing>& table = ThingsOf(game, kind);
      if (table.empty()) continue;
      // A thing whose name holds a comma cannot be restored, and of several things of one name
      // only the first receives the records: leave those as the game made them.
      Thing& thing = table.back();
      if (thing.name.find(',') != std::string::npos) continue;
      if (ThingsNamed(game, kind, thing.name).size() > 1) continue;
      thing.exists = !thing.exists;
      thing.visible = !thing.visible;
    }
    t.player.SubmitCommand("look");

    const std::string first = dir.path() + "/first.tsg";
    const std::string second = dir.path() + "/second.tsg";
    ASSERT_TRUE(SaveGame(game, first));
    const Lines state = StateOf(game);
    ASSERT_TRUE(LoadSavedGame(game, first));
    EXPECT_EQ(StateOf(game), state);
    ASSERT_TRUE(SaveGame(game, second));
    EXPECT_EQ(ReadFile(second), ReadFile(first));
  }
  EXPECT_GE(played, 20);
}

// The refusals a player meets (older, foreign, moved, unreadable files) are in saved/refused.tt.
TEST(LoadSavedGame, EveryCutOrReorderedFileIsRefusedAndLeavesTheGameInProgressUntouched) {
  FarmInProgress farm;
  Game& game = farm.t.game;
  const std::string good_path = farm.dir.path() + "/good.tsg";
  ASSERT_TRUE(SaveGame(game, good_path));
  game.run.current_saved_game_path.clear();
  const std::string good = ReadFile(good_path);
  Lines lines;
  std::istringstream in(good);
  for (std::string line; std::getline(in, line);) lines.push_back(line.substr(0, line.size() - 1));

  std::vector<std::pair<std::string, std::string>> cases;  // what was done, the file
  // Cut after every line in turn: only the whole file is a saved game.
  for (std::size_t keep = 1; keep < lines.size(); ++keep) {
    cases.push_back({"cut after line " + std::to_string(keep),
                     JoinCrLf(Lines(lines.begin(), lines.begin() + keep))});
  }
  // Cut inside the last line, and sections out of order or missing.
  cases.push_back({"cut inside !e", good.substr(0, good.size() - 3)});
  auto without = [&](const std::string& marker) {
    Lines copy = lines;
    copy.erase(std::find(copy.begin(), copy.end(), marker));
    return JoinCrLf(copy);
  };
  for (const char* marker : {"!i", "!o", "!p", "!s", "!n"}) {
    cases.push_back({std::string("without ") + marker, without(marker)});
  }
  {
    Lines swapped = lines;
    std::iter_swap(std::find(swapped.begin(), swapped.end(), "!o"),
                   std::find(swapped.begin(), swapped.end(), "!p"));
    cases.push_back({"!p before !o", JoinCrLf(swapped)});
  }
  const Lines state = StateOf(game);
  const std::string styled = farm.t.host.styled;
  auto expect_untouched = [&](const std::string& what) {
    EXPECT_EQ(StateOf(game), state) << what;
    EXPECT_EQ(farm.t.host.styled, styled) << what;  // nothing printed, nothing cleared
    EXPECT_EQ(game.run.current_saved_game_path, "") << what;
    EXPECT_EQ(game.game_file, farm.game_file) << what;
  };
  for (const auto& [what, content] : cases) {
    EXPECT_FALSE(LoadSavedGame(game, farm.dir.Write("bad.tsg", content))) << what;
    EXPECT_EQ(farm.t.host.messages.back(), kDamaged) << what;
    expect_untouched(what);
  }

  // A 90 MB file is refused without being read.
  {
    const std::string huge = farm.dir.path() + "/huge.tsg";
    std::ofstream out(huge, std::ios::binary);
    out << good.substr(0, good.find("!n"));
    const std::string record(1 << 20, 'x');
    for (int i = 0; i < 90; ++i) out << "big" << i << ";" << record << "\r\n";
    out << "!n\r\n!e\r\n";
    out.close();
    EXPECT_FALSE(LoadSavedGame(game, huge));
    EXPECT_EQ(farm.t.host.messages.back(), kTooLarge);
    expect_untouched("huge");
  }
}

// Every state that save writes loads back equal: random states of a game (variables with
// separators, quotes, accents and blanks in their values, things moved, hidden and concealed,
// items, collectables, the room) saved through the Save As menu and loaded into a fresh player,
// and the largest state the variables may hold.
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
