#include <gtest/gtest.h>

#include "ParserTestGame.h"
#include "game/Game.h"
#include "world/CommandParser.h"

namespace tarve {
namespace {

using test::ParserTestGame;

TEST(PatternMatches, LiteralPiecesMatchInOrderAndOnlyAtTheEnds) {
  EXPECT_TRUE(PatternMatches("look", "look"));
  EXPECT_TRUE(PatternMatches("  look  ", "look"));  // the command is trimmed
  EXPECT_FALSE(PatternMatches("look at x", "look"));
  EXPECT_FALSE(PatternMatches("look", "look at x"));
  EXPECT_TRUE(PatternMatches("give apple to bob", "give #item# to #who#"));
  EXPECT_FALSE(PatternMatches("please give apple to bob", "give #item# to #who#"));
  EXPECT_FALSE(PatternMatches("give apple", "give #item# to #who#"));
  EXPECT_TRUE(PatternMatches("give  to bob", "give #item# to #who#"));  // variables may be empty
  EXPECT_TRUE(PatternMatches("open box with key with care", "open #a# with #b#"));
  EXPECT_TRUE(PatternMatches("öppna dörren", "öppna #x#"));
  // Two variables with nothing between them match any command, the empty one too.
  EXPECT_TRUE(PatternMatches("anything at all", "#a##b#"));
  EXPECT_TRUE(PatternMatches("", "#a##b#"));
  EXPECT_TRUE(PatternMatches("", ""));
  EXPECT_FALSE(PatternMatches("x", ""));
  // A "#" without a partner is literal text.
  EXPECT_TRUE(PatternMatches("say #x", "say #x"));
  EXPECT_FALSE(PatternMatches("say hi", "say #x"));
}

TEST(CapturePatternVariables, TakesTheTextBetweenTheFirstOccurrencesOfThePieces) {
  ParserTestGame p("define game <G>\nend define\n", "");
  CapturePatternVariables(p.game(), "give apple to bob", "give #item# to #who#");
  EXPECT_EQ(p.StringVariable("item"), "apple");
  EXPECT_EQ(p.StringVariable("who"), "bob");
  CapturePatternVariables(p.game(), "open box with key with care", "open #a# with #b#");
  EXPECT_EQ(p.StringVariable("a"), "box");
  EXPECT_EQ(p.StringVariable("b"), "key with care");
  // Values keep their blanks.
  CapturePatternVariables(p.game(), "put  red ball in box", "put #what# in #where#");
  EXPECT_EQ(p.StringVariable("what"), " red ball");
  // The capture delimits with full stops, so a full stop in the command ends the last value.
  CapturePatternVariables(p.game(), "say hello. goodbye", "say #words#");
  EXPECT_EQ(p.StringVariable("words"), "hello");
  CapturePatternVariables(p.game(), "x.y", "#first##second#");
  EXPECT_EQ(p.StringVariable("first"), "");
  EXPECT_EQ(p.StringVariable("second"), "x");
  // A pattern written with capitals captures from the lower-cased command, and the variable
  // keeps the name as written.
  CapturePatternVariables(p.game(), "unlock door", "Unlock #Thing#");
  EXPECT_EQ(p.StringVariable("thing"), "door");
  EXPECT_EQ(FindVariable(p.game().variables.strings, "thing")->name, "Thing");
  EXPECT_TRUE(p.host().log.empty());
}

constexpr std::string_view kSynonymGame =
    "define game <G>\n"
    "end define\n"
    "define synonyms\n"
    "  grab; snatch = take\n"
    "  lantern=lamp \n"
    "  ' a comment line\n"
    "  ; = nothing\n"
    "  no equals sign here\n"
    "end define\n";

TEST(Synonyms, SplitWordsAtSemicolonsKeepingEmptyWordsAndSkipLinesWithoutEquals) {
  ParserTestGame p(kSynonymGame, "");
  const std::vector<Synonym>& synonyms = p.game().parser.synonyms;
  ASSERT_EQ(synonyms.size(), 5u);
  EXPECT_EQ(synonyms[0].word, "grab");
  EXPECT_EQ(synonyms[0].replacement, "take");
  EXPECT_EQ(synonyms[1].word, "snatch");
  EXPECT_EQ(synonyms[2].word, "lantern");
  EXPECT_EQ(synonyms[2].replacement, "lamp");
  EXPECT_EQ(synonyms[3].word, "");  // both sides of the ";" are words
  EXPECT_EQ(synonyms[3].replacement, "nothing");
  EXPECT_EQ(synonyms[4].word, "");
  // ReadSynonyms ran before the log was cleared; read it again to see its warning.
  ReadSynonyms(p.game());
  ASSERT_EQ(p.host().log.size(), 1u);
  EXPECT_EQ(p.host().log[0], "Warning: Synonym line without '=' ignored: 'no equals sign here'");
}

TEST(Synonyms, ReplaceWholeWordsAndPublishBothForms) {
  ParserTestGame p(kSynonymGame, "");
  EXPECT_EQ(ApplySynonyms(p.game(), "grab lamp"), "take lamp");
  EXPECT_EQ(ApplySynonyms(p.game(), "grabber grab"), "grabber take");
  EXPECT_EQ(ApplySynonyms(p.game(), "snatch the lantern grab"), "take the lamp take");
  EXPECT_EQ(ApplySynonyms(p.game(), "lanterns"), "lanterns");
  p.Turn("GRAB Lantern");
  EXPECT_EQ(p.StringVariable("tarve.originalcommand"), "grab lantern");
  EXPECT_EQ(p.StringVariable("tarve.command"), "take lamp");
}

TEST(Synonyms, AReplacementHoldingItsOwnWordIsCutAndLoggedOnce) {
  ParserTestGame p(
      "define game <G>\nend define\n"
      "define synonyms\n  echo = echo echo\nend define\n",
      "");
  const std::string result = ApplySynonyms(p.game(), "echo");
  EXPECT_EQ(result.size(), std::string("echo").size() + 5 * kMaxSynonymReplacements);
  ASSERT_EQ(p.host().log.size(), 1u);
  EXPECT_TRUE(p.host().log[0].starts_with("Error: More than 1000 synonym replacements"));
  // The turn goes on to answer the command.
  EXPECT_TRUE(
      p.Turn("echo").ends_with("Unrecognized command! Type HELP for a list of valid commands.\n"));
}

constexpr std::string_view kTurnGame =
    "define game <G>\n"
    "  beforeturn msg <before>\n"
    "  afterturn msg <after>\n"
    "  afterturn   msg <after again>\n"
    "  command <pull #thing#> msg <Game pulls #thing#.>\n"
    "  command <xyzzy> msg <Nothing happens.>\n"
    "  command <look> msg <Game look.>\n"
    "  command <peek> exec <look; normal>\n"
    "  command <magic> exec <XYZZY>\n"
    "  command <bad exec> exec <look; fast>\n"
    "end define\n"
    "define room <Hall>\n"
    "  command <pull #thing#> msg <Hall pulls #thing#.>\n"
    "end define\n";

TEST(ExecuteCommand, RunsTheTurnScriptsAroundTheCommandAndEndsTheTurn) {
  ParserTestGame p(kTurnGame, "Hall");
  EXPECT_EQ(p.game().parser.after_turn_script, "msg <after>\r\n  msg <after again>\r\n");
  EXPECT_EQ(p.Turn("XYZZY"), "> XYZZY\nbefore\nNothing happens.\nafter\nafter again\n");
  EXPECT_EQ(p.host().command_box_clears, 1);
  EXPECT_EQ(p.host().command_box_focus, 1);
  p.game().output.blank_line_after_turn = true;
  EXPECT_EQ(p.Turn("xyzzy"), "> xyzzy\nbefore\nNothing happens.\n\nafter\nafter again\n");
  // No echo, no blank line.
  std::string command = "xyzzy";
  p.host().output.clear();
  ExecuteCommand(p.game(), command, /*echo=*/false, /*try_game_commands=*/true);
  EXPECT_EQ(p.Shown(), "before\nNothing happens.\nafter\nafter again\n");
}

TEST(ExecuteCommand, EmptyOrPausedCommandsDoNothingAndAWaitingEnterTakesTheLineAsTyped) {
  ParserTestGame p(kTurnGame, "Hall");
  EXPECT_EQ(p.Turn(""), "");
  p.game().parser.paused = true;
  EXPECT_EQ(p.Turn("xyzzy"), "");
  p.game().parser.paused = false;
  EXPECT_EQ(p.host().command_box_clears, 0);

  p.game().parser.waiting_for_input = true;
  p.game().parser.input_variable = "answer";
  EXPECT_EQ(p.Turn("Grab The LAMP"), "");
  EXPECT_EQ(p.StringVariable("answer"), "Grab The LAMP");
  EXPECT_FALSE(p.game().parser.waiting_for_input);
  EXPECT_EQ(p.host().command_box_clears, 1);
  EXPECT_EQ(p.host().command_box_focus, 1);
}

TEST(ExecuteCommand, RoomCommandsShadowGameCommandsAndReplaceOnlyTheirOwnCommand) {
  ParserTestGame p(kTurnGame, "Hall");
  p.game().parser.before_turn_script.clear();
  p.game().parser.after_turn_script.clear();
  EXPECT_EQ(p.Turn("Pull Lever"), "> Pull Lever\nHall pulls lever.\n");
  p.game().world.current_room = "Cellar";  // a room without commands of its own
  EXPECT_EQ(p.Turn("pull lever"), "> pull lever\nGame pulls lever.\n");
  EXPECT_EQ(p.Turn("look"), "> look\nGame look.\n");
  // "look at x" is not the command "look": the built-in verb answers it.
  EXPECT_EQ(p.Turn("look at x"), "> look at x\nWhat's that?\n");
}

TEST(ExecuteCommand, HelpSwitchesToVerdanaAndBackAndQuitEndsTheTurnOnlyOnYes) {
  ParserTestGame p(kTurnGame, "Hall");
  p.game().parser.before_turn_script.clear();
  p.game().output.current_default_font_name = "Georgia";
  const std::string help = p.Turn("help");
  EXPECT_TRUE(help.ends_with("-=-\n\nafter\nafter again\n")) << help;
  const std::string& styled = p.host().styled;
  EXPECT_LT(styled.find("{font:Verdana}"), styled.find("USING TARVE:"));
  EXPECT_GT(styled.find("{font:Georgia}"), styled.find("F11"));

  p.host().answers = {kAnswerNo};
  EXPECT_EQ(p.Turn("quit"), "> quit\nafter\nafter again\n");
  EXPECT_TRUE(p.host().closed.empty());
  p.host().answers = {kAnswerYes};
  EXPECT_EQ(p.Turn("quit"), "> quit\n");
  EXPECT_EQ(p.host().messages.back(), "[Tarve] Do you really want to exit this game?");
  EXPECT_EQ(p.host().closed, std::vector<bool>{false});
}

TEST(ExecuteExec, RunsTheCommandWithinTheTurnAndNormalModeSkipsTheGamesCommands) {
  ParserTestGame p(kTurnGame, "Hall");
  EXPECT_EQ(p.Turn("magic"), "> magic\nbefore\nNothing happens.\nafter\nafter again\n");
  EXPECT_EQ(p.StringVariable("tarve.originalcommand"), "xyzzy");
  // "peek" runs the built-in look of a room without a description of its own.
  const std::string shown = p.Turn("peek");
  EXPECT_TRUE(shown.starts_with("> peek\nbefore\nYou are in Hall.\n")) << shown;
  EXPECT_EQ(shown.find("Game look."), std::string::npos);
  EXPECT_TRUE(shown.ends_with("\nafter\nafter again\n")) << shown;

  EXPECT_EQ(p.Turn("bad exec"), "> bad exec\nbefore\nafter\nafter again\n");
  ASSERT_EQ(p.host().log.size(), 1u);
  EXPECT_EQ(p.host().log[0], "Error: Unrecognised post-command parameter in exec <look; fast>");
}

constexpr std::string_view kMovementGame =
    "define game <G>\n"
    "  error <badgo; You can't go like that.>\n"
    "end define\n"
    "define room <Hub>\n"
    "  north msg <went north>\n"
    "  south msg <went south>\n"
    "  east msg <went east>\n"
    "  west msg <went west>\n"
    "  northeast msg <went northeast>\n"
    "  northwest msg <went northwest>\n"
    "  southeast msg <went southeast>\n"
    "  southwest msg <went southwest>\n"
    "  out <Street> msg <went out>\n"
    "  place <the; Kitchen>\n"
    "  place <Cellar> msg <The cellar door is locked.>\n"
    "  place <Attic>\n"
    "  place <attic> msg <The last attic line wins.>\n"
    "end define\n"
    "define room <Kitchen>\n"
    "  out <Hub>\n"
    "  north <Nowhere>\n"
    "end define\n";

TEST(Movement, EachDirectionInEachOfItsFormsGoesThere) {
  ParserTestGame p(kMovementGame, "Hub");
  // Every direction, and among them every form: the word, its letters, with "go", and the
  // hyphen and the blank of the diagonals.
  const std::vector<std::pair<std::string, std::vector<std::string>>> forms = {
      {"north", {"NORTH", "n"}},
      {"south", {"s"}},
      {"east", {"go east", "e"}},
      {"west", {"w"}},
      {"out", {"exit", "leave"}},
      {"northeast", {"ne", "north-east"}},
      {"northwest", {"go north west"}},
      {"southeast", {"southeast"}},
      {"southwest", {"go sw", "south west", "go south-west"}},
  };
  for (const auto& [direction, commands] : forms) {
    for (const std::string& command : commands) {
      EXPECT_EQ(p.Turn(command), "> " + command + "\nwent " + direction + "\n") << command;
    }
  }
  // The one-letter forms are not accepted after "go", and the override of the message shows.
  for (const std::string command : {"go n", "go s", "go up", "go"}) {
    const std::string expected = command == "go" ? "Unrecognized command! Type HELP for a list of "
                                                   "valid commands.\n"
                                                 : "You can't go like that.\n";
    EXPECT_EQ(p.Turn(command), "> " + command + "\n" + expected) << command;
  }
  EXPECT_EQ(p.game().world.current_room, "Hub");
}

TEST(Movement, PlacesAreFoundByNameWithOrWithoutThe) {
  ParserTestGame p(kMovementGame, "Hub");
  EXPECT_EQ(FindPlace(p.game(), "KITCHEN"), "Kitchen");
  EXPECT_EQ(FindPlace(p.game(), "the kitchen"), "");
  EXPECT_EQ(FindPlace(p.game(), "cellar"), "Cellar;msg <The cellar door is locked.>");
  EXPECT_EQ(FindPlace(p.game(), "attic"), "attic;msg <The last attic line wins.>");
  EXPECT_EQ(p.Turn("go to cellar"), "> go to cellar\nThe cellar door is locked.\n");
  EXPECT_EQ(p.Turn("go to the garden"), "> go to the garden\nCan't go there!\n");
  p.Turn("go to the kitchen");
  EXPECT_EQ(p.game().world.current_room, "Kitchen");
}

}  // namespace
}  // namespace tarve
