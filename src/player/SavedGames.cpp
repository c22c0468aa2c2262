#include "player/SavedGames.h"

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Files.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "game/Game.h"
#include "game/ScriptLog.h"
#include "interpreter/Variables.h"
#include "output/Output.h"
#include "player/OpenGame.h"
#include "world/Items.h"
#include "world/RoomDescription.h"
#include "world/World.h"

namespace tarve {

namespace {

namespace fs = std::filesystem;

constexpr const char* kFormatErrorTitle = "File format error";
constexpr const char* kOlderVersionText =
    "Saved game data in this file is from an older version of Tarve - this file format is "
    "incompatible with this version.";
constexpr const char* kInvalidFileText = "Invalid file!";
constexpr const char* kDamagedText =
    "This saved game is damaged or incomplete, so it cannot be loaded.";
constexpr const char* kTooLargeText = "This file is too large to be a saved game.";

constexpr std::string_view kLineEnd = "\r\n";

// The section markers in the order they stand in the file.
constexpr std::string_view kCollectablesMarker = "!c";
constexpr std::string_view kItemsMarker = "!i";
constexpr std::string_view kObjectsMarker = "!o";
constexpr std::string_view kCharactersMarker = "!p";
constexpr std::string_view kStringsMarker = "!s";
constexpr std::string_view kNumericsMarker = "!n";
constexpr std::string_view kEndMarker = "!e";

const char* YesNo(bool value) { return value ? "Yes" : "No"; }

// ---------------------------------------------------------------------------------------------
// Writing

void AppendLine(std::string& out, std::string_view a, std::string_view b = {},
                std::string_view c = {}, std::string_view d = {}) {
  out.append(a).append(b).append(c).append(d).append(kLineEnd);
}

void AppendThings(std::string& out, const std::vector<Thing>& things) {
  for (const Thing& thing : things) {
    out.append(thing.name).append(";").append(YesNo(thing.exists)).append(";");
    out.append(YesNo(thing.visible)).append(";").append(thing.room).append(kLineEnd);
  }
}

// The game file as a full path, so that the saved game can be loaded from any folder.
std::string FullGamePath(const std::string& game_file) {
  std::error_code ec;
  const fs::path full = fs::absolute(game_file, ec);
  return ec ? game_file : full.lexically_normal().string();
}

// ---------------------------------------------------------------------------------------------
// Reading

// The two ways the file is read. Lines 1 to 5 and the sections of collectables, items, objects
// and characters are read one comma-separated field at a time: leading blanks are skipped (those
// after the field are kept), a field in double quotes loses its quotes, and a comma ends a field
// wherever it stands, so a name holding a comma is split and the rest of its line read as the
// next record. The two variable sections are read as whole lines, so their values keep commas
// and quotes.
class SavedGameReader {
 public:
  explicit SavedGameReader(const std::vector<std::string>& lines) : lines_(lines) {}

  std::optional<std::string> NextField() {
    if (!inside_line_) {
      if (line_ >= lines_.size()) return std::nullopt;
      column_ = 0;
      field_line_ = line_ + 1;
    }
    const std::string& line = lines_[line_];
    std::size_t at = column_;
    while (at < line.size() && line[at] == ' ') ++at;
    std::string field;
    std::size_t end;
    if (at < line.size() && line[at] == '"') {
      const std::size_t close = line.find('"', at + 1);
      if (close == std::string::npos) {
        field = line.substr(at + 1);
        end = line.size();
      } else {
        field = line.substr(at + 1, close - at - 1);
        // Whatever follows the closing quote up to the next comma is not part of the field.
        end = line.find(',', close + 1);
        if (end == std::string::npos) end = line.size();
      }
    } else {
      end = line.find(',', at);
      if (end == std::string::npos) end = line.size();
      field = line.substr(at, end - at);
    }
    // A comma that ends its line ends the field; the next field starts on the next line.
    if (end + 1 < line.size()) {
      column_ = end + 1;
      inside_line_ = true;
    } else {
      ++line_;
      inside_line_ = false;
    }
    return field;
  }

  // The rest of the line when a field ended inside it, else the next whole line.
  std::optional<std::string> NextLine() {
    if (inside_line_) {
      inside_line_ = false;
      field_line_ = line_ + 1;
      return lines_[line_++].substr(column_);
    }
    if (line_ >= lines_.size()) return std::nullopt;
    field_line_ = line_ + 1;
    return lines_[line_++];
  }

  // The line (from 1) the last field or line came from.
  std::size_t LineNumber() const { return field_line_; }

