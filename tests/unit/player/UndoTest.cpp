// Undo through the player: a turn taken back restores every table it changed, turns that
// change nothing are skipped over, and opening, loading or ending a game leaves nothing to undo.
// Also the kept state of a game left unfinished, offered again when the game is opened.
#include <gtest/gtest.h>

#include <filesystem>

#include "player/Player.h"
#include "support/TestSupport.h"
#include "world/World.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;

struct Lab {
  Lab() : path(std::string(TARVE_TEST_GAMES) + "/player/undo.gwl") {
    start.seed = 1;
    start.program_folder = dir.path();
    start.resume_folder = dir.path() + "/resume";
  }
  bool Open() { return t.player.Start(path, start) == Player::Started::kGame; }
  std::string String(const char* name) const {
    const VariableEntry* entry = FindVariable(t.game.variables.strings, name);
    return entry == nullptr ? "(none)" : entry->name + "=" + entry->value;
  }
  std::string Number(const char* name) const {
    const VariableEntry* entry = FindVariable(t.game.variables.numerics, name);
    return entry == nullptr ? "(none)" : entry->value;
  }
  const Thing& Object(const char* name) {
    return *ThingsNamed(t.game, ThingKind::kObject, name).front();
  }
  TempDir dir;
  TestGame t{dir};
  std::string path;
  Player::StartOptions start;
};

TEST(Undo, TakesBackEveryTableATurnChangedAndTellsThePlayer) {
  Lab lab;
  ASSERT_TRUE(lab.Open());
  EXPECT_FALSE(lab.t.player.CanUndo());
  const std::size_t bytes = lab.t.game.variables.bytes;

  lab.t.player.SubmitCommand("mess");
  ASSERT_EQ(lab.t.game.world.current_room, "Yard");
  ASSERT_EQ(lab.String("fresh"), "fresh=new");
  ASSERT_NE(lab.t.host.items.find("lamp"), std::string::npos);
  ASSERT_TRUE(lab.t.player.CanUndo());
  lab.t.host.viewer_rows.clear();

  EXPECT_TRUE(lab.t.player.Undo());
  EXPECT_EQ(lab.t.game.world.current_room, "Hall");
  EXPECT_EQ(lab.String("word"), "word=before");  // the name as first spelt, too
  EXPECT_EQ(lab.Number("count"), "1");
  EXPECT_EQ(lab.String("fresh"), "(none)");  // a variable the turn made is gone
  EXPECT_EQ(lab.String("tarve.currentroom"), "tarve.currentroom=Hall");
  EXPECT_EQ(lab.t.game.variables.bytes, bytes);
  EXPECT_EQ(lab.Object("ball").room, "Hall");
  EXPECT_TRUE(lab.Object("vase").exists);
  EXPECT_TRUE(lab.Object("box").visible);
  EXPECT_TRUE(ThingsNamed(lab.t.game, ThingKind::kCharacter, "cat").front()->exists);
  EXPECT_FALSE(FindItem(lab.t.game, "lamp")->held);
  EXPECT_EQ(GetCollectableAmount(lab.t.game, "score"), 0.0f);

  // What the player sees: the command taken back, the room again, and the panes as they were.
  EXPECT_NE(lab.t.host.output.find("\r\n\r\nUndone: mess\r\n\r\nYou are in Hall."),
            std::string::npos);
  EXPECT_EQ(lab.t.host.location, "  Hall");
  EXPECT_EQ(lab.t.host.items.find("lamp"), std::string::npos);
  EXPECT_FALSE(lab.t.host.viewer_rows.empty());
  EXPECT_FALSE(lab.t.player.CanUndo());
  EXPECT_FALSE(lab.t.player.Undo());

  // The game plays on from there, and the same turn can be taken back again.
  lab.t.player.SubmitCommand("mess");
  EXPECT_EQ(lab.String("fresh"), "fresh=new");
  EXPECT_TRUE(lab.t.player.Undo());
  EXPECT_EQ(lab.Object("ball").room, "Hall");
}

TEST(Undo, SkipsTurnsThatChangedNothingAndKeepsTheLastHundred) {
  Lab lab;
  ASSERT_TRUE(lab.Open());
  lab.t.player.SubmitCommand("look");
  lab.t.player.SubmitCommand("xyzzy");
  EXPECT_FALSE(lab.t.player.CanUndo());

  for (int i = 0; i < 105; ++i) {
    lab.t.player.SubmitCommand("tick");
    lab.t.player.SubmitCommand("look");
  }
  EXPECT_EQ(lab.Number("count"), "106");
  int undone = 0;
  while (lab.t.player.Undo()) ++undone;
  EXPECT_EQ(undone, 100);
  EXPECT_EQ(lab.Number("count"), "6");
}

TEST(Undo, AnAnswerIsPartOfItsTurnAndNothingIsUndoneAfterALoadOrTheEnd) {
  Lab lab;
  ASSERT_TRUE(lab.Open());
  lab.t.host.input = {"yes"};
  lab.t.player.SubmitCommand("ask");
  ASSERT_EQ(lab.String("answer"), "answer=yes");
  EXPECT_TRUE(lab.t.player.Undo());
  EXPECT_EQ(lab.String("answer"), "(none)");
  EXPECT_FALSE(lab.t.player.CanUndo());

  // Saving keeps the turns; loading starts afresh from the loaded state.
  lab.t.player.SubmitCommand("tick");
  const std::string saved = lab.dir.path() + "/one.tsg";
  lab.t.host.file_dialog_answers = {saved, saved};
  lab.t.player.MenuSave();
  EXPECT_TRUE(lab.t.player.CanUndo());
  lab.t.player.MenuLoad();
  EXPECT_EQ(lab.Number("count"), "2");
  EXPECT_FALSE(lab.t.player.CanUndo());

  lab.t.player.SubmitCommand("tick");
  lab.t.player.SubmitCommand("die");
  EXPECT_TRUE(lab.t.player.game_over());
  EXPECT_FALSE(lab.t.player.Undo());
}

// Keeping, offering, yes and no are tested through tarve-cli (tests/resume); here what keeps
// nothing, and saving after going on.
TEST(Resume, NothingIsKeptOfARestartedOrFinishedGameAndSavingAsksForAFile) {
  Lab lab;
  ASSERT_TRUE(lab.Open());
  const std::string kept = lab.t.player.ResumeFile(lab.path);
  lab.t.player.SubmitCommand("mess");
  lab.t.player.MenuRestart();  // asked, and answered yes
  ASSERT_TRUE(lab.t.player.RequestClose());
  EXPECT_FALSE(std::filesystem::exists(kept));

  ASSERT_TRUE(lab.t.player.OpenGame(lab.path));
  lab.t.player.SubmitCommand("mess");
  ASSERT_TRUE(lab.t.player.RequestClose());
  ASSERT_TRUE(std::filesystem::exists(kept));
  ASSERT_TRUE(lab.t.player.OpenGame(lab.path));  // go on: yes
  EXPECT_EQ(lab.t.game.world.current_room, "Yard");
  EXPECT_TRUE(lab.t.game.run.current_saved_game_path.empty());
  lab.t.player.SubmitCommand("die");
  ASSERT_TRUE(lab.t.player.RequestClose());
  EXPECT_FALSE(std::filesystem::exists(kept));
}

}  // namespace
}  // namespace tarve
