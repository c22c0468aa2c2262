#include "player/OpenGame.h"

#include <cmath>
#include <ctime>
#include <optional>
#include <vector>

#include "base/Files.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/ExecuteScript.h"
#include "output/Output.h"
#include "script/CommonCode.h"
#include "script/GameReader.h"
#include "world/CommandParser.h"
#include "world/Items.h"
#include "world/PlayerMessages.h"
#include "world/World.h"

namespace tarve {

namespace {

constexpr const char* kProgressCaption = "Initialising...";
constexpr const char* kFutureVersionText =
    "Warning - this game has been designed to work with a newer version of Tarve. As a result, "
    "some elements may not work correctly or at all. It is strongly suggested that you upgrade "
    "your version of Tarve.";

std::string FormatNow(const char* format) {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char buffer[64];
  std::size_t n = std::strftime(buffer, sizeof buffer, format, &local);
  return std::string(buffer, n);
}

// The game log file marks where each game's messages begin; after an earlier game it first
// sets the new game apart with empty lines and a line of hyphens.
void MarkNewGameInLogFile(Game& game) {
  std::string mark;
  if (game.game_was_open) mark = "\r\n\r\n--------------------------\r\n";
  mark += "\r\n(Start of new game)\r\n";
  AppendToLogFile(game, mark);
}

void ReportUnableToOpen(Game& game, const std::string& path) {
  LogScriptError(game, "Unable to open " + path);
  game.host.window.SetBusy(false);
  game.host.dialogs.ShowMessage("Unable to open " + path, "Error", kOkOnly);
  game.host.dialogs.CloseProgress();
}

// The lines strictly inside the game block, in order.
std::vector<int> GameBlockLines(BlockRange block) {
  std::vector<int> lines;
  for (int i = block.start + 1; i < block.end; ++i) lines.push_back(i);
  return lines;
}

// The language version the game declares, with its warnings. Problems never stop the opening.
void CheckVersion(Game& game, BlockRange game_block) {
  const GameText& text = game.text;
  int version_line = 0;
  for (int i : GameBlockLines(game_block)) {
    if (BeginsWith(text.Line(i), "gwl-version ")) {
      version_line = i;
      break;
    }
  }
  if (version_line == 0) {
    LogScriptError(game, "Warning: File contains no version header.");
    return;
  }
  const double rounded =
      std::nearbyint(Val(RetrieveParameter(game, text.Line(version_line), true)));
  // A number outside the 16-bit range is still far newer (or older) than any known version.
  if (std::optional<int16_t> version = ToInt16(rounded)) {
    game.run.game_version = *version;
  } else {
    game.run.game_version = rounded > 0 ? INT16_MAX : INT16_MIN;
  }
  if (rounded > kLanguageVersion) {
    game.host.dialogs.ShowMessage(kFutureVersionText, "Tarve version error",
                                  kOkOnly + kExclamation);
    LogScriptError(game, "Warning: File contains future version header (greater than " +
                             std::to_string(kLanguageVersion) + ").");
  } else if (rounded == 0) {
    LogScriptError(game, "Warning: File contains invalid version header.");
  }
  const int16_t v = game.run.game_version;
  if (v != 100 && v != 200 && v != 210 && v != 217) {
    LogScriptError(game, "Warning: Unrecognised GWL version number.");
  }
}

// The default font of the output: the player's own, unless the game names one and the player
// lets games choose their fonts. An empty name or a size of 0 falls back to the player's.
void ReadDefaultFont(Game& game, BlockRange game_block) {
  const Settings& settings = game.settings;
  std::string name = settings.default_font_name;
  float size = settings.default_font_size;
  const bool forced = settings.override_game_default_font || settings.override_all_fonts;
  if (!forced) {
    for (int i : GameBlockLines(game_block)) {
      const std::string& line = game.text.Line(i);
      if (BeginsWith(line, "default fontname ")) {
        name = RetrieveParameter(game, line, true);
      } else if (BeginsWith(line, "default fontsize ")) {
        size = static_cast<float>(Val(RetrieveParameter(game, line, true)));
      }
    }
  }
  // A negative size cannot be shown either: it falls back like 0.
  if (name.empty()) name = settings.default_font_name;
  if (!(size > 0)) size = settings.default_font_size;
  game.output.current_default_font_name = name;
  game.output.current_default_font_size = size;
}

bool HasNoDebugLine(const Game& game, BlockRange game_block) {
  for (int i : GameBlockLines(game_block)) {
    if (TrimView(game.text.Line(i)) == "nodebug") return true;
  }
  return false;
}

// Builds the world and the game's tables from its text, raising the progress bar as it goes.
void BuildGame(Game& game, BlockRange game_block) {
  Host& host = game.host;
  ResetPlayerMessages(game);
  ReadSynonyms(game);
  SetUpItems(game);
  host.dialogs.ShowProgress(kProgressCaption, 20);
  SetUpStartItems(game);
  SetUpCollectables(game);
  host.dialogs.ShowProgress(kProgressCaption, 30);
  BuildWorldTables(game);
  ReadMessageOverrides(game);
  ReadDefaultFont(game, game_block);
  ReadTurnScripts(game);
  host.dialogs.ShowProgress(kProgressCaption, 40);
}

// Runs the start scripts; false when one of them opened another game, which then stands in
// place of this one.
bool RunStartScripts(Game& game, BlockRange game_block) {
  // The statements are taken first: a script must not see the lines change under it.
  std::vector<std::string> statements;
  for (int i : GameBlockLines(game_block)) {
    const std::string& line = game.text.Line(i);
    if (!BeginsWith(line, "startscript ")) continue;
    statements.push_back(TextAfterKeyword(line, "startscript "));
  }
  game.run.show_intro = true;
  const int opening = game.games_opened;
  for (const std::string& statement : statements) {
    ExecuteScript(game, statement);
    if (game.games_opened != opening) return false;
  }
  return true;
}

// The room of the last "start " line, entered after the introduction.
void EnterStartRoom(Game& game, BlockRange game_block) {
  int start_line = 0;
  for (int i : GameBlockLines(game_block)) {
    if (BeginsWith(game.text.Line(i), "start ")) start_line = i;
  }
  if (start_line == 0) {
    LogScriptError(game, "Warning: The game has no 'start' line, so play begins in no room.");
    return;
  }
  const std::string room = RetrieveParameter(game, game.text.Line(start_line), true);
  if (!FindBlockByName(game, "room", room).Found()) {
    LogScriptError(game, "Warning: The start room '" + room + "' does not exist.");
  }
  EnterRoom(game, room);
}

// The tables of the open game, set aside while another game is read, so that they can be put
// back when that game cannot be opened.
struct OpenGameTables {
  GameText text;
  std::string game_file;
  std::string game_path;
  int intproc_counter;
  RunState run;
  Variables variables;
  World world;
  Inventory inventory;
  PlayerMessages messages;
  ParserState parser;
  bool output_enabled;
  bool waiting_for_key;
};

OpenGameTables TakeTables(Game& game) {
  OpenGameTables taken{
      std::move(game.text),   std::move(game.game_file), std::move(game.game_path),
      game.intproc_counter,   std::move(game.run),       std::move(game.variables),
      std::move(game.world),  std::move(game.inventory), std::move(game.messages),
      std::move(game.parser), game.output.enabled,       game.output.waiting_for_key};
  ResetGameTables(game);
  return taken;
}

void PutBackTables(Game& game, OpenGameTables& tables) {
  game.text = std::move(tables.text);
  game.game_file = std::move(tables.game_file);
  game.game_path = std::move(tables.game_path);
  game.intproc_counter = tables.intproc_counter;
  game.run = std::move(tables.run);
  game.variables = std::move(tables.variables);
  game.world = std::move(tables.world);
  game.inventory = std::move(tables.inventory);
  game.messages = std::move(tables.messages);
  game.parser = std::move(tables.parser);
  game.output.enabled = tables.output_enabled;
  game.output.waiting_for_key = tables.waiting_for_key;
}

// The game window as a new game finds it: an empty pane, command box and status.
void ClearWindowForNewGame(Game& game) {
  game.host.pane.ClearOutput();
  game.host.window.ClearCommandBox();
  game.host.window.SetStatusText("");
}

bool OpenGameNow(Game& game, const std::string& path, bool installed, bool keep_on_failure) {
  Host& host = game.host;
  // A game kept on failure keeps its window and its sounds until the new game is known to be
  // one that opens.
  if (!keep_on_failure) host.platform.StopSounds();
  host.dialogs.ShowProgress(kProgressCaption, 0);

  host.window.SetBusy(true);
  if (!keep_on_failure) ClearWindowForNewGame(game);

  MarkNewGameInLogFile(game);
  LogScriptError(game, std::string("Tarve ") + kPlayerVersion);
  LogScriptError(game, "Opening file " + path + " on " + FormatNow("%d/%m/%Y") + " at " +
                           FormatNow("%H:%M:%S"));
  if (!keep_on_failure) host.window.EnableGameControls(true);
  std::optional<OpenGameTables> previous;
  if (keep_on_failure) {
    previous.emplace(TakeTables(game));
  } else {
    ResetGameTables(game);
  }
  const auto fail = [&] {
    if (previous) {
      PutBackTables(game, *previous);
    } else {
      ResetGameTables(game);
    }
    return false;
  };

  if (!LoadGameText(game, path)) return fail();
  const BlockRange game_block = FindBlock(game, "game");
  if (!game_block.Found()) {
    // Without a game block there is no name, no start room and nothing to play.
    LogScriptError(game, "Error: " + path + " has no 'define game' block, so it cannot be played.");
    ReportUnableToOpen(game, path);
    return fail();
  }
  if (keep_on_failure) {
    host.platform.StopSounds();
    ClearWindowForNewGame(game);
    host.window.EnableGameControls(true);
  }
  game.game_was_open = true;
  ++game.games_opened;

  CheckVersion(game, game_block);
  game.run.game_name = RetrieveParameter(game, game.text.Line(game_block.start), true);
  host.window.SetCaption(std::string("Tarve ") + kPlayerVersion + " - \"" + game.run.game_name +
                         "\"");

  BuildGame(game, game_block);
  game.run.debug_allowed = !HasNoDebugLine(game, game_block);
  host.window.ShowDebugMenu(game.run.debug_allowed);
  LogScriptError(game, "Finished loading file.");
  game.run.installed_game = installed;

  host.window.SetBusy(false);
  host.dialogs.CloseProgress();
  StartGameOutput(game);

  if (!RunStartScripts(game, game_block)) return true;
  if (game.run.show_intro) DisplayText(game, "intro");
  EnterStartRoom(game, game_block);
  PrintText(game, "");
  host.window.FocusCommandBox();
  return true;
}

}  // namespace

bool LoadGameText(Game& game, const std::string& path) {
  game.game_file = path;
  game.game_path = FolderOf(path);
  if (ReadGameFile(game, path)) return true;
  ReportUnableToOpen(game, path);
  return false;
}

bool OpenGame(Game& game, const std::string& path, bool installed, bool keep_on_failure) {
  if (game.open_game_depth >= kMaxNestedOpenings) {
    LogScriptError(game, "Error: Games opened from the start scripts of games nest too deeply; " +
                             path + " is not opened.");
    return false;
  }
  ++game.open_game_depth;
  const bool opened = OpenGameNow(game, path, installed, keep_on_failure);
  --game.open_game_depth;
  return opened;
}

}  // namespace tarve