 private:
  const std::vector<std::string>& lines_;
  std::size_t line_ = 0;
  std::size_t column_ = 0;
  bool inside_line_ = false;
  std::size_t field_line_ = 0;
};

struct SavedThing {
  std::string name;
  bool shown = true;
  bool visible = true;
  std::string room;
};

// Everything a saved game holds, read and checked before any of it touches the game.
struct SavedGameData {
  std::string game_file;
  std::string room;
  std::vector<std::pair<std::string, int16_t>> collectables;
  std::vector<std::pair<std::string, bool>> items;
  std::vector<SavedThing> objects;
  std::vector<SavedThing> characters;
  std::vector<std::pair<std::string, std::string>> strings;
  std::vector<std::pair<std::string, int16_t>> numerics;
  // Lines that are not records of their section, for the script log.
  std::vector<std::size_t> skipped_lines;
};

enum class ReadResult { kRead, kOlderVersion, kInvalid, kDamaged };

// A number of the file rounded to a whole number, halves to even, and held within the 16-bit
// range: a value edited out of range is kept at the nearest end rather than refused.
int16_t WholeNumber(std::string_view text) {
  const double value = std::nearbyint(Val(text));
  if (std::isnan(value)) return 0;
  if (std::optional<int16_t> whole = ToInt16(value)) return *whole;
  return value < 0 ? INT16_MIN : INT16_MAX;
}

// Only "yes" in any letter case is true: " Yes" and "Yes " are not.
bool IsYes(std::string_view flag) { return LCase(flag) == "yes"; }

class SavedGameParser {
 public:
  SavedGameParser(const std::vector<std::string>& lines, SavedGameData& data)
      : reader_(lines), data_(data) {}

  ReadResult Parse(std::string& problem) {
    const std::optional<std::string> header = reader_.NextField();
    if (!header || *header != kSavedGameHeader) {
      return header && header->starts_with("TARVE") ? ReadResult::kOlderVersion
                                                    : ReadResult::kInvalid;
    }
    std::optional<std::string> game_file = reader_.NextField();
    std::optional<std::string> game_name = reader_.NextField();
    std::optional<std::string> room = reader_.NextField();
    std::optional<std::string> first_marker = reader_.NextField();
    if (!game_file || !game_name || !room || !first_marker) {
      problem = "it ends before its first section";
      return ReadResult::kDamaged;
    }
    data_.game_file = std::move(*game_file);
    data_.room = std::move(*room);

    if (!ReadFieldSection(kItemsMarker, problem,
                          [&](const std::string& record) { return ReadCollectable(record); }) ||
        !ReadFieldSection(kObjectsMarker, problem,
                          [&](const std::string& record) { return ReadItem(record); }) ||
        !ReadFieldSection(
            kCharactersMarker, problem,
            [&](const std::string& record) { return ReadThing(record, data_.objects); }) ||
        !ReadFieldSection(
            kStringsMarker, problem,
            [&](const std::string& record) { return ReadThing(record, data_.characters); }) ||
        !ReadLineSection(kNumericsMarker, problem,
                         [&](const std::string& record) { return ReadString(record); }) ||
        !ReadLineSection(kEndMarker, problem,
                         [&](const std::string& record) { return ReadNumeric(record); })) {
      return ReadResult::kDamaged;
    }
    return ReadResult::kRead;
  }

 private:
  // A section runs to its own closing marker. Any other marker met on the way is a record
  // without its ";" like any other, skipped on its own: a string value holding a line break
  // followed by "!e" makes one, and a room name holding a comma shifts "!c" into the
  // collectables.
  template <typename ReadRecord>
  bool ReadFieldSection(std::string_view until, std::string& problem, ReadRecord read) {
    for (;;) {
      std::optional<std::string> field = reader_.NextField();
      if (!field) return Ends(until, problem);
      if (*field == until) return true;
      if (!read(*field)) data_.skipped_lines.push_back(reader_.LineNumber());
    }
  }

  template <typename ReadRecord>
  bool ReadLineSection(std::string_view until, std::string& problem, ReadRecord read) {
    for (;;) {
      std::optional<std::string> line = reader_.NextLine();
      if (!line) return Ends(until, problem);
      if (*line == until) return true;
      if (!read(*line)) data_.skipped_lines.push_back(reader_.LineNumber());
    }
  }

  static bool Ends(std::string_view until, std::string& problem) {
    problem = "it ends before its \"" + std::string(until) + "\" line";
    return false;
  }

  bool ReadCollectable(std::string_view record) {
    const std::size_t semicolon = record.find(';');
    if (semicolon == std::string_view::npos) return false;
    data_.collectables.emplace_back(Trim(record.substr(0, semicolon)),
                                    WholeNumber(record.substr(semicolon + 1)));
    return true;
  }

