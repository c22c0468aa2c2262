#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

class ExecuteScriptTest : public ::testing::Test {
 protected:
  TempDir dir;
  TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
};

TEST_F(ExecuteScriptTest, StatementsWithoutUsableParametersAreLoggedAndSkipped) {
  for (const char* statement : {"msg hello", "setvar x; 1", "for <i; 1> msg <x>",
                                "for <i; 1; 40000> msg <x>", "pause <40000>"}) {
    ExecuteScript(game, statement);
  }
  EXPECT_EQ(host.output, "");
  EXPECT_EQ(FindVariable(game.variables.numerics, "x"), nullptr);
  EXPECT_EQ(FindVariable(game.variables.numerics, "i"), nullptr);
  EXPECT_TRUE(host.services.empty());
  const std::vector<std::string> log = {
      "Error: Expected a <...> parameter in 'msg hello'",
      "Error: Expected a <...> parameter in 'setvar x; 1'",
      "Error: Expected <variable; from; to> in for <i; 1> - the loop was skipped.",
      "Error: Overflow in for <i; 1; 40000> - the numbers must lie from -32768 to 32767; the "
      "loop was skipped.",
      "Error: Overflow in pause <40000> - the pause must lie from 0 to 32767 milliseconds; it "
      "was skipped."};
  EXPECT_EQ(host.log, log);
}

TEST_F(ExecuteScriptTest, PauseRedrawsThenSleepsAndFontFollowsTheOverrideSetting) {
  ExecuteScript(game, "pause <250>");
  EXPECT_EQ(host.repaints, 1);
  EXPECT_EQ(host.services, std::vector<std::string>{"sleep 250"});
  EXPECT_FALSE(game.parser.paused);

  game.output.current_default_font_name = "Courier New";
  ExecuteScript(game, "font <Verdana>");
  game.settings.override_all_fonts = true;
  ExecuteScript(game, "font <Verdana>");
  EXPECT_NE(host.styled.find("{font:Verdana}{font:Courier New}"), std::string::npos);
}

TEST_F(ExecuteScriptTest, RunawayRecursionAbandonsTheWholeStatementOnce) {
  ASSERT_TRUE(ReadSource(t, dir,
                         "define procedure <twice>\n"
                         "  do <twice>\n"
                         "  do <twice>\n"
                         "end define\n"));
  ExecuteScript(game, "do <twice>\r\nmsg <rest of the script>");
  EXPECT_EQ(host.output, "");
  ASSERT_EQ(host.log.size(), 1u);
  EXPECT_EQ(host.log[0],
            "Error: Scripts are nested more than 200 levels deep (does a procedure or function "
            "call itself?) - the rest of the statement was skipped.");
  EXPECT_EQ(game.run.script_depth, 0);
  EXPECT_FALSE(game.run.unwinding);
  ExecuteScript(game, "msg <next statement>");
  EXPECT_EQ(host.output, "next statement\r\n");
}

TEST_F(ExecuteScriptTest, EnterDoesNotWaitOnceInputHasEnded) {
  game.run.input_ended = true;
  ExecuteScript(game, "enter <name>");
  EXPECT_EQ(FindVariable(game.variables.strings, "name"), nullptr);
  EXPECT_FALSE(game.parser.waiting_for_input);
  EXPECT_EQ(host.control_changes, (std::vector<bool>{false, true}));
}

TEST_F(ExecuteScriptTest, GotoAnUnknownRoomLeavesThePlayerWhereTheyAre) {
  game.world.current_room = "Hall";
  ExecuteScript(game, "goto <Nowhere>");
  EXPECT_EQ(game.world.current_room, "Hall");
  EXPECT_EQ(host.output, "");
}

}  // namespace
}  // namespace tarve
