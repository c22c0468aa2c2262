#include "player/Settings.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/Files.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "player/SettingsStore.h"
#include "script/CommonCode.h"

namespace tarve {

namespace {

constexpr std::string_view kInit = "Init";
constexpr std::string_view kOptions = "Options";
constexpr std::string_view kSecurity = "Security";
constexpr std::string_view kGames = "Games";

// Game files larger than this are not read for their title; no game is that large.
constexpr std::size_t kMaxTitleFileBytes = std::size_t{64} << 20;

std::string ReadText(const SettingsStore& store, std::string_view section, std::string_view key,
                     std::string_view fallback) {
  std::optional<std::string> value = store.Read(section, key);
  return value ? std::move(*value) : std::string(fallback);
}

// Truth values are stored as "Yes" and "No"; anything but "yes" in any case reads as false.
bool ReadTruth(const SettingsStore& store, std::string_view section, std::string_view key,
               std::string_view fallback) {
  return EqualsNoCase(ReadText(store, section, key, fallback), "yes");
}

// Whole numbers read as the game language reads them: the leading number, rounded. Text that
// is no number, or a number past the 16-bit range the player has always kept them in, reads as
// 0, so a damaged security level allows nothing.
int ReadWhole(const SettingsStore& store, std::string_view section, std::string_view key,
              std::string_view fallback) {
  const std::optional<int16_t> value = ToInt16(Val(ReadText(store, section, key, fallback)));
  return value ? *value : 0;
}

float ReadSingle(const SettingsStore& store, std::string_view section, std::string_view key,
                 std::string_view fallback) {
  const double value = Val(ReadText(store, section, key, fallback));
  if (!std::isfinite(value) || std::fabs(value) > std::numeric_limits<float>::max()) return 0;
  return static_cast<float>(value);
}

const char* YesNo(bool value) { return value ? "Yes" : "No"; }

std::string Numbered(std::string_view key, int n) { return std::string(key) + std::to_string(n); }

// Counts are whole numbers too. A count past what a list can hold is cut to the most it can
// hold, so that a damaged count neither hangs the player nor loses the entries before it; a
// negative count other than -1 (which some keys use for "never set") means no entries.
int ReadCount(const SettingsStore& store, std::string_view section, std::string_view key,
              std::string_view fallback) {
  const double value = std::nearbyint(Val(ReadText(store, section, key, fallback)));
  if (std::isnan(value) || value < 0) return value == -1 ? -1 : 0;
  return value > kMaxListEntries ? kMaxListEntries : static_cast<int>(value);
}

// Custom file types are compared upper-cased, so they are upper-cased when read.
void ReadCustomSecurity(const SettingsStore& store, Settings& settings) {
  const int count = ReadCount(store, kSecurity, "NumberCustomSecurity", "-1");
  settings.custom_security.clear();
  if (count == -1) {
    // The list was never set: the program types of the desktop the player was made for.
    settings.custom_security = {"EXE", "COM", "DOC", "DLL"};
    return;
  }
  for (int i = 1; i <= count; ++i) {
    settings.custom_security.push_back(
        UCase(ReadText(store, kSecurity, Numbered("CustomSecurity", i), "")));
  }
}

// The first-run set-up of this version: the document types go to the desktop, the marker is
// stored, and the player is told once.
bool RunFirstRunSetup(SettingsStore& store, const FirstRunSetup& setup) {
  if (!setup.enabled) return false;
  if (ReadText(store, kInit, "InstalledVer", "no") == kInstalledVersionMarker) return false;
  if (setup.associate_file_type) {
    setup.associate_file_type("Tarve Game", ".gwl");
    setup.associate_file_type("Tarve Game (Compiled)", ".cgw");
    setup.associate_file_type("Tarve Saved Game Data", ".tsg");
  }
  store.Write(kInit, "InstalledVer", kInstalledVersionMarker);
  store.Flush();
  return true;
}

// Reads a text the way the player has always read a data file field by field: fields end at a
// comma or a line end, leading blanks are skipped, a field that opens with a double quote runs
// to the closing quote (commas inside it are kept) and the rest up to the next delimiter is
// dropped, and an unquoted field loses its trailing blanks.
class FieldReader {
 public:
  explicit FieldReader(std::string_view text) : text_(text) {}

  bool Next(std::string_view& field) {
    if (pos_ > text_.size()) return false;
    while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t')) ++pos_;
    if (pos_ < text_.size() && text_[pos_] == '"') {
      const std::size_t open = pos_ + 1;
      std::size_t close = text_.find('"', open);
      if (close == std::string_view::npos) close = text_.size();
      field = text_.substr(open, close - open);
      pos_ = close;
      SkipPastDelimiter();
      return true;
    }
    const std::size_t start = pos_;
    std::size_t end = text_.find_first_of(",\r\n", start);
    if (end == std::string_view::npos) end = text_.size();
    field = TrimRightView(text_.substr(start, end - start));
    pos_ = end;
    SkipPastDelimiter();
    return true;
  }

