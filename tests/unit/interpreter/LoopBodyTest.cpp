// The statement a `for` loop repeats gets its numeric variables put into its parameter from a
// pattern made once; these cases check that it says and logs what the substitution passes would.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "interpreter/ExecuteScript.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;

class LoopBodyTest : public ::testing::Test {
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

TEST_F(LoopBodyTest, NumbersGoInEveryRoundAndUndefinedOnesWarnEveryRound) {
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

TEST_F(LoopBodyTest, StringReferencesStillGoThroughEveryPass) {
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
