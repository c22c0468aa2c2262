#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <sstream>

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

constexpr const char* kFarm =
    "define game <Farm>\n gwl-version <217>\n start <yard>\n possitems <lamp, key>\n"
    " startitems <key>\n collectables <gold num=2, debt num=-1>\n startscript setvar <visits; 1>\n"
    "end define\ndefine room <yard>\n north <barn>\n define object <pail>\n end define\n"
    " define object <hay>\n invisible\n end define\nend define\n"
    "define room <barn>\n define character <Horse>\n hidden\n end define\nend define\n";

// Everything a saved game keeps, written out so that two states can be compared.
Lines StateOf(const Game& game) {
  Lines state = {"room " + game.world.current_room, "file " + game.game_file};
  for (const Collectable& c : game.inventory.collectables) {
    state.push_back(c.name + "=" + std::to_string(c.amount));
  }
  for (const Item& item : game.inventory.items) state.push_back(item.name + (item.held ? "+" : ""));
  for (const auto* table : {&game.world.objects, &game.world.characters}) {
    for (const Thing& thing : *table) {
      state.push_back(thing.name + " in " + thing.room + (thing.exists ? "+" : "-") +
                      (thing.visible ? "+" : "-"));
    }
  }
  for (const auto* table : {&game.variables.strings, &game.variables.numerics}) {
    for (const VariableEntry& entry : table->entries)
      state.push_back(entry.name + "=" + entry.value);
  }
  return state;
}

struct FarmInProgress {
  FarmInProgress() {
    EXPECT_TRUE(OpenGame(t.game, game_file));
    for (const char* statement :
         {"give <lamp>", "lose <key>", "moveobject <pail; barn>", "set <gold; =2.5>",
          "setstring <motto; a;b,c \"quoted\">", "setvar <score; -12>"}) {
      ExecuteScript(t.game, statement);
    }
    t.player.SubmitCommand("north");
  }
  TempDir dir;
  TestGame t{dir};
  std::string game_file = dir.Write("farm.gwl", kFarm);
  std::string saved = dir.path() + "/farm.tsg";
};

TEST(SaveGame, WritesEveryTableInOrderWithCrLfAndSignedNumbersOrNothing) {
  FarmInProgress farm;
  ASSERT_TRUE(SaveGame(farm.t.game, farm.saved));
  EXPECT_EQ(farm.t.game.run.current_saved_game_path, farm.saved);
  // Every line ends in CR LF; the string section holds the room description's variables
  // before the game's own; a number that is not negative has a blank before it.
  const std::string text = ReadFile(farm.saved);
  EXPECT_TRUE(
      text.starts_with("TARVE200.1\r\n" + farm.game_file +
                       "\r\nFarm\r\nbarn\r\n!c\r\ngold; 2.5\r\ndebt;-1\r\n!i\r\nlamp;Yes\r\n"
                       "key;No\r\n!o\r\npail;Yes;Yes;barn\r\nhay;Yes;No;yard\r\n!p\r\n"
                       "Horse;No;Yes;barn\r\n!s\r\ntarve.currentroom;barn\r\n"))
      << text;
  EXPECT_NE(text.find("\r\nmotto; a;b,c \"quoted\"\r\n"), std::string::npos) << text;
  EXPECT_TRUE(text.ends_with("\r\n!n\r\nvisits; 1\r\nscore;-12\r\n!e\r\n")) << text;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), std::count(text.begin(), text.end(), '\r'));

  // A folder in the way or no game in progress writes nothing.
  const std::string folder = farm.dir.path() + "/folder.tsg";
  fs::create_directory(folder);
  EXPECT_FALSE(SaveGame(farm.t.game, folder));
  EXPECT_TRUE(fs::is_directory(folder));
  EXPECT_EQ(farm.t.game.run.current_saved_game_path, farm.saved);
  for (const auto& entry : fs::directory_iterator(farm.dir.path())) {
    EXPECT_FALSE(entry.path().string().ends_with("~")) << "left behind: " << entry.path();
  }
  TestGame nothing_open(farm.dir);
  EXPECT_FALSE(SaveGame(nothing_open.game, farm.dir.path() + "/x.tsg"));
  EXPECT_EQ(nothing_open.host.messages.back(), "[Error] There is no game in progress to save.");
  EXPECT_FALSE(fs::exists(farm.dir.path() + "/x.tsg"));
}

