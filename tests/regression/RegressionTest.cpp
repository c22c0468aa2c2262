// Every input in inputs/<target>/ once made the player crash, leak, trip a sanitizer or take
// more than a second. Each is fed through the runner its fuzz target uses; the sanitizer build
// turns any fault back into a failure, and every test here must finish quickly.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "FuzzTargets.h"
#include "interpreter/Variables.h"
#include "player/OpenGame.h"
#include "player/Player.h"
#include "support/TestSupport.h"

namespace tarve::fuzz {
namespace {

namespace fs = std::filesystem;

using Runner = void (*)(const Workspace&, const uint8_t*, std::size_t);

TEST(FuzzRegression, InputsThatOnceBrokeThePlayerRunSafely) {
  const Workspace workspace(TARVE_SOURCE_DIR);
  ASSERT_TRUE(workspace.ok()) << "the scratch folder could not be made";
  for (const auto& [target, run] :
       std::vector<std::pair<std::string, Runner>>{{"GameReader", RunGameReader},
                                                   {"CompiledReader", RunCompiledReader},
                                                   {"Turns", RunTurns},
                                                   {"Statements", RunStatements},
                                                   {"SavedGame", RunSavedGame}}) {
    std::vector<fs::path> files;  // sorted, so that a failure names the same file every time
    std::error_code none;         // a target without inputs yet
    for (const fs::directory_entry& entry :
         fs::directory_iterator(fs::path(TARVE_REGRESSION_INPUTS) / target, none)) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
      SCOPED_TRACE(target + "/" + file.filename().string());
      const std::string bytes = test::ReadFile(file.string());
      run(workspace, reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
  }
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

// Loops inside each other through procedures once froze the player, and so did loops over work
// that runs no statement (empty loops, blank lines, long scans): now a statement past the limit
// is cut, logged once, and the next command runs with a fresh allowance.
TEST(FuzzRegression, LoopsInsideLoopsAreCutAndTheGameGoesOn) {
  const test::TempDir dir;
  test::TestGame t(dir);
  t.game.statement_limit = 5000;
  std::string game =
      "define game <Loops>\n"
      "    startscript setvar <n; 0>\n"
      "    command <spin> for <a; 1; 30000> do <inner>\n"
      "    command <idle> for <a; 1; 30000> for <b; 1; 2; 0>\n"
      "    command <blanks> for <a; 1; 1000> do <blank>\n"
      "    command <page> for <a; 1; 1000> displaytext <blank>\n"
      "    command <lookup> for <a; 1; 1000> do <missing>\n"
      "    command <hide> for <a; 1; 1000> hideobject <thing 1>\n"
      "    command <warn> for <a; 1; 1000> msg <#undefined#>\n"
      "    command <saves> for <a; 1; 3> exec <save>\n"
      "    command <named> for <" +
      std::string(4096, 'v') +
      "; 1; 30000> setvar <n; %n%+1>\n"
      "end define\n"
      "define procedure <inner>\n"
      "    for <b; 1; 30000> setvar <n; %n%+1>\n"
      "end define\n";
  game += "define procedure <blank>\n" + std::string(3000, '\n') + "end define\n";
  game += "define text <blank>\n" + std::string(3000, '\n') + "end define\n";
  // Names that must be substituted before they can be compared.
  for (int i = 0; i < 100; ++i) {
    game += "define procedure <p" + std::to_string(i) + "#n#>\nend define\n";
  }
  game += "define room <far>\n";
  for (int i = 0; i < 1000; ++i) {
    game += "define object <thing " + std::to_string(i) + ">\nend define\n";
  }
  game += "end define\n";
  ASSERT_TRUE(OpenGame(t.game, dir.Write("game.gwl", game)));
  const std::string cut =
      "Error: The statement ran more than 5000 statements and calls (loops inside loops?) - the "
      "rest of it was skipped.";
  for (int spins = 1, before = 0; spins <= 2; ++spins) {
    t.player.SubmitCommand("spin");
    EXPECT_EQ(std::count(t.host.log.begin(), t.host.log.end(), cut), spins);
    // The loops ran until the limit, each command with the whole allowance again.
    const int n = GetNumericVariable(t.game, "n");
    EXPECT_GT(n, before + 1000);
    EXPECT_LT(n, before + 5000);
    before = n;
  }
  // Work that runs no statement counts too: the rounds of an empty loop, the blank lines of a
  // procedure read, the lines of a text printed, the names substituted to find a block, the
  // things looked at to list those here, the messages logged, the games saved (a save costs
  // more than this whole allowance, so none is written), and a loop variable's long name, looked
  // up on every round (so the loop runs fewer rounds than "spin" did).
  t.host.file_dialog_answers.assign(3, dir.path() + "/saved.tsg");
  SetNumericVariable(t.game, "n", 0);
  int cuts = 2;
  for (const char* command :
       {"idle", "blanks", "page", "lookup", "hide", "warn", "saves", "named"}) {
    SCOPED_TRACE(command);
    t.player.SubmitCommand(command);
    EXPECT_EQ(std::count(t.host.log.begin(), t.host.log.end(), cut), ++cuts);
  }
  EXPECT_EQ(t.host.file_dialog_answers.size(), 3u);
  EXPECT_LT(GetNumericVariable(t.game, "n"), 1500);
}

}  // namespace
}  // namespace tarve::fuzz
