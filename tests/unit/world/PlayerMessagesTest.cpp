#include <gtest/gtest.h>

#include "interpreter/Variables.h"
#include "support/TestSupport.h"
#include "world/PlayerMessages.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

// A game whose game block is `game_lines`, with its player messages read.
class Messages : public ::testing::Test {
 protected:
  void SetUpGame(std::string_view game_lines) {
    ASSERT_TRUE(ReadSource(t, dir, "define game <G>\n" + std::string(game_lines) + "end define\n"));
    ResetPlayerMessages(t.game);
    ReadMessageOverrides(t.game);
  }

  // What printing message `number` adds to the pane.
  std::string Printed(int number) {
    t.host.output.clear();
    PrintPlayerMessage(t.game, number);
    return t.host.output;
  }

  TempDir dir;
  TestGame t{dir};
};

TEST_F(Messages, WithoutOverridesTheSixteenDefaultsArePrinted) {
  SetUpGame("");
  SetStringVariable(t.game, "tarve.error.charactername", "Bob");
  SetStringVariable(t.game, "tarve.error.gender", "He");
  const std::vector<std::string> expected = {
      "Unrecognized command! Type HELP for a list of valid commands.",
      "Unrecognized use of 'go'.",
      "Give to who?",
      "No such character!",
      "You don't have that!",
      "Bob doesn't want it.",
      "Look at what?",
      "What's that?",
      "Nothing out of the ordinary.",
      "He says nothing.",
      "No such item!",
      "You can't take that!",
      "Use on what?",
      "You can't use that item here.",
      "Nowhere to exit to!",
      "Can't go there!",
  };
  for (int n = 1; n <= 16; ++n) EXPECT_EQ(Printed(n), expected[n - 1] + "\r\n") << n;
  EXPECT_TRUE(t.host.log.empty());
}

TEST_F(Messages, NumericAndFunctionMarkersAreReplacedBeforeStringMarkers) {
  SetUpGame("  error <baduse; %turns% ~score~ #shown#>\n");
  SetNumericVariable(t.game, "turns", 3);
  // A value inserted by the string pass is not read again, and collectables are no pass of
  // their own: both markers stay as written.
  SetStringVariable(t.game, "shown", "%turns%");
  EXPECT_EQ(Printed(kBadUse), "3 ~score~ %turns%\r\n");
  EXPECT_TRUE(t.host.log.empty());
}

}  // namespace
}  // namespace tarve