// Older, foreign and moved files: saved/refused.tt; unreadable ones: FileSafetyTest below.
TEST(LoadSavedGame, EveryCutOrReorderedFileIsRefusedAndLeavesTheGameInProgressUntouched) {
  FarmInProgress farm;
  Game& game = farm.t.game;
  ASSERT_TRUE(SaveGame(game, farm.saved));
  game.run.current_saved_game_path.clear();
  const std::string good = ReadFile(farm.saved);
  std::vector<std::string> cases = {good.substr(0, good.size() - 3)};  // cut inside "!e"
  for (std::size_t end = good.find("\r\n"); end + 2 < good.size();
       end = good.find("\r\n", end + 2)) {
    cases.push_back(good.substr(0, end + 2));  // cut after every line in turn
  }
  for (const char* marker : {"!i\r\n", "!o\r\n", "!p\r\n", "!s\r\n", "!n\r\n"}) {
    std::string without = good;
    cases.push_back(without.erase(without.find(marker), 4));
  }
  std::string swapped = good;  // "!p" before "!o"
  std::swap(swapped[swapped.find("!o\r") + 1], swapped[swapped.find("!p\r") + 1]);
  cases.push_back(swapped);

  const Lines state = StateOf(game);
  const std::string styled = farm.t.host.styled;
  for (const std::string& content : cases) {
    EXPECT_FALSE(LoadSavedGame(game, farm.dir.Write("bad.tsg", content))) << content;
    EXPECT_EQ(
        farm.t.host.messages.back(),
        "[File format error] This saved game is damaged or incomplete, so it cannot be loaded.")
        << content;
    EXPECT_EQ(StateOf(game), state) << content;
    EXPECT_EQ(farm.t.host.styled, styled) << content;  // nothing printed, nothing cleared
    EXPECT_EQ(game.run.current_saved_game_path, "") << content;
  }
  const std::string huge = farm.dir.Write("huge.tsg", good);  // refused without being read
  fs::resize_file(huge, 90 << 20);
  EXPECT_FALSE(LoadSavedGame(game, huge));
  EXPECT_EQ(farm.t.host.messages.back(),
            "[File format error] This file is too large to be a saved game.");
  EXPECT_EQ(StateOf(game), state);
}

