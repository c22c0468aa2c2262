#include <gtest/gtest.h>

#include "base/Numbers.h"
#include "script/GameReader.h"
#include "support/TestSupport.h"
#include "world/Items.h"

namespace tarve {
namespace {

using test::TempDir;

// Records the collectables viewer's rows as "ROW/ROWS NAME=VALUE".
class ViewerHost : public test::RecordingHost {
 public:
  void VariableViewerRow(int store, int rows, int row, const std::string& name,
                         const std::string& value) override {
    if (store != 3) return;
    viewer.push_back(std::to_string(row) + "/" + std::to_string(rows) + " " + name + "=" + value);
  }
  std::vector<std::string> viewer;
};

// A game whose game block is `game_lines`, with its items and collectables set up.
class InventoryTest : public ::testing::Test {
 protected:
  void SetUpGame(std::string_view game_lines) {
    const std::string path =
        dir_.Write("game.gwl", "define game <G>\n" + std::string(game_lines) + "end define\n");
    game.game_path = dir_.path() + "/";
    ASSERT_TRUE(ReadGameFile(game, path));
    SetUpItems(game);
    SetUpStartItems(game);
    SetUpCollectables(game);
  }

  TempDir dir_;
  ViewerHost host;
  Game game{host};
};

// What a player sees of items and collectables through the game's own text is the
// world/inventory transcript; these are the window's panes and viewer.
TEST_F(InventoryTest, CollectablesAreReadFromTheirDeclarations) {
  SetUpGame(
      "  collectables <score num=10 [Score: !], gold dcoins = 2.5 [! coin*s*; so far]; "
      "lives int=3, hidden num=0 [], plain=7>\n");
  // A type beginning with "d" loses the "d" and clears the flag; ";" inside the display text
  // belongs to it.
  std::vector<std::string> read;
  for (const Collectable& c : game.inventory.collectables) {
    read.push_back(c.name + "/" + c.type + "/" + FormatSingle(c.amount) + "/" + c.display + "/" +
                   (c.flag ? "on" : "off"));
  }
  EXPECT_EQ(read, (std::vector<std::string>{
                      "score/num/10/Score: !/on", "gold/coins/2.5/! coin*s*; so far/off",
                      "lives/int/3/<def>/on", "hidden/num/0//on", "plain//7/<def>/on"}));
  EXPECT_EQ(host.viewer, (std::vector<std::string>{"1/6 score=10", "2/6 gold=2.5", "3/6 lives=3",
                                                   "4/6 hidden=0", "5/6 plain=7"}));
}

TEST(CollectableText, ShowsTheDefaultTextTheDisplayOrNull) {
  Collectable c;
  c.name = "points";
  c.amount = 2.5f;
  EXPECT_EQ(CollectableText(c), "You have 2.5 points");
  c.display = "";
  EXPECT_EQ(CollectableText(c), "<null>");
  c.display = "[! coin*s* and ! gem*s*]";
  c.amount = 1;
  EXPECT_EQ(CollectableText(c), "[1 coin and ! gem]");
  c.amount = 3;
  EXPECT_EQ(CollectableText(c), "[3 coins and ! gems]");
  c.amount = 0;
  EXPECT_EQ(CollectableText(c), "[0 coins and ! gems]");
  c.display = "Stars: * (unclosed";
  EXPECT_EQ(CollectableText(c), "Stars: * (unclosed");
}

TEST_F(InventoryTest, ThePanesAndTheViewerFollowEveryChange) {
  SetUpGame(
      "  items <lamp, key>\n"
      "  collectables <score num=10, bonus num=4 [Bonus: !], secret dnum=1, gone num=0 []>\n");
  host.viewer.clear();
  ExecuteGive(game, "lamp");
  ExecuteGive(game, "key");
  EXPECT_EQ(host.items, "Items:\r\n    lamp\r\n    key");
  ExecuteLose(game, "lamp");
  ExecuteLose(game, "key");
  EXPECT_EQ(host.items, "Items:\r\n    (no items)");

  // The collectables pane leaves out a "d" collectable and one with an empty display; the
  // viewer shows them all.
  host.viewer.clear();
  ExecuteSet(game, "score; =0.3");
  EXPECT_EQ(host.collectables, (std::vector<std::string>{"You have 0.3 score", "Bonus: 4"}));
  EXPECT_EQ(host.viewer.size(), 4u);
  EXPECT_EQ(host.viewer[0], "1/5 score=0.3");
  EXPECT_EQ(host.viewer[3], "4/5 gone=0");

  ExecuteSet(game, "bonus; =1e39");
  EXPECT_EQ(GetCollectableAmount(game, "bonus"), 4.0f);
  EXPECT_EQ(host.log,
            std::vector<std::string>{"Error: Collectable amount out of range in bonus; =1e39"});
}

}  // namespace
}  // namespace tarve
