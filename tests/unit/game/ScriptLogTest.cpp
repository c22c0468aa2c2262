#include <gtest/gtest.h>

#include "game/ScriptLog.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;

// A game that logs an error on every round of its loops: the window keeps the newest messages,
// whole, and never more than its limit. What the log file gets is in the startup/log-errors
// transcripts.
TEST(ScriptLog, TheWindowKeepsTheNewestMessagesWithinItsLimit) {
  TempDir dir;
  TestGame t(dir);
  const std::string filler(90, '.');
  for (int i = 1; i <= 100000; ++i) LogScriptError(t.game, "message " + std::to_string(i) + filler);
  const std::string& text = t.game.log.text;
  EXPECT_LE(text.size(), kMaxLogWindowBytes);
  EXPECT_GT(text.size(), kMaxLogWindowBytes / 2);
  EXPECT_TRUE(text.starts_with("message "));
  EXPECT_TRUE(text.ends_with("message 100000" + filler + "\r\n"));
  EXPECT_EQ(t.host.log.size(), 100000u);  // the window's own view was told every message
}

TEST(ScriptLog, AnUnwritableFileIsNotedOnceUntilAnotherFileIsNamed) {
  TempDir dir;
  TestGame t(dir);
  t.game.settings.log_errors = true;
  t.game.settings.log_file = dir.path() + "/missing/folder/script.log";
  LogScriptError(t.game, "one");
  LogScriptError(t.game, "two");
  EXPECT_EQ(t.host.log, (std::vector<std::string>{"one",
                                                  "Warning: Unable to write to the log file " +
                                                      t.game.settings.log_file +
                                                      " - messages go to the log window only.",
                                                  "two"}));
  t.game.settings.log_file = dir.path() + "/script.log";
  LogScriptError(t.game, "three");
  EXPECT_EQ(test::ReadFile(t.game.settings.log_file), "three\r\n");
}

}  // namespace
}  // namespace tarve