// Random states of the farm (values with separators, quotes, accents and blanks; things moved,
// hidden and concealed; items, collectables, the room) saved through Save As load back equal into
// a fresh player and save again to the same file; so does the largest state variables may hold.
TEST(SaveRoundTrip, EveryStateSaveWritesLoadsBackEqual) {
  TempDir dir;
  const std::string game_file = dir.Write("farm.gwl", kFarm);
  Lines moves;
  std::istringstream statements(
      "goto <yard>|goto <barn>|moveobject <pail; barn>|moveobject <hay; barn>|give <lamp>|"
      "movechar <Horse; yard>|moveobject <pail; yard>|hideobject <pail>|showobject <pail>|"
      "concealobject <hay>|revealobject <hay>|hidechar <Horse>|showchar <Horse>|lose <key>|"
      "concealchar <Horse>|revealchar <Horse>|set <gold; =-3>|set <debt; =30000>");
  for (std::string line; std::getline(statements, line, '|');) moves.push_back(line);
  // Pieces of a value (anything but a line break); the first six make names as scripts write.
  const char* const pieces[] = {"a",  "Z", "7", "_", ".", " ", ";",      ",",      "\"", "!",
                                "!e", "<", ">", "#", "%", "|", "\u00e9", "\u65e5", "\t"};
  for (unsigned seed = 0; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    const auto pick = [&](std::size_t n) {
      return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    const auto text = [&](std::size_t kinds) {
      std::string text = kinds == 6 ? "v" : "";
      for (std::size_t i = pick(13); i > 0; --i) text += pieces[pick(kinds)];
      while (kinds == 6 && text.back() == ' ') text.pop_back();
      return text;
    };
    TestGame played(dir);
    ASSERT_TRUE(played.player.OpenGame(game_file));
    // Seed 0: variables filled up to what they may hold, longest values first.
    for (std::size_t i = 0, logged = played.host.log.size();
         seed == 0 && played.host.log.size() == logged; ++i) {
      const bool room =
          played.game.variables.bytes + kMaxVariableValueBytes + 4096 < kMaxVariablesBytes;
      SetStringVariable(played.game, "v" + std::to_string(i),
                        std::string(room ? kMaxVariableValueBytes : 1000, 'x'));
    }
    for (std::size_t step = pick(40); step > 0; --step) {
      const std::size_t what = pick(4);
      if (what == 0) SetStringVariable(played.game, text(6), text(std::size(pieces)));
      if (what == 1) SetNumericVariable(played.game, text(6), static_cast<int16_t>(random()));
      if (what > 1) ExecuteScript(played.game, moves[pick(moves.size())]);
    }
    const std::string path = dir.path() + "/state.tsg";
    played.host.file_dialog_answers.push_back(path);
    played.player.MenuSaveAs();
    ASSERT_TRUE(fs::exists(path)) << "seed " << seed;
    EXPECT_GT(fs::file_size(path), seed == 0 ? std::size_t{60} << 20 : 0) << "seed " << seed;
    const std::string first = ReadFile(path);

    TestGame loaded(dir);
    ASSERT_TRUE(loaded.player.LoadSavedGame(path)) << "seed " << seed;
    EXPECT_TRUE(StateOf(loaded.game) == StateOf(played.game)) << "seed " << seed;
    ASSERT_TRUE(SaveGame(loaded.game, path));
    EXPECT_TRUE(ReadFile(path) == first) << "seed " << seed;
  }
}

// Undo and the kept state of an unfinished game (tests/resume offers it again) on undo.gwl, whose
// "mess" changes every table at once; what the player sees of undo: terminal and window tests.
struct Lab {
  Lab() {
    start.program_folder = dir.path();
    start.resume_folder = dir.path() + "/resume";
    EXPECT_EQ(t.player.Start(path, start), Player::Started::kGame);
  }
  TempDir dir;
  TestGame t{dir};
  Player& player = t.player;
  std::string path = std::string(TARVE_TEST_GAMES) + "/player/undo.gwl";
  Player::StartOptions start;
};

TEST(Undo, TakesBackEveryTableATurnChangedAndSkipsTurnsThatChangedNothing) {
  Lab lab;
  EXPECT_FALSE(lab.player.CanUndo());
  const Lines before = StateOf(lab.t.game);
  const std::size_t bytes = lab.t.game.variables.bytes;
  for (int round = 0; round < 2; ++round) {  // the game plays on, and undoes again
    lab.player.SubmitCommand("mess");
    ASSERT_NE(StateOf(lab.t.game), before);
    lab.t.host.viewer_rows.clear();
    EXPECT_TRUE(lab.player.Undo());
    // Names as first spelt ("WORD" set "word"), and a variable the turn made is gone.
    EXPECT_EQ(StateOf(lab.t.game), before);
    EXPECT_EQ(lab.t.game.variables.bytes, bytes);
    EXPECT_EQ(lab.t.host.location, "  Hall");  // the panes follow
    EXPECT_EQ(lab.t.host.items.find("lamp"), std::string::npos);
    EXPECT_FALSE(lab.t.host.viewer_rows.empty());
    EXPECT_FALSE(lab.player.Undo());
  }
  lab.player.SubmitCommand("xyzzy");
  EXPECT_FALSE(lab.player.CanUndo());
  for (int i = 0; i < 105; ++i) {
    lab.player.SubmitCommand("tick");
    lab.player.SubmitCommand("look");
  }
  int undone = 0;
  while (lab.player.Undo()) ++undone;
  EXPECT_EQ(undone, 100);  // only the last hundred are kept
  EXPECT_EQ(GetNumericVariable(lab.t.game, "count"), 6);
}

TEST(Undo, AnAnswerIsPartOfItsTurnAndNothingIsUndoneAfterALoadOrTheEnd) {
  Lab lab;
  lab.t.host.input = {"yes"};
  lab.player.SubmitCommand("ask");
  ASSERT_EQ(GetStringVariable(lab.t.game, "answer"), "yes");
  EXPECT_TRUE(lab.player.Undo());
  EXPECT_EQ(FindVariable(lab.t.game.variables.strings, "answer"), nullptr);

  lab.player.SubmitCommand("tick");
  const std::string saved = lab.dir.path() + "/one.tsg";
  lab.t.host.file_dialog_answers = {saved, saved};
  lab.player.MenuSave();
  EXPECT_TRUE(lab.player.CanUndo());  // saving keeps the turns
  lab.player.MenuLoad();
  EXPECT_FALSE(lab.player.CanUndo());
  lab.player.SubmitCommand("tick");
  lab.player.SubmitCommand("die");
  EXPECT_TRUE(lab.player.game_over());
  EXPECT_FALSE(lab.player.Undo());
}

TEST(Resume, NothingIsKeptOfARestartedOrFinishedGameAndSavingAsksForAFile) {
  Lab lab;
  const std::string kept = lab.player.ResumeFile(lab.path);
  lab.player.SubmitCommand("mess");
  lab.player.MenuRestart();  // asked, and answered yes
  ASSERT_TRUE(lab.player.RequestClose());
  EXPECT_FALSE(fs::exists(kept));

  ASSERT_TRUE(lab.player.OpenGame(lab.path));
  lab.player.SubmitCommand("mess");
  ASSERT_TRUE(lab.player.RequestClose());
  ASSERT_TRUE(lab.player.OpenGame(lab.path));  // go on: yes
  EXPECT_EQ(lab.t.game.world.current_room, "Yard");
  EXPECT_TRUE(lab.t.game.run.current_saved_game_path.empty());
  lab.player.SubmitCommand("die");
  ASSERT_TRUE(lab.player.RequestClose());
  EXPECT_FALSE(fs::exists(kept));
}

// What a game, a planted link or a file that is no file cannot make the player do: write outside
// the game's folder, write through a link or a stray file beside a save, lose a save's mode or
// link, hang on a FIFO, or lose the place to save to.
class FileSafetyTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(t.player.OpenGame(dir.Write("game/shed.gwl", kFarm))); }

  TempDir dir;
  TempDir outside;
  TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
  const fs::path folder = dir.path() + "/game";
};

