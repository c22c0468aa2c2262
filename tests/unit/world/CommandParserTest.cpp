#include <gtest/gtest.h>

#include <tuple>

#include "ParserTestGame.h"
#include "game/Game.h"
#include "world/CommandParser.h"

namespace tarve {
namespace {

using test::ParserTestGame;

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
      {"", "", true},
      {"x", "", false},
      {"say #x", "say #x", true},  // a "#" without a partner is literal text
      {"say hi", "say #x", false},
  };
  for (const auto& [command, pattern, matches] : cases) {
    EXPECT_EQ(PatternMatches(command, pattern), matches) << command << " / " << pattern;
  }
}

TEST(CapturePatternVariables, TakesTheTextBetweenTheFirstOccurrencesOfThePieces) {
  ParserTestGame p("define game <G>\nend define\n", "");
  CapturePatternVariables(p.game(), "open box with key with care", "open #a# with #b#");
  CapturePatternVariables(p.game(), "put  red ball in box", "put #what# in #where#");
  // A pattern written with capitals captures from the lower-cased command, and the variable
  // keeps the name as written.
  CapturePatternVariables(p.game(), "unlock door", "Unlock #Thing#");
  for (const auto& [name, value] : std::vector<std::pair<std::string, std::string>>{
           {"a", "box"}, {"b", "key with care"}, {"what", " red ball"}, {"thing", "door"}}) {
    EXPECT_EQ(p.StringVariable(name), value) << name;
  }
  EXPECT_EQ(FindVariable(p.game().variables.strings, "thing")->name, "Thing");
  EXPECT_TRUE(p.host().log.empty());
}

// Turns as the window plays them: the turn scripts (every afterturn line), the command box, the
// blank line after a turn, and the states in which a typed line is no command.
TEST(ExecuteCommand, RunsTheTurnScriptsEmptiesTheCommandBoxAndSkipsPausedTurns) {
  ParserTestGame p(
      "define game <G>\n  beforeturn msg <before>\n  afterturn msg <after>\n"
      "  afterturn   msg <after again>\n  command <xyzzy> msg <Nothing happens.>\nend define\n",
      "");
  p.game().output.blank_line_after_turn = true;
  EXPECT_EQ(p.Turn("XYZZY"), "> XYZZY\nbefore\nNothing happens.\n\nafter\nafter again\n");
  EXPECT_EQ(p.host().command_box_clears, 1);
  EXPECT_EQ(p.host().command_box_focus, 1);

  EXPECT_EQ(p.Turn(""), "");
  p.game().parser.paused = true;
  EXPECT_EQ(p.Turn("xyzzy"), "");
  p.game().parser.paused = false;
  p.game().parser.waiting_for_input = true;
  p.game().parser.input_variable = "answer";
  EXPECT_EQ(p.Turn("Grab The LAMP"), "");
  EXPECT_EQ(p.StringVariable("answer"), "Grab The LAMP");
  EXPECT_FALSE(p.game().parser.waiting_for_input);
  EXPECT_EQ(p.host().command_box_clears, 2);
  EXPECT_EQ(p.host().command_box_focus, 2);
}

TEST(ExecuteCommand, HelpSwitchesToVerdanaAndBack) {
  ParserTestGame p("define game <G>\nend define\n", "");
  p.game().output.current_default_font_name = "Georgia";
  p.Turn("help");
  const std::string& styled = p.host().styled;
  EXPECT_LT(styled.find("{font:Verdana}"), styled.find("USING TARVE:"));
  EXPECT_GT(styled.find("{font:Georgia}"), styled.find("F11"));
}

}  // namespace
}  // namespace tarve
