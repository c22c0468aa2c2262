#include <gtest/gtest.h>

#include <set>

#include "interpreter/Functions.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

// The interpreter/functions transcript shows calls with parameters; a call without any keeps
// the earlier ones, and rand stays within its bounds given either way round.
TEST(Functions, ACallWithoutParametersKeepsTheEarlierOnesAndRandStaysInBounds) {
  test::TempDir dir;
  test::TestGame t(dir);
  ASSERT_TRUE(test::ReadSource(t, dir,
                               "define function <count>\n"
                               "  return <#tarve.function.numparameters#: "
                               "#tarve.function.parameter.1#>\n"
                               "end define\n"));
  EXPECT_EQ(CallFunction(t.game, "count( a ;b; )"), "3: a");
  EXPECT_EQ(CallFunction(t.game, "count"), "0: a");
  EXPECT_EQ(CallFunction(t.game, " count ()"), "0: a");
  std::set<std::string> seen;
  for (int i = 0; i < 300; ++i) seen.insert(CallFunction(t.game, "rand(6; 1)"));
  EXPECT_EQ(seen, (std::set<std::string>{"1", "2", "3", "4", "5", "6"}));
  const int wide = std::stoi(CallFunction(t.game, "rand(-40000; 40000)"));
  EXPECT_TRUE(wide >= -40000 && wide <= 40000) << wide;
  EXPECT_TRUE(t.host.log.empty());
}

}  // namespace
}  // namespace tarve
