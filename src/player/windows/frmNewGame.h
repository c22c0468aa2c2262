// frmNewGame: the launcher, the window the player starts from without a game. It lists the
// installed games as buttons under a scroll bar, lets the player browse for a game file, add it
// to the list and play it, load a saved game, edit the list, open the options and leave, and
// explains the control under the mouse pointer in its help line.
#pragma once

#include <QWidget>
#include <array>
#include <string>

#include "player/InstalledGamesList.h"
#include "player/windows/FileDialogs.h"

class QGroupBox;
class QLabel;
class QPushButton;
class QScrollBar;

namespace tarve {

struct Game;
class SettingsStore;

class frmNewGame : public QWidget {
  Q_OBJECT

 public:
  // So many installed games show at once; the scroll bar moves the list one game a step and a
  // whole window of games a page.
  static constexpr int kVisibleGames = 8;

  static constexpr const char* kDefaultHelp =
      "Point your mouse over any button for help to see what it does";

  // `game` gives the settings (AutoInstall, the style of message boxes) and the variables a
  // game's title is substituted with; `store` holds the installed games. Both must outlive the
  // window. Without `choose_file` the file dialogs ask the player.
  frmNewGame(Game& game, SettingsStore& store, FileChooser choose_file = {},
             QWidget* parent = nullptr);

  // Reads the installed games again and shows them. The launcher reads them when it is made and
  // after the list editor closes; nothing else changes them while the program runs.
  void DisplayInstalledGames();
  // The game file chosen with Browse, the one Add and Play act on.
  const std::string& browsed_file() const { return browsed_file_; }
  const InstalledGamesList& installed_games() const { return list_; }

  QPushButton* butInstalledGame(int slot) const {
    return but_installed_game_[static_cast<std::size_t>(slot)];
  }
  QScrollBar* scrlGamePos() const { return scrl_game_pos_; }
  QPushButton* butBrowse() const { return but_browse_; }
  QPushButton* butAdd() const { return but_add_; }
  QPushButton* butPlay() const { return but_play_; }
  QPushButton* butLoadSavedGame() const { return but_load_saved_game_; }
  QPushButton* butEditList() const { return but_edit_list_; }
  QPushButton* butOptions() const { return but_options_; }
  QPushButton* butExit() const { return but_exit_; }
  QGroupBox* frameInstalledGames() const { return frame_installed_games_; }
  QGroupBox* frameOtherGames() const { return frame_other_games_; }
  QLabel* lblGameFile() const { return lbl_game_file_; }
  QLabel* lblHelp() const { return lbl_help_; }

 signals:
  // The player chose a game to play: an installed one, or the browsed file.
  void playGame(const QString& path);
  // The player chose a saved game to go on with.
  void loadSavedGame(const QString& path);
  void optionsRequested();
  // Exit, or the window closed: the program ends unless a game is being played.
  void exitRequested();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Browse();
  void Add();
  void LoadSavedGame();
  void EditList();
  void PlayInstalledGame(int slot);
  // Shows the browsed file's path, cut to the room its label has.
  void ShowGameFile();
  // Fits the scroll bar to the list and shows the games on the buttons.
  void ShowGameButtons();
  // Puts the games from the scroll bar's position on the buttons.
  void FillGameButtons();
  // Moves the keyboard focus among the game buttons, scrolling at the ends of the window.
  void MoveGameFocus(int slot, int step);
  // Gives `control` its help text for the help line (and for screen readers).
  void SetHelp(QWidget* control, const char* help);
  void ShowHelp(const QString& text);

  Game& game_;
  SettingsStore& store_;
  InstalledGamesList list_;
  FileChooser choose_file_;
  std::string browsed_file_;

  QGroupBox* frame_installed_games_;
  QGroupBox* frame_other_games_;
  std::array<QPushButton*, kVisibleGames> but_installed_game_{};
  QScrollBar* scrl_game_pos_;
  QPushButton* but_browse_;
  QLabel* lbl_game_file_caption_;
  QLabel* lbl_game_file_;
  QPushButton* but_add_;
  QPushButton* but_play_;
  QPushButton* but_load_saved_game_;
  QPushButton* but_edit_list_;
  QPushButton* but_options_;
  QPushButton* but_exit_;
  QLabel* lbl_help_;
};

}  // namespace tarve
