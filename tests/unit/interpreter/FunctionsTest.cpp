#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "interpreter/Functions.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

TEST(Functions, RandStaysInBoundsGivenEitherWayRound) {
  test::TempDir dir;
  test::TestGame t(dir);
  std::set<std::string> seen;
  for (int i = 0; i < 300; ++i) seen.insert(CallFunction(t.game, "rand(6; 1)"));
  EXPECT_EQ(seen, (std::set<std::string>{"1", "2", "3", "4", "5", "6"}));
  EXPECT_LE(std::abs(std::stoi(CallFunction(t.game, "rand(-40000; 40000)"))), 40000);
}

}  // namespace
}  // namespace tarve
