#include <gtest/gtest.h>

#include "interpreter/Variables.h"
#include "support/TestSupport.h"
#include "world/PlayerMessages.h"

namespace tarve {
namespace {

using test::ReadSource;
using test::TempDir;
using test::TestGame;

// The default messages and overrides as a player meets them are the world/messages transcript.
TEST(Messages, NumericAndFunctionMarkersAreReplacedBeforeStringMarkers) {
  TempDir dir;
  TestGame t(dir);
  ASSERT_TRUE(ReadSource(
      t, dir, "define game <G>\n  error <baduse; %turns% ~score~ #shown#>\nend define\n"));
  ResetPlayerMessages(t.game);
  ReadMessageOverrides(t.game);
  SetNumericVariable(t.game, "turns", 3);
  // A value inserted by the string pass is not read again, and collectables are no pass of
  // their own: both markers stay as written.
  SetStringVariable(t.game, "shown", "%turns%");
  PrintPlayerMessage(t.game, kBadUse);
  EXPECT_EQ(t.host.output, "3 ~score~ %turns%\r\n");
  EXPECT_TRUE(t.host.log.empty());
}

}  // namespace
}  // namespace tarve
