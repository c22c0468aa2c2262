#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/Text.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;

class VariablesTest : public ::testing::Test {
 protected:
  std::string Numeric(std::string_view name) {
    const VariableEntry* entry = FindVariable(game.variables.numerics, name);
    return entry == nullptr ? "<none>" : entry->value;
  }

  TempDir dir;
  TestGame t{dir};
  Game& game = t.game;
  test::RecordingHost& host = t.host;
};

TEST_F(VariablesTest, NamesIgnoreCaseAndKeepTheSpellingOfTheLastWrite) {
  SetStringVariable(game, "Name", "Ann");
  SetStringVariable(game, "other", "x");
  EXPECT_EQ(GetStringVariable(game, "NAME"), "Ann");
  SetStringVariable(game, "NAME", "Bob");
  ASSERT_EQ(game.variables.strings.entries.size(), 2u);
  EXPECT_EQ(game.variables.strings.entries[0].name, "NAME");
  EXPECT_EQ(GetStringVariable(game, "name"), "Bob");
  // Every write tells the viewer of its table: rows in all (heading included), row, name, value.
  const std::vector<std::string> rows = {"1 2 1 Name=Ann", "1 3 2 other=x", "1 3 1 NAME=Bob"};
  EXPECT_EQ(host.viewer_rows, rows);

  // Long names, and names beyond ASCII, compare ignoring case too; a numeric variable of the
  // same name is another variable.
  SetStringVariable(game, "Player.Score.Display.Name", "long");
  EXPECT_EQ(GetStringVariable(game, "player.score.display.NAME"), "long");
  EXPECT_EQ(FindVariable(game.variables.strings, "player.score.display.NAMES"), nullptr);
  EXPECT_EQ(FindVariable(game.variables.strings, "player.score.display-name"), nullptr);
  SetStringVariable(game, "Émile", "é");
  EXPECT_EQ(GetStringVariable(game, "éMILE"), "é");
  SetStringVariable(game, "\u212Aelvin", "sign");  // the Kelvin sign lower-cases to k
  EXPECT_EQ(GetStringVariable(game, "kELVIN"), "sign");
  SetNumericVariable(game, "name", -12);
  EXPECT_EQ(GetNumericVariable(game, "Name"), -12);
  EXPECT_EQ(host.viewer_rows.back(), "2 2 1 name=-12");
  EXPECT_EQ(GetStringVariable(game, "name"), "Bob");
  EXPECT_TRUE(host.log.empty());
}

TEST_F(VariablesTest, UndefinedVariablesWarnAndReadAsTheirMarkers) {
  EXPECT_EQ(GetStringVariable(game, "Missing"), "");
  EXPECT_EQ(GetNumericVariable(game, "count"), kUndefinedNumber);
  const std::vector<std::string> log = {"Warning: No string variable 'Missing' defined.",
                                        "Warning: No numeric variable 'count' defined."};
  EXPECT_EQ(host.log, log);
}

TEST_F(VariablesTest, NumericTextReadsBackRoundedHalfToEven) {
  // A value another part wrote as text (a saved game) is read as a number on every read.
  game.variables.numerics.entries.push_back({"a", "2.5"});
  game.variables.numerics.index.emplace("a", 0);
  game.variables.numerics.entries.push_back({"b", "3.5 apples"});
  game.variables.numerics.index.emplace("b", 1);
  game.variables.numerics.entries.push_back({"c", "99999"});
  game.variables.numerics.index.emplace("c", 2);
  EXPECT_EQ(GetNumericVariable(game, "a"), 2);
  EXPECT_EQ(GetNumericVariable(game, "b"), 4);
  EXPECT_EQ(GetNumericVariable(game, "c"), 32767);
}

TEST_F(VariablesTest, SetVarReadsOneOperationFoundInTheOperatorSearchOrder) {
  // The expressions of the transcript tests aside, the corners of the reading rules.
  const struct {
    const char* expression;
    const char* value;
  } cases[] = {
      {" 42 ", "42"},       {"2*3-1", "6"},       {"-3--2", "-1"},     {"1/3", "0"},
      {"2.5", "2"},         {"3.5", "4"},         {"abc", "0"},        {"", "0"},
      {"32767+0", "32767"}, {"-32768", "-32768"}, {"12 apples", "12"},
  };
  for (const auto& c : cases) {
    ExecuteSetVar(game, std::string("n; ") + c.expression);
    EXPECT_EQ(Numeric("n"), c.value) << c.expression;
  }
  EXPECT_TRUE(host.log.empty());
}

TEST_F(VariablesTest, SetVarAbandonsOverflowsAndMissingSemicolons) {
  ExecuteSetVar(game, "n; 5");
  for (const char* parameter : {"n; 20000+20000", "n; 200*200", "n; -32768-1", "n; 40000",
                                "n; -32768/-1", "n; 1+99999", "n 7"}) {
    ExecuteSetVar(game, parameter);
  }
  EXPECT_EQ(Numeric("n"), "5");
  ASSERT_EQ(host.log.size(), 7u);
  EXPECT_EQ(host.log[0],
            "Error: Overflow in setvar <n; 20000+20000> - the result is outside -32768 to 32767 "
            "and was not stored.");
  EXPECT_EQ(host.log[6], "Error: Missing ';' in setvar <n 7> - the variable was not changed.");
}