TEST_F(FileSafetyTest, FileCopyNeverWritesThroughALinkOrAHardLink) {
  dir.Write("game/in.txt", "hello");
  const std::string victim = outside.Write("victim.txt", "precious");
  fs::create_symlink(outside.path() + "/created.txt", folder / "dangling.txt");
  fs::create_symlink(victim, folder / "existing.txt");
  fs::create_hard_link(victim, folder / "hard.txt");
  for (const char* destination : {"dangling.txt", "existing.txt", "hard.txt"}) {
    ExecuteScript(game, std::string("advfunc 0001 <in.txt; ") + destination + ">");
    EXPECT_EQ(GetNumericVariable(game, "!tarve.int.filecopyerror"), 1) << destination;
    EXPECT_EQ(host.log.back(), std::string("Error: Refused to copy in.txt to ") + destination +
                                   ": files may only be copied inside the game's folder.");
  }
  EXPECT_FALSE(fs::exists(outside.path() + "/created.txt"));
  EXPECT_EQ(ReadFile(victim), "precious");
  ExecuteScript(game, "advfunc 0001 <existing.txt; copy.txt>");  // nor read through one
  EXPECT_FALSE(fs::exists(folder / "copy.txt"));
}

TEST_F(FileSafetyTest, SavingKeepsModeAndLinkAndIgnoresPlantedFiles) {
  // A save reached through a link is written where the link leads, with the old mode kept.
  const std::string saves = dir.path() + "/saves/";
  const std::string real = dir.Write("saves/real.tsg", "old");
  const fs::perms mode = fs::perms::owner_read | fs::perms::owner_write;
  fs::permissions(real, mode);
  fs::create_symlink("real.tsg", saves + "linked.tsg");
  // Files planted under the names a save might use for its temporary file are never used.
  const std::string victim = outside.Write("victim.txt", "precious");
  fs::create_symlink(victim, saves + "real.tsg.tmp~");
  host.file_dialog_answers = {saves + "linked.tsg"};
  t.player.MenuSave();
  EXPECT_TRUE(fs::is_symlink(saves + "linked.tsg"));
  EXPECT_EQ(ReadFile(real).rfind("TARVE200.1\r\n", 0), 0u);
  EXPECT_EQ(fs::status(real).permissions(), mode);
  EXPECT_EQ(ReadFile(victim), "precious");
  // The real file, the link and the planted link: no temporary file left behind.
  EXPECT_EQ(std::distance(fs::directory_iterator(saves), fs::directory_iterator()), 3);
}

