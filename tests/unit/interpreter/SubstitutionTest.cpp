#include <gtest/gtest.h>

#include "base/Text.h"
#include "interpreter/ExecuteScript.h"
#include "interpreter/Substitution.h"
#include "interpreter/Variables.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

// Many references to long variables: the text is cut at its limit, logged, and the game goes on.
TEST(Substitute, TextThatGrowsPastItsLimitIsCut) {
  test::TempDir dir;
  test::TestGame t(dir);
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
