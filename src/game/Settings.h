// The player's settings as the engine reads them: preferences, the security rules for files a
// game may open, and their defaults. The application layer reads and writes them in the
// settings store.
#pragma once

#include <string>
#include <vector>

namespace tarve {

struct Settings {
  // Options
  bool log_errors = false;
  std::string log_file;
  bool output_file = false;
  std::string out_file;
  bool special_msg_box = true;
  bool auto_install = false;
  bool detailed_look = true;
  std::string default_font_name = "Courier New";
  float default_font_size = 8.25f;
  bool default_font_bold = false;
  bool default_font_italic = false;
  bool override_game_default_font = false;
  bool override_all_fonts = false;
  bool override_effects = false;
  std::string label_foreground_colour = "FFFFFF";
  std::string label_background_colour = "600070";

  // Security: 1 no file may be opened, 2 every file, 3 the custom list decides.
  int security_type = 3;
  bool zero_security_installed_games = false;
  bool custom_security_is_disallow = true;
  std::vector<std::string> custom_security = {"EXE", "COM", "DOC", "DLL"};  // upper case
};

}  // namespace tarve
