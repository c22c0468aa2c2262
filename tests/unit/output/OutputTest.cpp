#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "output/Output.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadFile;
using test::TempDir;
using test::TestGame;

// What the pane received from one PrintText call, with its style markers.
std::string Printed(TestGame& t, std::string_view text) {
  t.host.styled.clear();
  PrintText(t.game, text);
  return t.host.styled;
}

void TurnOnOutputFile(TestGame& t, const std::string& path) {
  t.game.settings.output_file = true;
  t.game.settings.out_file = path;
}

TEST(PrintText, StyleCodesAndTheirEndCodes) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_EQ(Printed(t, "|bB|xb |uU|xu |iI|xi"), "{b}B{/b} {u}U{/u} {i}I{/i}\r\n");
  EXPECT_EQ(Printed(t, "|crR|cbB|clL|cyY|cgG"),
            "{colour:255,0,0}R{colour:0,0,0}B{colour:0,0,255}L{colour:255,255,0}Y"
            "{colour:0,128,0}G\r\n");
  EXPECT_EQ(Printed(t, "|jcC|jrR|jlL|jx"), "{align:centre}C{align:right}R{align:left}Ljx\r\n");
  // End-bold and end-italic return to the player's default font, which may be bold or italic.
  t.game.settings.default_font_bold = true;
  t.game.settings.default_font_italic = true;
  EXPECT_EQ(Printed(t, "|bB|xb|iI|xi|uU|xu"), "{b}B{b}{i}I{i}{u}U{/u}\r\n");
  // No escape for a bar: the first is dropped and the second starts a code.
  EXPECT_EQ(Printed(t, "||bx"), "{b}x\r\n");
}

TEST(PrintText, LineEndsAndTheNoLineEndCode) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_EQ(Printed(t, ""), "\r\n");
  EXPECT_EQ(Printed(t, "a|nb"), "a\r\nb\r\n");
  EXPECT_EQ(Printed(t, "|xn"), "");
  EXPECT_EQ(Printed(t, "a|xn|xn"), "axn");  // only the last three characters count
  EXPECT_EQ(Printed(t, "|"), "\r\n");
}

TEST(PrintText, FontSizeCodeAlwaysTakesFourCharacters) {
  TempDir dir;
  TestGame t(dir);
  t.game.output.current_default_font_size = 8.25f;
  EXPECT_EQ(Printed(t, "|s1Big"), "{size:1}ig\r\n");
  EXPECT_EQ(Printed(t, "|s00|s 9|s.5"), "{size:8.25}{size:9}{size:0.5}\r\n");
  EXPECT_EQ(Printed(t, "|sabc"), "{size:8.25}c\r\n");
  EXPECT_EQ(Printed(t, "|s1|bx"), "{size:1}bx\r\n");       // the bar is one of the two characters
  EXPECT_EQ(Printed(t, "|s1\xC3\xA9!"), "{size:1}!\r\n");  // characters, not bytes
  // Cut short by the end of the text, the code takes what is there.
  EXPECT_EQ(Printed(t, "x|s1"), "x{size:1}\r\n");
  EXPECT_EQ(Printed(t, "x|s"), "x{size:8.25}\r\n");
}

TEST(PrintText, FontSizeCodeReadsDigitsAndOnePointOnlyAndNoDigitsGiveTheDefault) {
  TempDir dir;
  TestGame t(dir);
  t.game.output.current_default_font_size = 8.25f;
  // A sign, a second point or a letter ends the number; "|s-5" and "|s+5" read no digits.
  EXPECT_EQ(Printed(t, "|s-5x|s+5y|s5-|s1.5"), "{size:8.25}x{size:8.25}y{size:5}{size:1}5\r\n");
  EXPECT_EQ(Printed(t, "|s..|s.9|s5e"), "{size:8.25}{size:0.9}{size:5}\r\n");
}

TEST(PrintText, ClearCodeEmptiesThePaneForAnyOtherLetterButNotTheFile) {
  TempDir dir;
  TestGame t(dir);
  TurnOnOutputFile(t, dir.path() + "/out.txt");
  StartGameOutput(t.game);
  t.host.output.clear();
  t.host.styled.clear();
  PrintText(t.game, "abc|cdef");
  EXPECT_EQ(t.host.output, "def\r\n");
  EXPECT_EQ(t.host.styled, "abc{clear}def\r\n");
  EXPECT_EQ(ReadFile(t.game.settings.out_file), "abcdef\r\n");
  EXPECT_EQ(Printed(t, "x|c|bz"), "x{clear}{b}z\r\n");
}

TEST(PrintText, OverrideEffectsConsumesStyleCodesWithoutEffect) {
  TempDir dir;
  TestGame t(dir);
  t.game.settings.override_effects = true;
  EXPECT_EQ(Printed(t, "|bB|xb |uU|xu |iI|xi |crR|cbB|clL|cyY|cgG"), "B U I RBLYG\r\n");
  EXPECT_EQ(Printed(t, "|s12a|jcb|nc|cd"), "{size:12}a{align:centre}b\r\nc{clear}d\r\n");
}

