// The built-in verbs: take, give, speak, look and use.
#pragma once

#include <string_view>

namespace tarve {

struct Game;

void TakeVerb(Game& game, std::string_view what);
void GiveVerb(Game& game, std::string_view what);
void SpeakVerb(Game& game, std::string_view who);
void LookVerb(Game& game, std::string_view command);
void UseVerb(Game& game, std::string_view command);

}  // namespace tarve
