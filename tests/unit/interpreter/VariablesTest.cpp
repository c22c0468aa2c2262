#include <gtest/gtest.h>

#include "base/Text.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using Lines = std::vector<std::string>;

// The interpreter/statements transcript shows setstring, setvar, the substitution passes, loops
// and their faults; here what a player cannot see.
class VariablesTest : public ::testing::Test {
 protected:
  test::TempDir dir;
  test::TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
};

TEST_F(VariablesTest, NamesIgnoreCaseAndKeepTheSpellingOfTheLastWrite) {
  SetStringVariable(game, "Name", "Ann");
  SetStringVariable(game, "other", "x");
  SetStringVariable(game, "NAME", "Bob");
  EXPECT_EQ(game.variables.strings.entries[0].name, "NAME");
  // Every write tells the viewer of its table: rows in all (heading included), row, name, value.
  EXPECT_EQ(host.viewer_rows, (Lines{"1 2 1 Name=Ann", "1 3 2 other=x", "1 3 1 NAME=Bob"}));
  // Long names and names beyond ASCII compare ignoring case too.
  SetStringVariable(game, "Player.Score.Display.Name", "long");
  EXPECT_EQ(GetStringVariable(game, "player.score.display.NAME"), "long");
  EXPECT_EQ(FindVariable(game.variables.strings, "player.score.display-name"), nullptr);
  SetStringVariable(game, "Émile", "é");
  EXPECT_EQ(GetStringVariable(game, "éMILE"), "é");
  SetStringVariable(game, "\u212Aelvin", "sign");  // the Kelvin sign lower-cases to k
  EXPECT_EQ(GetStringVariable(game, "kELVIN"), "sign");
  SetNumericVariable(game, "name", -12);  // another variable than the string of that name
  EXPECT_EQ(host.viewer_rows.back(), "2 2 1 name=-12");
  EXPECT_TRUE(host.log.empty());
}

TEST_F(VariablesTest, SetVarCornersAndNumericTextFromElsewhere) {
  for (const auto& [expression, value] : {std::pair{" 42 ", 42},
                                          {"2*3-1", 6},
                                          {"-3--2", -1},
                                          {"1/3", 0},
                                          {"abc", 0},
                                          {"", 0},
                                          {"-32768", -32768},
                                          {"12 apples", 12}}) {
    ExecuteSetVar(game, std::string("n; ") + expression);
    EXPECT_EQ(GetNumericVariable(game, "n"), value) << expression;
  }
  for (const char* parameter :
       {"n; 200*200", "n; -32768-1", "n; 40000", "n; -32768/-1", "n; 1+99999", "n 7"}) {
    ExecuteSetVar(game, parameter);
  }
  EXPECT_EQ(GetNumericVariable(game, "n"), 12);
  EXPECT_EQ(host.log.at(5), "Error: Missing ';' in setvar <n 7> - the variable was not changed.");
  // A value written as text elsewhere (a saved game) is read as a number, held in the range.
  game.variables.numerics.entries = {{"a", "3.5 apples"}, {"b", "99999"}};
  game.variables.numerics.index = {{"a", 0}, {"b", 1}};
  EXPECT_EQ(GetNumericVariable(game, "a"), 4);
  EXPECT_EQ(GetNumericVariable(game, "b"), 32767);
  ExecuteSetVar(game, "n; 1/0");  // the line a division by zero prints is red and bold
  EXPECT_NE(host.styled.find("{colour:255,0,0}{b}Script error encountered"), std::string::npos);
  // A loop fills a string's numeric reference in after the string.
  SetStringVariable(game, "s", "%i%");
  ExecuteScript(game, "for <i; 1; 3> setvar <n; #s#*2>");
  EXPECT_EQ(GetNumericVariable(game, "n"), 6);
}

// A value is cut at a character boundary (the interpreter/statements transcript shows the cut);
// all variables together stop at their limit; overwriting frees what the old value held.
TEST_F(VariablesTest, ValuesAndAllVariablesTogetherStopAtTheirLimits) {
  SetStringVariable(game, "s", "\u00e9t\u00e9");  // two-byte letters, so a cut can fall in one
  ExecuteScript(game, "for <i; 1; 40> setstring <s;#s##s#>");
  EXPECT_TRUE(IsValidUtf8(FindVariable(game.variables.strings, "s")->value));
  host.log.clear();
  ExecuteScript(game, "for <i; 1; 100> setstring <copy %i%;#s#>");
  EXPECT_NE(FindVariable(game.variables.strings, "copy 62"), nullptr);
  EXPECT_EQ(FindVariable(game.variables.strings, "copy 63"), nullptr);
  EXPECT_EQ(host.log.at(0),
            "Error: The game's variables would hold more than 67108864 bytes - variable 'copy 63' "
            "was not set.");
  ExecuteScript(game, "for <i; 1; 100> setstring <copy %i%;short>");
  EXPECT_EQ(GetStringVariable(game, "copy 99"), "short");
  EXPECT_LT(game.variables.bytes, kMaxVariableValueBytes + 4096);
}

}  // namespace
}  // namespace tarve