TEST(PrintText, WaitCodeEndsTheLineWaitsForAKeyAndRepaints) {
  TempDir dir;
  TestGame t(dir);
  t.host.input = {"look"};
  PrintText(t.game, "one|wtwo");
  EXPECT_EQ(t.host.output, "one\r\ntwo\r\n");
  EXPECT_EQ(t.host.waits, std::vector<std::string>{"one\r\n"});
  EXPECT_EQ(t.host.repaints, 1);
  EXPECT_TRUE(t.host.input.empty());
  EXPECT_EQ(t.player.last_command(), "");  // the line was a key, not a command
}

TEST(PrintText, OutputOffReachesNeitherThePaneNorTheFileNorWaits) {
  TempDir dir;
  TestGame t(dir);
  TurnOnOutputFile(t, dir.path() + "/out.txt");
  StartGameOutput(t.game);
  t.host.styled.clear();
  t.game.output.enabled = false;
  PrintText(t.game, "text|n|w|b|s12|jc|cmore");
  PrintText(t.game, "");
  EXPECT_EQ(t.host.styled, "");
  EXPECT_EQ(ReadFile(t.game.settings.out_file), "");
  EXPECT_TRUE(t.host.waits.empty());
}

TEST(OutputFonts, EmptyNamesZeroSizesAndOverrideAllFontsGiveTheDefaults) {
  TempDir dir;
  TestGame t(dir);
  t.game.output.current_default_font_name = "Verdana";
  t.game.output.current_default_font_size = 10;
  SetOutputFont(t.game, "Arial");
  SetOutputFont(t.game, "");
  SetOutputFontSize(t.game, 12.5f);
  SetOutputFontSize(t.game, 0);
  EXPECT_EQ(t.host.styled, "{font:Arial}{font:Verdana}{size:12.5}{size:10}");

  t.host.styled.clear();
  t.game.settings.override_all_fonts = true;
  SetOutputFont(t.game, "Arial");
  PrintText(t.game, "|s20x");
  EXPECT_EQ(t.host.styled, "{font:Verdana}{size:10}x\r\n");
}

TEST(WaitForKey, PromptsDisablesTheControlsAndNeverBlocksOnceInputHasEnded) {
  TempDir dir;
  TestGame t(dir);
  t.host.input = {"key"};
  WaitForKey(t.game, "");
  WaitForKey(t.game, "<Turn the page|xn>");  // the input runs out here
  WaitForKey(t.game, "<>");
  EXPECT_EQ(t.host.output, "\r\nPress a key to continue...\r\nTurn the page\r\n");
  EXPECT_EQ(t.host.waits.size(), 2u);  // once the input has ended the host is not asked again
  EXPECT_TRUE(t.game.run.input_ended);
  EXPECT_FALSE(t.game.output.waiting_for_key);
  EXPECT_EQ(t.host.control_changes, (std::vector<bool>{false, true, false, true, false, true}));
  EXPECT_EQ(t.host.command_box_focus, 3);
}

TEST(OutputFile, SeparatorOnlyBeforeEarlierOutputAndTheGameFollowsTheHyphens) {
  TempDir dir;
  const std::string path = dir.path() + "/out.txt";
  const std::string separator = "\r\n\r\n\r\n--------------------------";
  {
    TestGame t(dir);
    TurnOnOutputFile(t, path);
    StartGameOutput(t.game);  // a new file: no separator
    PrintText(t.game, "|bFirst|xb");
    StartGameOutput(t.game);  // still open from the first game: a separator regardless
    PrintText(t.game, "Second");
  }
  {
    TestGame t(dir);  // the next run finds data in the file
    TurnOnOutputFile(t, path);
    StartGameOutput(t.game);
    WriteOutputFile(t.game, "raw");
  }
  EXPECT_EQ(ReadFile(path), "First\r\n" + separator + "Second\r\n" + separator + "raw");

  const std::string empty = dir.Write("empty.txt", "");
  TestGame t(dir);
  TurnOnOutputFile(t, empty);
  StartGameOutput(t.game);
  PrintText(t.game, "Only");
  EXPECT_EQ(ReadFile(empty), "Only\r\n");
}

TEST(OutputFile, FollowsTheSettingAndSurvivesAFileThatCannotBeOpened) {
  TempDir dir;
  TestGame t(dir);
  const std::string path = dir.path() + "/out.txt";
  t.game.settings.out_file = path;
  StartGameOutput(t.game);
  // Turned on after the game started: nothing until the next game start opens the file.
  t.game.settings.output_file = true;
  PrintText(t.game, "not copied");
  EXPECT_FALSE(std::filesystem::exists(path));
  StartGameOutput(t.game);
  PrintText(t.game, "copied");
  t.game.settings.output_file = false;
  PrintText(t.game, "dropped");
  EXPECT_EQ(ReadFile(path), "copied\r\n");

  TestGame u(dir);
  TurnOnOutputFile(u, dir.path() + "/no/such/folder/out.txt");
  StartGameOutput(u.game);
  PrintText(u.game, "shown");
  EXPECT_EQ(u.host.output, "shown\r\n");
  EXPECT_EQ(u.host.log, std::vector<std::string>{"Warning: Unable to open the output file " +
                                                 u.game.settings.out_file +
                                                 " - the game's text is not copied to it."});
}

}  // namespace
}  // namespace tarve
