#include <gtest/gtest.h>

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

TEST_F(InventoryTest, CollectablesAreReadFromTheirDeclarations) {
  SetUpGame(
      "  collectables <score num=10 [Score: !], gold dcoins = 2.5 [! coin*s*; so far]; "
      "lives int=3, hidden num=0 [], plain=7>\n");
  const std::vector<Collectable>& c = game.inventory.collectables;
  ASSERT_EQ(c.size(), 5u);
  EXPECT_EQ(c[0].name, "score");
  EXPECT_EQ(c[0].type, "num");
  EXPECT_EQ(c[0].amount, 10.0f);
  EXPECT_EQ(c[0].display, "Score: !");
  EXPECT_TRUE(c[0].flag);
  // A type beginning with "d" loses the "d" and clears the flag; ";" inside the display text
  // belongs to it.
  EXPECT_EQ(c[1].name, "gold");
  EXPECT_EQ(c[1].type, "coins");
  EXPECT_FALSE(c[1].flag);
  EXPECT_EQ(c[1].amount, 2.5f);
  EXPECT_EQ(c[1].display, "! coin*s*; so far");
  EXPECT_EQ(c[2].name, "lives");
  EXPECT_EQ(c[2].amount, 3.0f);
  EXPECT_EQ(c[2].display, "<def>");
  EXPECT_EQ(c[3].display, "");
  EXPECT_EQ(c[4].name, "plain");
  EXPECT_EQ(c[4].type, "");
  EXPECT_EQ(c[4].amount, 7.0f);

  EXPECT_EQ(host.viewer, (std::vector<std::string>{"1/6 score=10", "2/6 gold=2.5", "3/6 lives=3",
                                                   "4/6 hidden=0", "5/6 plain=7"}));
  EXPECT_EQ(GetCollectableAmount(game, "gold"), 2.5f);
  EXPECT_EQ(GetCollectableAmount(game, "Gold"), 0.0f);
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
  ExecuteSet(game, "score; =0.1");
  ExecuteSet(game, "score; +0.2");
  EXPECT_EQ(GetCollectableAmount(game, "score"), 0.1f + 0.2f);  // single precision
  EXPECT_EQ(host.collectables, (std::vector<std::string>{"You have 0.3 score", "Bonus: 4"}));
  EXPECT_EQ(host.viewer.size(), 8u);
  EXPECT_EQ(host.viewer[4], "1/5 score=0.3");
  EXPECT_EQ(host.viewer[7], "4/5 gone=0");

  ExecuteSet(game, "bonus; =1e39");
  EXPECT_EQ(GetCollectableAmount(game, "bonus"), 4.0f);
  EXPECT_EQ(host.log,
            std::vector<std::string>{"Error: Collectable amount out of range in bonus; =1e39"});
}

}  // namespace
}  // namespace tarve
