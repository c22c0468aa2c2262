#include <gtest/gtest.h>

#include <set>
#include <string>

#include "interpreter/Functions.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

class FunctionsTest : public ::testing::Test {
 protected:
  std::string Call(std::string_view text) { return CallFunction(t.game, text); }

  TempDir dir;
  TestGame t{dir};
};

TEST_F(FunctionsTest, ACallWithoutParametersKeepsTheEarlierParameters) {
  ASSERT_TRUE(ReadSource(t, dir,
                         "define function <count>\n"
                         "  return <#tarve.function.numparameters#: "
                         "#tarve.function.parameter.1#>\n"
                         "end define\n"));
  // Every ";" starts another parameter, empty ones included.
  EXPECT_EQ(Call("count( a ;b; )"), "3: a");
  EXPECT_EQ(GetStringVariable(t.game, "tarve.function.parameter.3"), "");
  EXPECT_EQ(Call("count"), "0: a");
  EXPECT_EQ(Call(" count ()"), "0: a");
  EXPECT_TRUE(t.host.log.empty());
}

TEST_F(FunctionsTest, RandStaysWithinItsBoundsEitherWayRound) {
  std::set<std::string> seen;
  for (int i = 0; i < 300; ++i) {
    seen.insert(Call("rand(1; 6)"));
    const int swapped = std::stoi(Call("rand(6; 1)"));
    EXPECT_TRUE(swapped >= 1 && swapped <= 6) << swapped;
  }
  EXPECT_EQ(seen, (std::set<std::string>{"1", "2", "3", "4", "5", "6"}));
  EXPECT_EQ(Call("rand(-3; -3)"), "-3");
  const int wide = std::stoi(Call("rand(-40000; 40000)"));
  EXPECT_TRUE(wide >= -40000 && wide <= 40000) << wide;
}

}  // namespace
}  // namespace tarve