  bool ReadItem(std::string_view record) {
    const std::size_t semicolon = record.find(';');
    if (semicolon == std::string_view::npos) return false;
    data_.items.emplace_back(Trim(record.substr(0, semicolon)),
                             IsYes(record.substr(semicolon + 1)));
    return true;
  }

  static bool ReadThing(std::string_view record, std::vector<SavedThing>& things) {
    const std::size_t first = record.find(';');
    if (first == std::string_view::npos) return false;
    const std::size_t second = record.find(';', first + 1);
    if (second == std::string_view::npos) return false;
    const std::size_t third = record.find(';', second + 1);
    if (third == std::string_view::npos) return false;
    things.push_back(
        {Trim(record.substr(0, first)), IsYes(record.substr(first + 1, second - first - 1)),
         IsYes(record.substr(second + 1, third - second - 1)), Trim(record.substr(third + 1))});
    return true;
  }

  bool ReadString(std::string_view record) {
    const std::size_t semicolon = record.find(';');
    if (semicolon == std::string_view::npos) return false;
    // The value is kept exactly, blanks and further semicolons included.
    data_.strings.emplace_back(Trim(record.substr(0, semicolon)),
                               std::string(record.substr(semicolon + 1)));
    return true;
  }

  bool ReadNumeric(std::string_view record) {
    const std::size_t semicolon = record.find(';');
    if (semicolon == std::string_view::npos) return false;
    data_.numerics.emplace_back(Trim(record.substr(0, semicolon)),
                                WholeNumber(record.substr(semicolon + 1)));
    return true;
  }

