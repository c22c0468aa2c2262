#include <gtest/gtest.h>

#include <sstream>

#include "player/MainWindow.h"
#include "support/TestSupport.h"

namespace tarve {
namespace {

using test::TempDir;
using test::TestGame;
using Lines = std::vector<std::string>;

// The commands the parser echoed ("> ..." lines).
Lines EchoedCommands(const std::string& output) {
  Lines echoed;
  std::istringstream in(output);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.starts_with("> ")) echoed.push_back(line.substr(2));
  }
  return echoed;
}

TEST(SubmitCommand, RunsATurnWithEchoAndRemembersTheText) {
  TempDir dir;
  TestGame t(dir);
  EXPECT_EQ(RecallLastCommand(t.game), "");  // F12 before any command
  SubmitCommand(t.game, "Look Around");
  EXPECT_EQ(EchoedCommands(t.host.output), Lines{"Look Around"});
  EXPECT_EQ(RecallLastCommand(t.game), "Look Around");  // as typed, not lower-cased
}

TEST(SubmitCommand, EmptyBoxAndKeyWaitRunNothing) {
  TempDir dir;
  TestGame t(dir);
  t.game.window.last_command = "north";
  SubmitCommand(t.game, "");
  t.game.window.waiting_for_key = true;
  SubmitCommand(t.game, "look");  // ends the wait instead
  EXPECT_FALSE(t.game.window.waiting_for_key);
  EXPECT_EQ(t.host.output, "");
  EXPECT_EQ(RecallLastCommand(t.game), "north");
  EXPECT_EQ(t.host.command_box_focus, 0);
}

TEST(MainWindowButtons, SendTheirFixedCommands) {
  TempDir dir;
  TestGame t(dir);
  for (int i = -1; i <= 10; ++i) PressDirectionButton(t.game, i);
  for (int i = -1; i <= 4; ++i) PressActionButton(t.game, i, "Old Lamp");
  PressActionButton(t.game, 1, "");  // nothing chosen in the list
  EXPECT_EQ(EchoedCommands(t.host.output),
            (Lines{"north", "south", "west", "east", "out", "help", "northeast", "northwest",
                   "southeast", "southwest", "go to Old Lamp", "look at Old Lamp",
                   "speak to Old Lamp", "take Old Lamp"}));
  EXPECT_EQ(RecallLastCommand(t.game), "");  // buttons do not go through the command box
}

TEST(MainWindowButtons, NothingRunsDuringAKeyWaitOrOnceTheGameIsOver) {
  TempDir dir;
  TestGame t(dir);
  t.game.window.waiting_for_key = true;
  PressDirectionButton(t.game, 0);
  PressActionButton(t.game, 3, "lamp");
  EXPECT_TRUE(t.game.window.waiting_for_key);
  KeyPressed(t.game);
  EXPECT_FALSE(t.game.window.waiting_for_key);

  t.game.run.game_over = true;
  SubmitCommand(t.game, "look");
  PressDirectionButton(t.game, 0);
  PressActionButton(t.game, 1, "lamp");
  EXPECT_EQ(t.host.output, "");
  EXPECT_EQ(RecallLastCommand(t.game), "");
}

TEST(EndAllWaits, EndsTheKeyWaitAndTheInputWaitForGood) {
  TempDir dir;
  TestGame t(dir);
  t.game.window.waiting_for_key = true;
  t.game.parser.waiting_for_input = true;
  EndAllWaits(t.game);
  EXPECT_FALSE(t.game.window.waiting_for_key);
  EXPECT_FALSE(t.game.parser.waiting_for_input);
  EXPECT_TRUE(t.game.run.input_ended);
}

}  // namespace
}  // namespace tarve
