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

// What a player sees of items and collectables through the game's own text is the
// world/inventory transcript; these are the window's panes and viewer. The collectables pane
// leaves out a "d" collectable and one with an empty display; the viewer shows them all. In a
// display only the first "!" takes the amount, and the text between two "*" is kept unless the
// amount is 1.
TEST_F(InventoryTest, ThePanesAndTheViewerShowTheDeclarationsAndFollowEveryChange) {
  SetUpGame(
      "  items <lamp, key>\n"
      "  collectables <score num=10 [Score: !], gold coins = 2.5 [! coin*s*; so far]; "
      "gems num=1 [! gem*s* and ! ring*s*], lives int=3, secret dnum=1, hidden num=0 [], "
      "stars=7 [Stars: * (unclosed]>\n");
  EXPECT_EQ(host.viewer,
            (std::vector<std::string>{"1/8 score=10", "2/8 gold=2.5", "3/8 gems=1", "4/8 lives=3",
                                      "5/8 secret=1", "6/8 hidden=0", "7/8 stars=7"}));
  ExecuteGive(game, "lamp");
  ExecuteGive(game, "key");
  EXPECT_EQ(host.items, "Items:\r\n    lamp\r\n    key");
  ExecuteLose(game, "lamp");
  ExecuteLose(game, "key");
  EXPECT_EQ(host.items, "Items:\r\n    (no items)");

  ExecuteSet(game, "score; =0.3");
  EXPECT_EQ(host.collectables,
            (std::vector<std::string>{"Score: 0.3", "2.5 coins; so far", "1 gem and ! ring",
                                      "You have 3 lives", "Stars: * (unclosed"}));
  EXPECT_EQ(host.viewer.back(), "7/8 stars=7");
  ExecuteSet(game, "score; =1e39");
  EXPECT_EQ(GetCollectableAmount(game, "score"), 0.3f);
  EXPECT_EQ(host.log,
            std::vector<std::string>{"Error: Collectable amount out of range in score; =1e39"});
}

}  // namespace
}  // namespace tarve
