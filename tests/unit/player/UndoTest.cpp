// Undo through the player: a turn taken back restores every table it changed, turns that
// change nothing are skipped over, and loading or ending a game leaves nothing to undo. What the
// player sees of it is in the terminal and window tests. Also the kept state of a game left
// unfinished (offered again through tarve-cli in tests/resume): what keeps nothing.
#include <gtest/gtest.h>

#include <filesystem>

#include "player/Player.h"
#include "support/TestSupport.h"
#include "world/World.h"

namespace tarve {
namespace {

struct Lab {
  Lab() {
    start.program_folder = dir.path();
    start.resume_folder = dir.path() + "/resume";
    EXPECT_EQ(t.player.Start(path, start), Player::Started::kGame);
  }
  std::string Var(const char* name) const {
    const VariableEntry* entry = FindVariable(t.game.variables.strings, name);
    if (entry == nullptr) entry = FindVariable(t.game.variables.numerics, name);
    return entry == nullptr ? "(none)" : entry->name + "=" + entry->value;
  }
  const Thing& Find(ThingKind kind, const char* name) {
    return *ThingsNamed(t.game, kind, name).front();
  }
  test::TempDir dir;
  test::TestGame t{dir};
  std::string path = std::string(TARVE_TEST_GAMES) + "/player/undo.gwl";
  Player::StartOptions start;
};

TEST(Undo, TakesBackEveryTableATurnChanged) {
  Lab lab;
  EXPECT_FALSE(lab.t.player.CanUndo());
  const std::size_t bytes = lab.t.game.variables.bytes;
  for (int round = 0; round < 2; ++round) {  // the game plays on, and undoes again
    lab.t.player.SubmitCommand("mess");
    ASSERT_EQ(lab.Var("fresh"), "fresh=new");
    lab.t.host.viewer_rows.clear();
    EXPECT_TRUE(lab.t.player.Undo());
    EXPECT_EQ(lab.t.game.world.current_room, "Hall");
    EXPECT_EQ(lab.Var("word"), "word=before");  // the name as first spelt, too
    EXPECT_EQ(lab.Var("count"), "count=1");
    EXPECT_EQ(lab.Var("fresh"), "(none)");  // a variable the turn made is gone
    EXPECT_EQ(lab.Var("tarve.currentroom"), "tarve.currentroom=Hall");
    EXPECT_EQ(lab.t.game.variables.bytes, bytes);
    EXPECT_EQ(lab.Find(ThingKind::kObject, "ball").room, "Hall");
    EXPECT_TRUE(lab.Find(ThingKind::kObject, "vase").exists);
    EXPECT_TRUE(lab.Find(ThingKind::kObject, "box").visible);
    EXPECT_TRUE(lab.Find(ThingKind::kCharacter, "cat").exists);
    EXPECT_FALSE(FindItem(lab.t.game, "lamp")->held);
    EXPECT_EQ(GetCollectableAmount(lab.t.game, "score"), 0.0f);
    EXPECT_EQ(lab.t.host.location, "  Hall");  // the panes follow
    EXPECT_EQ(lab.t.host.items.find("lamp"), std::string::npos);
    EXPECT_FALSE(lab.t.host.viewer_rows.empty());
    EXPECT_FALSE(lab.t.player.Undo());
  }
}

TEST(Undo, SkipsTurnsThatChangedNothingAndKeepsTheLastHundred) {
  Lab lab;
  lab.t.player.SubmitCommand("xyzzy");
  EXPECT_FALSE(lab.t.player.CanUndo());
  for (int i = 0; i < 105; ++i) {
    lab.t.player.SubmitCommand("tick");
    lab.t.player.SubmitCommand("look");
  }
  int undone = 0;
  while (lab.t.player.Undo()) ++undone;
  EXPECT_EQ(undone, 100);
  EXPECT_EQ(lab.Var("count"), "count=6");
}

TEST(Undo, AnAnswerIsPartOfItsTurnAndNothingIsUndoneAfterALoadOrTheEnd) {
  Lab lab;
  lab.t.host.input = {"yes"};
  lab.t.player.SubmitCommand("ask");
  ASSERT_EQ(lab.Var("answer"), "answer=yes");
  EXPECT_TRUE(lab.t.player.Undo());
  EXPECT_EQ(lab.Var("answer"), "(none)");

  lab.t.player.SubmitCommand("tick");
  const std::string saved = lab.dir.path() + "/one.tsg";
  lab.t.host.file_dialog_answers = {saved, saved};
  lab.t.player.MenuSave();
  EXPECT_TRUE(lab.t.player.CanUndo());  // saving keeps the turns
  lab.t.player.MenuLoad();
  EXPECT_FALSE(lab.t.player.CanUndo());
  lab.t.player.SubmitCommand("tick");
  lab.t.player.SubmitCommand("die");
  EXPECT_TRUE(lab.t.player.game_over());
  EXPECT_FALSE(lab.t.player.Undo());
}

TEST(Resume, NothingIsKeptOfARestartedOrFinishedGameAndSavingAsksForAFile) {
  Lab lab;
  const std::string kept = lab.t.player.ResumeFile(lab.path);
  lab.t.player.SubmitCommand("mess");
  lab.t.player.MenuRestart();  // asked, and answered yes
  ASSERT_TRUE(lab.t.player.RequestClose());
  EXPECT_FALSE(std::filesystem::exists(kept));

  ASSERT_TRUE(lab.t.player.OpenGame(lab.path));
  lab.t.player.SubmitCommand("mess");
  ASSERT_TRUE(lab.t.player.RequestClose());
  ASSERT_TRUE(lab.t.player.OpenGame(lab.path));  // go on: yes
  EXPECT_EQ(lab.t.game.world.current_room, "Yard");
  EXPECT_TRUE(lab.t.game.run.current_saved_game_path.empty());
  lab.t.player.SubmitCommand("die");
  ASSERT_TRUE(lab.t.player.RequestClose());
  EXPECT_FALSE(std::filesystem::exists(kept));
}

}  // namespace
}  // namespace tarve
