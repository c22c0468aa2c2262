#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/Text.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Substitution.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;

TEST(Substitute, CollectablesShowTheirShortestNumberText) {
  TempDir dir;
  TestGame t(dir);
  for (const auto& [name, amount] : {std::pair{"gold", 2.5f}, {"tenth", 0.1f}, {"big", 1e7f}}) {
    Collectable collectable;
    collectable.name = name;
    collectable.amount = amount;
    t.game.inventory.collectables.push_back(collectable);
  }
  EXPECT_EQ(SubstituteAll(t.game, "~gold~ ~tenth~ ~big~ ~Gold~"), "2.5 0.1 1E+07 0");
  EXPECT_TRUE(t.host.log.empty());
}

// A line with many references to long variables stops growing at its limit: the cut is logged
// with the start of the line, and the game goes on.
TEST(Substitute, TextThatGrowsPastItsLimitIsCut) {
  TempDir dir;
  TestGame t(dir);
  SetStringVariable(t.game, "big", "\u00e9" + std::string(kMaxVariableValueBytes - 3, 'x'));
  std::string text = "#big#";
  for (int i = 0; i < 20; ++i) text += " #big#";
  const std::string result = SubstituteAll(t.game, text);
  EXPECT_EQ(result.size(), kMaxSubstitutedBytes);
  EXPECT_TRUE(IsValidUtf8(result));
  EXPECT_EQ(t.host.log, std::vector<std::string>{
                            "Error: The text of <#big# #big# #big# #big# #big# #big# #big# #big# "
                            "#big# #big# ...> grew past 16777216 bytes as its variables were put "
                            "in - the rest of it was cut off."});
  ExecuteScript(t.game, "msg <still here>");
  EXPECT_EQ(t.host.output, "still here\r\n");
}

}  // namespace
}  // namespace tarve
