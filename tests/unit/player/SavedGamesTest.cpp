#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "base/Text.h"
#include "interpreter/ExecuteScript.h"
#include "player/OpenGame.h"
#include "player/Player.h"
#include "player/SavedGames.h"
#include "support/TestSupport.h"
#include "world/Items.h"
#include "world/World.h"

namespace tarve {
namespace {

namespace fs = std::filesystem;
using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

constexpr const char* kOlderVersion =
    "[File format error] Saved game data in this file is from an older version of Tarve - this "
    "file format is incompatible with this version.";
constexpr const char* kInvalid = "[File format error] Invalid file!";
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

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

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

TEST(LoadSavedGame, RestoresTheStateOverAFreshStartAndDescribesTheRoom) {
  FarmInProgress farm;
  const std::string path = farm.dir.path() + "/farm.tsg";
  ASSERT_TRUE(SaveGame(farm.t.game, path));
  const Lines saved_state = StateOf(farm.t.game);
  ExecuteScript(farm.t.game, "setstring <motto; changed>");
  ExecuteScript(farm.t.game, "setstring <later; only after saving>");
  ExecuteScript(farm.t.game, "give <key>");
  farm.t.player.SubmitCommand("look");
  farm.t.host.log.clear();

  ASSERT_TRUE(LoadSavedGame(farm.t.game, path));
  Lines expected = saved_state;
  // Collectables come back rounded, halves to even; a variable created after saving is gone,
  // since the game starts afresh.
  std::replace(expected.begin(), expected.end(), std::string("collectable gold=2.500000"),
               std::string("collectable gold=2.000000"));
  EXPECT_EQ(StateOf(farm.t.game), expected);
  EXPECT_EQ(farm.t.game.run.current_saved_game_path, path);
  EXPECT_FALSE(farm.t.game.run.installed_game);
  EXPECT_EQ(farm.t.host.items, "Items:\r\n    lamp");
  // The fresh start's text is cleared; the load prints its line and the room.
  EXPECT_NE(farm.t.host.styled.find("{clear}Loaded game "), std::string::npos);
  EXPECT_TRUE(farm.t.host.output.starts_with("Loaded game " + path + " - Farm\r\n\r\n"))
      << farm.t.host.output;
  EXPECT_NE(farm.t.host.output.find("There is pail here."), std::string::npos);
  EXPECT_TRUE(farm.t.host.output.ends_with("\r\n\r\n"));
  EXPECT_TRUE(farm.t.host.messages.empty());
  EXPECT_EQ(std::count(farm.t.host.log.begin(), farm.t.host.log.end(), "Finished loading file."),
            1);
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
    if (differ_under_one_name(ThingKind::kObject) ||
        differ_under_one_name(ThingKind::kCharacter)) {
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

TEST(LoadSavedGame, DamagedForeignOrMissingFilesLeaveTheGameInProgressUntouched) {
  FarmInProgress farm;
  Game& game = farm.t.game;
  const std::string good_path = farm.dir.path() + "/good.tsg";
  ASSERT_TRUE(SaveGame(game, good_path));
  game.run.current_saved_game_path.clear();
  const std::string good = ReadFile(good_path);
  Lines lines;
  std::istringstream in(good);
  for (std::string line; std::getline(in, line);) lines.push_back(line.substr(0, line.size() - 1));

  struct Case {
    std::string name;
    std::string content;
    std::string message;
  };
  std::vector<Case> cases = {
      {"empty", "", kInvalid},
      {"older", "TARVE100.0\r\n" + good.substr(12), kOlderVersion},
      {"hello", "hello\r\n", kInvalid},
      {"header in other case", "tarve200.1\r\n" + good.substr(12), kInvalid},
      {"binary", std::string("\x00\xff\x01TARVE200.1\r\n\x80\x81", 17), kInvalid},
  };
  // Cut after every line in turn: only the whole file is a saved game.
  for (std::size_t keep = 1; keep < lines.size(); ++keep) {
    cases.push_back({"cut after line " + std::to_string(keep),
                     JoinCrLf(Lines(lines.begin(), lines.begin() + keep)), kDamaged});
  }
  // Cut inside the last line, and sections out of order or missing.
  cases.push_back({"cut inside !e", good.substr(0, good.size() - 3), kDamaged});
  auto without = [&](const std::string& marker) {
    Lines copy = lines;
    copy.erase(std::find(copy.begin(), copy.end(), marker));
    return JoinCrLf(copy);
  };
  for (const char* marker : {"!i", "!o", "!p", "!s", "!n"}) {
    cases.push_back({std::string("without ") + marker, without(marker), kDamaged});
  }
  {
    Lines swapped = lines;
    std::iter_swap(std::find(swapped.begin(), swapped.end(), "!o"),
                   std::find(swapped.begin(), swapped.end(), "!p"));
    cases.push_back({"!p before !o", JoinCrLf(swapped), kDamaged});
  }
  {
    Lines moved = lines;
    moved[1] = farm.dir.path() + "/moved away/farm.gwl";
    cases.push_back({"moved game", JoinCrLf(moved),
                     "[Error] Unable to open " + farm.dir.path() + "/moved away/farm.gwl"});
  }

  const Lines state = StateOf(game);
  const std::string styled = farm.t.host.styled;
  auto expect_untouched = [&](const std::string& what) {
    EXPECT_EQ(StateOf(game), state) << what;
    EXPECT_EQ(farm.t.host.styled, styled) << what;  // nothing printed, nothing cleared
    EXPECT_EQ(game.run.current_saved_game_path, "") << what;
    EXPECT_EQ(game.game_file, farm.game_file) << what;
  };
  for (const Case& c : cases) {
    const std::string path = farm.dir.Write("bad.tsg", c.content);
    EXPECT_FALSE(LoadSavedGame(game, path)) << c.name;
    EXPECT_EQ(farm.t.host.messages.back(), c.message) << c.name;
    expect_untouched(c.name);
  }

  // Files that cannot be read at all.
  for (const std::string& path : {farm.dir.path() + "/none.tsg", farm.dir.path()}) {
    EXPECT_FALSE(LoadSavedGame(game, path));
    EXPECT_EQ(farm.t.host.messages.back(), "[Error] Unable to open " + path);
    expect_untouched(path);
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
  // The damage is told in the log; the message boxes were the only other sign.
  EXPECT_NE(std::find(farm.t.host.log.begin(), farm.t.host.log.end(),
                      "Error: The saved game " + farm.dir.path() +
                          "/bad.tsg cannot be loaded: it ends before its \"!e\" line."),
            farm.t.host.log.end());
}

TEST(LoadSavedGame, FieldsAndMalformedRecordsAreReadRecordByRecord) {
  FarmInProgress farm;
  Game& game = farm.t.game;
  // The game file in quotes, relative to the saved game, with "\" and in other letter case. A
  // record without its semicolons is skipped without touching its neighbours; a comma splits a
  // field-wise record but not a variable; blanks before a field are skipped and a quoted field
  // ends at its closing quote; names match in their exact case; numbers are rounded, halves to
  // even, and held within 16 bits; Windows-1252 text (the bytes E8, E9) reads as è and é.
  const std::string saved = JoinCrLf({"TARVE200.1",
                                      "  \".\\SUB\\..\\Farm.GWL\"",
                                      "Farm",
                                      "yard",
                                      "!c",
                                      "gold",
                                      "gold; 3.5",
                                      "debt; -2.5",
                                      "nothing; 5",
                                      "!i",
                                      "  \"key;No\" and more",
                                      "key , lamp;Yes",
                                      "!o",
                                      "pail;No",
                                      "hay;Yes;Yes;barn",
                                      "PAIL;No;No;barn",
                                      "!p",
                                      "Horse;yes;YES;yard",
                                      "!s",
                                      "motto;x, \"y\";z",
                                      "no separator",
                                      "caf\xe9; cr\xe8me",
                                      "!n",
                                      "big; 99999",
                                      "score;7.5",
                                      "!e",
                                      "anything after the end is not read"});
  const std::string path = farm.dir.Write("fields.tsg", saved);
  farm.t.host.log.clear();
  ASSERT_TRUE(LoadSavedGame(game, path));
  EXPECT_EQ(game.game_file, farm.game_file);
  EXPECT_EQ(game.world.current_room, "yard");
  EXPECT_EQ(GetCollectableAmount(game, "gold"), 4.0f);
  EXPECT_EQ(GetCollectableAmount(game, "debt"), -2.0f);
  EXPECT_TRUE(FindItem(game, "lamp")->held);
  EXPECT_FALSE(FindItem(game, "key")->held);
  const Thing* pail = FindThing(game, ThingKind::kObject, "pail", "yard");
  ASSERT_NE(pail, nullptr);  // "pail;No" is incomplete and "PAIL" is another name
  EXPECT_TRUE(pail->exists && pail->visible);
  const Thing* hay = FindThing(game, ThingKind::kObject, "hay", "barn");
  ASSERT_NE(hay, nullptr);
  EXPECT_TRUE(hay->visible);
  const Thing* horse = FindThing(game, ThingKind::kCharacter, "Horse", "yard");
  ASSERT_NE(horse, nullptr);
  EXPECT_TRUE(horse->exists && horse->visible);
  EXPECT_EQ(FindVariable(game.variables.strings, "motto")->value, "x, \"y\";z");
  EXPECT_EQ(FindVariable(game.variables.strings, "café")->value, " crème");
  EXPECT_EQ(FindVariable(game.variables.strings, "no separator"), nullptr);
  EXPECT_EQ(FindVariable(game.variables.numerics, "big")->value, "32767");
  EXPECT_EQ(FindVariable(game.variables.numerics, "score")->value, "8");
  EXPECT_EQ(FindVariable(game.variables.strings, "tarve.currentroom")->value, "yard");

  Lines warnings;
  for (const std::string& line : farm.t.host.log) {
    if (line.starts_with("Warning: Line")) warnings.push_back(line);
  }
  auto skipped = [&](int line) {
    return "Warning: Line " + std::to_string(line) + " of the saved game " + path +
           " is not a complete record, so it was skipped.";
  };
  EXPECT_EQ(warnings, (Lines{skipped(6), skipped(12), skipped(14), skipped(21)}));
}

TEST(SavedGameMenus, SaveAsksOnlyUntilTheGameHasASavedGameFile) {
  FarmInProgress farm;
  Game& game = farm.t.game;
  auto& host = farm.t.host;

  farm.t.player.MenuSave();  // cancelled: nothing written, nothing remembered
  EXPECT_EQ(host.file_dialogs, Lines{"save"});
  EXPECT_EQ(game.run.current_saved_game_path, "");

  host.file_dialog_answers.push_back(farm.dir.path() + "/first");
  farm.t.player.MenuSave();
  const std::string first = farm.dir.path() + "/first.tsg";  // the extension is added
  EXPECT_TRUE(fs::exists(first));
  EXPECT_EQ(game.run.current_saved_game_path, first);

  ExecuteScript(game, "setvar <score; 99>");
  farm.t.player.MenuSave();  // no dialog: the same file is written again
  EXPECT_EQ(host.file_dialogs.size(), 2u);
  EXPECT_NE(ReadFile(first).find("score; 99\r\n"), std::string::npos);

  host.file_dialog_answers.push_back(farm.dir.path() + "/second.sav");
  farm.t.player.MenuSaveAs();
  EXPECT_EQ(host.file_dialogs.size(), 3u);
  EXPECT_TRUE(fs::exists(farm.dir.path() + "/second.sav"));

  farm.t.player.MenuLoad();  // cancelled
  EXPECT_EQ(host.file_dialogs.back(), "load");
  EXPECT_EQ(game.run.current_saved_game_path, farm.dir.path() + "/second.sav");

  // After loading, Save overwrites the loaded file without asking.
  host.file_dialog_answers.push_back(first);
  farm.t.player.MenuLoad();
  EXPECT_EQ(game.run.current_saved_game_path, first);
  ExecuteScript(game, "setvar <score; 5>");
  farm.t.player.MenuSave();
  EXPECT_EQ(host.file_dialogs.size(), 5u);
  EXPECT_NE(ReadFile(first).find("score; 5\r\n"), std::string::npos);
  EXPECT_TRUE(host.messages.empty());
}

}  // namespace
}  // namespace tarve
