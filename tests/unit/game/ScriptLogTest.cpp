#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "game/ScriptLog.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadFile;
using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

TEST(ScriptLog, TheWindowKeepsEveryMessageAndTheFileOnlyWithLogErrors) {
  TempDir dir;
  TestGame t(dir);
  const std::string path = dir.path() + "/script.log";
  t.game.settings.log_file = path;
  LogScriptError(t.game, "first");
  EXPECT_FALSE(std::filesystem::exists(path));

  dir.Write("script.log", "earlier run\r\n");
  t.game.settings.log_errors = true;
  LogScriptError(t.game, "");  // an empty line in the file, nothing in the window
  LogScriptError(t.game, "second");
  EXPECT_EQ(ReadFile(path), "earlier run\r\n\r\nsecond\r\n");
  EXPECT_EQ(t.game.log.text, "first\r\nsecond\r\n");
  EXPECT_EQ(t.host.log, (Lines{"first", "second"}));
}

// A game that logs an error on every round of its loops: the window keeps the newest messages,
// whole, and never more than its limit.
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
  EXPECT_EQ(t.host.log,
            (Lines{"one",
                   "Warning: Unable to write to the log file " + t.game.settings.log_file +
                       " - messages go to the log window only.",
                   "two"}));
  t.game.settings.log_file = dir.path() + "/script.log";
  LogScriptError(t.game, "three");
  EXPECT_EQ(ReadFile(t.game.settings.log_file), "three\r\n");
}

}  // namespace
}  // namespace tarve