  SavedGameReader reader_;
  SavedGameData& data_;
};

// The game file named in a saved game, as this system finds it: "\" separators of a file
// written on Windows read as "/", a relative path is taken from the saved game's own folder,
// and a name that does not exist as written is looked up ignoring case.
std::string LocateGameFile(const std::string& written, const std::string& saved_game_path) {
  std::string path = NativePath(written);
  if (!path.empty() && path.front() != '/') path = FolderOf(saved_game_path) + path;
  return FindFileNoCase(fs::path(path).lexically_normal().string());
}

bool IsReadableFile(const std::string& path) {
  std::error_code ec;
  if (path.empty() || !fs::is_regular_file(path, ec)) return false;
  std::ifstream file(path, std::ios::binary);
  return static_cast<bool>(file);
}

void FormatError(Game& game, const char* text) {
  game.host.dialogs.ShowMessage(text, kFormatErrorTitle, kOkOnly);
}

// The first thing of exactly that name (letter case counts, as in the file).
Thing* FindSavedThing(Game& game, ThingKind kind, const std::string& name) {
  for (Thing* thing : ThingsNamed(game, kind, name)) {
    if (thing->name == name) return thing;
  }
  return nullptr;
}

void RestoreThings(Game& game, ThingKind kind, const std::vector<SavedThing>& saved) {
  for (const SavedThing& record : saved) {
    Thing* thing = FindSavedThing(game, kind, record.name);
    if (thing == nullptr) continue;  // the game has no such thing: skipped without a message
    thing->exists = record.shown;
    thing->visible = record.visible;
    thing->room = record.room;
  }
}

void Restore(Game& game, const SavedGameData& data) {
  game.world.current_room = data.room;
  SetStringVariable(game, "tarve.currentroom", data.room);
  for (const auto& [name, amount] : data.collectables) {
    if (Collectable* collectable = FindCollectable(game, name)) {
      collectable->amount = static_cast<float>(amount);
    }
  }
  for (const auto& [name, held] : data.items) {
    if (Item* item = FindItem(game, name)) item->held = held;
  }
  RestoreThings(game, ThingKind::kObject, data.objects);
  RestoreThings(game, ThingKind::kCharacter, data.characters);
  for (const auto& [name, value] : data.strings) SetStringVariable(game, name, value);
  for (const auto& [name, value] : data.numerics) SetNumericVariable(game, name, value);
}

}  // namespace

std::string SavedGameText(const Game& game) {
  std::string out;
  AppendLine(out, kSavedGameHeader);
  AppendLine(out, FullGamePath(game.game_file));
  AppendLine(out, game.run.game_name);
  AppendLine(out, game.world.current_room);
  AppendLine(out, kCollectablesMarker);
  for (const Collectable& collectable : game.inventory.collectables) {
    AppendLine(out, collectable.name, ";", FormatSingleSigned(collectable.amount));
  }
  AppendLine(out, kItemsMarker);
  for (const Item& item : game.inventory.items) AppendLine(out, item.name, ";", YesNo(item.held));
  AppendLine(out, kObjectsMarker);
  AppendThings(out, game.world.objects);
  AppendLine(out, kCharactersMarker);
  AppendThings(out, game.world.characters);
  AppendLine(out, kStringsMarker);
  for (const VariableEntry& entry : game.variables.strings.entries) {
    AppendLine(out, entry.name, ";", entry.value);
  }
  AppendLine(out, kNumericsMarker);
  for (const VariableEntry& entry : game.variables.numerics.entries) {
    // Held as decimal text already; written with the leading blank of a non-negative number.
    const bool negative = !entry.value.empty() && entry.value.front() == '-';
    AppendLine(out, entry.name, negative ? ";" : "; ", entry.value);
  }
  AppendLine(out, kEndMarker);
  return out;
}

bool SaveGame(Game& game, const std::string& path) {
  if (game.game_file.empty()) {
    game.host.dialogs.ShowMessage("There is no game in progress to save.", "Error", kOkOnly);
    return false;
  }
  const std::string text = SavedGameText(game);
  if (text.size() > kMaxSavedGameBytes) {
    LogScriptError(game, "Error: Unable to save the game to " + path + ": it would take " +
                             std::to_string(text.size()) + " bytes, more than the " +
                             std::to_string(kMaxSavedGameBytes) + " a saved game may hold.");
    game.host.dialogs.ShowMessage(
        "Unable to save the game to " + path + " - the game holds more than a saved game can.",
        "Error", kOkOnly);
    return false;
  }
  if (!WriteFileAtomically(path, text)) {
    LogScriptError(game, "Error: Unable to save the game to " + path + ".");
    game.host.dialogs.ShowMessage("Unable to save the game to " + path, "Error", kOkOnly);
    return false;
  }
  game.run.current_saved_game_path = path;
  return true;
}

bool LoadSavedGame(Game& game, const std::string& path) {
  // Read and check the whole file first: until it is known to be a complete saved game whose
  // game file is there, nothing of the game in progress may change.
  std::error_code ec;
  const auto size = fs::file_size(path, ec);
  if (!ec && size > kMaxSavedGameBytes) {
    FormatError(game, kTooLargeText);
    return false;
  }
  std::string bytes;
  if (!ReadWholeFile(path, bytes, kMaxSavedGameBytes)) {
    if (bytes.size() > kMaxSavedGameBytes) {
      FormatError(game, kTooLargeText);
    } else {
      LogScriptError(game, "Unable to open " + path);
      game.host.dialogs.ShowMessage("Unable to open " + path, "Error", kOkOnly);
    }
    return false;
  }
  const std::vector<std::string> lines = SplitLines(DecodeGameText(std::move(bytes)));
  SavedGameData data;
  std::string problem;
  switch (SavedGameParser(lines, data).Parse(problem)) {
    case ReadResult::kOlderVersion:
      FormatError(game, kOlderVersionText);
      return false;
    case ReadResult::kInvalid:
      FormatError(game, kInvalidFileText);
      return false;
    case ReadResult::kDamaged:
      LogScriptError(game, "Error: The saved game " + path + " cannot be loaded: " + problem + ".");
      FormatError(game, kDamagedText);
      return false;
    case ReadResult::kRead:
      break;
  }

  // Opening the game discards the one in progress, so its file must be there first; the
  // message is the one opening the game would give.
  const std::string game_file = LocateGameFile(data.game_file, path);
  if (!IsReadableFile(game_file)) {
    LogScriptError(game, "Unable to open " + game_file);
    game.host.dialogs.ShowMessage("Unable to open " + game_file, "Error", kOkOnly);
    return false;
  }

  const int games_opened = game.games_opened;
  if (!OpenGame(game, game_file, /*installed=*/false, /*keep_on_failure=*/true)) return false;
  // A start script of the game that opened yet another game: that game now stands in its place
  // and the saved state does not belong to it.
  if (game.games_opened != games_opened + 1) return false;

  game.run.current_saved_game_path = path;
  game.host.pane.ClearOutput();
  for (std::size_t line : data.skipped_lines) {
    LogScriptError(game, "Warning: Line " + std::to_string(line) + " of the saved game " + path +
                             " is not a complete record, so it was skipped.");
  }
  Restore(game, data);
  RefreshInventory(game);

  PrintText(game, "Loaded game " + path + " - " + game.run.game_name);
  PrintText(game, "");
  DescribeRoom(game, game.world.current_room);
  PrintText(game, "");
  return true;
}

}  // namespace tarve
