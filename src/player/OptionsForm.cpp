#include "player/OptionsForm.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "base/Text.h"
#include "player/Settings.h"

namespace tarve {

namespace {

bool IsSet(const char* value) { return value != nullptr && *value != '\0'; }

}  // namespace

std::string UserDataFolder(const char* xdg_data_home, const char* home) {
  // The base directory specification asks to ignore a relative XDG_DATA_HOME.
  if (IsSet(xdg_data_home) && xdg_data_home[0] == '/') {
    return (std::filesystem::path(xdg_data_home) / "Tarve").string();
  }
  if (IsSet(home)) return (std::filesystem::path(home) / ".local" / "share" / "Tarve").string();
  return std::string();
}

std::string UserDataFolder() {
  return UserDataFolder(std::getenv("XDG_DATA_HOME"), std::getenv("HOME"));
}

std::string CustomSecurityList::EntryFor(std::string_view typed) {
  std::string_view type = TrimView(typed);
  const std::size_t dot = type.rfind('.');
  if (dot != std::string_view::npos) type = TrimView(type.substr(dot + 1));
  return CharLeft(UCase(type), 3);
}

bool CustomSecurityList::Add(std::string_view typed) {
  std::string entry = EntryFor(typed);
  if (entry.empty()) return false;
  if (std::find(entries_.begin(), entries_.end(), entry) != entries_.end()) return false;
  entries_.push_back(std::move(entry));
  return true;
}

bool CustomSecurityList::Remove(int index) {
  if (index < 0 || index >= static_cast<int>(entries_.size())) return false;
  entries_.erase(entries_.begin() + index);
  return true;
}

OptionsForm::OptionsForm(const Settings& current, std::string data_folder)
    : values(current), data_folder_(std::move(data_folder)) {}

bool OptionsForm::IsColour(std::string_view text) {
  return text.size() == 6 && std::all_of(text.begin(), text.end(), [](char c) {
           return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
         });
}

std::string OptionsForm::DefaultFile(const char* name) const {
  if (data_folder_.empty()) return name;
  // The folder may not exist yet on a new account; without it the file could not be written.
  std::error_code ignored;
  std::filesystem::create_directories(data_folder_, ignored);
  return (std::filesystem::path(data_folder_) / name).string();
}

bool OptionsForm::Confirm(Settings& settings, SettingsStore& store) {
  // The order matters to the player: the default file names appear in the form before the keys
  // are written, so the window shows what was stored.
  settings.log_errors = values.log_errors;
  if (values.log_errors) {
    if (TrimView(values.log_file).empty()) values.log_file = DefaultFile(kDefaultLogFileName);
    settings.log_file = values.log_file;
  }
  settings.output_file = values.output_file;
  if (values.output_file) {
    if (TrimView(values.out_file).empty()) values.out_file = DefaultFile(kDefaultOutputFileName);
    settings.out_file = values.out_file;
  }
  // With no level chosen (a damaged level read from the store) the level stays as it was.
  if (values.security_type >= 1 && values.security_type <= 3) {
    settings.security_type = values.security_type;
  }

  settings.special_msg_box = values.special_msg_box;
  settings.auto_install = values.auto_install;
  settings.detailed_look = values.detailed_look;
  settings.override_game_default_font = values.override_game_default_font;
  settings.override_all_fonts = values.override_all_fonts;
  settings.override_effects = values.override_effects;
  settings.zero_security_installed_games = values.zero_security_installed_games;
  settings.custom_security_is_disallow = values.custom_security_is_disallow;

  // What the font dialog, the colour boxes and the list editor chose.
  settings.default_font_name = values.default_font_name;
  settings.default_font_size = values.default_font_size;
  settings.default_font_bold = values.default_font_bold;
  settings.default_font_italic = values.default_font_italic;
  if (IsColour(values.label_foreground_colour)) {
    settings.label_foreground_colour = UCase(values.label_foreground_colour);
  }
  if (IsColour(values.label_background_colour)) {
    settings.label_background_colour = UCase(values.label_background_colour);
  }
  values.label_foreground_colour = settings.label_foreground_colour;
  values.label_background_colour = settings.label_background_colour;
  settings.custom_security = values.custom_security;

  return SaveSettings(settings, store);
}

}  // namespace tarve