TEST_F(VariablesTest, DivisionByZeroIsReportedThreeWaysAndStoresZero) {
  ExecuteSetVar(game, "n; 9");
  ExecuteSetVar(game, "n; 1/0");
  EXPECT_EQ(Numeric("n"), "0");
  EXPECT_EQ(host.log, std::vector<std::string>{"Error: Division by zero"});
  EXPECT_EQ(host.messages, std::vector<std::string>{"[GWL Script Error] Error: Division by zero"});
  EXPECT_EQ(host.message_styles, std::vector<int>{kOkOnly + kExclamation});
  EXPECT_EQ(host.output, "Script error encountered\r\n");
  EXPECT_NE(host.styled.find("{colour:255,0,0}{b}Script error encountered"), std::string::npos);
}

// A script that doubles a text over and over, or fills variable after variable with long texts,
// would take all the memory there is: a value stops at its limit (cut at a character boundary),
// all variables together at theirs, each refusal is logged and the game goes on.
TEST_F(VariablesTest, ValuesAndAllVariablesTogetherStopAtTheirLimits) {
  SetStringVariable(game, "s", "\u00e9t\u00e9");  // two-byte letters, so a cut can fall in one
  ExecuteScript(game, "for <i; 1; 40> setstring <s;#s##s#>");
  const std::string& value = FindVariable(game.variables.strings, "s")->value;
  EXPECT_LE(value.size(), kMaxVariableValueBytes);
  EXPECT_GT(value.size(), kMaxVariableValueBytes - 4);
  EXPECT_TRUE(IsValidUtf8(value));
  ASSERT_FALSE(host.log.empty());
  EXPECT_EQ(host.log[0],
            "Error: The value for variable 's' is longer than 1048576 bytes - the rest of it was "
            "cut off.");

  host.log.clear();
  ExecuteScript(game, "for <i; 1; 100> setstring <copy %i%;#s#>");
  EXPECT_LE(game.variables.bytes, kMaxVariablesBytes);
  // "s" and 62 copies of it fill the 64 MB.
  ASSERT_NE(FindVariable(game.variables.strings, "copy 62"), nullptr);
  EXPECT_EQ(FindVariable(game.variables.strings, "copy 63"), nullptr);
  ASSERT_FALSE(host.log.empty());
  EXPECT_EQ(host.log[0],
            "Error: The game's variables would hold more than 67108864 bytes - variable 'copy 63' "
            "was not set.");
  // Overwriting frees what the old value held, so short values still fit.
  ExecuteScript(game, "for <i; 1; 100> setstring <copy %i%;short>");
  EXPECT_EQ(GetStringVariable(game, "copy 99"), "short");
  EXPECT_LT(game.variables.bytes, kMaxVariableValueBytes + 4096);  // "s" and the short ones
}

// The statement a `for` loop repeats gets its numeric variables put into its parameter from a
// pattern made once; it must say and log what the substitution passes would.
TEST_F(VariablesTest, NumbersGoInEveryRoundAndUndefinedOnesWarnEveryRound) {
  SetNumericVariable(game, "n", -12);
  ExecuteScript(game, "for <i; 1; 3> msg <%i% of %n%;>");
  ExecuteScript(game, "for <i; 1; 2> msg <%i%/%none%>");
  ExecuteScript(game, "for <i; 1; 2> msg <100%%>");
  EXPECT_EQ(host.output,
            "1 of -12;\r\n2 of -12;\r\n3 of -12;\r\n1/-32767\r\n2/-32767\r\n100%-32767\r\n"
            "100%-32767\r\n");
  const std::string undefined = "Warning: No numeric variable 'none' defined.";
  const std::string empty_name = "Warning: No numeric variable '' defined.";
  const std::vector<std::string> log = {undefined, undefined, empty_name, empty_name};
  EXPECT_EQ(host.log, log);
}

TEST_F(VariablesTest, StringReferencesStillGoThroughEveryPass) {
  // The string holds a numeric reference, which the numeric pass then fills in.
  SetStringVariable(game, "s", "%i%");
  ExecuteScript(game, "for <i; 1; 3> setvar <n; #s#*2>");
  EXPECT_EQ(Numeric("n"), "6");
  // A setvar in a loop counts on the value the round before it wrote.
  ExecuteScript(game, "for <i; 1; 5> setvar <total; %total%+%i%>");
  EXPECT_EQ(Numeric("total"), "-32752");
  ExecuteScript(game, "for <i; 1; 10> setvar <i; %i%+4>");
  EXPECT_EQ(Numeric("i"), "10");
  EXPECT_TRUE(host.log.size() == 1u && host.log[0].find("'total'") != std::string::npos);
}

}  // namespace
}  // namespace tarve
