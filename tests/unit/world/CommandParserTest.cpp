#include <gtest/gtest.h>

#include <tuple>

#include "interpreter/Variables.h"
#include "support/TestSupport.h"
#include "world/CommandParser.h"

namespace tarve {
namespace {

// A game read from source with its turn scripts, and one typed turn with what it printed.
class ParserTest : public ::testing::Test {
 protected:
  void Read(std::string_view source) {
    ASSERT_TRUE(test::ReadSource(t, dir, source));
    ReadTurnScripts(t.game);
  }
  std::string Turn(std::string command) {
    t.host.output.clear();
    ExecuteCommand(t.game, command, /*echo=*/true, /*try_game_commands=*/true);
    std::erase(t.host.output, '\r');
    return t.host.output;
  }

  test::TempDir dir;
  test::TestGame t{dir};
};

TEST(PatternMatches, LiteralPiecesMatchInOrderAndOnlyAtTheEnds) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"  look  ", "look", true},  // the command is trimmed
      {"look at x", "look", false},
      {"look", "look at x", false},
      {"give apple to bob", "give #item# to #who#", true},
      {"please give apple to bob", "give #item# to #who#", false},
      {"give apple", "give #item# to #who#", false},
      {"give  to bob", "give #item# to #who#", true},  // variables may be empty
      {"open box with key with care", "open #a# with #b#", true},
      {"öppna dörren", "öppna #x#", true},
      {"", "#a##b#", true},
      {"x", "", false},
      {"say #x", "say #x", true},  // a "#" without a partner is literal text
      {"say hi", "say #x", false},
  };
  for (const auto& [command, pattern, matches] : cases) {
    EXPECT_EQ(PatternMatches(command, pattern), matches) << command << " / " << pattern;
  }
}

// What the variables take is the parser/verbs transcript; the variable keeps the name as the
// pattern writes it, and of two variables side by side the first takes nothing.
TEST_F(ParserTest, CaptureNamesTheVariableAsThePatternWritesIt) {
  CapturePatternVariables(t.game, "unlock door", "Unlock #Thing#");
  EXPECT_EQ(FindVariable(t.game.variables.strings, "thing")->name, "Thing");
  CapturePatternVariables(t.game, "open the box", "#a##b#");
  EXPECT_EQ(GetStringVariable(t.game, "a") + "|" + GetStringVariable(t.game, "b"), "|open the box");
}

// Turns as the window plays them: the turn scripts (every afterturn line), the command box, the
// blank line after a turn, and a paused game, in which a typed line is no command.
TEST_F(ParserTest, TurnsRunTheTurnScriptsEmptyTheCommandBoxAndSkipPausedTurns) {
  Read(
      "define game <G>\n  beforeturn msg <before>\n  afterturn msg <after>\n"
      "  afterturn   msg <after again>\n  command <xyzzy> msg <Nothing happens.>\nend define\n");
  t.game.output.blank_line_after_turn = true;
  EXPECT_EQ(Turn("XYZZY"), "> XYZZY\nbefore\nNothing happens.\n\nafter\nafter again\n");
  EXPECT_EQ(t.host.command_box_clears, 1);
  EXPECT_EQ(t.host.command_box_focus, 1);

  EXPECT_EQ(Turn(""), "");
  t.game.parser.paused = true;
  EXPECT_EQ(Turn("xyzzy"), "");
  // A line that answers an enter statement (the player/key-wait transcript) empties the box too.
  t.game.parser.paused = false;
  t.game.parser.waiting_for_input = true;
  t.game.parser.input_variable = "answer";
  Turn("Ann");
  EXPECT_EQ(t.host.command_box_clears, 2);
}

TEST_F(ParserTest, HelpSwitchesToVerdanaAndBack) {
  t.game.output.current_default_font_name = "Georgia";
  Turn("help");
  const std::string& styled = t.host.styled;
  EXPECT_LT(styled.find("{font:Verdana}"), styled.find("USING TARVE:"));
  EXPECT_GT(styled.find("{font:Georgia}"), styled.find("F11"));
}

}  // namespace
}  // namespace tarve
