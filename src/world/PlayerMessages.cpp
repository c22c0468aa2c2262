#include "world/PlayerMessages.h"

#include <algorithm>

#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/Substitution.h"
#include "output/Output.h"

namespace tarve {

namespace {

struct DefaultMessage {
  std::string_view name;  // what an error line in the game block calls it
  std::string_view text;
};

// Slots 1 to 16, in their numbered order.
constexpr DefaultMessage kDefaults[] = {
    {"badcommand", "Unrecognized command! Type HELP for a list of valid commands."},
    {"badgo", "Unrecognized use of 'go'."},
    {"badgive", "Give to who?"},
    {"badcharacter", "No such character!"},
    {"noitem", "You don't have that!"},
    {"itemunwanted", "#tarve.error.charactername# doesn't want it."},
    {"badlook", "Look at what?"},
    {"badthing", "What's that?"},
    {"defaultlook", "Nothing out of the ordinary."},
    {"defaultspeak", "#tarve.error.gender# says nothing."},
    {"baditem", "No such item!"},
    {"defaultake", "You can't take that!"},
    {"baduse", "Use on what?"},
    {"defaultuse", "You can't use that item here."},
    {"defaultout", "Nowhere to exit to!"},
    {"badplace", "Can't go there!"},
};

}  // namespace

void ResetPlayerMessages(Game& game) {
  std::array<std::string, 17>& text = game.messages.text;
  text[0].clear();
  for (std::size_t i = 0; i < std::size(kDefaults); ++i) text[i + 1] = kDefaults[i].text;
}

void ReadMessageOverrides(Game& game) {
  const BlockRange block = FindBlock(game, "game");
  if (!block.Found()) return;
  const int last = std::min(block.end - 1, game.text.LineCount());
  for (int i = block.start + 1; i <= last; ++i) {
    const std::string& line = game.text.Line(i);
    if (!BeginsWith(line, "error ")) continue;
    // The markers stay in the text until the message is printed, so that it shows the values
    // of that moment.
    std::string_view parameter;
    const bool has_parameter = CutParameter(line, parameter);
    const std::size_t semicolon = parameter.find(';');
    if (!has_parameter || semicolon == std::string_view::npos) {
      LogScriptError(game,
                     "Warning: Player message line without ';' ignored: '" + Trim(line) + "'");
      continue;
    }
    // The name is compared as written: a blank before the ";" makes it a name of no message.
    const std::string_view name = parameter.substr(0, semicolon);
    std::size_t slot = 0;
    for (std::size_t n = 0; n < std::size(kDefaults); ++n) {
      if (kDefaults[n].name == name) {
        slot = n + 1;
        break;
      }
    }
    game.messages.text[slot] = Trim(parameter.substr(semicolon + 1));
  }
}

void PrintPlayerMessage(Game& game, int number) {
  if (number < 0 || number >= static_cast<int>(game.messages.text.size())) {
    LogScriptError(game, "Error: No player message number " + std::to_string(number) + ".");
    return;
  }
  std::string text = game.messages.text[static_cast<std::size_t>(number)];
  text = Substitute(game, text, '%', SubstitutionKind::kNumeric);
  text = Substitute(game, text, '$', SubstitutionKind::kFunction);
  text = Substitute(game, text, '#', SubstitutionKind::kString);
  PrintText(game, text);
}

}  // namespace tarve
