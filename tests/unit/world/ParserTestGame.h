// A game set up for the parser and verb tests: read from source, with the tables a game builds
// when it opens, in a chosen room, and a way to play one turn and see what it printed.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "interpreter/Variables.h"
#include "support/TestSupport.h"
#include "world/CommandParser.h"
#include "world/Items.h"
#include "world/PlayerMessages.h"
#include "world/World.h"

namespace tarve::test {

class ParserTestGame {
 public:
  ParserTestGame(std::string_view source, std::string_view room) : t_(dir_) {
    EXPECT_TRUE(ReadSource(t_, dir_, source));
    BuildWorldTables(game());
    SetUpItems(game());
    SetUpStartItems(game());
    SetUpCollectables(game());
    ResetPlayerMessages(game());
    ReadMessageOverrides(game());
    ReadSynonyms(game());
    ReadTurnScripts(game());
    game().world.current_room = std::string(room);
    host().output.clear();
    host().log.clear();
  }

  Game& game() { return t_.game; }
  RecordingHost& host() { return t_.host; }

  // Plays one typed command and gives what the pane shows after it, lines ending in "\n".
  std::string Turn(std::string command) {
    host().output.clear();
    ExecuteCommand(game(), command, /*echo=*/true, /*try_game_commands=*/true);
    return Shown();
  }

  std::string Shown() const {
    std::string text;
    for (char c : t_.host.output) {
      if (c != '\r') text.push_back(c);
    }
    return text;
  }

  std::string StringVariable(std::string_view name) {
    const VariableEntry* entry = FindVariable(game().variables.strings, name);
    return entry == nullptr ? "(undefined)" : entry->value;
  }

 private:
  TempDir dir_;
  TestGame t_;
};

}  // namespace tarve::test
