#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "interpreter/ScriptLog.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

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
