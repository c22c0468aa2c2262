#include <gtest/gtest.h>

#include <filesystem>

#include "output/Output.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::ReadFile;
using test::TempDir;
using test::TestGame;

void TurnOnOutputFile(TestGame& t, const std::string& path) {
  t.game.settings.output_file = true;
  t.game.settings.out_file = path;
}

class OutputTest : public ::testing::Test {
 protected:
  std::string Printed(std::string_view text) {
    t.host.styled.clear();
    PrintText(t.game, text);
    return t.host.styled;
  }

  TempDir dir;
  TestGame t{dir};
};

TEST_F(OutputTest, StyleCodesAndTheirEndCodes) {
  EXPECT_EQ(Printed("|bB|xb |uU|xu |iI|xi"), "{b}B{/b} {u}U{/u} {i}I{/i}\r\n");
  EXPECT_EQ(Printed("|crR|cbB|clL|cyY|cgG"),
            "{colour:255,0,0}R{colour:0,0,0}B{colour:0,0,255}L{colour:255,255,0}Y"
            "{colour:0,128,0}G\r\n");
  EXPECT_EQ(Printed("|jcC|jrR|jlL|jx"), "{align:centre}C{align:right}R{align:left}Ljx\r\n");
  // End-bold and end-italic return to the player's default font, which may be bold or italic.
  t.game.settings.default_font_bold = true;
  t.game.settings.default_font_italic = true;
  EXPECT_EQ(Printed("|bB|xb|iI|xi|uU|xu"), "{b}B{b}{i}I{i}{u}U{/u}\r\n");
  // No escape for a bar: the first is dropped and the second starts a code.
  EXPECT_EQ(Printed("||bx"), "{b}x\r\n");
  EXPECT_EQ(Printed("x|c|bz"), "x{clear}{b}z\r\n");  // a clear code for any other letter
}

// The size code takes the four characters after the bar (the bar of a next code, a character of
// two bytes, or fewer at the end of the text) and reads digits and one point only; no digits
// give the default size.
TEST_F(OutputTest, FontSizeCodeAlwaysTakesFourCharacters) {
  t.game.output.current_default_font_size = 8.25f;
  const std::pair<const char*, const char*> cases[] = {
      {"|s1Big", "{size:1}ig\r\n"},
      {"|s00|s 9|s.5", "{size:8.25}{size:9}{size:0.5}\r\n"},
      {"|s1|bx", "{size:1}bx\r\n"},
      {"|s1\xC3\xA9!", "{size:1}!\r\n"},
      {"x|s1", "x{size:1}\r\n"},
      {"x|s", "x{size:8.25}\r\n"},
      {"|s-5x|s+5y|s5-|s1.5", "{size:8.25}x{size:8.25}y{size:5}{size:1}5\r\n"},
      {"|s..|s.9|s5e", "{size:8.25}{size:0.9}{size:5}\r\n"}};
  for (const auto& [text, styled] : cases) EXPECT_EQ(Printed(text), styled) << text;
}

TEST_F(OutputTest, OverrideEffectsConsumesStyleCodesWithoutEffect) {
  t.game.settings.override_effects = true;
  EXPECT_EQ(Printed("|bB|xb |uU|xu |iI|xi |crR|cbB|clL|cyY|cgG"), "B U I RBLYG\r\n");
  EXPECT_EQ(Printed("|s12a|jcb|nc|cd"), "{size:12}a{align:centre}b\r\nc{clear}d\r\n");
}

TEST_F(OutputTest, WaitCodeEndsTheLineWaitsForAKeyAndRepaints) {
  t.host.input = {"look"};
  PrintText(t.game, "one|wtwo");
  EXPECT_EQ(t.host.waits, std::vector<std::string>{"one\r\n"});
  EXPECT_EQ(t.host.repaints, 1);
  EXPECT_EQ(t.player.last_command(), "");  // the line was a key, not a command
}

TEST_F(OutputTest, EmptyFontNamesZeroSizesAndOverrideAllFontsGiveTheDefaults) {
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

TEST_F(OutputTest, WaitForKeyPromptsDisablesTheControlsAndNeverBlocksOnceInputHasEnded) {
  t.host.input = {"key"};
  WaitForKey(t.game, "");
  WaitForKey(t.game, "<Turn the page|xn>");  // the input runs out here
  WaitForKey(t.game, "<>");
  EXPECT_EQ(t.host.output, "\r\nPress a key to continue...\r\nTurn the page\r\n");
  EXPECT_EQ(t.host.waits.size(), 2u);  // once the input has ended the host is not asked again
  EXPECT_TRUE(t.game.run.input_ended);
  EXPECT_FALSE(t.game.output.waiting_for_key);
  EXPECT_EQ(t.host.controls, "-+f-+f-+f");  // off and on, and the command box focused
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

// The clear code empties the pane but not the file; with the output off nothing reaches either
// and no code waits. A file that cannot be opened is the player/FileSafety test.
TEST_F(OutputTest, OutputFileFollowsTheSettingAndKeepsClearedText) {
  const std::string path = dir.path() + "/out.txt";
  t.game.settings.out_file = path;
  StartGameOutput(t.game);
  // Turned on after the game started: nothing until the next game start opens the file.
  t.game.settings.output_file = true;
  PrintText(t.game, "not copied");
  EXPECT_FALSE(std::filesystem::exists(path));
  StartGameOutput(t.game);
  t.host.output.clear();
  t.host.styled.clear();
  PrintText(t.game, "abc|cdef");
  t.game.output.enabled = false;
  PrintText(t.game, "text|n|w|b|s12|jc|cmore");
  EXPECT_EQ(t.host.output, "def\r\n");
  EXPECT_EQ(t.host.styled, "abc{clear}def\r\n");
  EXPECT_TRUE(t.host.waits.empty());
  t.game.output.enabled = true;
  t.game.settings.output_file = false;
  PrintText(t.game, "dropped");
  EXPECT_EQ(ReadFile(path), "abcdef\r\n");
}

}  // namespace
}  // namespace tarve
