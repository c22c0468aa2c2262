#include <gtest/gtest.h>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using Lines = std::vector<std::string>;

class ExecuteScriptTest : public ::testing::Test {
 protected:
  test::TempDir dir;
  test::TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
};

TEST_F(ExecuteScriptTest, PauseFontAndEnterReachTheWindowAsTheyShould) {
  ExecuteScript(game, "pause <250>");
  EXPECT_EQ(host.repaints, 1);
  EXPECT_EQ(host.services, Lines{"sleep 250"});
  game.output.current_default_font_name = "Courier New";
  ExecuteScript(game, "font <Verdana>");
  game.settings.override_all_fonts = true;
  ExecuteScript(game, "font <Verdana>");
  EXPECT_NE(host.styled.find("{font:Verdana}{font:Courier New}"), std::string::npos);
  game.run.input_ended = true;  // enter does not wait once the input has ended
  ExecuteScript(game, "enter <name>");
  EXPECT_EQ(FindVariable(game.variables.strings, "name"), nullptr);
  EXPECT_EQ(host.control_changes, (std::vector<bool>{false, true}));
}

// Long texts count against the statement limit, so a loop over them ends as soon as a loop of
// many statements would (the regression tests show the limit itself).
TEST_F(ExecuteScriptTest, BuildingLongTextsCountsAgainstTheStatementLimit) {
  game.statement_limit = 2000;
  SetStringVariable(game, "big", std::string(100 * 1024, 'x'));  // 100 statements' worth
  ExecuteScript(game, "for <i; 1; 1000> setstring <copy; #big#>");
  EXPECT_GE(GetNumericVariable(game, "i"), 15);
  EXPECT_LE(GetNumericVariable(game, "i"), 21);
  EXPECT_EQ(host.log, Lines{"Error: The statement ran more than 2000 statements and calls (loops "
                            "inside loops?) - the rest of it was skipped."});
}

// A tool that bounds the work of a whole game (the fuzzers) sets a total limit: past it every
// statement is skipped with one log line, and nothing is left half-entered.
TEST_F(ExecuteScriptTest, TotalStatementLimitSkipsEveryLaterStatement) {
  game.total_statement_limit = 100;
  ExecuteScript(game, "for <i; 1; 150> setvar <n; %i%>");
  EXPECT_LT(GetNumericVariable(game, "n"), 100);
  ExecuteScript(game, "msg <later>");
  EXPECT_EQ(host.output, "");
  EXPECT_EQ(host.log, Lines(2,
                            "Error: The game ran more than 100 statements and calls in all - "
                            "the rest of the statement was skipped."));
  EXPECT_EQ(game.run.script_depth, 0);
  EXPECT_FALSE(game.run.unwinding);
}

}  // namespace
}  // namespace tarve
