// The sixteen player messages that answer failed commands, with their defaults and the game's
// overrides.
#pragma once

#include <array>
#include <string>

namespace tarve {

struct Game;

enum PlayerMessage : int {
  kBadCommand = 1,
  kBadGo = 2,
  kBadGive = 3,
  kBadCharacter = 4,
  kNoItem = 5,
  kItemUnwanted = 6,
  kBadLook = 7,
  kBadThing = 8,
  kDefaultLook = 9,
  kDefaultSpeak = 10,
  kBadItem = 11,
  kDefaultTake = 12,
  kBadUse = 13,
  kDefaultUse = 14,
  kDefaultOut = 15,
  kBadPlace = 16,
};

struct PlayerMessages {
  std::array<std::string, 17> text;  // slot 0 keeps overrides of unknown names
};

void ResetPlayerMessages(Game& game);
void ReadMessageOverrides(Game& game);
void PrintPlayerMessage(Game& game, int number);

}  // namespace tarve
