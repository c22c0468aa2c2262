#include "interpreter/ExternalCommands.h"

#include "script/Game.h"

namespace tarve {

void ExecutePlayWav(Game&, std::string_view) {}
void ExecutePlayMidi(Game&, std::string_view) {}
void ExecuteShow(Game&, std::string_view) {}
void ExecuteShell(Game&, std::string_view) {}
void ExecuteMailTo(Game&, std::string_view) {}
void ExecuteAdvFunc(Game&, std::string_view) {}

}  // namespace tarve