// A save whose folder went away asks for another file at once, and goes on with that one.
TEST_F(FileSafetyTest, AFailedSaveAsksForAnotherFile) {
  host.file_dialog_answers = {dir.path() + "/game/first.tsg", dir.path() + "/second.tsg",
                              dir.path() + "/third.tsg"};
  t.player.MenuSave();
  fs::remove_all(folder);
  t.player.MenuSave();
  EXPECT_EQ(host.messages.back(),
            "[Error] Unable to save the game to " + folder.string() + "/first.tsg");
  EXPECT_TRUE(fs::exists(dir.path() + "/second.tsg"));
  t.player.MenuSave();
  EXPECT_EQ(host.file_dialog_answers.size(), 1u);  // the last save went to the second file
}

TEST_F(FileSafetyTest, FifosAndDevicesAreRefusedWithoutWaiting) {
  const std::string fifo = folder / "pipe.gwl";
  const std::string saved = folder / "pipe.tsg";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600) | mkfifo(saved.c_str(), 0600), 0);
  dir.Write("game/lib.gwl", "!include <pipe.gwl>\n" + std::string(kFarm));

  EXPECT_FALSE(t.player.LoadSavedGame(saved));
  EXPECT_FALSE(t.player.LoadSavedGame("/dev/null"));
  EXPECT_EQ(host.messages.back(), "[Error] Unable to open /dev/null");
  EXPECT_EQ(game.world.current_room, "yard");  // the game in progress goes on
  EXPECT_FALSE(t.player.OpenGame(fifo));
  EXPECT_EQ(host.messages.back(), "[Error] Unable to open " + fifo);
  EXPECT_FALSE(t.player.OpenGame(dir.path() + "/game/lib.gwl"));
  EXPECT_EQ(std::count(host.log.begin(), host.log.end(), "ERROR: Library not found."), 1);

  // The copy of the game's text is refused too when nobody reads the FIFO it would go to.
  game.settings.output_file = true;
  game.settings.out_file = saved;
  ASSERT_TRUE(t.player.OpenGame(folder / "shed.gwl"));
  EXPECT_EQ(host.log.back(), "Warning: Unable to open the output file " + saved +
                                 " - the game's text is not copied to it.");
}

}  // namespace
}  // namespace tarve
