// Statements that reach outside the game. A game is text written by a stranger, so on top of
// the player's own security settings two rules always hold: `shell` never opens a file that
// Linux would run as a program, and the file copy of `advfunc` reads and writes only inside the
// game's own folder.
#include "interpreter/ExternalCommands.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <system_error>

#include "base/Files.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/Variables.h"
#include "script/CommonCode.h"

namespace tarve {

namespace {

namespace fs = std::filesystem;

// File types that are programs or installers on a Linux desktop (or start one when opened),
// compared with a file's real extension, ignoring case.
constexpr std::array<std::string_view, 21> kProgramTypes = {
    "sh",  "bash", "csh", "ksh", "zsh", "desktop", "appimage", "run", "bin", "exe", "com",
    "bat", "cmd",  "msi", "jar", "py",  "pyw",     "pl",       "rb",  "deb", "rpm"};

// A path the game names, relative to the game's folder, found even when the game spells its
// letters in another case than the file has.
std::string GameFilePath(const Game& game, std::string_view name) {
  return FindFileNoCase(NativePath(game.game_path + std::string(name)));
}

// The type the security settings speak of: the text after the last ".", trimmed, upper-cased
// and cut to three characters. A name without "." has no type.
std::string SecurityTypeOf(std::string_view file) {
  const std::size_t dot = file.rfind('.');
  if (dot == std::string_view::npos) return std::string();
  return CharLeft(UCase(TrimView(file.substr(dot + 1))), 3);
}

bool SecuritySettingsAllow(const Game& game, std::string_view file) {
  const Settings& settings = game.settings;
  if (settings.zero_security_installed_games && game.run.installed_game) return true;
  switch (settings.security_type) {
    case 2:
      return true;
    case 3: {
      const std::string type = SecurityTypeOf(file);
      const bool listed =
          std::find(settings.custom_security.begin(), settings.custom_security.end(), type) !=
          settings.custom_security.end();
      // The list names the refused types when CustomSecurityIsDisallow is on, the only allowed
      // ones when it is off.
      return listed != settings.custom_security_is_disallow;
    }
    default:
      return false;  // 1, and any level the player's settings do not define
  }
}

bool IsProgram(const std::string& path) {
  struct stat info {};
  if (stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
      (info.st_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0) {
    return true;
  }
  std::string extension = fs::path(path).extension().string();
  if (extension.empty()) return false;
  extension.erase(0, 1);  // the dot
  const std::string_view type_text = TrimView(extension);
  return std::any_of(kProgramTypes.begin(), kProgramTypes.end(),
                     [&](std::string_view type) { return EqualsNoCase(type_text, type); });
}

void ShellFailed(Game& game, std::string_view file, std::string_view reason, int16_t code) {
  LogScriptError(game, "Error shelling " + std::string(file) + ": " + std::string(reason));
  SetNumericVariable(game, "tarve.shellsuccess", code);
}

// True when `path` lies inside `folder` (both already resolved), not the folder itself.
bool IsInside(const fs::path& folder, const fs::path& path) {
  const fs::path relative = path.lexically_relative(folder);
  if (relative.empty() || relative == ".") return false;
  const fs::path first = *relative.begin();
  return first != ".." && first != ".";
}

void CopyGameFile(Game& game, std::string_view parameter) {
  SetNumericVariable(game, "!tarve.int.filecopyerror", 0);
  const std::size_t semicolon = parameter.find(';');
  const std::string source(TrimView(parameter.substr(0, semicolon)));
  const std::string destination(
      semicolon == std::string_view::npos ? "" : TrimView(parameter.substr(semicolon + 1)));
  const auto fail = [&](const std::string& message) {
    SetNumericVariable(game, "!tarve.int.filecopyerror", 1);
    LogScriptError(game, message);
  };
  if (source.empty() || destination.empty()) {
    fail("Error: Unable to copy a file: advfunc 0001 needs <source; destination>, not <" +
         std::string(parameter) + ">.");
    return;
  }

  // Both names are resolved (".." and symbolic links followed) before they are compared with
  // the game's folder; a path that cannot be resolved is outside. A name is taken relative to
  // the game's folder; an absolute name stands for itself.
  bool resolved = true;
  const auto resolve = [&](const fs::path& path) {
    std::error_code ec;
    fs::path result = fs::weakly_canonical(path, ec);
    if (ec) resolved = false;
    return result;
  };
  std::error_code ec;
  const fs::path folder =
      resolve(fs::absolute(game.game_path.empty() ? fs::path(".") : fs::path(game.game_path), ec));
  if (ec) resolved = false;
  const fs::path from = resolve(FindFileNoCase((folder / NativePath(source)).string()));
  const fs::path to = resolve(FindFileNoCase((folder / NativePath(destination)).string()));
  if (!resolved || !IsInside(folder, from) || !IsInside(folder, to)) {
    fail("Error: Refused to copy " + source + " to " + destination +
         ": files may only be copied inside the game's folder.");
    return;
  }
  fs::copy_file(from, to, fs::copy_options::overwrite_existing, ec);
  if (ec) fail("Error: Unable to copy " + source + " to " + destination + ": " + ec.message());
}

}  // namespace

void ExecutePlayWav(Game& game, std::string_view parameter) {
  std::string name(parameter);
  bool sync = false;
  constexpr std::string_view kSync = ";sync";
  if (name.size() >= kSync.size() &&
      std::string_view(name).substr(name.size() - kSync.size()) == kSync) {
    name.resize(name.size() - kSync.size());
    sync = true;
  }
  if (name.find('.') == std::string::npos) name += ".wav";
  // A sound the script waits for is heard with the window up to date.
  if (sync) game.host.pane.Repaint();
  game.host.platform.PlayWave(GameFilePath(game, name), sync);
}

void ExecutePlayMidi(Game& game, std::string_view parameter) {
  if (parameter.empty()) {
    game.host.platform.StopMidi();
    return;
  }
  game.host.platform.PlayMidi(GameFilePath(game, parameter));
}

void ExecuteShow(Game& game, std::string_view parameter) {
  game.host.platform.ShowPicture(GameFilePath(game, parameter));
}

void ExecuteShell(Game& game, std::string_view parameter) {
  SetNumericVariable(game, "tarve.shellsuccess", 1);
  std::string_view file = parameter;
  std::string_view mode;
  if (const std::size_t semicolon = parameter.find(';'); semicolon != std::string_view::npos) {
    file = TrimView(parameter.substr(0, semicolon));
    mode = TrimView(parameter.substr(semicolon + 1));
  }
  const std::string path =
      FindFileNoCase(NativePath(game.program_folder + "/" + std::string(file)));
  if (!SecuritySettingsAllow(game, file) || IsProgram(path)) {
    ShellFailed(game, file, "disallowed by user's Tarve security settings", 0);
    return;
  }
  switch (game.host.platform.OpenDocument(path, EqualsNoCase(mode, "notactive"))) {
    case PlatformServices::OpenResult::kNotFound:
      ShellFailed(game, file, "file/path not found", 2);
      break;
    case PlatformServices::OpenResult::kNoAssociation:
      ShellFailed(game, file, "file association does not exist or is incomplete", 3);
      break;
    case PlatformServices::OpenResult::kOutOfMemory:
      ShellFailed(game, file, "out of memory", 4);
      break;
    case PlatformServices::OpenResult::kOpened:
      break;
  }
}

void ExecuteMailTo(Game& game, std::string_view parameter) {
  game.host.platform.OpenDocument("mailto:" + std::string(parameter), false);
}

void ExecuteAdvFunc(Game& game, std::string_view rest) {
  const std::string code = CharLeft(rest, 4);
  if (code != "0001" && code != "0002") return;
  const std::string parameter = RetrieveParameter(game, rest, true);
  if (code == "0001") {
    CopyGameFile(game, parameter);
  } else {
    game.host.platform.OpenDocument(parameter, false);
  }
}

}  // namespace tarve
