// Every input in inputs/<target>/ once made the player crash, leak, trip a sanitizer or take
// more than a second. Each is fed through the runner its fuzz target uses; the sanitizer build
// turns any fault back into a failure, and every test here must finish quickly.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "FuzzTargets.h"
#include "interpreter/Variables.h"
#include "player/OpenGame.h"
#include "player/Player.h"
#include "support/TestSupport.h"

namespace tarve::fuzz {
namespace {

namespace fs = std::filesystem;

using Runner = void (*)(const Workspace&, const uint8_t*, std::size_t);

// The files of inputs/<target>/, sorted so that a failure names the same file every time.
std::vector<fs::path> InputsOf(const std::string& target) {
  std::vector<fs::path> files;
  std::error_code ec;
  for (const fs::directory_entry& entry :
       fs::directory_iterator(fs::path(TARVE_REGRESSION_INPUTS) / target, ec)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void ReplayAll(const std::string& target, Runner run) {
  const Workspace workspace(TARVE_SOURCE_DIR);
  ASSERT_TRUE(workspace.ok()) << "the scratch folder could not be made";
  for (const fs::path& file : InputsOf(target)) {
    SCOPED_TRACE(file.filename().string());
    std::ifstream in(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    run(workspace, reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  }
}

TEST(FuzzRegression, GameFilesThatOnceBrokeTheReaderOpenSafely) {
  ReplayAll("GameReader", RunGameReader);
}

TEST(FuzzRegression, CompiledGamesThatOnceBrokeTheReaderOpenSafely) {
  ReplayAll("CompiledReader", RunCompiledReader);
}

TEST(FuzzRegression, TypedCommandsThatOnceBrokeATurnPlaySafely) { ReplayAll("Turns", RunTurns); }

TEST(FuzzRegression, StatementsThatOnceBrokeTheInterpreterRunSafely) {
  ReplayAll("Statements", RunStatements);
}

TEST(FuzzRegression, SavedGamesThatOnceBrokeTheLoaderLoadSafely) {
  ReplayAll("SavedGame", RunSavedGame);
}

// The statement and saved-game targets do nothing useful when their fixed games do not open or
// their scripts log faults, so a broken game there would hide every fault behind it.
TEST(FuzzRegression, TheFuzzTargetsGamesOpenCleanly) {
  const Workspace workspace(TARVE_SOURCE_DIR);
  ASSERT_TRUE(workspace.ok());
  for (const std::string& file :
       {workspace.statement_game(), workspace.folder() + "/games/examples/demo.gwl"}) {
    SCOPED_TRACE(file);
    test::RecordingHost host;
    Game game(host);
    ASSERT_TRUE(OpenGame(game, file));
    EXPECT_FALSE(game.world.current_room.empty());
    for (const std::string& message : host.log) {
      EXPECT_EQ(message.find("Warning"), std::string::npos) << message;
      EXPECT_EQ(message.find("Error"), std::string::npos) << message;
    }
  }
  // Saved games made from both games name them by file name alone, so they load beside them.
  EXPECT_NE(
      MakeSavedGameSeed(workspace, "statements.gwl", {"north"}).find("\r\nstatements.gwl\r\n"),
      std::string::npos);
}

// Found as a compiled game whose room script ran three loops inside each other through
// procedures: billions of rounds, each logging an error, froze the player and filled its memory.
// Now one top-level statement runs a bounded number of statements; past it the statement is cut,
// logged once, and the next command runs with a fresh allowance.
TEST(FuzzRegression, LoopsInsideLoopsAreCutAndTheGameGoesOn) {
  const test::TempDir dir;
  test::TestGame t(dir);
  t.game.statement_limit = 5000;
  const std::string path = dir.Write("game.gwl",
                                     "define game <Loops>\n"
                                     "    gwl-version <217>\n"
                                     "    start <Room>\n"
                                     "    startscript setvar <n; 0>\n"
                                     "    command <spin> for <a; 1; 30000> do <inner>\n"
                                     "    command <after> msg <Still here, n is %n%.>\n"
                                     "end define\n"
                                     "define room <Room>\n"
                                     "    look <A room.>\n"
                                     "end define\n"
                                     "define procedure <inner>\n"
                                     "    for <b; 1; 30000> setvar <n; %n%+1>\n"
                                     "end define\n");
  ASSERT_TRUE(OpenGame(t.game, path));
  const std::string cut =
      "Error: The statement ran more than 5000 statements and calls (loops inside loops?) - the "
      "rest of it was skipped.";

  t.player.SubmitCommand("spin");
  EXPECT_EQ(std::count(t.host.log.begin(), t.host.log.end(), cut), 1);
  const int16_t after_first = GetNumericVariable(t.game, "n");
  EXPECT_GT(after_first, 1000);  // the loops did run until the limit
  EXPECT_LT(after_first, 5000);

  t.host.output.clear();
  t.player.SubmitCommand("after");
  EXPECT_NE(t.host.output.find("Still here, n is " + std::to_string(after_first) + "."),
            std::string::npos)
      << t.host.output;

  // Each command starts with the whole allowance again.
  t.player.SubmitCommand("spin");
  EXPECT_EQ(std::count(t.host.log.begin(), t.host.log.end(), cut), 2);
  EXPECT_GT(GetNumericVariable(t.game, "n"), after_first + 1000);
}

}  // namespace
}  // namespace tarve::fuzz
