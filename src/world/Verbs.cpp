#include "world/Verbs.h"

#include "script/Game.h"

namespace tarve {

void TakeVerb(Game&, std::string_view) {}
void GiveVerb(Game&, std::string_view) {}
void SpeakVerb(Game&, std::string_view) {}
void LookVerb(Game&, std::string_view) {}
void UseVerb(Game&, std::string_view) {}

}  // namespace tarve
