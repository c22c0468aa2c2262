// Statements that reach outside the game. A game is text written by a stranger, so on top of
// the player's own security settings two rules always hold: `shell` never opens a file that
// Linux would run as a program, and the file copy of `advfunc` reads and writes only inside the
// game's own folder.
#include "interpreter/ExternalCommands.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
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

// True when a path relative to a folder names something inside it, not the folder itself.
bool IsBelow(const fs::path& relative) {
  if (relative.empty() || relative == ".") return false;
  const fs::path first = *relative.begin();
  return first != ".." && first != ".";
}

// A file descriptor closed when it goes out of scope.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  ~Descriptor() { Reset(-1); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fd_; }
  void Reset(int fd) {
    if (fd_ >= 0) close(fd_);
    fd_ = fd;
  }

 private:
  int fd_;
};

// How opening a file of the game's folder went.
enum class Opened { kOpened, kLinked, kFailed };

// Opens `relative` below the folder `folder`, one name at a time, never following a symbolic
// link (a link met on the way is kLinked): a link planted in the folder, before or during the
// copy, can lead neither the reading nor the writing outside. A file that is no regular file,
// or a hard link that shares its contents with another name (perhaps outside), is not used
// either. `error` holds the reason of a kFailed.
Opened OpenInFolder(int folder, const fs::path& relative, int flags, Descriptor& file,
                    std::string& error) {
  Descriptor directory(dup(folder));
  const auto failed = [&](int at, const std::string& name) {
    const int number = errno;
    struct stat info {};
    if (fstatat(at, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(info.st_mode)) {
      return Opened::kLinked;
    }
    error = std::strerror(number);
    return Opened::kFailed;
  };
  const std::string name = relative.filename().string();
  for (const fs::path& part : relative.parent_path()) {
    const int next =
        openat(directory.get(), part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (next < 0) return failed(directory.get(), part.string());
    directory.Reset(next);
  }
  // Without waiting, so that a FIFO never blocks the game.
  file.Reset(
      openat(directory.get(), name.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666));
  if (file.get() < 0) return failed(directory.get(), name);
  struct stat info {};
  if (fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
    error = "it is not a regular file";
    return Opened::kFailed;
  }
  return info.st_nlink > 1 ? Opened::kLinked : Opened::kOpened;
}

// Copies what is left of `from` into `to`, which is emptied first.
bool CopyContents(int from, int to, std::string& error) {
  struct stat source {};
  struct stat destination {};
  if (fstat(from, &source) == 0 && fstat(to, &destination) == 0 &&
      source.st_dev == destination.st_dev && source.st_ino == destination.st_ino) {
    error = "it is the same file";
    return false;
  }
  if (ftruncate(to, 0) != 0) {
    error = std::strerror(errno);
    return false;
  }
  std::array<char, 65536> buffer;
  for (;;) {
    ssize_t got = read(from, buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) break;
    if (got == 0) return true;
    for (ssize_t at = 0; at < got;) {
      const ssize_t written = write(to, buffer.data() + at, static_cast<std::size_t>(got - at));
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) {
        error = std::strerror(errno);
        return false;
      }
      at += written;
    }
  }
  error = std::strerror(errno);
  return false;
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
  const auto refuse = [&] {
    fail("Error: Refused to copy " + source + " to " + destination +
         ": files may only be copied inside the game's folder.");
  };
  const auto unable = [&](const std::string& reason) {
    fail("Error: Unable to copy " + source + " to " + destination + ": " + reason);
  };

  // A name is taken relative to the game's folder; an absolute name stands for itself. Both
  // must name a file below the folder, and are then opened from the folder down without
  // following any link.
  std::error_code ec;
  const fs::path folder =
      fs::absolute(game.game_path.empty() ? fs::path(".") : fs::path(game.game_path), ec)
          .lexically_normal();
  const auto below = [&](const std::string& name) {
    return fs::path(FindFileNoCase((folder / NativePath(name)).string()))
        .lexically_normal()
        .lexically_relative(folder);
  };
  const fs::path from = below(source);
  const fs::path to = below(destination);
  if (ec || !IsBelow(from) || !IsBelow(to)) {
    refuse();
    return;
  }
  const Descriptor root(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (root.get() < 0) {
    unable(std::strerror(errno));
    return;
  }
  Descriptor in, out;
  std::string error;
  const auto open_in_folder = [&](const fs::path& path, int flags, Descriptor& file) {
    switch (OpenInFolder(root.get(), path, flags, file, error)) {
      case Opened::kLinked:
        refuse();
        return false;
      case Opened::kFailed:
        unable(error);
        return false;
      case Opened::kOpened:
        break;
    }
    return true;
  };
  // The source first, so that nothing is created when there is nothing to copy.
  if (!open_in_folder(from, O_RDONLY, in) || !open_in_folder(to, O_WRONLY | O_CREAT, out)) return;
  if (!CopyContents(in.get(), out.get(), error)) unable(error);
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