 private:
  // Moves past the delimiter that ends the current field; CR LF is one delimiter. At the end
  // of the text the reader is done.
  void SkipPastDelimiter() {
    const std::size_t delimiter = text_.find_first_of(",\r\n", pos_);
    if (delimiter == std::string_view::npos) {
      pos_ = text_.size() + 1;
      return;
    }
    pos_ = delimiter + 1;
    if (text_[delimiter] == '\r' && pos_ < text_.size() && text_[pos_] == '\n') ++pos_;
    if (pos_ == text_.size()) pos_ = text_.size() + 1;  // a final line end starts no field
  }

  std::string_view text_;
  std::size_t pos_ = 0;
};

// Paths are compared as the files they name: made absolute, with "." and ".." resolved and
// symbolic links followed as far as the path exists. Linux file names keep their case.
std::filesystem::path ComparablePath(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::path absolute = fs::absolute(NativePath(path), ec);
  if (ec) return fs::path(path).lexically_normal();
  fs::path resolved = fs::weakly_canonical(absolute, ec);
  if (ec) return absolute.lexically_normal();
  return resolved;
}

}  // namespace

Settings ReadSettings(const SettingsStore& store) {
  Settings s;
  // LogErrors and OutputFile tell by their absence that the player never chose: only a
  // present key switches the file on or off and brings its path with it.
  if (store.Read(kOptions, "LogErrors")) {
    s.log_errors = ReadTruth(store, kOptions, "LogErrors", "No");
    s.log_file = ReadText(store, kOptions, "LogFile", "");
  }
  if (store.Read(kOptions, "OutputFile")) {
    s.output_file = ReadTruth(store, kOptions, "OutputFile", "No");
    s.out_file = ReadText(store, kOptions, "OutFile", "");
  }
  s.special_msg_box = ReadTruth(store, kOptions, "SpecialMsgBox", "Yes");
  s.auto_install = ReadTruth(store, kOptions, "AutoInstall", "No");
  s.detailed_look = ReadTruth(store, kOptions, "DetailedLook", "Yes");
  s.default_font_name = ReadText(store, kOptions, "DefaultFontName", "Courier New");
  s.default_font_size = ReadSingle(store, kOptions, "DefaultFontSize", "8.25");
  s.default_font_bold = ReadTruth(store, kOptions, "DefaultFontBold", "No");
  s.default_font_italic = ReadTruth(store, kOptions, "DefaultFontItalic", "No");
  s.override_game_default_font = ReadTruth(store, kOptions, "OverrideGameDefaultFont", "No");
  s.override_all_fonts = ReadTruth(store, kOptions, "OverrideAllFonts", "No");
  s.override_effects = ReadTruth(store, kOptions, "OverrideEffects", "No");
  s.label_foreground_colour = ReadText(store, kOptions, "LabelForegroundColour", "FFFFFF");
  s.label_background_colour = ReadText(store, kOptions, "LabelBackgroundColour", "600070");

  s.security_type = ReadWhole(store, kSecurity, "SecurityType", "3");
  s.zero_security_installed_games = ReadTruth(store, kSecurity, "ZeroSecurityInstalledGames", "No");
  s.custom_security_is_disallow = ReadTruth(store, kSecurity, "CustomSecurityIsDisallow", "Yes");
  ReadCustomSecurity(store, s);
  return s;
}

bool LoadSettings(Game& game, SettingsStore& store, const FirstRunSetup& setup) {
  const bool setup_ran = RunFirstRunSetup(store, setup);
  game.settings = ReadSettings(store);
  if (setup_ran) {
    // The splash would stand in front of the message.
    game.host.dialogs.CloseSplash();
    game.host.dialogs.ShowMessage("Thank you for installing Tarve! Setup is now complete.",
                                  "Setup Complete", kOkOnly);
  }
  return setup_ran;
}

bool SaveSettings(const Settings& s, SettingsStore& store) {
  store.Write(kOptions, "LogErrors", YesNo(s.log_errors));
  store.Write(kOptions, "LogFile", s.log_file);
  store.Write(kOptions, "OutputFile", YesNo(s.output_file));
  store.Write(kOptions, "OutFile", s.out_file);
  store.Write(kOptions, "SpecialMsgBox", YesNo(s.special_msg_box));
  store.Write(kOptions, "AutoInstall", YesNo(s.auto_install));
  store.Write(kOptions, "DetailedLook", YesNo(s.detailed_look));
  store.Write(kOptions, "DefaultFontName", s.default_font_name);
  store.Write(kOptions, "DefaultFontSize", FormatSingle(s.default_font_size));
  store.Write(kOptions, "DefaultFontBold", YesNo(s.default_font_bold));
  store.Write(kOptions, "DefaultFontItalic", YesNo(s.default_font_italic));
  store.Write(kOptions, "OverrideGameDefaultFont", YesNo(s.override_game_default_font));
  store.Write(kOptions, "OverrideAllFonts", YesNo(s.override_all_fonts));
  store.Write(kOptions, "OverrideEffects", YesNo(s.override_effects));
  store.Write(kOptions, "LabelForegroundColour", s.label_foreground_colour);
  store.Write(kOptions, "LabelBackgroundColour", s.label_background_colour);

  store.Write(kSecurity, "SecurityType", std::to_string(s.security_type));
  store.Write(kSecurity, "ZeroSecurityInstalledGames", YesNo(s.zero_security_installed_games));
  // Entries of a longer list written before are removed, so the store holds the list as it is.
  const int old_count = std::max(0, ReadCount(store, kSecurity, "NumberCustomSecurity", "0"));
  const int count =
      static_cast<int>(std::min<std::size_t>(s.custom_security.size(), kMaxListEntries));
  store.Write(kSecurity, "NumberCustomSecurity", std::to_string(count));
  store.Write(kSecurity, "CustomSecurityIsDisallow", YesNo(s.custom_security_is_disallow));
  for (int i = 1; i <= count; ++i) {
    store.Write(kSecurity, Numbered("CustomSecurity", i),
                s.custom_security[static_cast<std::size_t>(i - 1)]);
  }
  for (int i = count + 1; i <= old_count; ++i) {
    store.Remove(kSecurity, Numbered("CustomSecurity", i));
  }
  return store.Flush();
}

std::vector<InstalledGame> ReadInstalledGames(const SettingsStore& store) {
  std::vector<InstalledGame> games;
  const int count = std::max(0, ReadCount(store, kGames, "NumInstalled", "0"));
  for (int i = 1; i <= count; ++i) {
    std::optional<std::string> file = store.Read(kGames, Numbered("File", i));
    if (!file) continue;
    std::optional<std::string> name = store.Read(kGames, Numbered("Name", i));
    games.push_back({name ? std::move(*name) : *file, std::move(*file)});
  }
  return games;
}

bool WriteInstalledGames(SettingsStore& store, const std::vector<InstalledGame>& games) {
  const int old_count = std::max(0, ReadCount(store, kGames, "NumInstalled", "0"));
  const int count = static_cast<int>(std::min<std::size_t>(games.size(), kMaxListEntries));
  for (int i = 1; i <= count; ++i) {
    const InstalledGame& game = games[static_cast<std::size_t>(i - 1)];
    store.Write(kGames, Numbered("Name", i), game.name);
    store.Write(kGames, Numbered("File", i), game.file);
  }
  for (int i = count + 1; i <= old_count; ++i) {
    store.Remove(kGames, Numbered("Name", i));
    store.Remove(kGames, Numbered("File", i));
  }
  store.Write(kGames, "NumInstalled", std::to_string(count));
  return store.Flush();
}

std::string GetGameTitle(Game& game, const std::string& path) {
  if (path.size() >= 4 && std::string_view(path).substr(path.size() - 4) == ".cgw") return path;
  std::string bytes;
  if (!ReadWholeFile(path, bytes, kMaxTitleFileBytes)) return "__CANTOPEN";
  const std::string text = DecodeGameText(std::move(bytes));
  FieldReader fields(text);
  for (std::string_view field; fields.Next(field);) {
    if (BeginsWith(field, "define game ")) return RetrieveParameter(game, field, true);
  }
  return "__NOTITLE";
}

InstallResult InstallGame(Game& game, SettingsStore& store, const std::string& path) {
  const std::string title = GetGameTitle(game, path);
  const std::string refused = "Unable to add " + path + " to the 'Installed Games' list\n";
  if (title.rfind("__", 0) == 0) {
    const char* reason = title == "__CANTOPEN" ? "- the file could not be opened."
                                               : "- the file appears to be invalid.";
    return {false, refused + reason};
  }
  const int count = std::max(0, ReadCount(store, kGames, "NumInstalled", "0"));
  if (count >= kMaxListEntries) return {false, refused + "- the list is full."};
  const int n = count + 1;
  store.Write(kGames, Numbered("Name", n), title);
  store.Write(kGames, Numbered("File", n), path);
  store.Write(kGames, "NumInstalled", std::to_string(n));
  store.Flush();
  return {true, ""};
}

bool IsInstalledGame(const SettingsStore& store, const std::string& path) {
  const std::filesystem::path wanted = ComparablePath(path);
  const std::vector<InstalledGame> games = ReadInstalledGames(store);
  return std::any_of(games.begin(), games.end(), [&](const InstalledGame& installed) {
    return ComparablePath(installed.file) == wanted;
  });
}

}  // namespace tarve
